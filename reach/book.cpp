#include "reach/book.hpp"

#include <algorithm>
#include <filesystem>

#include "hydraulics/checked_math.hpp"
#include "screens/registry.hpp"

#ifdef CAUCE_WITH_WORKBOOK
#include "workbook/new_workbook.hpp"
#include "workbook/record_rows.hpp"
#include "workbook/save_file.hpp"
#include "workbook/workbook.hpp"
#endif

namespace cauce::reach {

namespace {

constexpr const char* kSection = "SecId";
constexpr const char* kSections = "No# secciones";

}  // namespace

std::vector<SheetLayout> ScreenSheets() {
    std::vector<SheetLayout> out;
    for (const auto name : screens::ScreenNames()) {
        const auto screen = screens::MakeScreen(name);
        if (!screen || screen->Sheet().empty()) continue;
        auto it = std::find_if(out.begin(), out.end(),
                               [&](const SheetLayout& l) { return l.sheet == screen->Sheet(); });
        if (it == out.end()) it = out.insert(out.end(), SheetLayout{screen->Sheet(), {}});
        for (const auto& c : screen->Controls())
            if (!c.column.empty() &&
                std::find(it->columns.begin(), it->columns.end(), c.column) == it->columns.end())
                it->columns.push_back(c.column);
    }
    return out;
}

const std::vector<std::string>& ReachWideColumns() {
    static const std::vector<std::string> columns{kSections, "Caudal", "Rugosidad Zi", "Darrastre"};
    return columns;
}

#ifdef CAUCE_WITH_WORKBOOK

namespace {

struct Opened {
    std::unique_ptr<workbook::Workbook> book;
    workbook::Sheet* sheet = nullptr;
    int header = 0, count = 0;
    std::map<std::string, int> columns;

