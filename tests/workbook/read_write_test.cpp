// Reading every kind of cell of a package written part by part as spreadsheet programs write it, and
// editing it: the edits land, formulas and calculation chain stay coherent, the untouched parts come
// out byte for byte. openpyxl reads the result independently.
#include <zip.h>

#include <map>
#include <nlohmann/json.hpp>

#include "tests/workbook/support.hpp"
#include "workbook/records.hpp"
#include "workbook/workbook.hpp"

namespace cauce::test {
namespace {

using workbook::SheetRecords;
using workbook::Workbook;

// Each part's stored (compressed) bytes.
std::map<std::string, std::string> RawParts(const fs::path& file) {
    std::map<std::string, std::string> parts;
    int err = 0;
    zip_t* z = zip_open(file.c_str(), ZIP_RDONLY, &err);
    if (!z) return parts;
    for (zip_int64_t i = 0; i < zip_get_num_entries(z, 0); ++i) {
        zip_stat_t st;
        zip_stat_index(z, static_cast<zip_uint64_t>(i), 0, &st);
        std::string raw(static_cast<std::size_t>(st.comp_size), '\0');
        zip_file_t* f = zip_fopen_index(z, static_cast<zip_uint64_t>(i), ZIP_FL_COMPRESSED);
        if (f && !raw.empty()) zip_fread(f, raw.data(), raw.size());
        if (f) zip_fclose(f);
        parts[st.name] = raw;
    }
    zip_close(z);
    return parts;
}

class HandWritten : public WorkbookTest, public ::testing::WithParamInterface<std::string> {
  protected:
    void SetUp() override {
        WorkbookTest::SetUp();
        file_ = Dir() / "rio.xlsx";
        ASSERT_EQ(Workbooks("crear-xml " + file_.string() + " " + GetParam()), 0);
    }
    fs::path file_;
};

TEST_P(HandWritten, ReadsEveryKindOfCell) {
    SheetRecords rec(Workbook::Open(file_), "Persecc");
    ASSERT_EQ(rec.RecordCount(), 3);
    const struct {
        int record;
        const char* column;
        const char* text;
    } cases[] = {
        {1, "SecId", "1"},          // number
        {1, "Rugosidad", "0.035"},  // 0.035000000000000003 is the double 0.035
        {1, "Nota", " río  "},      // shared string, blanks kept
        {1, "Doble", "25"},         // a shared formula's cached result
        {1, "Texto", "VERDADERO"},  // boolean
        {2, "SecId", "2"},          // cells without references follow one another
        {2, "Rugosidad", "-2.5"},
        {2, "Caudal", "0.001"},         // written 1E-3
        {2, "Nota", "línea\r\nnueva"},  // _x000D_ is a carriage return
        {2, "Texto", "Q=0.001"},        // a formula's text result
        {3, "Rugosidad", ""},           // no cell
        {3, "Nota", "#DIV/0!"},         // error
        {3, "Texto", "cañón"},          // inline string in runs
    };
    for (const auto& c : cases) EXPECT_EQ(rec.Get(c.record, c.column), c.text) << c.record << " " << c.column;
    // "Rugo" and "sidad" are runs of one shared string; its phonetic reading is not part of it.
    EXPECT_TRUE(rec.HasColumn("Rugosidad"));
    EXPECT_FALSE(rec.HasColumn("Rugo"));
}

TEST_P(HandWritten, EditsKeepFormulasChainAndUntouchedPartsCoherent) {
    const auto before = RawParts(file_);
    {
        SheetRecords rec(Workbook::Open(file_), "Persecc");
        rec.Set(1, "Doble", "30");        // overwrites the cell holding the shared formula's text
        rec.Set(1, "Rugosidad", "0.05");  // a styled cell keeps its number format
        rec.Set(3, "Rugosidad", "0.04");  // a new cell between two others
        rec.Set(2, "Texto", "");          // a formula cell cleared
        rec.Set(2, "Extra", "nuevo");     // a new cell in the row whose cells carry no references
        rec.Set(1, "Caudal", "12.5");     // unchanged text: the cell is left alone
        EXPECT_EQ(
            rec.Save(),
            "Se reemplazó la fórmula =C2*2 de la hoja \"Persecc\" (registro 1, columna \"Doble\") por el "
            "valor 30.");
    }
    std::string out;
    ASSERT_EQ(Workbooks("formulas " + file_.string() + " Persecc", &out), 0) << out;
    const auto formulas = nlohmann::json::parse(out.substr(0, out.find('\n')));
    EXPECT_EQ(formulas, nlohmann::json::parse(R"({"E3": "=C3*2", "E4": "=C4*2"})"));
    ASSERT_EQ(Workbooks("leer " + file_.string() + " Persecc", &out), 0) << out;
    const auto rows = nlohmann::json::parse(out.substr(0, out.find('\n')));
    EXPECT_EQ(rows[1][1], 0.05);
    EXPECT_EQ(rows[1][4], 30);
    EXPECT_EQ(rows[3][1], 0.04);
    EXPECT_EQ(rows[2],
              nlohmann::json::parse(R"([2, -2.5, 0.001, "línea_x000D_\nnueva", "=C3*2", null, "nuevo"])"));
    EXPECT_EQ(rows[1][2], 12.5);

    const auto after = RawParts(file_);
    EXPECT_EQ(after.count("xl/calcChain.xml"), 0u) << "a chain naming cells without formulas";
    EXPECT_EQ(Part(file_, "[Content_Types].xml").find("calcChain"), std::string::npos);
    EXPECT_EQ(Part(file_, "xl/_rels/workbook.xml.rels").find("calcChain"), std::string::npos);
    EXPECT_NE(Part(file_, "xl/workbook.xml").find("fullCalcOnLoad=\"1\""), std::string::npos);
    for (const char* same : {"xl/styles.xml", "xl/sharedStrings.xml", "_rels/.rels"}) {
        ASSERT_TRUE(after.count(same)) << same;
        EXPECT_EQ(after.at(same), before.at(same)) << same << " was not copied as it was";
    }
    EXPECT_NE(Part(file_, "xl/worksheets/sheet1.xml").find("s=\"1\""), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Prefixes, HandWritten, ::testing::Values("", "x"),
                         [](const auto& info) { return info.param.empty() ? "plain" : "prefixed"; });

TEST_F(WorkbookTest, UnchangedWorkbookIsNotWritten) {
    const fs::path file = Dir() / "rio.xlsx";
    ASSERT_EQ(Workbooks("crear " + file.string()), 0);
    const std::string bytes = Slurp(file);
    const auto r = Guion(
        "pantalla Form2\nlibro rio.xlsx\nregistro 2\nregistro 3\nescribir Text93 0.03\n"
        "oprimir Command3\n");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(Slurp(file), bytes);
}

}  // namespace
}  // namespace cauce::test
