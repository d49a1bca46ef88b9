#include "workbook/record_rows.hpp"

#include <set>

#include "base/fault.hpp"

namespace cauce::workbook {

namespace {

int LastRow(const Sheet& sheet) {
    return sheet.Values().empty() ? 0 : sheet.Values().rbegin()->first.first;
}

void RefuseFormulas(const Sheet& sheet, int from) {
    for (const auto& [key, cell] : sheet.Values())
        if (key.first >= from && sheet.IsFormula(key.first, key.second))
            raise(FaultCode::RecordRefused,
                  "La hoja \"" + sheet.Name() +
                      "\" tiene fórmulas en las filas que habría que mover (la fila " +
                      std::to_string(key.first) +
                      "): agregue o elimine ese registro en la hoja de cálculo. El libro no se modificó.");
}

// Moves the values of rows [from, last] by `by` rows (+1 or -1), last row first when moving down.
void Shift(Sheet& sheet, int from, int by) {
    const int last = LastRow(sheet);
    std::set<int> cols;
    for (const auto& [key, cell] : sheet.Values())
        if (key.first >= from) cols.insert(key.second);
    auto move_row = [&](int r) {
        for (const int c : cols) sheet.Set(r + by, c, sheet.Get(r, c));
    };
    if (by > 0) {
        for (int r = last; r >= from; --r) move_row(r);
    } else {
        for (int r = from; r <= last; ++r) move_row(r);
    }
}

}  // namespace

void InsertRow(Sheet& sheet, int row) {
    if (row < 1) raise(FaultCode::RecordRefused, "No se puede insertar la fila " + std::to_string(row) + ".");
    RefuseFormulas(sheet, row);
    const int last = LastRow(sheet);
    if (row > last) return;  // nothing below to move
    Shift(sheet, row, +1);
    for (const auto& [col, cell] : RowValues(sheet, row)) sheet.Set(row, col, Cell{});
}

void DeleteRow(Sheet& sheet, int row) {
    if (row < 1) raise(FaultCode::RecordRefused, "No se puede eliminar la fila " + std::to_string(row) + ".");
    RefuseFormulas(sheet, row);
    const int last = LastRow(sheet);
    if (row > last) return;
    for (const auto& [col, cell] : RowValues(sheet, row)) sheet.Set(row, col, Cell{});
    Shift(sheet, row + 1, -1);
    for (const auto& [col, cell] : RowValues(sheet, last)) sheet.Set(last, col, Cell{});
}

std::map<int, Cell> RowValues(const Sheet& sheet, int row) {
    std::map<int, Cell> out;
    for (auto it = sheet.Values().lower_bound({row, 0}); it != sheet.Values().end() && it->first.first == row;
         ++it)
        out.emplace(it->first.second, it->second);
    return out;
}

}  // namespace cauce::workbook
