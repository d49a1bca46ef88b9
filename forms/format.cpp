#include "forms/format.hpp"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "hydraulics/checked_math.hpp"

namespace cauce::forms {

std::string FormatFixed(double value, int decimals) {
    Finite(value);
    std::string zero = decimals > 0 ? "0." + std::string(static_cast<std::size_t>(decimals), '0') : "0";
    if (value == 0) return zero;

    // 15 significant digits: d.dddddddddddddde[+-]x
    char buf[64];
    const auto res =
        std::to_chars(buf, buf + sizeof buf, std::fabs(value), std::chars_format::scientific, 14);
    std::string sci(buf, res.ptr);
    const auto epos = sci.find('e');
    std::string digits;
    for (std::size_t p = 0; p < epos; ++p)
        if (sci[p] != '.') digits += sci[p];
    int exp10 = std::atoi(sci.c_str() + epos + 1);  // value = 0.digits x 10^(exp10 + 1)

    // Keep the digits up to the pattern's last decimal, rounding half away from zero.
    const int keep = exp10 + 1 + decimals;
    if (keep < 0) return zero;
    if (keep < static_cast<int>(digits.size())) {
        const bool up = digits[static_cast<std::size_t>(keep)] >= '5';
        digits.resize(static_cast<std::size_t>(keep));
        if (up) {
            int p = keep - 1;
            while (p >= 0 && digits[static_cast<std::size_t>(p)] == '9')
                digits[static_cast<std::size_t>(p--)] = '0';
            if (p >= 0) {
                ++digits[static_cast<std::size_t>(p)];
            } else {
                digits.insert(digits.begin(), '1');
                ++exp10;
            }
        }
    }
    // Lay the digits out around the decimal point.
    const int int_digits = exp10 + 1;
    std::string int_part, frac_part;
    for (int p = 0; p < int_digits; ++p)
        int_part += p < static_cast<int>(digits.size()) ? digits[static_cast<std::size_t>(p)] : '0';
    if (int_part.empty()) int_part.push_back('0');
    for (int p = 0; p < decimals; ++p) {
        const int idx = int_digits + p;
        frac_part +=
            (idx >= 0 && idx < static_cast<int>(digits.size())) ? digits[static_cast<std::size_t>(idx)] : '0';
    }
    std::string out = int_part;
    if (decimals > 0) out += "." + frac_part;
    if (out == zero) return zero;
    return value < 0 ? "-" + out : out;
}

std::string Format(double value, std::string_view pattern) {
    const auto dot = pattern.find('.');
    const int decimals = dot == std::string_view::npos ? 0 : static_cast<int>(pattern.size() - dot - 1);
    return FormatFixed(value, decimals);
}

}  // namespace cauce::forms
