// Legacy .xls workbooks as LibreOffice writes them (a chart, a long text, formulas), read in a child
// process that is cauce itself; a reader that dies is a message naming the file, never a crash.
#include <cstdlib>

#include "hydraulics/checked_math.hpp"
#include "tests/workbook/support.hpp"
#include "workbook/legacy.hpp"
#include "workbook/workbook.hpp"

namespace cauce::test {
namespace {

// The tests run from their own executable: the reader is the cauce built beside them.
const bool kReader = (workbook::SetLegacyReaderProgram(CAUCE_PROGRAM), true);

std::string Q(const fs::path& p) {
    return "\"" + p.string() + "\"";
}

struct LibreOfficeCase {
    const char* label;
    const char* name;  // the case of workbooks.py xls-libreoffice
    int row, col;      // a cell that freexl alone does not give
    workbook::Cell want;
};

class LibreOfficeXls : public WorkbookTest, public ::testing::WithParamInterface<LibreOfficeCase> {};

TEST_P(LibreOfficeXls, IsReadWholeAndItsXlsxListsWhatItDoesNotCarry) {
    const LibreOfficeCase& c = GetParam();
    const fs::path file = Dir() / "rio.xls";
    ASSERT_EQ(Workbooks(std::string("xls-libreoffice ") + file.string() + " " + c.name), 0);
    const std::string before = Slurp(file);
    auto book = workbook::Workbook::Open(file);
    ASSERT_EQ(book->SheetNames(), (std::vector<std::string>{"Persecc", "Notas"}));
    workbook::Sheet* persecc = book->FindSheet("Persecc");
    EXPECT_EQ(persecc->Get(1, 1), workbook::Cell::Str("Seccion"));
    EXPECT_EQ(persecc->Get(4, 2), workbook::Cell::Num(31.5));
    EXPECT_EQ(persecc->Get(c.row, c.col), c.want);
    EXPECT_EQ(book->FindSheet("Notas")->Get(1, 1), workbook::Cell::Str("fin"));

    persecc->Set(2, 2, workbook::Cell::Num(12));
    const std::string note = book->Save();
    EXPECT_EQ(note,
              "El libro " + Q(file) +
                  " tiene el formato antiguo de Excel (.xls) y no se modifica: los cambios se guardaron en " +
                  Q(Dir() / "rio.xlsx") + ": " + workbook::LegacyLosses({}) + ".");
    EXPECT_EQ(Slurp(file), before);
    auto saved = workbook::Workbook::Open(Dir() / "rio.xlsx");
    EXPECT_EQ(saved->FindSheet("Persecc")->Get(2, 2), workbook::Cell::Num(12));
    EXPECT_EQ(saved->FindSheet("Persecc")->Get(c.row, c.col), c.want);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, LibreOfficeXls,
    ::testing::Values(LibreOfficeCase{"chart", "grafico", 3, 3, workbook::Cell::Str("tramo 2")},
                      LibreOfficeCase{"long_text", "texto-largo", 3, 3,
                                      workbook::Cell::Str("larga " + std::string(20000, 'x'))},
                      LibreOfficeCase{"formula_number", "formulas", 2, 4, workbook::Cell::Num(21)},
                      LibreOfficeCase{"formula_text", "formulas", 2, 5, workbook::Cell::Str("tramo 1 fin")}),
    [](const auto& info) { return std::string(info.param.label); });

TEST_F(WorkbookTest, LegacyReaderThatDiesIsADamagedFileNamed) {
    const fs::path file = Dir() / "rio.xls";
    ASSERT_EQ(Workbooks("crear-xls " + file.string()), 0);
    const std::string before = Slurp(file);
    ::setenv("CAUCE_TEST_XLS_READER", "abort", 1);
    std::string message;
    try {
        (void)workbook::Workbook::Open(file);
    } catch (const Fault& f) {
        message = f.what();
    }
    ::unsetenv("CAUCE_TEST_XLS_READER");
    EXPECT_EQ(
        message,
        "No se puede leer el libro antiguo " + Q(file) +
            ": su contenido está dañado (el lector de libros antiguos no pudo con él). El archivo no "
            "se modificó; si Excel o LibreOffice lo abren, guárdelo allí como .xlsx y ábralo en Cauce.");
    EXPECT_EQ(Slurp(file), before);
    EXPECT_NO_THROW(workbook::Workbook::Open(file));  // the next reader is fine
}

}  // namespace
}  // namespace cauce::test
