// Numbers that come into the desktop's boxes with decimal commas: a text pasted from a spreadsheet
// written the Spanish way ("1.234,5") or the English way ("1,234.5") becomes the number the screens
// read ("1234.5"). The screens themselves keep reading text as they always did.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cauce::app {

struct PastedNumber {
    std::string text;        // what goes into the box
    bool ambiguous = false;  // "1,234": a thousands comma or a decimal comma; text keeps it as given
};

// The text with its separators turned into the program's: grouping separators dropped, the decimal
// one made a point. A text that is not a number written with separators comes back unchanged.
// comma_is_decimal settles the ambiguous "1,234" (true: 1.234; false: 1234).
PastedNumber ConvertSeparators(std::string_view text, std::optional<bool> comma_is_decimal = std::nullopt);

// The text a number box refuses to compute with: something other than blanks after the number
// ("2,5", "3 m", "1.5.2") or nothing numeric at all ("abc"). Returns what the screen would read
// it as ("2", "0"), or nothing when the text reads whole or is blank.
std::optional<std::string> ReadInPart(std::string_view text);

}  // namespace cauce::app
