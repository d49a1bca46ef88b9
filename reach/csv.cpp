#include "reach/csv.hpp"

#include <algorithm>
#include <charconv>

namespace cauce::reach {

namespace {

bool IsNumber(std::string_view s) {
    if (s.empty()) return false;
    if (s.front() == '+') s.remove_prefix(1);
    double v = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    return ec == std::errc() && end == s.data() + s.size();
}

}  // namespace

std::string CsvLine(const std::vector<std::string>& fields, char separator) {
    std::string line;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        std::string f = fields[i];
        if (separator == ';' && IsNumber(f)) std::replace(f.begin(), f.end(), '.', ',');
        if (i) line += separator;
        if (f.find_first_of(std::string{separator, '"', '\r', '\n'}) == std::string::npos) {
            line += f;
            continue;
        }
        line += '"';
        for (const char c : f) {
            if (c == '"') line += '"';
            line += c;
        }
        line += '"';
    }
    return line;
}

}  // namespace cauce::reach
