#include "workbook/save_file.hpp"

#include "base/fault.hpp"
#include "platform/platform.hpp"

namespace cauce::workbook {

namespace fs = std::filesystem;

namespace {

std::function<void(const fs::path&)>& Hook() {
    static std::function<void(const fs::path&)> hook;
    return hook;
}

}  // namespace

void SetBeforeRenameHook(std::function<void(const fs::path&)> hook) {
    Hook() = std::move(hook);
}

std::string SystemReason(int err) {
    return platform::Reason(err);
}

void ReplaceFile(const fs::path& target, const std::string& bytes) {
    // Through a symbolic link the file it points to is replaced, and the link stays.
    std::error_code ec;
    fs::path path = fs::absolute(target, ec);
    if (fs::is_symlink(path, ec)) path = fs::canonical(path, ec);
    const fs::path folder = path.parent_path();
    auto fail = [&](const std::string& why) {
        raise(FaultCode::FileNotSaved, "No se pudo guardar el libro \"" + target.string() + "\": " + why +
                                           ". El libro no se modificó.");
    };
    try {
        if (platform::Identify(folder).kind != platform::FileKind::Folder)
            fail("la carpeta \"" + folder.string() + "\" no existe");
        if (!platform::MarkedWritable(folder))
            fail("la carpeta \"" + folder.string() + "\" es de solo lectura");
        if (const auto id = platform::Identify(path); id.Exists()) {
            if (id.kind != platform::FileKind::Regular) fail("no es un archivo común");
            if (!platform::MarkedWritable(path)) fail("el archivo es de solo lectura");
        }
        platform::ReplaceFile(path, bytes, Hook());
    } catch (const platform::Error& e) {
        fail(e.Reason());
    }
}

}  // namespace cauce::workbook
