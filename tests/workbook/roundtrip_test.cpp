// Round trips through an independent reader and writer: openpyxl (and xlwt for the legacy format)
// makes a workbook with styles, formulas and extra sheets; Cauce edits records through the driver;
// openpyxl reads it back with the edits made and everything else as it was.
#include <nlohmann/json.hpp>

#include "tests/workbook/support.hpp"
#include "workbook/legacy.hpp"

namespace cauce::test {
namespace {

// The edits of the script below, as openpyxl must find them.
constexpr const char* kChanges = R"([
  {"hoja": "Persecc", "registro": 2, "columna": "Rugosidad", "valor": 0.04},
  {"hoja": "Persecc", "registro": 2, "columna": "z1", "valor": 99.9},
  {"hoja": "Persecc", "registro": 3, "columna": "Caudal", "valor": 55},
  {"hoja": "Persecc", "registro": 3, "columna": "Notas", "valor": null},
  {"hoja": "Persecc", "registro": 1, "columna": "Abscisa9", "valor": 390.5},
  {"hoja": "Persecc", "registro": 1, "columna": "Tipo1", "valor": "M2"},
  {"hoja": "Persecc", "registro": 1, "columna": "Doble", "valor": "ancho"}
])";

// Record 2: two numbers; record 3: a number and a cleared text (saved on "registro 1"); record 1:
// row 8's chainage box (bound to "Abscisa9"), a profile type, a text over a formula (saved at the end).
constexpr const char* kScript =
    "pantalla Form2\n"
    "libro LIBRO\n"
    "registro 2\n"
    "escribir Text93 0.04\n"
    "escribir Text1 99.9\n"
    "registro 3\n"
    "escribir Text95 55\n"
    "mostrar\n"
    "registro 1\n"
    "escribir Text45 390.5\n"
    "escribir Text32 M2\n"
    "mostrar\n";

std::string Replace(std::string s, const std::string& from, const std::string& to) {
    s.replace(s.find(from), from.size(), to);
    return s;
}

TEST_F(WorkbookTest, OpenpyxlFindsTheEditsAndEverythingElseIntact) {
    ASSERT_EQ(Workbooks("crear " + (Dir() / "original.xlsx").string()), 0);
    fs::copy_file(Dir() / "original.xlsx", Dir() / "rio.xlsx");
    // Form2 has no box for "Notas" or "Doble": a sheet of the same workbook edited through Form5 would
    // be the same story, so those two go through the record source directly below.
    const auto r = Guion(Replace(kScript, "LIBRO", "rio.xlsx"));
    ASSERT_EQ(r.status, 0) << r.err;
    const auto lines = nlohmann::json::parse(r.out.substr(0, r.out.find('\n')));
    EXPECT_EQ(lines["registro"], "3 de 3");
    EXPECT_EQ(Shown(lines, profile::box::Discharge), "55");

    {
        forms::SetSourceOpener(nullptr);
        workbook::Install();
        auto source = forms::GetSourceOpener()("rio.xlsx", "Persecc");
        source->Set(3, "Notas", "");
        source->Set(1, "Doble", "ancho");
        source->Save();
    }
    Spit(Dir() / "cambios.json", kChanges);
    std::string out;
    EXPECT_EQ(Workbooks("verificar " + (Dir() / "original.xlsx").string() + " " +
                            (Dir() / "rio.xlsx").string() + " " + (Dir() / "cambios.json").string(),
                        &out),
              0)
        << out;
}

TEST_F(WorkbookTest, LegacyXlsIsSavedAsAnXlsxBesideItAndNeverWritten) {
    ASSERT_EQ(Workbooks("crear-xls " + (Dir() / "rio.xls").string()), 0);
    const std::string xls = Slurp(Dir() / "rio.xls");
    auto r = Guion(Replace(kScript, "LIBRO", "rio.xls"));
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string note =
        "El libro \"" + (Dir() / "rio.xls").string() +
        "\" tiene el formato antiguo de Excel (.xls) y no se modifica: los cambios se guardaron "
        "en \"" +
        (Dir() / "rio.xlsx").string() + "\": " + workbook::LegacyLosses({}) + ".";
    const auto first = nlohmann::json::parse(r.out.substr(0, r.out.find('\n')));
    EXPECT_EQ(first.value("aviso", ""), note);
    EXPECT_NE(r.err.find(note), std::string::npos);
    EXPECT_EQ(Slurp(Dir() / "rio.xls"), xls);

    // Later saves go to that .xlsx; nothing else appears beside it.
    std::string out;
    ASSERT_EQ(Workbooks("leer " + (Dir() / "rio.xlsx").string() + " Persecc", &out), 0) << out;
    const auto rows = nlohmann::json::parse(out);
    EXPECT_EQ(rows[2][8], 0.04);    // record 2, Rugosidad
    EXPECT_EQ(rows[2][2], 99.9);    // record 2, z1
    EXPECT_EQ(rows[3][10], 55);     // record 3, Caudal
    EXPECT_EQ(rows[1][16], 390.5);  // record 1, Abscisa9
    EXPECT_EQ(rows[1][17], "M2");
    EXPECT_EQ(rows[1][19], "aguas arriba");  // untouched text
    ASSERT_EQ(Workbooks("leer " + (Dir() / "rio.xlsx").string() + " Notas", &out), 0) << out;
    EXPECT_EQ(nlohmann::json::parse(out)[0][0], "Libro antiguo del río");
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& e : fs::directory_iterator(Dir())) ++files;
    EXPECT_EQ(files, 2u) << "rio.xls and rio.xlsx only";
}

}  // namespace
}  // namespace cauce::test
