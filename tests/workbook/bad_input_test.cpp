// Bad input gets a clear Spanish message naming the file, and the user's file is left byte for byte
// as it was: missing, not a workbook, truncated or corrupt, a missing sheet or column, read-only file
// or folder, a full disk, a save cut short, a zip bomb, entity tricks (a cell another program saved
// meanwhile: sharing_test.cpp; text where a number belongs: val_format_test.cpp; a legacy reader that
// dies: legacy_test.cpp, and the file freexl overreads is in the fuzz corpus, run under the sanitizers).
#include <zip.h>

#include <functional>

#include <nlohmann/json.hpp>

#include "hydraulics/checked_math.hpp"
#include "platform/platform.hpp"
#include "tests/workbook/support.hpp"
#include "workbook/records.hpp"
#include "workbook/save_file.hpp"
#include "workbook/workbook.hpp"

namespace cauce::test {
namespace {

std::string Q(const fs::path& p) {
    return "\"" + p.string() + "\"";
}

// Files left in a folder, to see that a failed save leaves no temporary file behind.
std::size_t FileCount(const fs::path& dir) {
    std::size_t n = 0;
    for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir)) ++n;
    return n;
}

struct OpenCase {
    const char* name;
    std::function<void(const fs::path&)> make;            // writes the bad file
    std::function<std::string(const fs::path&)> message;  // the message expected, given the file
    bool exact = true;                                    // else the message must start with it
};

class BadWorkbook : public WorkbookTest, public ::testing::WithParamInterface<OpenCase> {};

