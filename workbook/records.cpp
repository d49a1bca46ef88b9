#include "workbook/records.hpp"

#include "hydraulics/fault.hpp"
#include "workbook/data_folder.hpp"

namespace cauce::workbook {

SheetRecords::SheetRecords(std::unique_ptr<Workbook> book, std::string sheet)
    : book_(std::move(book)), sheet_(std::move(sheet)) {
    const Sheet* sh = book_->FindSheet(sheet_);
    if (!sh) {
        std::string names;
        for (const auto& n : book_->SheetNames()) names += (names.empty() ? "\"" : ", \"") + n + "\"";
        raise(
            "El libro \"" + book_->Path() + "\" no tiene la hoja \"" + sheet_ + "\"" +
            (names.empty() ? std::string(" (no tiene hojas con celdas)") : " (sus hojas son " + names + ")") +
            ".");
    }
    const auto& values = sh->Values();
    if (values.empty())
        raise("La hoja \"" + sheet_ + "\" del libro \"" + book_->Path() +
              "\" está vacía: le falta la fila de encabezados con los nombres de las columnas.");
    header_ = values.begin()->first.first;
    for (auto it = values.begin(); it != values.end() && it->first.first == header_; ++it)
        columns_.emplace(DisplayText(it->second), it->first.second);  // a repeated name: the first counts
    count_ = values.rbegin()->first.first - header_;
}

Sheet& SheetRecords::TheSheet() const {
    // Looked up each time: saving reloads the workbook from what was written.
    Sheet* sh = book_->FindSheet(sheet_);
    if (!sh) raise("La hoja \"" + sheet_ + "\" ya no está en el libro \"" + book_->Path() + "\".");
    return *sh;
}

std::pair<int, int> SheetRecords::Place(int record, const std::string& column) const {
    const auto it = columns_.find(column);
    if (it == columns_.end())
        raise("La hoja \"" + sheet_ + "\" del libro \"" + book_->Path() + "\" no tiene la columna \"" +
              column + "\".");
    if (record < 1 || record > count_)
        raise("El registro " + std::to_string(record) + " no existe: la hoja \"" + sheet_ + "\" tiene " +
              std::to_string(count_) + " registros.");
    return {header_ + record, it->second};
}

std::string SheetRecords::Get(int record, const std::string& column) const {
    const auto [row, col] = Place(record, column);
    return DisplayText(TheSheet().Get(row, col));
}

void SheetRecords::Set(int record, const std::string& column, const std::string& text) {
    const auto [row, col] = Place(record, column);
    Sheet& sh = TheSheet();
    if (DisplayText(sh.Get(row, col)) == text) return;
    sh.Set(row, col, CellFromText(text));
}

std::unique_ptr<forms::RecordSource> OpenRecords(const std::string& path, const std::string& sheet) {
    return std::make_unique<SheetRecords>(Workbook::Open(ResolveWorkbookPath(path)), sheet);
}

}  // namespace cauce::workbook
