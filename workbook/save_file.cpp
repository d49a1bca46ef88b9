#include "workbook/save_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "hydraulics/fault.hpp"

namespace cauce::workbook {

namespace fs = std::filesystem;

namespace {

std::function<void(const fs::path&)>& Hook() {
    static std::function<void(const fs::path&)> hook;
    return hook;
}

// Write permission as the file's marks say: even for the administrator, who may write anywhere, a
// file or folder marked read-only is respected.
bool MarkedWritable(const struct stat& st, const fs::path& p) {
    return (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0 && ::access(p.c_str(), W_OK) == 0;
}

}  // namespace

void SetBeforeRenameHook(std::function<void(const fs::path&)> hook) {
    Hook() = std::move(hook);
}

std::string SystemReason(int err) {
    switch (err) {
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return "no hay espacio en el disco";
        case EACCES:
        case EPERM:
            return "no hay permiso de escritura";
        case EROFS:
            return "el disco es de solo lectura";
        case ENOENT:
            return "la carpeta no existe";
        case ENOTDIR:
            return "la ruta no es una carpeta";
        case EIO:
            return "error de entrada y salida del disco";
        case ENAMETOOLONG:
            return "el nombre es demasiado largo";
        default:
            return std::string("error del sistema ") + std::to_string(err) + " (" + std::strerror(err) + ")";
    }
}

void ReplaceFile(const fs::path& target, const std::string& bytes) {
    // Through a symbolic link the file it points to is replaced, and the link stays.
    std::error_code ec;
    fs::path path = fs::absolute(target, ec);
    if (fs::is_symlink(path, ec)) path = fs::canonical(path, ec);
    const fs::path folder = path.parent_path();
    auto fail = [&](const std::string& why) {
        raise("No se pudo guardar el libro \"" + target.string() + "\": " + why +
              ". El libro no se modificó.");
    };

    struct stat st {};
    if (::stat(folder.c_str(), &st) != 0) fail("la carpeta \"" + folder.string() + "\" no existe");
    if (!MarkedWritable(st, folder)) fail("la carpeta \"" + folder.string() + "\" es de solo lectura");
    mode_t mode = 0644;
    if (::stat(path.c_str(), &st) == 0) {
        if (!S_ISREG(st.st_mode)) fail("no es un archivo común");
        if (!MarkedWritable(st, path)) fail("el archivo es de solo lectura");
        mode = st.st_mode & 07777;
    }

    std::string temp_name = ".";
    temp_name += path.filename().string();
    temp_name += ".cauce-XXXXXX";
    std::string temp = (folder / temp_name).string();
    const int fd = ::mkstemp(temp.data());
    if (fd < 0) fail(SystemReason(errno));
    auto abandon = [&](int err) {
        ::close(fd);
        ::unlink(temp.c_str());
        fail(SystemReason(err));
    };
    if (::fchmod(fd, mode) != 0) abandon(errno);
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0) {
            if (errno == EINTR) continue;
            abandon(errno);
        }
        done += static_cast<std::size_t>(n);
    }
    if (::fsync(fd) != 0) abandon(errno);
    if (::close(fd) != 0) {
        const int err = errno;
        ::unlink(temp.c_str());
        fail(SystemReason(err));
    }
    if (Hook()) {
        try {
            Hook()(temp);
        } catch (...) {
            ::unlink(temp.c_str());
            throw;
        }
    }
    if (::rename(temp.c_str(), path.c_str()) != 0) {
        const int err = errno;
        ::unlink(temp.c_str());
        fail(SystemReason(err));
    }
    // The rename itself reaches the disk with the folder.
    const int dfd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (dfd >= 0) {
        ::fsync(dfd);
        ::close(dfd);
    }
}

}  // namespace cauce::workbook
