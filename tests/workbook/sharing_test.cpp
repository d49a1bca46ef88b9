// The workbook shared with other programs and other screens: cell-level merges at save, conflicts
// named and resolved, one workbook per file in a process, Cauce's own lock files (another program's:
// shared_workbook_test.py, with LibreOffice), formulas saved without their cached results.
#include <zip.h>

#include "forms/binding.hpp"
#include "platform/platform.hpp"
#include "screens/profile_screen.hpp"
#include "tests/workbook/support.hpp"
#include "workbook/formula.hpp"
#include "workbook/lock_file.hpp"
#include "workbook/records.hpp"
#include "workbook/workbook.hpp"

namespace cauce::test {
namespace {

using workbook::SheetRecords;
using workbook::Workbook;
namespace profile = screens::profile;

// Another program saves a cell (openpyxl rewrites the whole file).
void Elsewhere(const fs::path& file, const std::string& sheet, int record, const std::string& column,
               const std::string& json) {
    ASSERT_EQ(Workbooks("poner " + file.string() + " " + sheet + " " + std::to_string(record) + " \"" +
                        column + "\" " + json),
              0);
}

TEST_F(WorkbookTest, AnotherProgramsSaveIsMergedCellByCellAndOnlyTheSameCellConflicts) {
    const fs::path file = Dir() / "rio.xlsx";
    fs::copy_file(kRios, file);
    auto rec = workbook::OpenRecords(file.string(), "Persecc");
    rec->Set(1, "Caudal", "40");
    rec->Set(2, "Rugosidad", "0.05");
    Elsewhere(file, "Persecc", 1, "Rugosidad", "0.02");  // same record, another column
    Elsewhere(file, "Percanal", 3, "Caudal", "9");       // another sheet
    Elsewhere(file, "Persecc", 2, "Rugosidad", "0.05");  // the same change on both sides
    EXPECT_EQ(rec->Save(), "");
    EXPECT_EQ(CellOf(file, "Persecc", 1, "Caudal"), "40");
    EXPECT_EQ(CellOf(file, "Persecc", 1, "Rugosidad"), "0.02");
    EXPECT_EQ(CellOf(file, "Percanal", 3, "Caudal"), "9");
    EXPECT_EQ(CellOf(file, "Persecc", 2, "Rugosidad"), "0.05");
    EXPECT_EQ(rec->Get(1, "Rugosidad"), "0.02");  // the merged workbook is what this process now holds

    // The same cell changed on both sides: refused, the file as the other program left it, the
    // user's value pending until the user chooses.
    rec->Set(3, "Caudal", "50");
    Elsewhere(file, "Persecc", 3, "Caudal", "45");
    const std::string theirs = Slurp(file);
    try {
        rec->Save();
        FAIL() << "saved over another program's cell";
    } catch (const forms::SaveRefused& f) {
        EXPECT_EQ(f.why(), forms::SaveRefused::Why::Conflict);
        EXPECT_NE(std::string(f.what()).find(
                      "en la hoja \"Persecc\", registro 3, columna \"Caudal\", otro programa "
                      "guardó 45 y en Cauce se escribió 50"),
                  std::string::npos)
            << f.what();
    }
    EXPECT_EQ(Slurp(file), theirs);
    EXPECT_EQ(rec->Get(3, "Caudal"), "50");
    rec->Resolve(/*keep_mine=*/false);
    EXPECT_EQ(rec->Get(3, "Caudal"), "45");
    EXPECT_EQ(rec->Save(), "");
    EXPECT_EQ(Slurp(file), theirs);  // nothing left to write
}

TEST_F(WorkbookTest, ScreensOnOneFileShareOneWorkbookAndSeeEachOthersSaves) {
    const fs::path file = Dir() / "rio.xlsx";
    fs::copy_file(kRios, file);
    auto form2 = screens::MakeScreen("Form2");
    auto form4 = screens::MakeScreen("Form4");
    auto other = screens::MakeScreen("Form2");
    form2->OpenWorkbook("rio.xlsx");
    form4->OpenWorkbook(file.string());
    other->OpenWorkbook("rio.xlsx");
    ASSERT_EQ(form2->Source()->Version(), form4->Source()->Version());

    // Edits in turn on two sheets, each window saving by moving: no window takes the other for
    // another program, and nothing is lost.
    form4->Type(profile::box::Discharge, "33");
    form2->Type(profile::box::Roughness, "0.041");
    form2->MoveTo(2);
    form4->MoveTo(2);
    form2->MoveTo(1);
    EXPECT_EQ(form2->Get(profile::box::Roughness).text, "0.041");
    EXPECT_EQ(CellOf(file, "Persecc", 1, "Rugosidad"), "0.041");
    EXPECT_EQ(CellOf(file, "Percanal", 1, "Caudal"), "33");

    // A window showing the record another one saved shows the saved value, and keeps its own edits.
    other->Type(profile::box::Slope, "0.0031");
    form2->Type(profile::box::Discharge, "41");
    form2->MoveTo(3);
    EXPECT_TRUE(other->Resync());
    EXPECT_EQ(other->Get(profile::box::Discharge).text, "41");
    EXPECT_EQ(other->Get(profile::box::Slope).text, "0.0031");
}

TEST_F(WorkbookTest, LockFilesFollowTheSpreadsheetProgramsConvention) {
    const fs::path file = Dir() / "rio.xlsx";
    const fs::path lock = Dir() / ".~lock.rio.xlsx#";
    fs::copy_file(kRios, file);
    const auto own = workbook::EditLock::Own();

    // Held while a screen has it, removed with the last one.
    {
        auto a = screens::MakeScreen("Form2");
        auto b = screens::MakeScreen("Form4");
        a->OpenWorkbook("rio.xlsx");
        b->OpenWorkbook("rio.xlsx");
        const auto written = workbook::ParseLock(Slurp(lock));
        ASSERT_TRUE(written);
        EXPECT_EQ(written->profile, own.profile);
        a.reset();
        EXPECT_TRUE(fs::exists(lock));
    }
    EXPECT_FALSE(fs::exists(lock));

    // A lock left by a Cauce that ended is taken over; one of a running Cauce of this user is shared
    // and left for it to remove.
    auto cauce_lock = [&](std::int64_t pid) {
        auto o = own;
        o.profile = "file:///otra/carpeta/cauce-proceso-" + std::to_string(pid);
        return workbook::FormatLock(o);
    };
    Spit(lock, cauce_lock(999999999));
    {
        auto s = screens::MakeScreen("Form2");
        s->OpenWorkbook("rio.xlsx");
        EXPECT_EQ(s->Notice(), "");
        EXPECT_EQ(workbook::ParseLock(Slurp(lock))->profile, own.profile);
    }
    Spit(lock, cauce_lock(platform::ProcessId()));
    {
        auto s = screens::MakeScreen("Form2");
        s->OpenWorkbook("rio.xlsx");
        s->Type(profile::box::Discharge, "97");
        s->MoveTo(2);
        EXPECT_EQ(CellOf(file, "Persecc", 1, "Caudal"), "97");
    }
    EXPECT_EQ(Slurp(lock), cauce_lock(platform::ProcessId()));
}

TEST_F(WorkbookTest, FormulaCellsAreSavedWithoutCachedResultsAndStillShown) {
    const fs::path file = Dir() / "rio.xlsx";
    ASSERT_EQ(Workbooks("crear " + file.string()), 0);
    std::string cached;
    {
        auto rec = workbook::OpenRecords(file.string(), "Persecc");
        cached = rec->Get(1, "Doble");
        EXPECT_EQ(rec->Formula(1, "Doble"), "=K2*2");
        rec->Set(2, "Caudal", "13");
        EXPECT_EQ(rec->Save(), "");
        EXPECT_EQ(rec->Get(1, "Doble"), cached);  // shown as before, though the file no longer has it
    }
    // Every formula cell of every sheet goes without <v>; the workbook still asks for a full
    // calculation on loading.
    for (const char* part : {"xl/worksheets/sheet2.xml", "xl/worksheets/sheet3.xml"}) {
        const std::string xml = Part(file, part);
        ASSERT_NE(xml.find("<f>"), std::string::npos) << part;
        for (std::size_t at = xml.find("<f>"); at != std::string::npos; at = xml.find("<f>", at + 1)) {
            const std::size_t end = xml.find("</c>", at);
            EXPECT_EQ(xml.substr(at, end - at).find("<v>"), std::string::npos)
                << part << ": " << xml.substr(at, end - at);
        }
    }
}

}  // namespace
}  // namespace cauce::test

