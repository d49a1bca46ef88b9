#include "workbook/formula.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>

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

namespace cauce::workbook {

namespace {

class Evaluator {
  public:
    Evaluator(const std::string& f, const CellNumber& cell) : f_(f), cell_(cell) {}

    std::optional<double> Run() {
        auto v = Sum();
        Blank();
        if (!v || i_ != f_.size() || !std::isfinite(*v)) return std::nullopt;
        return v;
    }

  private:
    void Blank() {
        while (i_ < f_.size() && f_[i_] == ' ') ++i_;
    }
    bool Eat(char c) {
        Blank();
        if (i_ < f_.size() && f_[i_] == c) return ++i_, true;
        return false;
    }
    // One level of operators, left to right: next reads each operand; a missing operand, or a division
    // by zero, leaves no value.
    std::optional<double> Chain(std::optional<double> (Evaluator::*next)(), char first, char second) {
        auto v = (this->*next)();
        while (v) {
            const char op = Eat(first) ? first : Eat(second) ? second : '\0';
            if (op == '\0') break;
            const auto r = (this->*next)();
            if (!r || (op == '/' && *r == 0)) return std::nullopt;
            v = op == '+' ? *v + *r : op == '-' ? *v - *r : op == '*' ? *v * *r : *v / *r;
        }
        return v;
    }
    std::optional<double> Sum() { return Chain(&Evaluator::Product, '+', '-'); }
    std::optional<double> Product() { return Chain(&Evaluator::Unary, '*', '/'); }
    std::optional<double> Unary() {
        if (Eat('-')) {
            const auto v = Unary();
            return v ? std::optional(-*v) : std::nullopt;
        }
        if (Eat('+')) return Unary();
        if (Eat('(')) {
            const auto v = Sum();
            return v && Eat(')') ? v : std::nullopt;
        }
        Blank();
        if (i_ < f_.size() && (std::isdigit(static_cast<unsigned char>(f_[i_])) || f_[i_] == '.')) {
            std::size_t used = 0;
            try {
                const double x = std::stod(f_.substr(i_), &used);
                i_ += used;
                return x;
            } catch (...) {
                return std::nullopt;
            }
        }
        if (f_.compare(i_, 4, "SUM(") == 0) {
            i_ += 4;
            double total = 0;
            do {
                const auto v = Range();
                if (!v) return std::nullopt;
                total += *v;
            } while (Eat(','));
            return Eat(')') ? std::optional(total) : std::nullopt;
        }
        return Range(/*single=*/true);
    }
    // A reference or a range; the sum of its cells (blank ones count 0).
    std::optional<double> Range(bool single = false) {
        Blank();
        std::string sheet;
        if (i_ < f_.size() && f_[i_] == '\'') {
            for (++i_; i_ < f_.size(); ++i_) {
                if (f_[i_] == '\'' && i_ + 1 < f_.size() && f_[i_ + 1] == '\'') {
                    sheet += '\'';
                    ++i_;
                } else if (f_[i_] == '\'') {
                    break;
                } else {
                    sheet += f_[i_];
                }
            }
            if (i_ >= f_.size() || f_[++i_ - 1] != '\'' || !Eat('!')) return std::nullopt;
        } else {
            const std::size_t bang = f_.find('!', i_);
            std::size_t end = i_;
            while (end < f_.size() && (std::isalnum(static_cast<unsigned char>(f_[end])) || f_[end] == '_' ||
                                       f_[end] == '.' || static_cast<unsigned char>(f_[end]) >= 0x80))
                ++end;
            if (bang == end && end > i_) {
                sheet = f_.substr(i_, end - i_);
                i_ = end + 1;
            }
        }
        const auto a = Ref();
        if (!a) return std::nullopt;
        CellRef b = *a;
        if (!single && Eat(':')) {
            const auto r = Ref();
            if (!r) return std::nullopt;
            b = *r;
        }
        const int r1 = std::min(a->row, b.row), r2 = std::max(a->row, b.row);
        const int c1 = std::min(a->col, b.col), c2 = std::max(a->col, b.col);
        if (static_cast<long long>(r2 - r1 + 1) * (c2 - c1 + 1) > 100000) return std::nullopt;
        double total = 0;
        for (int r = r1; r <= r2; ++r)
            for (int c = c1; c <= c2; ++c) {
                const auto v = cell_(sheet, r, c);
                if (!v) return std::nullopt;
                total += *v;
            }
        return total;
    }
    std::optional<CellRef> Ref() {
        Blank();
        std::size_t end = i_;
        while (end < f_.size() && (std::isalnum(static_cast<unsigned char>(f_[end])) || f_[end] == '$'))
            ++end;
        const auto ref = ParseRef(std::string_view(f_).substr(i_, end - i_));
        if (ref) i_ = end;
        return ref;
    }

    const std::string& f_;
    const CellNumber& cell_;
    std::size_t i_ = 0;
};

}  // namespace

std::optional<double> EvaluateFormula(const std::string& formula, const CellNumber& cell) {
    return Evaluator(formula, cell).Run();
}

}  // namespace cauce::workbook