    int Column(const std::string& name) const {
        const auto it = columns.find(name);
        return it == columns.end() ? 0 : it->second;
    }
};

Opened Open(const std::string& path, const std::string& sheet) {
    Opened o;
    o.book = workbook::Workbook::Open(path);
    if (o.book->Legacy())
        raise(FaultCode::FileNotSaved,
              "El libro \"" + path + "\" es un .xls antiguo: guárdelo antes como .xlsx desde la pantalla.");
    o.sheet = o.book->FindSheet(sheet);
    if (!o.sheet)
        raise(FaultCode::NoSuchSheet, "El libro \"" + path + "\" no tiene la hoja \"" + sheet + "\".");
    const auto& values = o.sheet->Values();
    if (values.empty())
        raise(FaultCode::NoSuchSheet,
              "La hoja \"" + sheet + "\" del libro \"" + path + "\" no tiene la fila de encabezados.");
    o.header = values.begin()->first.first;
    for (auto it = values.begin(); it != values.end() && it->first.first == o.header; ++it)
        o.columns.emplace(workbook::DisplayText(it->second), it->first.second);
    o.count = values.rbegin()->first.first - o.header;
    return o;
}

void CheckRecord(const Opened& o, const std::string& sheet, int record) {
    if (record < 1 || record > o.count)
        raise(FaultCode::NoSuchRecord, "El registro " + std::to_string(record) + " no existe: la hoja \"" +
                                           sheet + "\" tiene " + std::to_string(o.count) + " registros.");
}

}  // namespace

void CreateReachWorkbook(const std::string& path) {
    if (std::filesystem::exists(path))
        raise(FaultCode::FileExists,
              "El archivo \"" + path +
                  "\" ya existe: elija otro nombre (un libro nuevo nunca reemplaza otro).");
    std::vector<workbook::SheetValues> sheets;
    for (const auto& layout : ScreenSheets()) {
        workbook::SheetValues s{layout.sheet, {}};
        bool record = false;
        for (std::size_t c = 0; c < layout.columns.size(); ++c) {
            const int col = static_cast<int>(c) + 1;
            const std::string& name = layout.columns[c];
            s.cells[{1, col}] = workbook::Cell::Str(name);
            // A record is a row that holds something: the first section of a reach of one.
            if (name == kSection || name == kSections) {
                s.cells[{2, col}] = workbook::Cell::Num(1);
                record = true;
            }
        }
        if (!record) {
            // Form1's channel: a side slope of 0 (a rectangle) is the one neutral value.
            const auto it = std::find(layout.columns.begin(), layout.columns.end(), "Talud");
            const int col =
                it == layout.columns.end() ? 1 : static_cast<int>(it - layout.columns.begin()) + 1;
            s.cells[{2, col}] = workbook::Cell::Num(0);
        }
        sheets.push_back(std::move(s));
    }
    workbook::ReplaceFile(path, workbook::NewWorkbookBytes(sheets, path));
}

int RecordCountOf(const std::string& path, const std::string& sheet) {
    return Open(path, sheet).count;
}

int AddRecord(const std::string& path, const std::string& sheet, int after) {
    Opened o = Open(path, sheet);
    if (after < 0 || after > o.count)
        raise(FaultCode::NoSuchRecord, "El registro " + std::to_string(after) + " no existe: la hoja \"" +
                                           sheet + "\" tiene " + std::to_string(o.count) + " registros.");
    const int source = after > 0 ? after : (o.count > 0 ? 1 : 0);
    std::map<int, workbook::Cell> copied;
    if (source > 0) {
        const auto values = workbook::RowValues(*o.sheet, o.header + source);
        for (const auto& name : ReachWideColumns())
            if (const int col = o.Column(name); col && values.count(col)) copied[col] = values.at(col);
        if (const int col = o.Column(kSection);
            col && values.count(col) && values.at(col).kind == workbook::CellKind::Number)
            copied[col] = workbook::Cell::Num(values.at(col).number + (after > 0 ? 1 : 0));
    }
    const int row = o.header + after + 1;
    workbook::InsertRow(*o.sheet, row);
    if (copied.empty()) {
        // A record must hold something to be one.
        const int col = o.Column(kSection) ? o.Column(kSection) : o.columns.begin()->second;
        copied[col] = workbook::Cell::Num(after + 1);
    }
    for (const auto& [col, cell] : copied) o.sheet->Set(row, col, cell);
    o.book->Save();
    return after + 1;
}

void DeleteRecord(const std::string& path, const std::string& sheet, int record) {
    Opened o = Open(path, sheet);
    CheckRecord(o, sheet, record);
    if (o.count == 1)
        raise(FaultCode::RecordRefused,
              "La hoja \"" + sheet + "\" tiene un solo registro: un tramo conserva al menos una sección.");
    workbook::DeleteRow(*o.sheet, o.header + record);
    o.book->Save();
}

int RenumberReach(const std::string& path, const std::string& sheet) {
    Opened o = Open(path, sheet);
    const int section = o.Column(kSection), sections = o.Column(kSections);
    if (!section && !sections)
        raise(FaultCode::NoSuchColumn, "La hoja \"" + sheet + "\" no tiene las columnas \"" + kSection +
                                           "\" ni \"" + kSections + "\": no hay nada que renumerar.");
    for (int r = 1; r <= o.count; ++r) {
        if (section) o.sheet->Set(o.header + r, section, workbook::Cell::Num(r));
        if (sections) o.sheet->Set(o.header + r, sections, workbook::Cell::Num(o.count));
    }
    if (o.book->Modified()) o.book->Save();
    return o.count;
}

#else

void CreateReachWorkbook(const std::string&) {
    raise(FaultCode::NoWorkbook, "Esta versión se compiló sin libros de Excel.");
}
int RecordCountOf(const std::string&, const std::string&) {
    raise(FaultCode::NoWorkbook, "Esta versión se compiló sin libros de Excel.");
}
int AddRecord(const std::string&, const std::string&, int) {
    raise(FaultCode::NoWorkbook, "Esta versión se compiló sin libros de Excel.");
}
void DeleteRecord(const std::string&, const std::string&, int) {
    raise(FaultCode::NoWorkbook, "Esta versión se compiló sin libros de Excel.");
}
int RenumberReach(const std::string&, const std::string&) {
    raise(FaultCode::NoWorkbook, "Esta versión se compiló sin libros de Excel.");
}

#endif

}  // namespace cauce::reach
