#include "workbook/cell.hpp"

#include <charconv>
#include <cmath>

namespace cauce::workbook {

std::string NumberText(double x) {
    if (x == 0) return "0";  // no "-0"
    char buf[32];
    const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, x);
    if (ec != std::errc()) return "0";
    return std::string(buf, end);
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
