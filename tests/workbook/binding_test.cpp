// Data1 over a real workbook: moving, the ends of the sheet, saving on "Salir" and on a change of
// screen, and an edit that could not be saved staying pending instead of being lost.
#include <nlohmann/json.hpp>

#include "hydraulics/checked_math.hpp"
#include "tests/workbook/support.hpp"
#include "workbook/records.hpp"
#include "workbook/workbook.hpp"

namespace cauce::test {
namespace {

const fs::path kRios = fs::path(CAUCE_EXAMPLES_DIR) / "Rios.xlsx";

std::string Cell(const fs::path& file, int record, const std::string& column) {
    return workbook::SheetRecords(workbook::Workbook::Open(file), "Persecc").Get(record, column);
}

TEST_F(WorkbookTest, NavigatorMovesAndStaysAtTheEnds) {
    fs::copy_file(kRios, Dir() / "rio.xlsx");
    const auto r = Guion(
        "pantalla Form2\nlibro rio.xlsx\nregistro anterior\nmostrar\nregistro último\nmostrar\n"
        "registro siguiente\nmostrar\nregistro primero\nregistro siguiente\nmostrar\nregistro 13\nmostrar\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "guion: línea 12: El registro 13 no existe: la hoja tiene 12 registros\n");
    std::istringstream lines(r.out);
    std::vector<std::string> got;
    for (std::string l; std::getline(lines, l);) {
        const auto j = nlohmann::json::parse(l);
        got.push_back(j["registro"].get<std::string>() + " " + Shown(j, profile::box::SectionNumber));
    }
    EXPECT_EQ(got, (std::vector<std::string>{"1 de 12 1", "12 de 12 12", "12 de 12 12", "2 de 12 2"}));
}

TEST_F(WorkbookTest, SalirAndAChangeOfScreenSaveThePendingRecord) {
    const fs::path file = Dir() / "rio.xlsx";
    fs::copy_file(kRios, file);
    auto r =
        Guion("pantalla Form2\nlibro rio.xlsx\nregistro 3\nescribir Text95 41.5\noprimir Command3\nbailar\n");
    ASSERT_EQ(r.status, 0) << r.err;  // "Salir" ends the run before the line it cannot read
    EXPECT_EQ(Cell(file, 3, "Caudal"), "41.5");

    r = Guion("pantalla Form2\nlibro rio.xlsx\nescribir Text47 777\npantalla Form4\n");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(Cell(file, 1, "Abscisa9"), "777");  // row 9's box, bound to "Abscisa9" like row 8's
    EXPECT_EQ(Cell(file, 1, "Abscisa8"), "660");  // bound to no box

    // Opening the same workbook again saves the record first and reads it back.
    r = Guion(
        "pantalla Form2\nlibro rio.xlsx\nescribir Text93 0.05\nlibro rio.xlsx\nregistro 2\nregistro "
        "1\nmostrar\n");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(Shown(nlohmann::json::parse(r.out), profile::box::Roughness), "0.05");
}

TEST_F(WorkbookTest, AnEditThatCannotBeSavedStaysPending) {
    const fs::path file = Dir() / "rio.xlsx";
    fs::copy_file(kRios, file);
    workbook::Install();
    auto screen = screens::MakeScreen("Form2");
    screen->OpenWorkbook("rio.xlsx");
    screen->Type(profile::box::Roughness, "0.045");
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_THROW(screen->MoveTo(2), Fault);
    EXPECT_EQ(screen->Record(), 1);
    EXPECT_TRUE(screen->Dirty());
    EXPECT_EQ(screen->Get(profile::box::Roughness).text, "0.045");
    EXPECT_EQ(Slurp(file), Slurp(kRios));

    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    screen->MoveTo(2);
    EXPECT_EQ(screen->Record(), 2);
    EXPECT_EQ(Cell(file, 1, "Rugosidad"), "0.045");
    EXPECT_EQ(Cell(file, 2, "Rugosidad"), "0.035");
}

}  // namespace
}  // namespace cauce::test
