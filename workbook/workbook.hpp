// A workbook on disk: an .xlsx read, changed and saved whole, or a legacy .xls read through freexl
// and saved as a new .xlsx beside it (the .xls is never written).
//
// Saving writes a new file in the same folder and renames it over the old one: a crash, a full disk
// or a read-only folder leaves the user's file as it was. Every part of the package that Cauce did not
// change is copied still compressed, byte for byte; formula cells go without their cached results.
//
// The workbook remembers the cells changed through Set since it was read. When another program saved
// the file meanwhile, Save reads it again and puts those cells onto it; only a cell changed on both
// sides stops the save (SaveRefused), and the user's value stays pending until Resolve says which
// one wins.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/platform.hpp"
#include "workbook/lock_file.hpp"
#include "workbook/sheet.hpp"

namespace cauce::workbook {

// What tells one version of a file from another: a save by any program changes it.
using FileIdentity = platform::FileIdentity;
FileIdentity IdentityOf(const std::filesystem::path& path);

// A cell the user changed, and what it held when it was read.
struct CellEdit {
    std::string sheet;
    int row = 0, col = 0;
    Cell base;                 // the value read
    std::string base_formula;  // the formula read, "" for none
    Cell value;                // the user's value
};

class Workbook {
  public:
    // Opens the file; throws Fault with a Spanish message that names it and says what is wrong.
    static std::unique_ptr<Workbook> Open(const std::filesystem::path& path);
    // An .xlsx held in memory (file only names it in messages); Save() is then not available.
    static std::unique_ptr<Workbook> FromBytes(std::string bytes, std::string file);
    ~Workbook();

    const std::string& Path() const { return path_; }
    // Read from a legacy .xls that has not been saved as .xlsx yet.
    bool Legacy() const { return legacy_; }
    std::vector<std::string> SheetNames() const;
    Sheet* FindSheet(std::string_view name);  // exact name; nullptr when absent
    bool Modified() const;

    // Changes a cell and remembers it as the user's edit (see above). Throws Fault for a sheet that
    // is not there.
    void Set(const std::string& sheet, int row, int col, const Cell& value);
    const std::vector<CellEdit> Edits() const;
    // The value of a formula cell computed from the cells it reads (see EvaluateFormula); nothing
    // for a cell without a formula or a formula that cannot be computed here.
    std::optional<Cell> Computed(const std::string& sheet, int row, int col, int depth = 0);
    // Counts every change of what the workbook holds (a save here, another program's cells read
    // again): views of its records compare it to know when to read their boxes again.
    std::uint64_t Version() const { return version_; }

    // Writes the changes; returns a note for the user ("" when there is nothing to say), for example
    // where the .xlsx of a legacy .xls went or which formula an edit replaced. Throws Fault (a
    // SaveRefused for a cell changed on both sides); the file on disk is then as it was.
    std::string Save();
    // After a refused save: keep_mine puts the user's values over the file's at the next save;
    // otherwise the file's values replace the user's in the cells changed on both sides. Reads the
    // file again. Throws Fault when it cannot be read.
    void Resolve(bool keep_mine);
    // Reads the file again when another program changed it and nothing is pending here; true when
    // it did.
    bool Refresh();
    // Holds the workbook for editing until it is destroyed: Cauce's lock file beside it, as
    // spreadsheet programs write theirs. When another program or user holds it, saves are refused
    // until that lock goes (ReadOnly names the holder).
    void HoldForEditing();
    std::string ReadOnly() const;

    // The package as it would be written.
    std::string Bytes();

  private:
    struct State;
    enum class Clash { Refuse, KeepMine, TakeTheirs };
    explicit Workbook(std::unique_ptr<State> s);
    static std::unique_ptr<State> Load(std::string bytes, std::string file);
    // Reads the file as it is now and puts the user's edits onto it; see Clash for a cell changed
    // on both sides.
    void Rebase(Clash clash);

    std::unique_ptr<State> s_;
    std::string path_;
    bool legacy_ = false;
    std::vector<std::string> legacy_omitted_;  // what a legacy .xls held that could not be read
    bool on_disk_ = false;
    FileIdentity disk_;
    std::map<std::tuple<std::string, int, int>, CellEdit> edits_;
    std::uint64_t version_ = 1;
    std::unique_ptr<EditLock> edit_lock_;
};

// Reads a file whole (at most the size a workbook may have). Throws Fault naming it.
std::string ReadWorkbookFile(const std::filesystem::path& path);

}  // namespace cauce::workbook
