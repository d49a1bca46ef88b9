#include "workbook/lock_file.hpp"

#include <cstdio>
#include <ctime>
#include <system_error>
#include <vector>

#include "base/fault.hpp"
#include "workbook/data_folder.hpp"

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

// The profile field of Cauce's locks: its data folder and the process.
constexpr std::string_view kProcess = "/cauce-proceso-";

// The process of a lock that Cauce wrote; nothing for a lock of another program.
std::optional<std::int64_t> CauceProcess(const LockOwner& o) {
    const auto at = o.profile.rfind(kProcess);
    if (o.profile.rfind("file://", 0) != 0 || at == std::string::npos) return std::nullopt;
    const std::string digits = o.profile.substr(at + kProcess.size());
    if (digits.empty() || digits.size() > 18 || digits.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    return std::stoll(digits);
}

std::string Now() {
    const std::time_t t = std::time(nullptr);
    char text[32] = "";
    if (const std::tm* tm = std::localtime(&t)) std::strftime(text, sizeof text, "%d.%m.%Y %H:%M", tm);
    return text;
}

}  // namespace

LockOwner EditLock::Own() {
    LockOwner o;
    o.name = platform::UserFullName();
    o.user = platform::UserLogin();
    o.host = platform::HostName();
    o.date = Now();
    std::string folder = DataFolder().generic_string();
    if (folder.empty() || folder[0] != '/') folder = "/" + folder;  // C:/... on Windows
    o.profile = "file://" + folder + std::string(kProcess) + std::to_string(platform::ProcessId());
    return o;
}

EditLock::EditLock(const fs::path& workbook)
    : workbook_(workbook), path_(EditLockPath(workbook)), own_(Own()) {
    Take();
}

void EditLock::Take() {
    holder_.clear();
    for (int attempt = 0; attempt < 5; ++attempt) {
        try {
            if (platform::CreateExclusive(path_, FormatLock(own_))) {
                owned_ = true;
                return;
            }
            const auto other = ParseLock(platform::ReadFile(path_, 4096));
            if (!other) {
                // Not a lock at all (empty: a program that ended while writing it): nobody's.
                platform::RemoveFile(path_);
                continue;
            }
            if (other->profile == own_.profile) {
                owned_ = true;
                return;
            }
            const auto pid = CauceProcess(*other);
            if (pid && other->host == own_.host && other->user == own_.user) {
                if (platform::ProcessAlive(*pid)) return;  // another Cauce of this user: both save, merging
                platform::RemoveFile(path_);               // left by a Cauce that ended abruptly
                continue;
            }
            holder_ = "El libro \"" + workbook_.string() + "\" está abierto para edición por " +
                      Describe(*other) + ": Cauce lo abre solo para lectura y no guardará cambios en él.";
            return;
        } catch (const platform::Error&) {
            // A folder that does not let the lock be written or read: a save there says why.
            return;
        }
    }
}

bool EditLock::Retake() {
    if (owned_) return true;
    Take();
    return holder_.empty();
}

EditLock::~EditLock() {
    if (!owned_) return;
    try {
        const auto now = ParseLock(platform::ReadFile(path_, 4096));
        if (now && now->profile == own_.profile) platform::RemoveFile(path_);
    } catch (const platform::Error&) {
    }
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
        raise(
            FaultCode::WorkbookLocked,
            "No se pudo guardar el libro \"" + workbook.string() +
                "\": otro Cauce lo está guardando desde hace demasiado tiempo. El libro no se modificó; sus "
                "cambios quedan pendientes.");
}

}  // namespace cauce::workbook
