#include "cli/args.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>

#include "platform/platform.hpp"

namespace cauce::cli {

std::optional<double> ParseNumber(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    if (text.empty()) return std::nullopt;
    double v = 0;
    const auto [end, ec] =
        std::from_chars(text.data(), text.data() + text.size(), v, std::chars_format::general);
    if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(v)) return std::nullopt;
    return v;
}

double NumberOption(std::string_view option, const std::string& text, Sign sign) {
    const std::string name(option);
    const auto v = ParseNumber(text);
    if (!v) {
        std::string why = name + ": \"" + text + "\" no es un número";
        if (text.find(',') != std::string::npos) why += " (el separador decimal es el punto: 2.5, no 2,5)";
        throw UsageError(why);
    }
    if (sign == Sign::Positive && !(*v > 0))
        throw UsageError(name + ": el valor debe ser mayor que cero (se dio " + text + ")");
    if (sign == Sign::NonNegative && *v < 0)
        throw UsageError(name + ": el valor no puede ser negativo (se dio " + text + ")");
    return *v;
}

std::string NumberText(double value) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, 9);
    std::string s(buf, r.ptr);
    if (s.find('.') != std::string::npos) {
        while (s.back() == '0') s.pop_back();
        if (s.back() == '.') s.pop_back();
    }
    if (s == "-0") s = "0";
    return s;
}

Format ParseFormat(const std::string& text, bool json_allowed) {
    if (text == "texto") return Format::Text;
    if (text == "csv") return Format::Csv;
    if (text == "json" && json_allowed) return Format::Json;
    throw UsageError("--formato: formato desconocido \"" + text + "\" (use " +
                     (json_allowed ? "texto, csv o json)" : "texto o csv)"));
}

std::string CsvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

bool ErrorIsTerminal() {
    return platform::StandardErrorIsTerminal();
}

}  // namespace cauce::cli
