// The parts of the platform layer that are the same on every system; the system calls they need
// come from posix.cpp or windows.cpp (os.hpp).
#include <algorithm>
#include <thread>

#include "platform/os.hpp"

namespace cauce::platform {

namespace fs = std::filesystem;

void os::Throw(int code) {
    throw Error(CauseOf(code), code, Reason(code));
}

Cause os::CauseIn(std::span<const KnownCode> known, std::int64_t code) {
    for (const KnownCode& k : known)
        if (k.code == code) return k.cause;
    return Cause::Other;
}

const char* os::CommonReason(Cause cause) {
    // By Cause, in its order; Cause::Other has no words of its own.
    static constexpr const char* kReasons[] = {"no hay espacio en el disco",
                                               "no hay permiso de escritura",
                                               "el disco es de solo lectura",
                                               "la carpeta no existe",
                                               "la ruta no es una carpeta",
                                               "el archivo ya existe",
                                               "error de entrada y salida del disco",
                                               "el nombre es demasiado largo",
                                               nullptr};
    return kReasons[static_cast<int>(cause)];
}

std::string os::ReadUpTo(std::size_t limit,
                         const std::function<std::size_t(char* buf, std::size_t size)>& read_some) {
    std::string bytes;
    char buf[65536];
    while (bytes.size() <= limit) {
        const std::size_t n = read_some(buf, sizeof buf);
        if (n == 0) break;
        bytes.append(buf, std::min<std::size_t>(n, limit + 1 - bytes.size()));
    }
    return bytes;
}

// Tries every 5 ms until the deadline; the lock file stays open while the lock is held.
std::optional<FileLock> FileLock::Acquire(const fs::path& path, std::chrono::milliseconds timeout) {
    const std::intptr_t handle = os::OpenLockFile(path);
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        int error = 0;
        const os::LockTry got = os::TryLock(handle, error);
        if (got == os::LockTry::Locked) return FileLock(handle);
        if (got == os::LockTry::Failed || std::chrono::steady_clock::now() >= deadline) {
            os::UnlockAndClose(handle);
            if (got == os::LockTry::Busy) return std::nullopt;
            os::Throw(error);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

FileLock::FileLock(FileLock&& other) noexcept : handle_(other.handle_) {
    other.handle_ = -1;
}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    if (this != &other) {
        Release();
        handle_ = other.handle_;
        other.handle_ = -1;
    }
    return *this;
}

FileLock::~FileLock() {
    Release();
}

void FileLock::Release() noexcept {
    if (handle_ == -1) return;
    os::UnlockAndClose(handle_);
    handle_ = -1;
}

}  // namespace cauce::platform
