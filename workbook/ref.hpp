// A1-style cell references: "AB12" is column 28, row 12.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cauce::workbook {

struct CellRef {
    int row = 0, col = 0;  // 1-based
};

std::string ColumnName(int col);        // 1 -> "A", 28 -> "AB"
std::string RefName(int row, int col);  // "AB12"
// "AB12" (or "$AB$12"); nothing when it is not a reference inside the sheet grid.
std::optional<CellRef> ParseRef(std::string_view ref);
// The column part alone ("AB12" -> 28); 0 when there is none.
int ParseColumn(std::string_view letters);

}  // namespace cauce::workbook
