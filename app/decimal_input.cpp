#include "app/decimal_input.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <vector>

#include "app/partial_number.hpp"
#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"

namespace cauce::app {

namespace {

std::string_view Trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

bool AllDigits(std::string_view s) {
    return !s.empty() && std::all_of(s.begin(), s.end(), [](unsigned char c) { return std::isdigit(c); });
}

// Digits split by one separator in groups of three after a first group of one to three.
bool Grouped(std::string_view s, char sep) {
    std::vector<std::string_view> groups;
    std::size_t pos = 0;
    for (;;) {
        const std::size_t next = s.find(sep, pos);
        groups.push_back(s.substr(pos, next == std::string_view::npos ? std::string_view::npos : next - pos));
        if (next == std::string_view::npos) break;
        pos = next + 1;
    }
    if (groups.size() < 2 || groups.front().size() > 3 || !AllDigits(groups.front())) return false;
    return std::all_of(groups.begin() + 1, groups.end(),
                       [](std::string_view g) { return g.size() == 3 && AllDigits(g); });
}

std::string Without(std::string_view s, char sep) {
    std::string out;
    for (char c : s)
        if (c != sep) out += c;
    return out;
}

}  // namespace

PastedNumber ConvertSeparators(std::string_view text, std::optional<bool> comma_is_decimal) {
    PastedNumber out{std::string(text), false};
    std::string_view body = Trim(text);
    std::string sign;
    if (!body.empty() && (body.front() == '-' || body.front() == '+')) {
        sign = std::string(1, body.front());
        body.remove_prefix(1);
    }
    if (body.empty() || !std::all_of(body.begin(), body.end(),
                                     [](unsigned char c) { return std::isdigit(c) || c == ',' || c == '.'; }))
        return out;
    const auto commas = std::count(body.begin(), body.end(), ',');
    const auto points = std::count(body.begin(), body.end(), '.');
    if (commas == 0 && points <= 1) return out;  // already the program's way
    if (commas > 0 && points > 0) {
        // The separator that comes last is the decimal one and appears once; the other groups.
        const std::size_t last = body.find_last_of(",.");
        const char decimal = body[last], group = decimal == ',' ? '.' : ',';
        const std::string_view whole = body.substr(0, last), fraction = body.substr(last + 1);
        if (whole.find(decimal) != std::string_view::npos || !AllDigits(fraction) ||
            !(Grouped(whole, group) || AllDigits(whole)))
            return out;
        out.text = sign + Without(whole, group) + "." + std::string(fraction);
        return out;
    }
    const char sep = commas > 0 ? ',' : '.';
    if ((commas > 1 || points > 1)) {
        if (Grouped(body, sep)) out.text = sign + Without(body, sep);
        return out;
    }
    // One comma and no point.
    const std::size_t at = body.find(',');
    const std::string_view whole = body.substr(0, at), fraction = body.substr(at + 1);
    if (!AllDigits(fraction) || (!whole.empty() && !AllDigits(whole))) return out;
    const bool could_group = fraction.size() == 3 && !whole.empty() && whole.size() <= 3 && whole != "0";
    if (could_group && !comma_is_decimal) {
        out.ambiguous = true;
        return out;
    }
    if (could_group && !*comma_is_decimal) {
        out.text = sign + std::string(whole) + std::string(fraction);
        return out;
    }
    out.text = sign + std::string(whole) + "." + std::string(fraction);
    return out;
}

std::optional<std::string> ReadInPart(std::string_view text) {
    if (Trim(text).empty()) return std::nullopt;
    if (const auto part = ReadsInPart(text)) {
        try {
            char buf[32];
            const auto r = std::to_chars(buf, buf + sizeof buf, forms::Val(text));
            return std::string(buf, r.ptr);
        } catch (const Fault&) {
            return part->read;
        }
    }
    try {
        if (forms::Val(text) == 0 &&
            std::none_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); }))
            return std::string("0");  // nothing numeric in it
    } catch (const Fault&) {
    }
    return std::nullopt;
}

}  // namespace cauce::app
