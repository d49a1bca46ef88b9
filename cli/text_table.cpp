#include "cli/text_table.hpp"

#include <algorithm>

#include "cli/args.hpp"

namespace cauce::cli {

std::size_t Width(const std::string& text) {
    std::size_t n = 0;
    for (const unsigned char c : text)
        if ((c & 0xC0) != 0x80) ++n;
    return n;
}

TextTable::TextTable(std::vector<std::string> headings) : headings_(std::move(headings)) {}

void TextTable::Row(std::vector<std::string> cells) {
    cells.resize(headings_.size());
    rows_.push_back(std::move(cells));
}

void TextTable::Print(std::ostream& out, const std::string& indent) const {
    // Numbers right-aligned, text left-aligned, cell by cell; a heading over numbers to the right.
    const std::size_t cols = headings_.size();
    std::vector<std::size_t> width(cols, 0);
    std::vector<bool> numbers(cols, false);
    for (std::size_t c = 0; c < cols; ++c) {
        width[c] = Width(headings_[c]);
        for (const auto& r : rows_) {
            width[c] = std::max(width[c], Width(r[c]));
            if (ParseNumber(r[c])) numbers[c] = true;
        }
    }
    auto line = [&](const std::vector<std::string>& cells, bool heading) {
        std::string s = indent;
        for (std::size_t c = 0; c < cols; ++c) {
            const std::string pad(width[c] - Width(cells[c]), ' ');
            const bool right = heading ? numbers[c] : ParseNumber(cells[c]).has_value();
            s += right ? pad + cells[c] : cells[c] + pad;
            if (c + 1 < cols) s += "  ";
        }
        while (!s.empty() && s.back() == ' ') s.pop_back();
        out << s << "\n";
    };
    line(headings_, true);
    for (const auto& r : rows_) line(r, false);
}

}  // namespace cauce::cli
