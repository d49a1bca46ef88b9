// What the workbook fuzz targets check on every workbook they manage to open, and on every failure.
#pragma once

#include <cmath>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.hpp"
#include "hydraulics/checked_math.hpp"
#include "platform/platform.hpp"
#include "workbook/records.hpp"
#include "workbook/workbook.hpp"

namespace cauce::fuzz {

// A folder of this process alone (libFuzzer's -jobs runs several), removed when the process ends.
class PrivateFolder {
  public:
    static const PrivateFolder& Get() {
        static const PrivateFolder folder;
        return folder;
    }
    std::string Path(const std::string& name) const { return (dir_ / name).string(); }
    std::string Write(const std::string& name, const std::string& bytes) const {
        const std::string p = Path(name);
        std::ofstream out(p, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!out) Fail("cannot write " + p);
        return p;
    }
    ~PrivateFolder() {
        std::error_code ec;
        std::filesystem::remove_all(dir_, ec);
    }

  private:
    PrivateFolder() {
        // A legacy .xls is read by cauce run as a child (CAUCE_XLS_READER names the one to run): its
        // crash is the program's business, answered by a message, and never this process's.
        std::error_code ec;
        dir_ = std::filesystem::temp_directory_path(ec) /
               ("cauce-fuzz-" + std::to_string(platform::ProcessId()));
        std::filesystem::remove_all(dir_, ec);
        if (!std::filesystem::create_directories(dir_, ec)) Fail("cannot make " + dir_.string());
    }
    std::filesystem::path dir_;
};

inline void CheckFault(const Fault& f, const std::string& file) {
    const std::string m = f.what();
    if (m.find("\"" + file + "\"") == std::string::npos) Fail("message without the file: " + m);
}

inline void CheckNumber(const workbook::Cell& c, const std::string& where) {
    if (c.kind == workbook::CellKind::Number && !std::isfinite(c.number))
        Fail(where + " holds a non-finite number");
    if (c.kind == workbook::CellKind::Number && ShowsNonNumber(workbook::DisplayText(c)))
        Fail(where + " shows " + workbook::DisplayText(c));
}

// Every sheet and cell of an open workbook; then the first sheet as records, one cell changed and
// the package written out and read back.
inline void ReadWhole(std::unique_ptr<workbook::Workbook> book, const std::string& file) {
    const std::vector<std::string> names = book->SheetNames();
    for (const auto& name : names) {
        const workbook::Sheet* sh = book->FindSheet(name);
        if (!sh) Fail("sheet listed but not found: " + name);
        for (const auto& [key, cell] : sh->Values()) {
            if (!(sh->Get(key.first, key.second) == cell)) Fail("Get differs from Values");
            CheckNumber(cell, name);
            (void)sh->IsFormula(key.first, key.second);
        }
    }
    if (names.empty()) return;
    const workbook::Sheet* first = book->FindSheet(names[0]);
    std::vector<std::string> columns;
    if (!first->Values().empty()) {
        const int header = first->Values().begin()->first.first;
        for (auto it = first->Values().begin(); it != first->Values().end() && it->first.first == header;
             ++it)
            columns.push_back(workbook::DisplayText(it->second));
    }
    workbook::SheetRecords records(std::move(book), names[0]);
    const int count = records.RecordCount();
    for (int r = 1; r <= count; r = r < 50 ? r + 1 : (r < count ? count : r + 1))
        for (const auto& col : columns) {
            if (!records.HasColumn(col)) Fail("header column missing: " + col);
            (void)records.Get(r, col);
        }
    if (count < 1 || columns.empty()) return;
    records.Set(1, columns[0], "1.5");
    // A workbook Cauce could read, changed by Cauce, must read back.
    try {
        const std::string written = records.Book().Bytes();
        workbook::SheetRecords back(workbook::Workbook::FromBytes(written, file), names[0]);
        if (back.Get(1, columns[0]) != "1.5")
            Fail("the changed cell reads back as " + back.Get(1, columns[0]));
    } catch (const Fault& f) {
        Fail(std::string("the package written cannot be read back: ") + f.what());
    }
}

// Opens a workbook with open() and reads it whole; any failure must be a Fault naming the file.
template <typename OpenFn>
void Expect(const std::string& file, OpenFn open) {
    try {
        ReadWhole(open(), file);
    } catch (const Fault& f) {
        CheckFault(f, file);
    } catch (const std::exception& e) {
        Fail(std::string("not a Fault: ") + e.what());
    }
}

}  // namespace cauce::fuzz
