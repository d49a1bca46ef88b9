// The bundled example workbooks and the data folder: copied on first use and never over a user's
// file, the legacy fixed paths mapped onto the folder, and the example reach of Rios.xlsx run whole
// through the driver, its profile table landing in the workbook's bound columns.
#include <nlohmann/json.hpp>

#include "tests/workbook/support.hpp"
#include "workbook/data_folder.hpp"
#include "workbook/records.hpp"
#include "workbook/workbook.hpp"

namespace cauce::test {
namespace {

using nlohmann::json;

std::vector<json> Lines(const std::string& out) {
    std::vector<json> v;
    std::istringstream in(out);
    for (std::string l; std::getline(in, l);) v.push_back(json::parse(l));
    return v;
}

TEST_F(WorkbookTest, WholeReachOfTheBundledRiosComputesAndItsTableLandsInTheWorkbook) {
    // Every section's "(Y?)" in record order (the last one, N = 12, arms "Perfiles"), then the profile
    // from a downstream depth of 2.2 m, then back to the first record, which saves the last one.
    std::string script = "pantalla Form2\nlibro C:\\Programas\\Datos\\Rios.xls\n";
    for (int k = 1; k <= 12; ++k) script += "registro " + std::to_string(k) + "\noprimir Command2\nmostrar\n";
    script += "escribir Text98 2.2\noprimir Command1\nmostrar\nregistro 1\n";
    const auto r = Guion(script);
    ASSERT_EQ(r.status, 0) << r.err;
    const auto lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 13u);
    const fs::path file = Dir() / "datos" / "Rios.xlsx";

    for (int k = 1; k <= 12; ++k) {
        const json& s = lines[static_cast<std::size_t>(k - 1)];
        EXPECT_FALSE(s.contains("error")) << "section " << k << ": " << s.value("error", "");
        EXPECT_NE(Shown(s, profile::box::NormalDepth), "") << "section " << k;
    }
    const json& table = lines[12];
    ASSERT_FALSE(table.contains("error")) << table.value("error", "");
    // The table of the current record (section 12) is in the workbook, as numbers and texts.
    workbook::SheetRecords saved(workbook::Workbook::Open(file), "Persecc");
    for (int j = 1; j <= 12; ++j) {
        const std::string n = std::to_string(j);
        EXPECT_EQ(saved.Get(12, "Tipo" + n), Shown(table, profile::TableType(j))) << j;
        EXPECT_EQ(std::stod(saved.Get(12, "Za" + n)), std::stod(Shown(table, profile::TableWaterLevel(j))))
            << j;
        EXPECT_EQ(std::stod(saved.Get(12, "V" + n)), std::stod(Shown(table, profile::TableVelocity(j)))) << j;
        EXPECT_EQ(saved.Get(11, "Tipo" + n), "") << "only the current record takes the table";
    }
}

TEST_F(WorkbookTest, EveryScreenOpensItsDefaultWorkbookWithEveryColumnBound) {
    const struct {
        const char* screen;
        const char* file;
        const char* records;
    } cases[] = {{"Form1", "Rios.xlsx", "1 de 4"},
                 {"Form2", "Rios.xlsx", "1 de 12"},
                 {"Form3", "Ormandi.xlsx", "1 de 10"},
                 {"Form4", "Rios.xlsx", "1 de 6"},
                 {"Form5", "Rios.xlsx", "1 de 4"}};
    for (const auto& c : cases) {
        const std::string path = workbook::DefaultWorkbook(c.screen);
        EXPECT_EQ(path, (Dir() / "datos" / c.file).string()) << c.screen;
        if (!screens::MakeScreen(c.screen)) continue;  // a screen not built yet
        const auto r = Guion(std::string("pantalla ") + c.screen + "\nlibro " + path + "\nmostrar\n");
        ASSERT_EQ(r.status, 0) << c.screen << ": " << r.err;
        const json state = json::parse(r.out);
        EXPECT_EQ(state["registro"], c.records) << c.screen;
        EXPECT_FALSE(state.contains("aviso")) << c.screen << ": " << state.value("aviso", "");
    }
    EXPECT_EQ(workbook::DefaultWorkbook("Form9"), "");
}

TEST_F(WorkbookTest, LegacyPathsMapOntoTheDataFolderWithoutOverwritingAnything) {
    const fs::path datos = Dir() / "datos";
    // First use: both examples are copied.
    EXPECT_EQ(workbook::ResolveWorkbookPath("C:\\Programas\\Datos\\Rios.xls"), datos / "Rios.xlsx");
    EXPECT_EQ(Slurp(datos / "Rios.xlsx"), Slurp(fs::path(CAUCE_EXAMPLES_DIR) / "Rios.xlsx"));
    EXPECT_EQ(Slurp(datos / "Ormandi.xlsx"), Slurp(fs::path(CAUCE_EXAMPLES_DIR) / "Ormandi.xlsx"));
    // Any case, either slash; "rios.xls" only as the natural uniform-flow screen's own path: typed,
    // it is the working folder's file.
    for (const char* p : {"c:\\programas\\datos\\RIOS.XLS", "C:/Programas/Datos/Rios.xls"})
        EXPECT_EQ(workbook::ResolveWorkbookPath(p), datos / "Rios.xlsx") << p;
    EXPECT_EQ(workbook::DefaultWorkbook("Form5"), (datos / "Rios.xlsx").string());
    EXPECT_EQ(workbook::ResolveWorkbookPath("RIOS.xls"), Dir() / "RIOS.xls");
    EXPECT_EQ(workbook::ResolveWorkbookPath("C:\\Ormandi\\Ormandi.xls"), datos / "Ormandi.xlsx");
    // Other paths are the user's: a relative one from the working folder.
    EXPECT_EQ(workbook::ResolveWorkbookPath("mis/rio.xlsx"), Dir() / "mis" / "rio.xlsx");
    EXPECT_EQ(workbook::ResolveWorkbookPath("/otra/Rios.xls"), fs::path("/otra/Rios.xls"));

    // A user's own workbook is never replaced.
    Spit(datos / "Rios.xlsx", "mío");
    EXPECT_TRUE(workbook::InstallExamples().empty());
    EXPECT_EQ(Slurp(datos / "Rios.xlsx"), "mío");

    // A user's legacy .xls of that name is opened, and no example is put in front of it.
    fs::remove(datos / "Rios.xlsx");
    fs::remove(datos / "Ormandi.xlsx");
    Spit(datos / "RIOS.XLS", "antiguo");
    EXPECT_EQ(workbook::ResolveWorkbookPath("C:\\Programas\\Datos\\Rios.xls"), datos / "RIOS.XLS");
    EXPECT_EQ(workbook::InstallExamples(), std::vector<fs::path>{datos / "Ormandi.xlsx"});
    EXPECT_FALSE(fs::exists(datos / "Rios.xlsx"));
}

}  // namespace
}  // namespace cauce::test
