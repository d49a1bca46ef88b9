#include "workbook/cell.hpp"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace cauce::workbook {

std::string NumberText(double x) {
    if (x == 0) return "0";  // no "-0"
    // The shortest digits that read back the same double, written out in plain decimals as a
    // spreadsheet shows them ("0.0008", not "8e-04") unless the number is very small or very large.
    char buf[40];
    const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, x, std::chars_format::scientific);
    if (ec != std::errc()) return "0";
    const std::string sci(buf, end);
    const auto epos = sci.find('e');
    const int exp10 = std::atoi(sci.c_str() + epos + 1);
    if (exp10 < -10 || exp10 >= 15) {
        char out[40];
        const auto r = std::to_chars(out, out + sizeof out, x);
        std::string text(out, r.ptr);
        for (char& c : text) c = c == 'e' ? 'E' : c;
        return text;
    }
    std::string digits;
    for (std::size_t p = 0; p < epos; ++p)
        if (sci[p] >= '0' && sci[p] <= '9') digits += sci[p];
    std::string text;
    if (exp10 < 0) {
        text = "0." + std::string(static_cast<std::size_t>(-exp10 - 1), '0') + digits;
    } else if (static_cast<int>(digits.size()) <= exp10 + 1) {
        text = digits + std::string(static_cast<std::size_t>(exp10 + 1) - digits.size(), '0');
    } else {
        text = digits.substr(0, static_cast<std::size_t>(exp10 + 1)) + "." +
               digits.substr(static_cast<std::size_t>(exp10 + 1));
    }
    return x < 0 ? "-" + text : text;
}

std::optional<double> NumberFromText(std::string_view s) {
    if (s.empty()) return std::nullopt;
    // Only the characters of a plain decimal number: from_chars alone would take "inf" and "nan".
    for (const char c : s)
        if (!((c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'e' || c == 'E'))
            return std::nullopt;
    if (s[0] == '+') s.remove_prefix(1);
    const std::size_t first = !s.empty() && s[0] == '-' ? 1 : 0;
    if (first >= s.size() || !((s[first] >= '0' && s[first] <= '9') || s[first] == '.')) return std::nullopt;
    double v = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v, std::chars_format::general);
    if (ec != std::errc() || end != s.data() + s.size() || !std::isfinite(v)) return std::nullopt;
    return v;
}

std::string DisplayText(const Cell& c) {
    switch (c.kind) {
        case CellKind::Empty:
            return "";
        case CellKind::Number:
            return NumberText(c.number);
        case CellKind::Text:
            return c.text;
        case CellKind::Boolean:
            return c.number != 0 ? "VERDADERO" : "FALSO";
        case CellKind::Error:
            return c.text;
    }
    return "";
}

Cell CellFromText(const std::string& text) {
    if (text.empty()) return {};
    if (const auto v = NumberFromText(text)) return Cell::Num(*v);
    return Cell::Str(text);
}

}  // namespace cauce::workbook
