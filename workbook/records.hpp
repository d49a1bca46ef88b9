// A sheet seen as records for a screen's Data1: the first row that holds anything names the columns,
// every row after it up to the last one used is a record.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "forms/binding.hpp"
#include "workbook/workbook.hpp"

namespace cauce::workbook {

class SheetRecords : public forms::RecordSource {
  public:
    // Throws Fault when the sheet is missing or has no header row.
    SheetRecords(std::unique_ptr<Workbook> book, std::string sheet);

    int RecordCount() const override { return count_; }
    bool HasColumn(const std::string& column) const override { return columns_.count(column) > 0; }
    std::string Get(int record, const std::string& column) const override;
    // A text that is entirely a number is stored as a number, "" clears the cell, any other text is
    // stored as text. A text equal to what the cell shows leaves the cell (and a formula in it) alone.
    void Set(int record, const std::string& column, const std::string& text) override;
    std::string Save() override { return book_->Save(); }
    std::string Path() const override { return book_->Path(); }

    Workbook& Book() { return *book_; }

  private:
    Sheet& TheSheet() const;
    std::pair<int, int> Place(int record, const std::string& column) const;

    std::unique_ptr<Workbook> book_;
    std::string sheet_;
    std::map<std::string, int> columns_;  // header text -> column
    int header_ = 0, count_ = 0;
};

// The opener that forms/ calls: resolves the path (legacy names, bundled examples) and opens the sheet.
std::unique_ptr<forms::RecordSource> OpenRecords(const std::string& path, const std::string& sheet);

}  // namespace cauce::workbook