TEST_P(BadWorkbook, IsRefusedWithItsMessageAndLeftAsItWas) {
    const OpenCase& c = GetParam();
    const fs::path file = Dir() / "rio.xlsx";
    c.make(file);
    const std::string before = fs::exists(file) ? Slurp(file) : "";
    const auto r = Guion("pantalla Form2\nlibro rio.xlsx\nmostrar\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    const std::string prefix = "guion: línea 2: ";
    const std::string want = c.message(file);
    ASSERT_EQ(r.err.rfind(prefix, 0), 0u) << r.err;
    const std::string got = r.err.substr(prefix.size(), r.err.size() - prefix.size() - 1);
    if (c.exact) {
        EXPECT_EQ(got, want);
    } else {
        EXPECT_EQ(got.rfind(want, 0), 0u) << got;
    }
    if (fs::exists(file)) {
        EXPECT_EQ(Slurp(file), before);
    }
}

// A copy of the file with one part's text replaced.
void ReplacePart(const fs::path& from, const fs::path& to, const char* part, const std::string& text) {
    fs::copy_file(from, to);
    int err = 0;
    zip_t* z = zip_open(to.c_str(), 0, &err);
    ASSERT_NE(z, nullptr);
    zip_source_t* src = zip_source_buffer(z, text.data(), text.size(), 0);
    ASSERT_GE(zip_file_add(z, part, src, ZIP_FL_OVERWRITE), 0);
    ASSERT_EQ(zip_close(z), 0);
}

std::string Half(const std::string& s) {
    return s.substr(0, s.size() / 2);
}

const OpenCase kOpenCases[] = {
    {"missing", [](const fs::path&) {},
     [](const fs::path& f) { return "No se encuentra el libro " + Q(f) + "."; }},
    {"folder", [](const fs::path& f) { fs::create_directory(f); },
     [](const fs::path& f) { return Q(f) + " es una carpeta, no un libro de Excel."; }},
    {"empty", [](const fs::path& f) { Spit(f, ""); },
     [](const fs::path& f) {
         return Q(f) + " está vacío: no es un libro de Excel. El archivo no se modificó.";
     }},
    {"text", [](const fs::path& f) { Spit(f, "SecId;Caudal\n1;38\n"); },
     [](const fs::path& f) {
         return Q(f) + " no es un libro de Excel (.xlsx o .xls). El archivo no se modificó.";
     }},
    {"truncated", [](const fs::path& f) { Spit(f, Half(Slurp(kRios))); },
     [](const fs::path& f) { return "El libro " + Q(f) + " está dañado: "; }, false},
    // The parser's complaint comes in Spanish, with where it is.
    {"xml_not_well_formed",
     [](const fs::path& f) { ReplacePart(kRios, f, "xl/workbook.xml", "<workbook><sheets></workbook>"); },
     [](const fs::path& f) {
         return "El libro " + Q(f) +
                " está dañado: la parte xl/workbook.xml no es XML válido (una etiqueta de cierre no "
                "corresponde a la que abre, posición ";
     },
     false},
    {"legacy_garbage",
     [](const fs::path& f) {
         Spit(f, std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + std::string(600, '\x07'));
     },
     [](const fs::path& f) { return "No se puede leer el libro antiguo " + Q(f) + ": "; }, false},
    {"zip_bomb", [](const fs::path& f) { Workbooks("crear-bomba " + f.string()); },
     [](const fs::path& f) {
         return "El libro " + Q(f) +
                " se rechaza: la parte xl/worksheets/sheet1.xml se expande a más de 128 MB (parece una bomba "
                "zip). El archivo no se modificó.";
     }},
    {"entity_expansion", [](const fs::path& f) { Workbooks("crear-entidades " + f.string()); },
     [](const fs::path& f) {
         return "El libro " + Q(f) +
                " se rechaza: la parte xl/workbook.xml declara un tipo de documento con entidades XML, que "
                "un libro de Excel no usa. El archivo no se modificó.";
     }},
};

INSTANTIATE_TEST_SUITE_P(Opening, BadWorkbook, ::testing::ValuesIn(kOpenCases),
                         [](const auto& info) { return std::string(info.param.name); });

// A row written twice (found by fuzzing): an edit of that row is saved, not dropped. (A cell in another
// row's element and a package without content types: fuzz/corpus/workbook_xml, celda_de_otra_fila and
// sin_tipos, read back after an edit by the fuzz target.)
TEST_F(WorkbookTest, EditsOfARowWrittenTwiceAreSaved) {
    const fs::path file = Dir() / "fila_repetida.xlsx";
    ReplacePart(
        kRios, file, "xl/worksheets/sheet1.xml",
        "<worksheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><sheetData>"
        "<row r=\"1\"><c r=\"A1\" t=\"inlineStr\"><is><t>SecId</t></is></c><c r=\"B1\" t=\"inlineStr\">"
        "<is><t>Caudal</t></is></c><c r=\"C1\" t=\"inlineStr\"><is><t>Si</t></is></c></row><row r=\"2\">"
        "<c r=\"A2\"><v>1</v></c></row><row r=\"2\"><c "
        "r=\"C2\"><v>0.002</v></c></row></sheetData></worksheet>");
    {
        workbook::SheetRecords records(workbook::Workbook::Open(file), "Persecc");
        ASSERT_EQ(records.RecordCount(), 1);
        records.Set(1, "SecId", "7");
        records.Set(1, "Caudal", "12.5");
        records.Save();
    }
    workbook::SheetRecords again(workbook::Workbook::Open(file), "Persecc");
    EXPECT_EQ(again.Get(1, "SecId"), "7");
    EXPECT_EQ(again.Get(1, "Caudal"), "12.5");
    EXPECT_EQ(again.Get(1, "Si"), "0.002");
}

TEST_F(WorkbookTest, MissingColumnLeavesItsBoxUnboundAndSaysSo) {
    const fs::path file = Dir() / "rio.xlsx";
    fs::copy_file(kRios, file);
    ASSERT_EQ(Workbooks("poner " + file.string() + " Percanal 0 So '\"Si\"'"), 0);
    const std::string before = Slurp(file);
    const auto r = Guion("pantalla Form4\nlibro rio.xlsx\nmostrar\nregistro 2\nmostrar\n");
    ASSERT_EQ(r.status, 0) << r.err;
    const std::string notice = "La hoja \"Percanal\" del libro " + Q(file) +
                               " no tiene la columna \"So\": su cuadro queda sin enlazar.";
    const auto first = nlohmann::json::parse(r.out.substr(0, r.out.find('\n')));
    EXPECT_EQ(first.value("aviso", ""), notice);
    EXPECT_EQ(Shown(first, profile::box::Slope), "");           // unbound
    EXPECT_EQ(Shown(first, profile::box::Roughness), "0.015");  // the others are bound
    EXPECT_EQ(r.err, "guion: línea 2: " + notice + "\n");
    EXPECT_EQ(Slurp(file), before);
}

// The script types into a bound box and moves on, which saves.
constexpr const char* kEditAndMove = "pantalla Form2\nlibro LIBRO\nescribir Text93 0.04\nregistro 2\n";

std::string With(std::string script, const fs::path& file) {
    script.replace(script.find("LIBRO"), 5, file.string());
    return script;
}

// A read-only file, then a read-only folder: the save is refused, the file left whole and no temporary
// file left beside it.
TEST_F(WorkbookTest, ReadOnlyFileOrFolderIsNotWritten) {
    const fs::path folder = Dir() / "solo-lectura", file = folder / "rio.xlsx";
    fs::create_directory(folder);
    fs::copy_file(kRios, file);
    fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    auto r = Guion(With(kEditAndMove, file));
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "guion: línea 4: No se pudo guardar el libro " + Q(file) +
                         ": el archivo es de solo lectura. El libro no se modificó.\n");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
    r = Guion(With(kEditAndMove, file));
    fs::permissions(folder, fs::perms::owner_all);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "guion: línea 4: No se pudo guardar el libro " + Q(file) + ": la carpeta " + Q(folder) +
                         " es de solo lectura. El libro no se modificó.\n");
    EXPECT_EQ(Slurp(file), Slurp(kRios));
    EXPECT_EQ(FileCount(folder), 1u);
}

