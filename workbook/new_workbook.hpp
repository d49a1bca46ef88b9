// A new .xlsx package made from sheets of values: what a legacy .xls becomes when it is saved.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "workbook/cell.hpp"

namespace cauce::workbook {

struct SheetValues {
    std::string name;
    std::map<std::pair<int, int>, Cell> cells;  // (row, col) from 1
};

// The bytes of an .xlsx holding these sheets in this order; file names it in messages.
std::string NewWorkbookBytes(const std::vector<SheetValues>& sheets, const std::string& file);

}  // namespace cauce::workbook
