#include "workbook/ref.hpp"

#include "workbook/limits.hpp"

namespace cauce::workbook {

std::string ColumnName(int col) {
    std::string s;
    for (; col > 0; col = (col - 1) / 26) s.insert(s.begin(), static_cast<char>('A' + (col - 1) % 26));
    return s;
}

std::string RefName(int row, int col) {
    return ColumnName(col) + std::to_string(row);
}

int ParseColumn(std::string_view s) {
    int col = 0;
    for (const char c : s) {
        if (c >= 'A' && c <= 'Z') {
            col = col * 26 + (c - 'A' + 1);
        } else if (c >= 'a' && c <= 'z') {
            col = col * 26 + (c - 'a' + 1);
        } else {
            return 0;
        }
        if (col > kMaxColumn) return 0;
    }
    return col;
}

std::optional<CellRef> ParseRef(std::string_view ref) {
    std::size_t i = 0;
    if (i < ref.size() && ref[i] == '$') ++i;
    const std::size_t letters = i;
    while (i < ref.size() && ((ref[i] >= 'A' && ref[i] <= 'Z') || (ref[i] >= 'a' && ref[i] <= 'z'))) ++i;
    if (i == letters || i - letters > 3) return std::nullopt;
    const int col = ParseColumn(ref.substr(letters, i - letters));
    if (i < ref.size() && ref[i] == '$') ++i;
    const std::size_t digits = i;
    long row = 0;
    while (i < ref.size() && ref[i] >= '0' && ref[i] <= '9') {
        row = row * 10 + (ref[i] - '0');
        if (row > kMaxRow) return std::nullopt;
        ++i;
    }
    if (i == digits || i != ref.size() || col == 0 || row == 0) return std::nullopt;
    return CellRef{static_cast<int>(row), col};
}

}  // namespace cauce::workbook
