// What a control of a screen means to the person using it: the caption a sighted user reads for a
// text box (the label beside it, or a table's column heading and row), the unit of the number it
// holds, and whether it holds a number at all. Found from the screen's layout and captions, so that
// Form1's two layouts (the same box is "Base" or "Diametro") get the right words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/table_clipboard.hpp"
#include "forms/screen.hpp"

namespace cauce::app {

struct BoxMeaning {
    std::string caption;  // "Caudal", "Z agua m, sección 3"; the control's name when nothing is beside it
    std::string unit;     // "m³/s"; "" for a pure number (roughness, Froude, ratios)
    bool numeric = true;  // false for a box of words (the profile type "M1")
};

BoxMeaning MeaningOf(const forms::Screen& screen, const forms::Control& box,
                     const std::vector<BoxTable>& tables);

// The unit of the quantity a caption names ("Pendiente" gives "m/m"); "" when none or unknown.
std::string UnitOfCaption(std::string_view caption);

// Labels whose text is a message of the last click rather than a caption.
bool IsMessageLabel(const forms::Screen& screen, std::string_view label);

}  // namespace cauce::app
