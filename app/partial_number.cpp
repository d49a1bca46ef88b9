#include "app/partial_number.hpp"

#include <charconv>

#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"

namespace cauce::app {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
std::string Trim(std::string_view s) {
    std::size_t a = 0, b = s.size();
    while (a < b && IsBlank(s[a])) ++a;
    while (b > a && IsBlank(s[b - 1])) --b;
    return std::string(s.substr(a, b - a));
}

// The value as the shortest text that reads back the same.
std::string Shortest(double v) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

}  // namespace

std::optional<PartialReading> ReadsInPart(std::string_view text) {
    const std::size_t end = forms::ValEnd(text);
    if (end == std::string_view::npos) return std::nullopt;
    std::string unread = Trim(text.substr(end));
    if (unread.empty()) return std::nullopt;
    return PartialReading{Trim(text.substr(0, end)), std::move(unread)};
}

std::string PartialTooltip(std::string_view text) {
    const auto part = ReadsInPart(text);
    if (!part) return "";
    std::string used;
    try {
        used = Shortest(forms::Val(text));
    } catch (const Fault&) {
        used = part->read;
    }
    std::string tip = "Esta casilla se lee como " + used + ": el separador decimal es el punto";
    // A decimal comma is the usual slip: say what to type instead.
    std::string fixed(Trim(text));
    for (char& c : fixed)
        if (c == ',') c = '.';
    if (fixed != Trim(text) && !ReadsInPart(fixed)) tip += " (escriba " + fixed + ")";
    tip += ".";
    return tip;
}

}  // namespace cauce::app
