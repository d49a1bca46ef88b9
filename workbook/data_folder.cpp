#include "workbook/data_folder.hpp"

#include <algorithm>
#include <cctype>

#include "base/fault.hpp"
#include "platform/platform.hpp"
#include "workbook/bundled.hpp"
#include "workbook/save_file.hpp"

namespace cauce::workbook {

namespace fs = std::filesystem;

namespace {

std::string Lower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::replace(s.begin(), s.end(), '/', '\\');
    return s;
}

// The workbook stem a legacy fixed path stands for, "" for any other path. The bare "rios.xls" of
// Form5 counts only as the screen's own path: typed by the user it is a file of the working folder.
std::string LegacyStem(const std::string& path, bool screens_own) {
    const std::string p = Lower(path);
    if (p == "c:\\programas\\datos\\rios.xls" || (screens_own && p == "rios.xls")) return "Rios";
    if (p == "c:\\ormandi\\ormandi.xls") return "Ormandi";
    return "";
}

// A file of the folder whose name matches without case; empty when there is none.
fs::path FindNoCase(const fs::path& folder, const std::string& name) {
    std::error_code ec;
    const std::string want = Lower(name);
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
        if (Lower(it->path().filename().string()) == want && it->is_regular_file(ec)) return it->path();
    return {};
}

fs::path EnsureFolder() {
    const fs::path folder = DataFolder();
    std::error_code ec;
    fs::create_directories(folder, ec);
    if (ec || !fs::is_directory(folder))
        raise(FaultCode::FolderNotMade, "No se puede crear la carpeta de datos \"" + folder.string() +
                                            "\": " + SystemReason(ec.value()) + ".");
    return folder;
}

// Writes a bundled file under its name unless a file of that name appears meanwhile.
bool CopyNew(const fs::path& target, const BundledFile& f) {
    try {
        return platform::CreateExclusive(target,
                                         std::string_view(reinterpret_cast<const char*>(f.data), f.size));
    } catch (const platform::Error& e) {
        raise(FaultCode::FolderNotMade,
              "No se puede copiar el libro de ejemplo en \"" + target.string() + "\": " + e.Reason() + ".");
    }
}

}  // namespace

fs::path DataFolder() {
    if (const auto d = platform::EnvironmentVariable("CAUCE_DATOS"); d && !d->empty())
        return fs::absolute(*d);
    return platform::UserDataFolder();
}

std::vector<fs::path> InstallExamples() {
    const fs::path folder = EnsureFolder();
    std::vector<fs::path> copied;
    for (std::size_t i = 0; i < kBundledCount; ++i) {
        const BundledFile& f = kBundled[i];
        const std::string stem = fs::path(f.name).stem().string();
        // A user's own .xls of that name counts: the example must not hide it.
        if (!FindNoCase(folder, stem + ".xlsx").empty() || !FindNoCase(folder, stem + ".xls").empty())
            continue;
        if (CopyNew(folder / f.name, f)) copied.push_back(folder / f.name);
    }
    return copied;
}

std::string LegacyWorkbookPath(std::string_view screen) {
    if (screen == "Form1" || screen == "Form2" || screen == "Form4") return "C:\\Programas\\Datos\\Rios.xls";
    if (screen == "Form3") return "C:\\Ormandi\\Ormandi.xls";
    if (screen == "Form5") return "rios.xls";
    return "";
}

namespace {

fs::path Resolve(const std::string& path, bool screens_own) {
    const std::string stem = LegacyStem(path, screens_own);
    if (stem.empty()) return fs::absolute(path);
    const fs::path folder = EnsureFolder();
    for (int pass = 0; pass < 2; ++pass) {
        if (fs::path p = FindNoCase(folder, stem + ".xlsx"); !p.empty()) return p;
        if (fs::path p = FindNoCase(folder, stem + ".xls"); !p.empty()) return p;
        if (pass == 0) InstallExamples();
    }
    return folder / (stem + ".xlsx");  // no example of that name: "not found" names this file
}

}  // namespace

std::string DefaultWorkbook(std::string_view screen) {
    const std::string legacy = LegacyWorkbookPath(screen);
    return legacy.empty() ? "" : Resolve(legacy, true).string();
}

fs::path ResolveWorkbookPath(const std::string& path) {
    return Resolve(path, false);
}

}  // namespace cauce::workbook
