#include "workbook/legacy.hpp"

#include <freexl.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <map>
#include <sstream>
#include <string_view>

#include "base/fault.hpp"
#include "platform/platform.hpp"
#include "workbook/limits.hpp"
#include "workbook/new_workbook.hpp"
#include "workbook/xls_stream.hpp"

namespace cauce::workbook {

namespace fs = std::filesystem;

namespace {

// Longer than any real workbook takes to read.
constexpr std::chrono::seconds kReaderLimit{60};

std::string Reason(int code) {
    switch (code) {
        case FREEXL_FILE_NOT_FOUND:
            return "no se puede leer el archivo";
        case FREEXL_INSUFFICIENT_MEMORY:
            return "no hay memoria suficiente para leerlo";
        case FREEXL_INVALID_CFBF_HEADER:
        case FREEXL_CFBF_INVALID_SIGNATURE:
        case FREEXL_CFBF_INVALID_SECTOR_SIZE:
            return "su estructura de archivo compuesto no es válida";
        case FREEXL_BIFF_WORKBOOK_NOT_FOUND:
            return "no contiene un libro de Excel";
        case FREEXL_INVALID_CHARACTER:
        case FREEXL_UNSUPPORTED_CHARSET:
            return "usa una codificación de caracteres que no se puede leer";
        case FREEXL_CRAFTED_FILE:
            return "su contenido es incoherente (parece manipulado)";
        case FREEXL_NULL_HANDLE:
            // freexl stops at a record it cannot follow and then reports success without a workbook.
            return "contiene registros que el lector de libros antiguos no sabe seguir";
        default:
            return "su contenido está dañado (código " + std::to_string(code) + ")";
    }
}

[[noreturn]] void Refuse(const std::string& file, const std::string& why) {
    raise(FaultCode::FileDamaged,
          "No se puede leer el libro antiguo \"" + file + "\": " + why +
              ". El archivo no se modificó; si Excel o LibreOffice lo abren, guárdelo allí como .xlsx y "
              "ábralo en Cauce.");
}

struct Handle {
    const void* h = nullptr;
    ~Handle() {
        if (h) freexl_close(h);
    }
};

// ---- What the child writes: a line "cauce-xls 1", then frames, then "fin". A frame is a line of
// a tag and numbers; a text in it is given by its length on that line and follows on the next.

void TextFrame(std::ostream& out, std::string_view tag, std::string_view head, std::string_view text) {
    out << tag << head << ' ' << text.size() << '\n';
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out << '\n';
}

void NumberFrame(std::ostream& out, unsigned row, unsigned col, double x) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, x);
    out << "n " << row << ' ' << col << ' ' << std::string_view(buf, static_cast<std::size_t>(r.ptr - buf))
        << '\n';
}

// Reads the workbook at path (file names it in messages) into frames.
void ReadSheets(const fs::path& path, const std::string& file, std::ostream& out,
                const std::map<std::string, std::string>& long_texts = {}) {
    auto fail = [&](const std::string& why) { Refuse(file, why); };
    Handle x;
    if (const int rc = freexl_open(path.string().c_str(), &x.h); rc != FREEXL_OK) fail(Reason(rc));
    if (!x.h) fail(Reason(FREEXL_NULL_HANDLE));
    unsigned int value = 0;
    if (freexl_get_info(x.h, FREEXL_BIFF_PASSWORD, &value) == FREEXL_OK && value == FREEXL_BIFF_OBFUSCATED)
        fail("está protegido con contraseña");
    unsigned int count = 0;
    if (const int rc = freexl_get_info(x.h, FREEXL_BIFF_SHEET_COUNT, &count); rc != FREEXL_OK)
        fail(Reason(rc));
    if (count == 0) fail("no tiene hojas");

    for (unsigned short i = 0; i < count; ++i) {
        const char* name = nullptr;
        if (const int rc = freexl_get_worksheet_name(x.h, i, &name); rc != FREEXL_OK || !name)
            fail(Reason(rc));
        unsigned int rows = 0;
        unsigned short cols = 0;
        if (freexl_select_active_worksheet(x.h, i) != FREEXL_OK ||
            freexl_worksheet_dimensions(x.h, &rows, &cols) != FREEXL_OK) {
            TextFrame(out, "omitida", "", "la hoja \"" + std::string(name) + "\" (no se pudo leer)");
            continue;
        }
        if (rows > 65536 || cols > 256)
            fail("la hoja \"" + std::string(name) + "\" excede la cuadrícula del formato");
        TextFrame(out, "hoja", "", name);
        for (unsigned int r = 0; r < rows; ++r) {
            for (unsigned short c = 0; c < cols; ++c) {
                FreeXL_CellValue v;
                if (const int rc = freexl_get_cell_value(x.h, r, c, &v); rc != FREEXL_OK) fail(Reason(rc));
                switch (v.type) {
                    case FREEXL_CELL_INT:
                        NumberFrame(out, r + 1, c + 1u, v.value.int_value);
                        break;
                    case FREEXL_CELL_DOUBLE:
                        NumberFrame(out, r + 1, c + 1u, v.value.double_value);
                        break;
                    case FREEXL_CELL_TEXT:
                    case FREEXL_CELL_SST_TEXT:
                    case FREEXL_CELL_DATE:
                    case FREEXL_CELL_DATETIME:
                    case FREEXL_CELL_TIME:
                        if (v.value.text_value && *v.value.text_value) {
                            const auto whole = long_texts.find(v.value.text_value);
                            TextFrame(out, "t ", std::to_string(r + 1) + ' ' + std::to_string(c + 1u),
                                      whole != long_texts.end() ? whole->second : v.value.text_value);
                        }
                        break;
                    default:
                        break;
                }
            }
        }
    }
}

