// Inserting and deleting whole rows of a sheet, for adding and removing records. The rows below move
// by one: each cell's value goes to the row below (insert) or above (delete), through Sheet::Set, so
// the XML keeps everything else it holds. A row that would move a formula is refused: its references
// would point at the wrong rows afterwards.
#pragma once

#include <map>

#include "workbook/sheet.hpp"

namespace cauce::workbook {

// Makes row `row` empty, moving it and every row below it one row down. Throws Fault.
void InsertRow(Sheet& sheet, int row);
// Removes row `row`, moving every row below it one row up. Throws Fault.
void DeleteRow(Sheet& sheet, int row);
// The values of one row by column.
std::map<int, Cell> RowValues(const Sheet& sheet, int row);

}  // namespace cauce::workbook
