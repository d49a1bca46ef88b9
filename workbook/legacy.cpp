#include "workbook/legacy.hpp"

#include <fcntl.h>
#include <freexl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "hydraulics/fault.hpp"
#include "workbook/new_workbook.hpp"
#include "workbook/save_file.hpp"

namespace cauce::workbook {

namespace {

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
        default:
            return "su contenido está dañado (código " + std::to_string(code) + ")";
    }
}

struct Handle {
    const void* h = nullptr;
    ~Handle() {
        if (h) freexl_close(h);
    }
};

[[noreturn]] void Refuse(const std::string& file, const std::string& why) {
    raise("No se puede leer el libro antiguo \"" + file + "\": " + why + ". El archivo no se modificó.");
}

// The reading itself, in whatever process calls it.
std::string ReadLegacy(const std::string& file) {
    auto fail = [&](const std::string& why) { Refuse(file, why); };
    Handle x;
    if (const int rc = freexl_open(file.c_str(), &x.h); rc != FREEXL_OK) fail(Reason(rc));
    unsigned int value = 0;
    if (freexl_get_info(x.h, FREEXL_BIFF_PASSWORD, &value) == FREEXL_OK && value == FREEXL_BIFF_OBFUSCATED)
        fail("está protegido con contraseña");
    unsigned int count = 0;
    if (const int rc = freexl_get_info(x.h, FREEXL_BIFF_SHEET_COUNT, &count); rc != FREEXL_OK)
        fail(Reason(rc));
    if (count == 0) fail("no tiene hojas");

    std::vector<SheetValues> sheets;
    for (unsigned short i = 0; i < count; ++i) {
        const char* name = nullptr;
        if (const int rc = freexl_get_worksheet_name(x.h, i, &name); rc != FREEXL_OK || !name)
            fail(Reason(rc));
        if (const int rc = freexl_select_active_worksheet(x.h, i); rc != FREEXL_OK) fail(Reason(rc));
        unsigned int rows = 0;
        unsigned short cols = 0;
        if (const int rc = freexl_worksheet_dimensions(x.h, &rows, &cols); rc != FREEXL_OK) fail(Reason(rc));
        if (rows > 65536 || cols > 256)
            fail("la hoja \"" + std::string(name) + "\" excede la cuadrícula del formato");
        SheetValues s{name, {}};
        for (unsigned int r = 0; r < rows; ++r) {
            for (unsigned short c = 0; c < cols; ++c) {
                FreeXL_CellValue v;
                if (const int rc = freexl_get_cell_value(x.h, r, c, &v); rc != FREEXL_OK) fail(Reason(rc));
                Cell cell;
                switch (v.type) {
                    case FREEXL_CELL_INT:
                        cell = Cell::Num(v.value.int_value);
                        break;
                    case FREEXL_CELL_DOUBLE:
                        cell = Cell::Num(v.value.double_value);
                        break;
                    case FREEXL_CELL_TEXT:
                    case FREEXL_CELL_SST_TEXT:
                    case FREEXL_CELL_DATE:
                    case FREEXL_CELL_DATETIME:
                    case FREEXL_CELL_TIME:
                        if (v.value.text_value && *v.value.text_value) cell = Cell::Str(v.value.text_value);
                        break;
                    default:
                        break;
                }
                if (cell.kind != CellKind::Empty)
                    s.cells.emplace(std::pair{static_cast<int>(r) + 1, c + 1}, cell);
            }
        }
        sheets.push_back(std::move(s));
    }
    return NewWorkbookBytes(sheets, file);
}

bool WriteAll(int fd, const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

}  // namespace

// freexl reads past its own buffers on some damaged files (the sanitizers catch it reading the stack
// through iconv), and a crash there would take the program and the user's other work with it. So the
// file is read in a child process that hands back the package, or the message, through a pipe; a
// child that dies, or takes longer than any real workbook could, is a damaged file.
std::string LegacyPackage(const std::filesystem::path& path) {
    const std::string file = path.string();
    constexpr unsigned kSeconds = 60;
    int fds[2];
    if (::pipe(fds) != 0) Refuse(file, "no se pudo preparar su lectura: " + SystemReason(errno));
    const pid_t pid = ::fork();
    if (pid < 0) {
        const int err = errno;
        ::close(fds[0]);
        ::close(fds[1]);
        Refuse(file, "no se pudo preparar su lectura: " + SystemReason(err));
    }
    if (pid == 0) {
        ::close(fds[0]);
        ::signal(SIGALRM, SIG_DFL);
        ::alarm(kSeconds);
        // Nobody reads what the child might print when freexl fails.
        if (const int null = ::open("/dev/null", O_WRONLY); null >= 0) ::dup2(null, STDERR_FILENO);
        std::string out;
        try {
            out = "K" + ReadLegacy(file);
        } catch (const Fault& f) {
            out = std::string("F") + f.what();
        } catch (...) {
            out = "F";
        }
        _exit(WriteAll(fds[1], out) ? 0 : 1);
    }
    ::close(fds[1]);
    std::string got;
    char buf[65536];
    for (;;) {
        const ssize_t n = ::read(fds[0], buf, sizeof buf);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        got.append(buf, static_cast<std::size_t>(n));
    }
    ::close(fds[0]);
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    const bool finished = WIFEXITED(status) && WEXITSTATUS(status) == 0 && !got.empty();
    if (finished && got[0] == 'K') return got.substr(1);
    if (finished && got.size() > 1) raise(got.substr(1));
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM)
        Refuse(file, "su lectura no termina (el archivo parece dañado)");
    Refuse(file, "su contenido está dañado (el lector de libros antiguos no pudo con él)");
}

}  // namespace cauce::workbook