// The reading itself, in the child: the workbook stream simplified first (xls_stream.hpp) where it
// can be, the file as it is otherwise or when freexl cannot read the simplified one either.
std::string ReadSimplified(const std::string& file) {
    std::string bytes;
    try {
        bytes = platform::ReadFile(file, kMaxFileBytes);
    } catch (const platform::Error& e) {
        Refuse(file, e.GetCause() == platform::Cause::Permission ? "no hay permiso de lectura" : e.Reason());
    }
    if (auto simple = SimplifyXls(bytes)) {
        std::error_code ec;
        const fs::path temp =
            fs::temp_directory_path(ec) / ("cauce-xls-" + std::to_string(platform::ProcessId()) + ".xls");
        try {
            platform::RemoveFile(temp);  // a leftover of a reader that died
            if (!ec && platform::CreateExclusive(temp, simple->bytes)) {
                std::ostringstream frames;
                try {
                    ReadSheets(temp, file, frames, simple->long_texts);
                    for (const std::string& what : simple->omitted) TextFrame(frames, "omitida", "", what);
                } catch (const Fault&) {
                    frames.setstate(std::ios::failbit);
                }
                platform::RemoveFile(temp);
                if (frames) return frames.str();
            }
        } catch (const platform::Error&) {
        }
    }
    std::ostringstream frames;
    ReadSheets(file, file, frames);
    return frames.str();
}

// Reads the child's frames back; false when they are not whole (the child died while writing).
class FrameReader {
  public:
    explicit FrameReader(std::string_view s) : s_(s) {}
    bool Done() const { return p_ >= s_.size(); }
    // The next line, without its end.
    bool Line(std::string_view& line) {
        const std::size_t end = s_.find('\n', p_);
        if (end == std::string_view::npos) return false;
        line = s_.substr(p_, end - p_);
        p_ = end + 1;
        return true;
    }
    bool Bytes(std::size_t n, std::string& text) {
        if (s_.size() - p_ < n + 1 || s_[p_ + n] != '\n') return false;
        text.assign(s_.substr(p_, n));
        p_ += n + 1;
        return true;
    }

  private:
    std::string_view s_;
    std::size_t p_ = 0;
};

std::vector<std::string_view> Words(std::string_view line) {
    std::vector<std::string_view> w;
    while (!line.empty()) {
        const std::size_t sp = line.find(' ');
        w.push_back(line.substr(0, sp));
        if (sp == std::string_view::npos) break;
        line.remove_prefix(sp + 1);
    }
    return w;
}

template <typename T>
bool Parse(std::string_view word, T& v) {
    const auto r = std::from_chars(word.data(), word.data() + word.size(), v);
    return r.ec == std::errc() && r.ptr == word.data() + word.size();
}

