#include "forms/survey_points.hpp"

#include <charconv>
#include <cmath>

#include "hydraulics/checked_math.hpp"

namespace cauce::forms {

namespace {

std::string_view Trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\r')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
    return s;
}

std::vector<std::string_view> Split(std::string_view line, char sep) {
    std::vector<std::string_view> out;
    std::size_t start = 0;
    for (;;) {
        const std::size_t at = line.find(sep, start);
        out.push_back(
            Trim(line.substr(start, at == std::string_view::npos ? std::string_view::npos : at - start)));
        if (at == std::string_view::npos) break;
        start = at + 1;
    }
    return out;
}

std::vector<std::string_view> Words(std::string_view line) {
    std::vector<std::string_view> out;
    std::size_t k = 0;
    while (k < line.size()) {
        while (k < line.size() && (line[k] == ' ' || line[k] == '\t')) ++k;
        const std::size_t start = k;
        while (k < line.size() && line[k] != ' ' && line[k] != '\t') ++k;
        if (k > start) out.push_back(line.substr(start, k - start));
    }
    return out;
}

bool Number(std::string_view field, bool decimal_comma, double& value) {
    std::string text(field);
    if (decimal_comma) {
        const std::size_t comma = text.find(',');
        if (comma != std::string::npos && text.find(',', comma + 1) == std::string::npos &&
            text.find('.') == std::string::npos)
            text[comma] = '.';
    }
    if (!text.empty() && text.front() == '+') text.erase(0, 1);
    if (text.empty()) return false;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), value);
    return r.ec == std::errc() && r.ptr == text.data() + text.size() && std::isfinite(value);
}

void DropEmptyTail(std::vector<std::string_view>& fields) {
    while (!fields.empty() && fields.back().empty()) fields.pop_back();
}

// A line read as a point: the separator is a tab or ";" when the line has one (then the comma may be
// the decimal separator), else the comma when it splits the line into two numbers, else blanks.
bool ReadLine(std::string_view line, double& x, double& z) {
    auto two = [&](std::vector<std::string_view> fields, bool decimal_comma) {
        DropEmptyTail(fields);
        return fields.size() == 2 && Number(fields[0], decimal_comma, x) &&
               Number(fields[1], decimal_comma, z);
    };
    if (line.find('\t') != std::string_view::npos) return two(Split(line, '\t'), true);
    if (line.find(';') != std::string_view::npos) return two(Split(line, ';'), true);
    return two(Split(line, ','), false) || two(Words(line), true);
}

bool HasLetter(std::string_view s) {
    for (char c : s)
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80)
            return true;
    return false;
}

}  // namespace

std::vector<survey::Point> ReadSurveyPoints(std::string_view text, std::string_view noun) {
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    std::vector<survey::Point> points;
    bool first = true;
    int number = 0;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = text.find('\n', start);
        const std::string_view raw =
            text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
        start = end == std::string_view::npos ? text.size() + 1 : end + 1;
        ++number;
        const std::string_view line = Trim(raw);
        if (line.empty()) continue;
        double x = 0, z = 0;
        const bool ok = ReadLine(line, x, z);
        const bool header = first && !ok && HasLetter(line) &&
                            !Number(Trim(line.substr(0, line.find_first_of("\t;, "))), true, x);
        first = false;
        if (header) continue;
        if (!ok) {
            const std::string shown =
                line.size() > 60 ? std::string(line.substr(0, 57)) + "..." : std::string(line);
            std::string why = std::string(noun) + " " + std::to_string(number) + ": «" + shown +
                              "» no son dos números (abscisa y cota)";
            if (line.find_first_of("\t;") == std::string_view::npos && Split(line, ',').size() == 4)
                why += "; con la coma decimal, separe los números con punto y coma o tabulador";
            raise(FaultCode::SurveyPoints, why + ".");
        }
        points.push_back({x, z, number});
    }
    return points;
}

}  // namespace cauce::forms
