// The record binding behind a screen's Data1: one sheet of a workbook, a row per record, the header
// row naming the columns that the bound text boxes show and save.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cauce::forms {

// A sheet seen as records; implemented over real workbooks by workbook/.
class RecordSource {
public:
    virtual ~RecordSource() = default;
    virtual int RecordCount() const = 0;
    virtual bool HasColumn(const std::string& column) const = 0;
    // Text of a cell as a text box shows it ("" when empty); record is 1-based.
    virtual std::string Get(int record, const std::string& column) const = 0;
    virtual void Set(int record, const std::string& column, const std::string& text) = 0;
    // Writes the workbook safely; returns a message for the user when it says something (for example
    // that a legacy .xls was saved as .xlsx beside it), "" otherwise. Throws Fault on failure.
    virtual std::string Save() = 0;
    virtual std::string Path() const = 0;
};

// Opens a workbook's sheet as a RecordSource; set by the workbook layer at start-up so that forms/
// does not depend on it. Throws Fault with a Spanish message naming the file when it cannot.
using SourceOpener = std::unique_ptr<RecordSource> (*)(const std::string& path, const std::string& sheet);
void SetSourceOpener(SourceOpener opener);
SourceOpener GetSourceOpener();

}  // namespace cauce::forms