// Runs the script with the program itself, under a shell that first runs setup; returns its exit
// status and what it wrote to its error output.
std::pair<int, std::string> InChild(const std::string& script, const std::string& setup) {
    const auto r = platform::RunChild(
        {"/bin/sh", "-c", setup + "; printf '%s' \"$1\" | \"$0\" guion 2>&1", CAUCE_PROGRAM, script},
        std::chrono::minutes(2));
    return {r.exit_code, r.out};
}

TEST_F(WorkbookTest, FullDiskLeavesTheWorkbookWhole) {
    const fs::path file = Dir() / "rio.xlsx";
    fs::copy_file(kRios, file);
    // A file-size limit below the workbook's size stands for the disk filling up during the write.
    const auto [status, err] = InChild(With(kEditAndMove, file), "trap '' XFSZ; ulimit -f 4");
    EXPECT_EQ(status, 1);
    EXPECT_EQ(err, "guion: línea 4: No se pudo guardar el libro " + Q(file) +
                       ": no hay espacio en el disco. El libro no se modificó.\n");
    EXPECT_EQ(Slurp(file), Slurp(kRios));
    EXPECT_EQ(FileCount(Dir()), 1u);
}

TEST_F(WorkbookTest, SaveCutShortBeforeTheRenameLeavesTheOldWorkbookWhole) {
    const fs::path file = Dir() / "rio.xlsx";
    fs::copy_file(kRios, file);
    // Where the program would die, with the new file written and flushed before it takes the old
    // one's place, the old file is whole and the new one complete beside it.
    std::string at_rename, written;
    workbook::SetBeforeRenameHook([&](const fs::path& temp) {
        at_rename = Slurp(file);
        written = Slurp(temp);
        raise(FaultCode::FileNotSaved, "corte");
    });
    (void)Guion(With(kEditAndMove, file));
    EXPECT_EQ(at_rename, Slurp(kRios));
    EXPECT_EQ(workbook::SheetRecords(workbook::Workbook::FromBytes(written, "nuevo"), "Persecc")
                  .Get(1, "Rugosidad"),
              "0.04");

    // Cut short by an error instead: the temporary file goes too.
    fs::remove_all(Dir() / "datos");
    for (const auto& e : fs::directory_iterator(Dir()))
        if (e.path() != file) fs::remove(e.path());
    workbook::SetBeforeRenameHook([](const fs::path&) { raise(FaultCode::FileNotSaved, "corte"); });
    const auto r = Guion(With(kEditAndMove, file));
    workbook::SetBeforeRenameHook(nullptr);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "guion: línea 4: corte\n");
    EXPECT_EQ(Slurp(file), Slurp(kRios));
    EXPECT_EQ(FileCount(Dir()), 1u);
}

TEST_F(WorkbookTest, SheetWithoutAHeaderRowIsRefused) {
    const fs::path file = Dir() / "rio.xlsx";
    ASSERT_EQ(Workbooks("crear " + file.string()), 0);
    ASSERT_EQ(Workbooks("hoja-vacia " + file.string() + " Percanal"), 0);
    const auto r = Guion("pantalla Form4\nlibro rio.xlsx\n");
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "guion: línea 2: La hoja \"Percanal\" del libro " + Q(file) +
                         " está vacía: le falta la fila de encabezados con los nombres de las columnas.\n");
}

}  // namespace
}  // namespace cauce::test
