// The cross-section of the current record or channel drawn to scale: its outline, the water at the
// computed normal depth, the critical depth dashed and the flood zone when it flows. Built from what
// the screen shows and, on the natural-section screens, from the section tables of the screen's state.
#pragma once

#include <QPolygonF>
#include <QRectF>
#include <QString>
#include <optional>

#include "forms/screen.hpp"

class QPainter;

namespace cauce::app {

struct SectionSketch {
    QPolygonF ground;                // open channel: outline in metres (x across, z up), left to right
    double diameter = 0;             // conduit: its diameter, the invert at z = 0 and x = 0
    std::optional<double> water;     // elevation of the water surface at the normal depth
    std::optional<double> critical;  // elevation of the critical depth
    bool flood = false;              // the water spreads over the flood zone
    QString caption;                 // "Sección 3 · Yn 1.25 m · Yc 0.84 m"

    bool Conduit() const { return diameter > 0; }
};

// The sketch of what the screen shows now, or nothing when the numbers do not describe a section
// (an empty record, elevations that do not rise, a screen without a section figure).
std::optional<SectionSketch> SketchOf(const forms::Screen& screen);

// Draws it in box. Wide, shallow sections are drawn with their heights exaggerated (up to ten
// times), which the caption says.
void PaintSketch(QPainter& p, const QRectF& box, const SectionSketch& sketch);

// The vertical exaggeration PaintSketch uses for a sketch in a box of that size (1 when to scale).
double VerticalExaggeration(const QRectF& box, const SectionSketch& sketch);

}  // namespace cauce::app
