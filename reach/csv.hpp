// CSV lines for spreadsheets: with "," and the decimal point, or with ";" and the decimal comma that a
// Spanish-language spreadsheet reads as numbers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cauce::reach {

// One line (without its end): fields joined by separator; with ';' a field that is entirely a number
// has its decimal point written as a comma. A field holding the separator, a quote or a line break is
// quoted.
std::string CsvLine(const std::vector<std::string>& fields, char separator);

}  // namespace cauce::reach
