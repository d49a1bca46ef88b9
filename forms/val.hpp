// Reading numbers typed into text boxes, as the legacy run time's Val did, and reading whole numbers.
#pragma once

#include <cstddef>
#include <string_view>

namespace cauce::forms {

// Lenient conversion: leading blanks skipped, an optional sign, digits (blanks between them are
// ignored), at most one '.', an optional exponent with E or D; reading stops at the first other
// character; nothing numeric reads 0. "&H" and "&O" read hexadecimal and octal whole numbers.
// A number beyond the range of a double is an overflow fault.
double Val(std::string_view text);

// Where Val stops reading text (after the last character it used); npos when it read no digit.
std::size_t ValEnd(std::string_view text);

// The legacy Integer conversion: rounds half to even; outside -32768..32767 is an overflow fault.
int CInt(double x);

}  // namespace cauce::forms
