// Data1 over a real workbook: saving on "Salir", on a change of screen and on opening the workbook
// again (moving, the ends of the sheet and a save that fails: tst_windows.cpp).
#include <nlohmann/json.hpp>

#include "hydraulics/checked_math.hpp"
#include "tests/workbook/support.hpp"
#include "workbook/records.hpp"
#include "workbook/workbook.hpp"

namespace cauce::test {
namespace {

TEST_F(WorkbookTest, SalirAndAChangeOfScreenSaveThePendingRecord) {
    const fs::path file = Dir() / "rio.xlsx";
    fs::copy_file(kRios, file);
    auto r =
        Guion("pantalla Form2\nlibro rio.xlsx\nregistro 3\nescribir Text95 41.5\noprimir Command3\nbailar\n");
    ASSERT_EQ(r.status, 0) << r.err;  // "Salir" ends the run before the line it cannot read
    EXPECT_EQ(CellOf(file, "Persecc", 3, "Caudal"), "41.5");

    r = Guion("pantalla Form2\nlibro rio.xlsx\nescribir Text47 777\npantalla Form4\n");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(CellOf(file, "Persecc", 1, "Abscisa9"),
              "777");  // row 9's box, bound to "Abscisa9" like row 8's
    EXPECT_EQ(CellOf(file, "Persecc", 1, "Abscisa8"), "660");  // bound to no box

    // Opening the same workbook again saves the record first and reads it back.
    r = Guion(
        "pantalla Form2\nlibro rio.xlsx\nescribir Text93 0.05\nlibro rio.xlsx\nregistro 2\nregistro "
        "1\nmostrar\n");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(Shown(nlohmann::json::parse(r.out), profile::box::Roughness), "0.05");
}

}  // namespace
}  // namespace cauce::test
