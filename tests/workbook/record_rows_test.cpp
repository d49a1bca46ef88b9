// Rows inserted and deleted for records, and the custom document properties, on small sheets and
// packages built here.
#include <gtest/gtest.h>

#include "hydraulics/checked_math.hpp"
#include "support.hpp"
#include "workbook/new_workbook.hpp"
#include "workbook/properties.hpp"
#include "workbook/record_rows.hpp"
#include "workbook/workbook.hpp"

namespace cauce::workbook {
namespace {

using namespace cauce::test;

constexpr const char* kSheet =
    "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><sheetData>"
    "<row r=\"1\"><c r=\"A1\" t=\"inlineStr\"><is><t>SecId</t></is></c><c r=\"B1\" "
    "t=\"inlineStr\"><is><t>z1</t></is></c></row>"
    "<row r=\"2\"><c r=\"A2\"><v>1</v></c><c r=\"B2\" s=\"1\"><v>120</v></c></row>"
    "<row r=\"3\"><c r=\"A3\"><v>2</v></c></row>"
    "<row r=\"4\"><c r=\"A4\"><v>3</v></c><c r=\"B4\"><v>118</v></c></row>"
    "</sheetData></worksheet>";

std::vector<std::pair<double, double>> Columns(const Sheet& s) {
    std::vector<std::pair<double, double>> out;
    for (int r = 2; r <= 5; ++r) out.emplace_back(s.Get(r, 1).number, s.Get(r, 2).number);
    return out;
}

TEST(RecordRows, InsertAndDeleteMoveTheRowsBelow) {
    struct Case {
        const char* what;
        bool insert;
        int row;
        std::vector<std::pair<double, double>> expected;  // rows 2..5: (A, B), 0 for empty
    };
    const std::vector<Case> cases{
        {"insert before the first record", true, 2, {{0, 0}, {1, 120}, {2, 0}, {3, 118}}},
        {"insert in the middle", true, 3, {{1, 120}, {0, 0}, {2, 0}, {3, 118}}},
        {"insert after the last", true, 5, {{1, 120}, {2, 0}, {3, 118}, {0, 0}}},
        {"delete the first record", false, 2, {{2, 0}, {3, 118}, {0, 0}, {0, 0}}},
        {"delete the last record", false, 4, {{1, 120}, {2, 0}, {0, 0}, {0, 0}}},
    };
    for (const auto& c : cases) {
        Sheet s("Persecc", "xl/worksheets/sheet1.xml", kSheet, {}, "t.xlsx");
        if (c.insert) {
            InsertRow(s, c.row);
        } else {
            DeleteRow(s, c.row);
        }
        EXPECT_EQ(Columns(s), c.expected) << c.what;
        EXPECT_EQ(DisplayText(s.Get(1, 2)), "z1") << c.what;
        // The sheet written and read again holds the same cells.
        Sheet again("Persecc", "xl/worksheets/sheet1.xml", s.Xml(), {}, "t.xlsx");
        EXPECT_EQ(again.Values(), s.Values()) << c.what;
    }
}

TEST(RecordRows, AFormulaBelowIsNeverMoved) {
    std::string xml = kSheet;
    xml.replace(xml.find("<c r=\"B4\"><v>118</v></c>"), 24, "<c r=\"B4\"><f>B2-2</f><v>118</v></c>");
    Sheet s("Persecc", "xl/worksheets/sheet1.xml", xml, {}, "t.xlsx");
    const auto before = s.Values();
    EXPECT_THROW(InsertRow(s, 3), Fault);
    EXPECT_THROW(DeleteRow(s, 2), Fault);
    EXPECT_EQ(s.Values(), before);
    EXPECT_FALSE(s.Modified());
    InsertRow(s, 5);  // nothing below the formula moves
    EXPECT_TRUE(s.IsFormula(4, 2));
}

TEST(CustomProperties, KeptSetAndRemovedWithoutTouchingTheSheets) {
    const fs::path dir = fs::temp_directory_path() / "cauce-props-test";
    fs::remove_all(dir);
    fs::create_directories(dir);
    const fs::path file = dir / "tramo.xlsx";
    SheetValues sheet{"Persecc", {{{1, 1}, Cell::Str("SecId")}, {{2, 1}, Cell::Num(1)}}};
    Spit(file, NewWorkbookBytes({sheet}, file.string()));
    EXPECT_TRUE(ReadCustomProperties(file).empty());

    WriteCustomProperties(file, {{"Proyecto", "Presa Norte"}, {"Revisó", "Luis Mora & Cía."}});
    WriteCustomProperties(file, {{"Autor", "Ana"}, {"Proyecto", ""}});
    const std::map<std::string, std::string> expected{{"Autor", "Ana"}, {"Revisó", "Luis Mora & Cía."}};
    EXPECT_EQ(ReadCustomProperties(file), expected);
    const auto book = Workbook::Open(file);
    EXPECT_EQ(book->FindSheet("Persecc")->Get(2, 1), Cell::Num(1));
    // An independent reader still opens the package with its new part.
    std::string rows;
    ASSERT_EQ(Workbooks("leer " + file.string() + " Persecc", &rows), 0) << rows;
    EXPECT_NE(rows.find("[[\"SecId\"], [1]]"), std::string::npos) << rows;
    fs::remove_all(dir);
}

}  // namespace
}  // namespace cauce::workbook
