// Writing results with the legacy patterns "0.00" and "0.000".
#pragma once

#include <string>
#include <string_view>

namespace cauce::forms {

// The value is first rounded to 15 significant digits, then to the pattern's decimals, half away
// from zero (2.675 gives "2.68"); a value that rounds to zero has no sign. A value that is not a
// finite number is an overflow fault: no box ever shows inf or nan.
std::string Format(double value, std::string_view pattern);

// The same with the number of decimals given directly.
std::string FormatFixed(double value, int decimals);

}  // namespace cauce::forms
