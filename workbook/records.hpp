// A sheet seen as records for a screen's Data1: the first row that holds anything names the columns,
// every row after it up to the last one used is a record.
//
// Every screen bound to the same file in a running Cauce shares one Workbook: a save through one
// writes the others' saved records too, and each sees the others' saves (Version changes).
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "forms/binding.hpp"
#include "workbook/workbook.hpp"

namespace cauce::workbook {

class SheetRecords : public forms::RecordSource {
  public:
    // Throws Fault when the sheet is missing or has no header row.
    SheetRecords(std::shared_ptr<Workbook> book, std::string sheet);

    int RecordCount() const override;
    bool HasColumn(const std::string& column) const override;
    std::string Get(int record, const std::string& column) const override;
    // A text that is entirely a number is stored as a number, "" clears the cell, any other text is
    // stored as text. A text equal to what the cell shows leaves the cell (and a formula in it) alone.
    void Set(int record, const std::string& column, const std::string& text) override;
    std::string Save() override { return book_->Save(); }
    std::string Path() const override { return book_->Path(); }
    std::uint64_t Version() const override { return book_->Version(); }
    std::string Formula(int record, const std::string& column) const override;
    void Resolve(bool keep_mine) override { book_->Resolve(keep_mine); }
    void Refresh() override { book_->Refresh(); }
    std::string ReadOnly() const override { return book_->ReadOnly(); }

    Workbook& Book() { return *book_; }

  private:
    Sheet& TheSheet() const;
    // The header and the record count, read again when the workbook changed.
    void Index() const;
    std::pair<int, int> Place(int record, const std::string& column) const;

    std::shared_ptr<Workbook> book_;
    std::string sheet_;
    mutable std::uint64_t indexed_ = 0;
    mutable std::map<std::string, int> columns_;  // header text -> column
    mutable int header_ = 0, count_ = 0;
};

// The opener that forms/ calls: resolves the path (legacy names, bundled examples) and opens the
// sheet of the one Workbook this process holds for that file.
std::unique_ptr<forms::RecordSource> OpenRecords(const std::string& path, const std::string& sheet);

// The Workbook this process holds for the file, opening it when none is held. A workbook held and
// unchanged here is read again when another program saved it since.
std::shared_ptr<Workbook> SharedWorkbook(const std::filesystem::path& path);

}  // namespace cauce::workbook
