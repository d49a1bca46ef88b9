// The record binding behind a screen's Data1: one sheet of a workbook, a row per record, the header
// row naming the columns that the bound text boxes show and save.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/fault.hpp"

namespace cauce::forms {

// A save that would lose someone's data and is therefore refused: a cell changed both here and by
// another program (or window) since it was read, or a workbook another program holds for editing.
// The user's values stay pending.
class SaveRefused : public Fault {
  public:
    enum class Why { Conflict, Locked };
    SaveRefused(Why why, const std::string& message)
        : Fault(why == Why::Conflict ? FaultCode::SaveConflict : FaultCode::WorkbookLocked, message) {}
    Why why() const { return code() == FaultCode::SaveConflict ? Why::Conflict : Why::Locked; }
};

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
    // Changes whenever the records may have changed under the screen (a save through another screen
    // on the same workbook, another program's edits read again).
    virtual std::uint64_t Version() const { return 0; }
    // The formula of a cell ("=AI3"), "" for a cell without one.
    virtual std::string Formula(int, const std::string&) const { return ""; }
    // After a refused save over a conflict: the user's values win, or the file's (see Workbook).
    virtual void Resolve(bool /*keep_mine*/) {}
    // Reads the workbook again when another program saved it and nothing is pending.
    virtual void Refresh() {}
    // Why nothing can be saved ("" when saves are possible): who holds the workbook for editing.
    virtual std::string ReadOnly() const { return ""; }
};

// Opens a workbook's sheet as a RecordSource; set by the workbook layer at start-up so that forms/
// does not depend on it. Throws Fault with a Spanish message naming the file when it cannot.
using SourceOpener = std::unique_ptr<RecordSource> (*)(const std::string& path, const std::string& sheet);
void SetSourceOpener(SourceOpener opener);
SourceOpener GetSourceOpener();

}  // namespace cauce::forms
