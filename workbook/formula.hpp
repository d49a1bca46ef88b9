// Moving a formula to another cell, as filling it there would: the relative references shift, the
// absolute ones ($A$1) stay. Used to give the cells of a shared formula their own text when the cell
// that holds the shared text is overwritten.
#pragma once

#include <string>

namespace cauce::workbook {

// A reference shifted outside the sheet becomes #REF!.
std::string ShiftFormula(const std::string& formula, int rows, int cols);

}  // namespace cauce::workbook

#include <functional>
#include <optional>

namespace cauce::workbook {

// The value of a formula made only of numbers, cell references (A1, $A$1, Hoja!A1, 'Mi hoja'!A1),
// + - * / and parentheses, and SUM over references and ranges: what the records show for a formula
// after the cells it reads changed, before any spreadsheet program computes it again. Nothing for
// any other formula, a text among its cells, a division by zero or a result that is not finite.
// cell(sheet, row, col) gives a referenced cell's number ("" sheet: the formula's own); nothing when
// it is not one.
using CellNumber = std::function<std::optional<double>(const std::string& sheet, int row, int col)>;
std::optional<double> EvaluateFormula(const std::string& formula, const CellNumber& cell);

}  // namespace cauce::workbook
