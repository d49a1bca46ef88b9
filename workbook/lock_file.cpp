#include "workbook/lock_file.hpp"

#include <cstdio>
#include <system_error>
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

SaveLock::SaveLock(const fs::path& workbook, std::chrono::milliseconds wait) {
    std::error_code ec;
    fs::path key = fs::weakly_canonical(workbook, ec);
    if (ec) key = fs::absolute(workbook);
    std::uint64_t hash = 14695981039346656037ull;  // FNV-1a of the path
    for (const unsigned char c : key.string()) hash = (hash ^ c) * 1099511628211ull;
    char name[40];
    std::snprintf(name, sizeof name, "cauce-guardar-%016llx.lock", static_cast<unsigned long long>(hash));
    const fs::path folder = fs::temp_directory_path(ec);
    if (ec) return;
    try {
        lock_ = platform::FileLock::Acquire(folder / name, wait);
    } catch (const platform::Error&) {
        return;  // no lock to be had: the check of the file's identity still guards the save
    }
    if (!lock_)
        raise("No se pudo guardar el libro \"" + workbook.string() +
              "\": otro Cauce lo está guardando desde hace demasiado tiempo. El libro no se modificó; sus "
              "cambios quedan pendientes.");
}

}  // namespace cauce::workbook
