// One worksheet of an .xlsx: its XML kept as parsed, and an index of its cells. Changing a cell edits
// that XML in place, so that styles, column widths and everything Cauce does not know stay as they
// were when the sheet is written back.
#pragma once

#include <map>
#include <pugixml.hpp>
#include <string>
#include <utility>
#include <vector>

#include "workbook/cell.hpp"

namespace cauce::workbook {

class Sheet {
  public:
    // Parses the sheet's part; strings resolves shared-string indices. Throws Fault naming file and part.
    Sheet(std::string name, std::string part, const std::string& xml, const std::vector<std::string>& strings,
          const std::string& file);
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    const std::string& Name() const { return name_; }
    const std::string& Part() const { return part_; }

    // The value of a cell (rows and columns from 1); a formula's cached value.
    Cell Get(int row, int col) const;
    bool IsFormula(int row, int col) const;
    // The formula's text as stored ("SUM(A1:A3)", no "="); "" for a cell without one. A cell of a
    // shared formula that does not hold its text gets it shifted from the cell that does.
    std::string FormulaText(int row, int col) const;
    // Sets a cell; a formula it held is replaced by the value.
    void Set(int row, int col, const Cell& value);

    // Cells that hold a value, row by row: ((row, col), value).
    const std::map<std::pair<int, int>, Cell>& Values() const { return values_; }

    bool Modified() const { return modified_; }
    bool HasFormulas() const { return !formulas_.empty(); }
    bool RemovedFormula() const { return removed_formula_; }
    std::string Xml();
    // The sheet's XML with the cached results of its formulas left out: spreadsheet programs then
    // compute them on opening, whatever their settings.
    std::string XmlWithoutCachedResults() const;
    // The results of formulas read without one take those of the same formulas in old, the sheet
    // this one was written from.
    void KeepResults(const Sheet& old);

  private:
    pugi::xml_node RowNode(int row);
    pugi::xml_node CellNode(int row, int col);
    void DropFormula(int row, int col, pugi::xml_node c);
    void NumberRows();
    void NumberCells(pugi::xml_node row, int r);
    void GrowDimension(int row, int col);

    std::string name_, part_, file_, prefix_;
    pugi::xml_document doc_;
    pugi::xml_node data_;
    std::map<int, pugi::xml_node> rows_;
    std::map<std::pair<int, int>, pugi::xml_node> nodes_;
    std::map<std::pair<int, int>, Cell> values_;
    std::map<std::pair<int, int>, bool> formulas_;
    bool modified_ = false, removed_formula_ = false;
};

}  // namespace cauce::workbook
