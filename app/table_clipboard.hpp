// Tables of text boxes (the level table, the profile table) found from a screen's layout, and their
// exchange with a spreadsheet as tab-separated text.
//
// A table is a block of text-box columns: each column is at least five boxes of the same x and width
// on evenly spaced rows; columns on the same rows that touch (a gap of a few layout units) join one
// table. Its headings are the labels standing just above the columns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "forms/screen.hpp"

namespace cauce::app {

struct BoxTable {
    std::vector<std::vector<std::string>> cells;  // box names, [row][column]
    std::vector<std::string> headings;            // one per column ("" when none)

    int Rows() const { return static_cast<int>(cells.size()); }
    int Columns() const { return cells.empty() ? 0 : static_cast<int>(cells.front().size()); }
    // Row and column of a box, or {-1, -1}.
    std::pair<int, int> Locate(std::string_view box) const;
};

std::vector<BoxTable> FindTables(const forms::Screen& screen);

// The table as spreadsheet text: a heading row, then one line per row, cells separated by tabs.
std::string CopyTable(const forms::Screen& screen, const BoxTable& table);

// Types the cells of spreadsheet text into the table from (row, column) on, as the user would;
// a first line equal to the table's heading row is skipped, cells beyond the table are dropped.
// Returns the number of boxes written.
int PasteTable(forms::Screen& screen, const BoxTable& table, int row, int column, std::string_view text);

}  // namespace cauce::app
