// A workbook on disk: an .xlsx read, changed and saved whole, or a legacy .xls read through freexl
// and saved as a new .xlsx beside it (the .xls is never written).
//
// Saving writes a new file in the same folder and renames it over the old one: a crash, a full disk
// or a read-only folder leaves the user's file as it was. Every part of the package that Cauce did not
// change is copied still compressed, byte for byte.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "workbook/sheet.hpp"

namespace cauce::workbook {

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

    // Writes the changes; returns a note for the user ("" when there is nothing to say), for example
    // where the .xlsx of a legacy .xls went. Throws Fault; the file on disk is then as it was.
    std::string Save();
    // The package as Save() would write it.
    std::string Bytes();

  private:
    struct State;
    explicit Workbook(std::unique_ptr<State> s);
    static std::unique_ptr<State> Load(std::string bytes, std::string file);
    std::unique_ptr<State> s_;
    std::string path_;
    bool legacy_ = false;
    std::vector<std::string> legacy_omitted_;  // what a legacy .xls held that could not be read
    bool on_disk_ = false;
    long long disk_size_ = -1, disk_mtime_ = 0;
};

}  // namespace cauce::workbook
