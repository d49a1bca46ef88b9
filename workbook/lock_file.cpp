#include "workbook/lock_file.hpp"

#include <cstdio>
#include <system_error>
#include <thread>
#include <vector>

#include "hydraulics/fault.hpp"

namespace cauce::workbook {

namespace fs = std::filesystem;

fs::path EditLockPath(const fs::path& workbook) {
    return workbook.parent_path() / (".~lock." + workbook.filename().string() + "#");
}

std::optional<LockOwner> ParseLock(std::string_view text) {
    std::vector<std::string> fields(1);
    bool ended = false;
    for (std::size_t i = 0; i < text.size() && !ended; ++i) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size()) {
            fields.back() += text[++i];
        } else if (c == ',') {
            fields.emplace_back();
        } else if (c == ';') {
            ended = true;
        } else if (c == '\n' || c == '\r') {
            break;
        } else {
            fields.back() += c;
        }
    }
    if (!ended || fields.size() < 5) return std::nullopt;
    return LockOwner{fields[0], fields[1], fields[2], fields[3], fields[4]};
}

std::string FormatLock(const LockOwner& o) {
    auto esc = [](const std::string& s) {
        std::string out;
        for (const char c : s) {
            if (c == ',' || c == ';' || c == '\\') out += '\\';
            if (c != '\n' && c != '\r') out += c;
        }
        return out;
    };
    return esc(o.name) + "," + esc(o.user) + "," + esc(o.host) + "," + esc(o.date) + "," + esc(o.profile) +
           ";";
}

std::string Describe(const LockOwner& o) {
    const std::string who = !o.name.empty() ? o.name : !o.user.empty() ? o.user : "otro usuario";
    std::string detail;
    if (!o.name.empty() && !o.user.empty()) detail = o.user;
    if (!o.host.empty()) detail += (detail.empty() ? "en el equipo " : " en el equipo ") + o.host;
    if (!o.date.empty()) detail += (detail.empty() ? "desde el " : ", desde el ") + o.date;
    return detail.empty() ? who : who + " (" + detail + ")";
}

namespace {

// A save takes well under a second; a save lock older than this was left by a Cauce that ended.
constexpr auto kStale = std::chrono::seconds(60);

bool Stale(const fs::path& p) {
    std::error_code ec;
    const auto when = fs::last_write_time(p, ec);
    return !ec && fs::file_time_type::clock::now() - when > kStale;
}

}  // namespace

SaveLock::SaveLock(const fs::path& workbook, std::chrono::milliseconds wait)
    : path_(workbook.parent_path() / ("." + workbook.filename().string() + ".cauce-guardando")) {
    const auto until = std::chrono::steady_clock::now() + wait;
    for (auto pause = std::chrono::milliseconds(1);;
         pause = std::min(pause * 2, std::chrono::milliseconds(50))) {
        // "x": created only when it is not there, in one step.
        if (std::FILE* f = std::fopen(path_.c_str(), "wx")) {
            std::fclose(f);
            held_ = true;
            return;
        }
        std::error_code ec;
        if (!fs::exists(path_, ec)) {
            if (!fs::is_directory(workbook.parent_path(), ec))
                raise("No se pudo guardar el libro \"" + workbook.string() + "\": la carpeta \"" +
                      workbook.parent_path().string() + "\" no existe. El libro no se modificó.");
            // The folder refuses new files: the save itself says why.
            return;
        }
        if (Stale(path_)) {
            fs::remove(path_, ec);
            continue;
        }
        if (std::chrono::steady_clock::now() >= until)
            raise("No se pudo guardar el libro \"" + workbook.string() +
                  "\": otro Cauce lo está guardando desde hace demasiado tiempo. El libro no se modificó; "
                  "sus cambios quedan pendientes.");
        std::this_thread::sleep_for(pause);
    }
}

SaveLock::~SaveLock() {
    if (!held_) return;
    std::error_code ec;
    fs::remove(path_, ec);
}

}  // namespace cauce::workbook
