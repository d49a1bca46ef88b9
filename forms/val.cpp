#include "forms/val.hpp"

#include <charconv>
#include <cmath>
#include <string>

#include "hydraulics/checked_math.hpp"

namespace cauce::forms {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

double RadixValue(std::string_view s, std::size_t pos, int radix) {
    double v = 0;
    for (; pos < s.size(); ++pos) {
        const char c = s[pos];
        int d;
        if (IsDigit(c)) {
            d = c - '0';
        } else if (radix == 16 && c >= 'a' && c <= 'f') {
            d = c - 'a' + 10;
        } else if (radix == 16 && c >= 'A' && c <= 'F') {
            d = c - 'A' + 10;
        } else if (IsBlank(c)) {
            continue;
        } else {
            break;
        }
        if (d >= radix) break;
        v = v * radix + d;
        if (v > 4294967295.0) raise(FaultCode::Overflow, msg::kDesbordamiento);
    }
    return v;
}

}  // namespace

namespace {

// What the legacy reading takes of a text.
struct Reading {
    int radix = 10;                            // 16 or 8 after "&H" or "&O"
    std::size_t start = 0;                     // there, where the digits begin
    std::size_t end = std::string_view::npos;  // where the reading stops; npos when no digit was read
    std::string clean;  // a decimal number without its blanks, its exponent as "e" and the digits
};

int DigitValue(char c) {
    if (IsDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

Reading Read(std::string_view s) {
    Reading r;
    std::size_t pos = 0;
    auto skip_blanks = [&] {
        while (pos < s.size() && IsBlank(s[pos])) ++pos;
    };
    skip_blanks();
    if (pos + 1 < s.size() && s[pos] == '&') {
        const char x = s[pos + 1];
        r.radix = x == 'h' || x == 'H' ? 16 : x == 'o' || x == 'O' ? 8 : 10;
        if (r.radix != 10) {
            r.start = pos + 2;
            bool digits = false;
            for (pos = r.start; pos < s.size(); ++pos) {
                const int d = DigitValue(s[pos]);
                if (d >= 0 && d < r.radix) {
                    digits = true;
                } else if (!IsBlank(s[pos])) {
                    break;
                }
            }
            if (digits) r.end = pos;
            return r;
        }
    }
    bool digits = false, point = false;
    if (pos < s.size() && (s[pos] == '-' || s[pos] == '+')) {
        r.clean += s[pos++];
        skip_blanks();
    }
    for (; pos < s.size(); ++pos) {
        const char c = s[pos];
        if (IsDigit(c)) {
            r.clean += c;
            digits = true;
        } else if (c == '.' && !point) {
            r.clean += c;
            point = true;
        } else if (!IsBlank(c)) {
            break;
        }
    }
    if (!digits) return r;
    r.end = pos;
    // Exponent: E or D, an optional sign and at least one digit; otherwise it is not part of it.
    if (pos < s.size() && (s[pos] == 'e' || s[pos] == 'E' || s[pos] == 'd' || s[pos] == 'D')) {
        std::size_t q = pos + 1;
        while (q < s.size() && IsBlank(s[q])) ++q;
        std::string exp = "e";
        if (q < s.size() && (s[q] == '-' || s[q] == '+')) exp += s[q++];
        bool exp_digits = false;
        for (; q < s.size(); ++q) {
            if (IsDigit(s[q])) {
                if (exp.size() < 12) exp += s[q];
                exp_digits = true;
            } else if (!IsBlank(s[q])) {
                break;
            }
        }
        if (exp_digits) {
            r.clean += exp;
            r.end = q;
        }
    }
    return r;
}

}  // namespace

double Val(std::string_view s) {
    const Reading r = Read(s);
    if (r.radix != 10) return RadixValue(s, r.start, r.radix);
    if (r.end == std::string_view::npos) return 0;
    // The number gathered without its blanks, converted exactly and without locale.
    const std::string& clean = r.clean;
    double v = 0;
    const char* first = clean.data();
    if (*first == '+') ++first;
    const auto [ptr, ec] = std::from_chars(first, clean.data() + clean.size(), v);
    if (ec == std::errc::result_out_of_range) {
        // Too small reads as zero; too large is the legacy overflow.
        const auto e = clean.find('e');
        const bool tiny = e != std::string::npos && clean[e + 1] == '-';
        if (tiny) return 0;
        raise(FaultCode::Overflow, msg::kDesbordamiento);
    }
    (void)ptr;
    return v;
}

std::size_t ValEnd(std::string_view s) {
    return Read(s).end;
}

int CInt(double x) {
    const double r = std::nearbyint(x);  // the default rounding mode: half to even
    if (!(r >= -32768.0 && r <= 32767.0))
        raise(FaultCode::IntegerOverflow, "Desbordamiento: el número entero debe estar entre -32768 y 32767");
    return static_cast<int>(r);
}

}  // namespace cauce::forms