// The child's output as sheets; false when it is not whole. A refusal comes back as error.
bool ParseFrames(std::string_view output, std::vector<SheetValues>& sheets, std::vector<std::string>& omitted,
                 std::string& error) {
    FrameReader in(output);
    std::string_view line;
    if (!in.Line(line) || line != "cauce-xls 1") return false;
    while (in.Line(line)) {
        const auto w = Words(line);
        if (w.size() == 1 && w[0] == "fin") return in.Done();
        std::size_t n = 0;
        std::string text;
        unsigned row = 0, col = 0;
        if (w.size() == 2 && (w[0] == "hoja" || w[0] == "omitida" || w[0] == "error")) {
            if (!Parse(w[1], n) || !in.Bytes(n, text)) return false;
            if (w[0] == "hoja") sheets.push_back({text, {}});
            if (w[0] == "omitida") omitted.push_back(text);
            if (w[0] == "error") error = text;
        } else if (w.size() == 4 && (w[0] == "n" || w[0] == "t") && !sheets.empty() && Parse(w[1], row) &&
                   Parse(w[2], col) && row >= 1 && row <= 65536 && col >= 1 && col <= 256) {
            Cell cell;
            if (w[0] == "n") {
                double x = 0;
                if (!Parse(w[3], x)) return false;
                if (!std::isfinite(x)) continue;  // no box may ever show inf or nan
                cell = Cell::Num(x);
            } else {
                if (!Parse(w[3], n) || !in.Bytes(n, text)) return false;
                cell = Cell::Str(text);
            }
            sheets.back().cells.emplace(std::pair{static_cast<int>(row), static_cast<int>(col)}, cell);
        } else {
            return false;
        }
    }
    return false;
}

fs::path& ProgramSetting() {
    static fs::path program;
    return program;
}

// The cauce program to run as the reader.
fs::path ReaderProgram(const std::string& file) {
    if (const auto p = platform::EnvironmentVariable("CAUCE_XLS_READER"); p && !p->empty()) return *p;
    if (!ProgramSetting().empty()) return ProgramSetting();
    try {
        const fs::path self = platform::ExecutablePath();
        if (self.stem() == "cauce") return self;
        const fs::path beside = self.parent_path() / ("cauce" + self.extension().string());
        if (platform::Identify(beside).kind == platform::FileKind::Regular) return beside;
    } catch (const platform::Error&) {
    }
    Refuse(file, "no se encuentra el programa cauce, que lee los libros antiguos");
}

}  // namespace

void SetLegacyReaderProgram(const fs::path& program) {
    ProgramSetting() = program;
}

int RunLegacyReader(const std::string& file, std::ostream& out) {
    // The tests of a reader that dies set this.
    if (platform::EnvironmentVariable("CAUCE_TEST_XLS_READER") == "abort") std::abort();
    out << "cauce-xls 1\n";
    try {
        out << ReadSimplified(file);
    } catch (const Fault& f) {
        TextFrame(out, "error", "", f.what());
    }
    out << "fin\n";
    out.flush();
    return out ? 0 : 1;
}

LegacyBook ReadLegacyBook(const fs::path& path) {
    const std::string file = path.string();
    platform::ChildResult child;
    try {
        child = platform::RunChild({ReaderProgram(file).string(), kLegacyReaderCommand, file},
                                   std::chrono::duration_cast<std::chrono::milliseconds>(kReaderLimit));
    } catch (const platform::Error& e) {
        Refuse(file, "no se pudo poner en marcha su lectura: " + e.Reason());
    }
    if (child.timed_out) Refuse(file, "su lectura no termina (el archivo parece dañado)");
    std::vector<SheetValues> sheets;
    std::vector<std::string> omitted;
    std::string error;
    if (!child.Succeeded() || !ParseFrames(child.out, sheets, omitted, error))
        Refuse(file, "su contenido está dañado (el lector de libros antiguos no pudo con él)");
    if (!error.empty()) raise(FaultCode::FileDamaged, error);
    if (sheets.empty()) Refuse(file, "no tiene hojas que se puedan leer");
    return {NewWorkbookBytes(sheets, file), omitted};
}

std::string LegacyLosses(const std::vector<std::string>& omitted) {
    std::string s =
        "el nuevo libro lleva solo los valores de las celdas: las fórmulas quedan como sus valores (o "
        "vacías donde el libro antiguo no los da), y no conserva los formatos, los comentarios, las celdas "
        "combinadas, los nombres, las imágenes ni los gráficos";
    if (!omitted.empty()) {
        s += "; no se leyó ";
        for (std::size_t i = 0; i < omitted.size(); ++i) s += (i == 0 ? "" : ", ") + omitted[i];
    }
    return s;
}

}  // namespace cauce::workbook
