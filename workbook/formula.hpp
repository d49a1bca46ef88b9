// Moving a formula to another cell, as filling it there would: the relative references shift, the
// absolute ones ($A$1) stay. Used to give the cells of a shared formula their own text when the cell
// that holds the shared text is overwritten.
#pragma once

#include <string>

namespace cauce::workbook {

// A reference shifted outside the sheet becomes #REF!.
std::string ShiftFormula(const std::string& formula, int rows, int cols);

}  // namespace cauce::workbook
