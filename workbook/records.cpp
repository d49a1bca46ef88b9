#include "workbook/records.hpp"

#include <system_error>

#include "base/fault.hpp"
#include "workbook/data_folder.hpp"

namespace cauce::workbook {

namespace fs = std::filesystem;

SheetRecords::SheetRecords(std::shared_ptr<Workbook> book, std::string sheet)
    : book_(std::move(book)), sheet_(std::move(sheet)) {
    Index();
}

void SheetRecords::Index() const {
    if (indexed_ == book_->Version()) return;
    const Sheet* sh = book_->FindSheet(sheet_);
    if (!sh) {
        std::string names;
        for (const auto& n : book_->SheetNames()) names += (names.empty() ? "\"" : ", \"") + n + "\"";
        raise(FaultCode::NoSuchSheet, "El libro \"" + book_->Path() + "\" no tiene la hoja \"" + sheet_ +
                                          "\"" +
                                          (names.empty() ? std::string(" (no tiene hojas con celdas)")
                                                         : " (sus hojas son " + names + ")") +
                                          ".");
    }
    const auto& values = sh->Values();
    if (values.empty())
        raise(FaultCode::NoSuchSheet,
              "La hoja \"" + sheet_ + "\" del libro \"" + book_->Path() +
                  "\" está vacía: le falta la fila de encabezados con los nombres de las columnas.");
    columns_.clear();
    header_ = values.begin()->first.first;
    for (auto it = values.begin(); it != values.end() && it->first.first == header_; ++it)
        columns_.emplace(DisplayText(it->second), it->first.second);  // a repeated name: the first counts
    count_ = values.rbegin()->first.first - header_;
    indexed_ = book_->Version();
}

int SheetRecords::RecordCount() const {
    Index();
    return count_;
}

bool SheetRecords::HasColumn(const std::string& column) const {
    Index();
    return columns_.count(column) > 0;
}

Sheet& SheetRecords::TheSheet() const {
    // Looked up each time: saving reloads the workbook from what was written.
    Sheet* sh = book_->FindSheet(sheet_);
    if (!sh)
        raise(FaultCode::NoSuchSheet,
              "La hoja \"" + sheet_ + "\" ya no está en el libro \"" + book_->Path() + "\".");
    return *sh;
}

std::pair<int, int> SheetRecords::Place(int record, const std::string& column) const {
    Index();
    const auto it = columns_.find(column);
    if (it == columns_.end())
        raise(FaultCode::NoSuchColumn, "La hoja \"" + sheet_ + "\" del libro \"" + book_->Path() +
                                           "\" no tiene la columna \"" + column + "\".");
    if (record < 1 || record > count_)
        raise(FaultCode::NoSuchRecord, "El registro " + std::to_string(record) + " no existe: la hoja \"" +
                                           sheet_ + "\" tiene " + std::to_string(count_) + " registros.");
    return {header_ + record, it->second};
}

std::string SheetRecords::Get(int record, const std::string& column) const {
    const auto [row, col] = Place(record, column);
    // A formula shows its value computed from the cells as they are now, where it can be.
    if (const auto computed = book_->Computed(sheet_, row, col)) return DisplayText(*computed);
    return DisplayText(TheSheet().Get(row, col));
}

std::string SheetRecords::Formula(int record, const std::string& column) const {
    const auto [row, col] = Place(record, column);
    const std::string f = TheSheet().FormulaText(row, col);
    return f.empty() ? f : "=" + f;
}

void SheetRecords::Set(int record, const std::string& column, const std::string& text) {
    const auto [row, col] = Place(record, column);
    if (DisplayText(TheSheet().Get(row, col)) == text) return;
    book_->Set(sheet_, row, col, CellFromText(text));
}

namespace {

// The workbooks held, by the file's canonical path; an entry lives while a screen holds it.
std::map<std::string, std::weak_ptr<Workbook>>& Held() {
    static std::map<std::string, std::weak_ptr<Workbook>> held;
    return held;
}

}  // namespace

std::shared_ptr<Workbook> SharedWorkbook(const fs::path& path) {
    std::error_code ec;
    fs::path key = fs::weakly_canonical(path, ec);
    if (ec) key = fs::absolute(path);
    auto& held = Held();
    for (auto it = held.begin(); it != held.end();)
        it = it->second.expired() ? held.erase(it) : std::next(it);
    if (const auto it = held.find(key.string()); it != held.end()) {
        auto book = it->second.lock();
        book->Refresh();
        return book;
    }
    std::shared_ptr<Workbook> book = Workbook::Open(path);
    book->HoldForEditing();
    held[key.string()] = book;
    return book;
}

std::unique_ptr<forms::RecordSource> OpenRecords(const std::string& path, const std::string& sheet) {
    return std::make_unique<SheetRecords>(SharedWorkbook(ResolveWorkbookPath(path)), sheet);
}

}  // namespace cauce::workbook
