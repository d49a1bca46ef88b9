// The figures the screens load into their picture boxes. The screens name a metafile
// ("C:\programas\figuras\Cauces1.wmf", "Ctrape1.wmf"); the desktop draws each one itself.
#pragma once

#include <QRectF>
#include <string_view>

class QPainter;

namespace cauce::app {

enum class Figure {
    None,      // an empty picture box
    Unknown,   // a name we have no drawing for: the name is shown
    Cauces1,   // natural section, discharge within the banks
    Cauces,    // natural section overflowing into the flood zone
    Cauces2,   // overflowing, flood zone no wider than the channel
    Summer,    // decorative landscape
    Ctrape1,   // trapezoidal channel (flood zone optional)
    Ctrian1,   // triangular channel
    Crectg1,   // rectangular channel
    Ctrapez,   // trapezoidal channel with the flood zone flowing
    Ctrian,    // triangular, flood zone flowing
    Crectg,    // rectangular, flood zone flowing
    Circulo,   // conduit, depth up to 0.3 D
    Circulo2,  // conduit, depth up to 0.5 D
    Circulo3,  // conduit, more than half full
};

// The figure a picture box's text names: the file name without folder or extension, in any case.
Figure FigureFromText(std::string_view picture_text);
const char* FigureName(Figure figure);  // "Cauces1", ...; "" for None and Unknown

// True for the figures of a cross-section (those a drawing to scale can replace).
bool IsSectionFigure(Figure figure);

// Draws the figure centred in box, keeping its proportions.
void PaintFigure(QPainter& p, const QRectF& box, Figure figure, std::string_view picture_text = {});

}  // namespace cauce::app
