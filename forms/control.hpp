// The toolkit-free controls of a screen: text boxes, labels, command buttons, picture boxes and the
// record-binding data control. A screen declares them as data (name, kind, caption, bound column,
// place), so the desktop view, the script driver and the tests all see the same screen.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cauce::forms {

// The legacy name of one control ("Text95"). Each screen binds its controls' meanings to these once
// (profile::box::Discharge is "Text95"); code above the screens speaks the meanings, while the script
// driver and its JSON keep speaking the legacy names.
struct ControlName {
    std::string_view legacy;

    constexpr operator std::string_view() const { return legacy; }
    operator std::string() const { return std::string(legacy); }
    friend constexpr bool operator==(ControlName a, std::string_view b) { return a.legacy == b; }
};

// The legacy names of numbered controls, for the screens' indexed rows: TextName(95) is "Text95".
inline std::string TextName(int n) {
    return "Text" + std::to_string(n);
}
inline std::string LabelName(int n) {
    return "Label" + std::to_string(n);
}

enum class Kind { TextBox, Label, CommandButton, PictureBox, Data };

// Place on the screen's grid, in layout units (pixels of the reference window, 1000 x 720).
struct Place {
    int x = 0, y = 0, w = 0, h = 0;
};

struct Control {
    std::string name;  // "Text1", "Label25", "Command2", "Picture1", "Data1"
    Kind kind = Kind::Label;
    std::string text;  // text of a text box; caption of a label, button or data control; figure of a picture
    std::string column;  // worksheet column a text box is bound to ("" when unbound)
    Place place;
    bool multiline = false;  // a label that wraps
    // How many times a handler has written the control, even with the text it already had: lets a
    // view tell which results a click produced.
    unsigned long writes = 0;
};

const char* KindName(Kind kind);

}  // namespace cauce::forms
