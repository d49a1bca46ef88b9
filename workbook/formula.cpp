#include "workbook/formula.hpp"

#include <cctype>

#include "workbook/limits.hpp"
#include "workbook/ref.hpp"

namespace cauce::workbook {

namespace {

bool NameChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '$' || c == '.' || c == '\\';
}

// "$AB$12", "AB12", "$AB", "12": the parts of one token, when it is a reference.
struct Part {
    bool col_abs = false, row_abs = false;
    std::string letters, digits;
};

bool Split(const std::string& t, Part& p) {
    std::size_t i = 0;
    const bool first_dollar = i < t.size() && t[i] == '$';
    if (first_dollar) ++i;
    while (i < t.size() && std::isalpha(static_cast<unsigned char>(t[i]))) p.letters += t[i++];
    if (!p.letters.empty()) {
        p.col_abs = first_dollar;
        if (i < t.size() && t[i] == '$') p.row_abs = true, ++i;
    } else {
        p.row_abs = first_dollar;
    }
    while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) p.digits += t[i++];
    if (i != t.size() || p.letters.size() > 3) return false;
    return !p.letters.empty() || !p.digits.empty();
}

std::string Shift(const Part& p, int rows, int cols, bool& ok) {
    std::string out;
    if (!p.letters.empty()) {
        int col = ParseColumn(p.letters);
        if (col == 0) return ok = false, "";
        if (!p.col_abs) col += cols;
        if (col < 1 || col > kMaxColumn) return ok = false, "";
        if (p.col_abs) out += '$';
        out += ColumnName(col);
    }
    if (!p.digits.empty()) {
        if (p.digits.size() > 7) return ok = false, "";
        int row = std::stoi(p.digits);
        if (!p.row_abs) row += rows;
        if (row < 1 || row > kMaxRow) return ok = false, "";
        if (p.row_abs) out += '$';
        out += std::to_string(row);
    }
    return out;
}

}  // namespace

std::string ShiftFormula(const std::string& f, int rows, int cols) {
    std::string out;
    std::size_t i = 0;
    while (i < f.size()) {
        const char c = f[i];
        if (c == '"' || c == '\'') {  // a text literal or a quoted sheet name: copied as it is
            std::size_t j = i + 1;
            for (; j < f.size(); ++j) {
                if (f[j] == c) {
                    if (j + 1 < f.size() && f[j + 1] == c) {
                        ++j;
                        continue;
                    }
                    break;
                }
            }
            out.append(f, i, j + 1 - i);
            i = j + 1;
            continue;
        }
        if (c == '[') {  // a table's column or an external book: no cell references inside
            const std::size_t j = f.find(']', i);
            const std::size_t end = j == std::string::npos ? f.size() : j + 1;
            out.append(f, i, end - i);
            i = end;
            continue;
        }
        if (!NameChar(c)) {
            out += c;
            ++i;
            continue;
        }
        std::size_t j = i;
        while (j < f.size() && NameChar(f[j])) ++j;
        const std::string token = f.substr(i, j - i);
        const char before = i > 0 ? f[i - 1] : '\0';
        const char after = j < f.size() ? f[j] : '\0';
        Part p;
        bool is_ref = after != '(' && after != '!' && Split(token, p);
        // A bare column ("A") or row ("12") is a reference only as one end of a range ("A:A", "1:1").
        if (is_ref && (p.letters.empty() || p.digits.empty())) is_ref = before == ':' || after == ':';
        if (is_ref) {
            bool ok = true;
            const std::string moved = Shift(p, rows, cols, ok);
            out += ok ? moved : "#REF!";
        } else {
            out += token;
        }
        i = j;
    }
    return out;
}

}  // namespace cauce::workbook