namespace cauce::test {
namespace {

TEST(EvaluateFormula, ComputesSimpleFormulasAndLeavesTheRestToTheCachedResult) {
    // Sheet "" (the formula's own): A1 = 38, A2 = 45, A3 blank, B1 = "texto"; sheet "Mi hoja": A1 = 2.
    const workbook::CellNumber cells = [](const std::string& sheet, int row,
                                          int col) -> std::optional<double> {
        if (sheet == "Mi hoja") return row == 1 && col == 1 ? std::optional(2.0) : std::optional(0.0);
        if (col == 2) return std::nullopt;
        if (!sheet.empty() && sheet != "Persecc") return std::nullopt;
        return row == 1 ? 38.0 : row == 2 ? 45.0 : 0.0;
    };
    const struct {
        const char* formula;
        std::optional<double> value;
    } cases[] = {
        {"A1", 38},
        {"SUM(A1:A3)", 83},
        {"SUM(Persecc!A1:A2,10)", std::nullopt},  // a number inside SUM is not a range: not computed here
        {"'Mi hoja'!A1*(A1-A2)/2", -7},
        {"A1/A3", std::nullopt},  // division by zero: the cached result stays
        {"A1+B1", std::nullopt},  // a text
        {"AVERAGE(A1:A2)", std::nullopt},
        {"Otra!A1", std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(workbook::EvaluateFormula(c.formula, cells), c.value) << c.formula;
}

}  // namespace
}  // namespace cauce::test
