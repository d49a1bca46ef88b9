#include "app/partial_number.hpp"

#include <charconv>

#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"

namespace cauce::app {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Where the legacy reading stops, following the grammar of forms::Val: blanks, "&H"/"&O" whole numbers,
// or a sign, digits with blanks and one point, then an exponent that has at least one digit.
// Returns npos when no digit is read.
std::size_t ReadEnd(std::string_view s) {
    std::size_t pos = 0;
    while (pos < s.size() && IsBlank(s[pos])) ++pos;
    if (pos + 1 < s.size() && s[pos] == '&' &&
        (s[pos + 1] == 'h' || s[pos + 1] == 'H' || s[pos + 1] == 'o' || s[pos + 1] == 'O')) {
        const bool hex = s[pos + 1] == 'h' || s[pos + 1] == 'H';
        bool digits = false;
        for (pos += 2; pos < s.size(); ++pos) {
            const char c = s[pos];
            const bool digit = hex ? (IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'))
                                   : (c >= '0' && c <= '7');
            if (digit) {
                digits = true;
            } else if (!IsBlank(c)) {
                break;
            }
        }
        return digits ? pos : std::string_view::npos;
    }
    if (pos < s.size() && (s[pos] == '-' || s[pos] == '+')) {
        ++pos;
        while (pos < s.size() && IsBlank(s[pos])) ++pos;
    }
    bool digits = false, point = false;
    for (; pos < s.size(); ++pos) {
        const char c = s[pos];
        if (IsDigit(c)) {
            digits = true;
        } else if (c == '.' && !point) {
            point = true;
        } else if (!IsBlank(c)) {
            break;
        }
    }
    if (!digits) return std::string_view::npos;
    if (pos < s.size() && (s[pos] == 'e' || s[pos] == 'E' || s[pos] == 'd' || s[pos] == 'D')) {
        std::size_t q = pos + 1;
        while (q < s.size() && IsBlank(s[q])) ++q;
        if (q < s.size() && (s[q] == '-' || s[q] == '+')) ++q;
        bool exp_digits = false;
        for (; q < s.size(); ++q) {
            if (IsDigit(s[q])) {
                exp_digits = true;
            } else if (!IsBlank(s[q])) {
                break;
            }
        }
        if (exp_digits) pos = q;
    }
    return pos;
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
    const std::size_t end = ReadEnd(text);
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
