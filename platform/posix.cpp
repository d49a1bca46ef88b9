// The platform layer on Linux and macOS.
#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "platform/os.hpp"
#include "platform/platform.hpp"

extern char** environ;

namespace cauce::platform {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

[[noreturn]] void Throw(int err) {
    os::Throw(err);
}

// A descriptor closed when it goes out of scope.
class Fd {
  public:
    explicit Fd(int fd = -1) : fd_(fd) {}
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    ~Fd() { Close(); }
    int get() const { return fd_; }
    int Close() {
        const int rc = fd_ >= 0 ? ::close(fd_) : 0;
        fd_ = -1;
        return rc;
    }

  private:
    int fd_;
};

void WriteAll(int fd, std::string_view bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0) {
            if (errno == EINTR) continue;
            Throw(errno);
        }
        done += static_cast<std::size_t>(n);
    }
}

// The rename of a file in a folder reaches the disk with the folder.
void SyncFolder(const fs::path& folder) {
    const int dfd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dfd >= 0) {
        ::fsync(dfd);
        ::close(dfd);
    }
}

std::int64_t MtimeNs(const struct stat& st) {
#if defined(__APPLE__)
    return static_cast<std::int64_t>(st.st_mtimespec.tv_sec) * 1000000000LL + st.st_mtimespec.tv_nsec;
#else
    return static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec;
#endif
}

}  // namespace

Cause CauseOf(int code) {
    static constexpr os::KnownCode kCauses[] = {
        {ENOSPC, Cause::NoSpace},          {EDQUOT, Cause::NoSpace},
        {EFBIG, Cause::NoSpace},           {EACCES, Cause::Permission},
        {EPERM, Cause::Permission},        {EROFS, Cause::ReadOnlyDisk},
        {ENOENT, Cause::NotFound},         {ENOTDIR, Cause::NotFolder},
        {EEXIST, Cause::Exists},           {EIO, Cause::Io},
        {ENAMETOOLONG, Cause::NameTooLong}};
    return os::CauseIn(kCauses, code);
}

std::string Reason(int code) {
    if (const char* reason = os::CommonReason(CauseOf(code))) return reason;
    return "error del sistema " + std::to_string(code) + " (" + std::strerror(code) + ")";
}

FileIdentity Identify(const fs::path& path) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return {};
        Throw(errno);
    }
    FileIdentity id;
    id.kind = S_ISREG(st.st_mode)   ? FileKind::Regular
              : S_ISDIR(st.st_mode) ? FileKind::Folder
                                    : FileKind::Other;
    id.device = static_cast<std::uint64_t>(st.st_dev);
    id.inode = static_cast<std::uint64_t>(st.st_ino);
    id.size = static_cast<std::int64_t>(st.st_size);
    id.mtime_ns = MtimeNs(st);
    return id;
}

bool MarkedWritable(const fs::path& path) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) return false;
    return (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) != 0 && ::access(path.c_str(), W_OK) == 0;
}

std::string ReadFile(const fs::path& path, std::size_t limit) {
    Fd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) Throw(errno);
    return os::ReadUpTo(limit, [&fd](char* buf, std::size_t size) {
        for (;;) {
            const ssize_t n = ::read(fd.get(), buf, size);
            if (n >= 0) return static_cast<std::size_t>(n);
            if (errno != EINTR) Throw(errno);
        }
    });
}

void ReplaceFile(const fs::path& target, std::string_view bytes,
                 const std::function<void(const fs::path&)>& before_rename) {
    const fs::path folder = target.parent_path();
    mode_t mode = 0644;
    struct stat st {};
    if (::stat(target.c_str(), &st) == 0) mode = st.st_mode & 07777;

    std::string name = ".";
    name += target.filename().string();
    name += ".cauce-XXXXXX";
    std::string temp = (folder / name).string();
    Fd fd(::mkostemp(temp.data(), O_CLOEXEC));
    if (fd.get() < 0) Throw(errno);
    try {
        if (::fchmod(fd.get(), mode) != 0) Throw(errno);
        WriteAll(fd.get(), bytes);
        if (::fsync(fd.get()) != 0) Throw(errno);
        if (fd.Close() != 0) Throw(errno);
        if (before_rename) before_rename(temp);
        if (::rename(temp.c_str(), target.c_str()) != 0) Throw(errno);
    } catch (...) {
        fd.Close();
        ::unlink(temp.c_str());
        throw;
    }
    SyncFolder(folder);
}

void MoveOver(const fs::path& from, const fs::path& target) {
    {
        Fd fd(::open(from.c_str(), O_RDONLY | O_CLOEXEC));
        if (fd.get() < 0) Throw(errno);
        if (::fsync(fd.get()) != 0) Throw(errno);
    }
    if (::rename(from.c_str(), target.c_str()) != 0) Throw(errno);
    SyncFolder(target.parent_path());
}

bool CreateExclusive(const fs::path& path, std::string_view bytes) {
    Fd fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (fd.get() < 0) {
        if (errno == EEXIST) return false;
        Throw(errno);
    }
    try {
        WriteAll(fd.get(), bytes);
        if (::fsync(fd.get()) != 0) Throw(errno);
        if (fd.Close() != 0) Throw(errno);
    } catch (...) {
        fd.Close();
        ::unlink(path.c_str());  // ours, and incomplete
        throw;
    }
    return true;
}

bool RemoveFile(const fs::path& path) {
    if (::unlink(path.c_str()) == 0) return true;
    if (errno == ENOENT) return false;
    Throw(errno);
}

std::intptr_t os::OpenLockFile(const fs::path& path) {
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) Throw(errno);
    return fd;
}

os::LockTry os::TryLock(std::intptr_t handle, int& error) {
    if (::flock(static_cast<int>(handle), LOCK_EX | LOCK_NB) == 0) return LockTry::Locked;
    error = errno;
    return error == EWOULDBLOCK || error == EINTR ? LockTry::Busy : LockTry::Failed;
}

void os::UnlockAndClose(std::intptr_t handle) noexcept {
    const int fd = static_cast<int>(handle);
    ::flock(fd, LOCK_UN);
    ::close(fd);
}

fs::path UserDataFolder() {
    const auto home = EnvironmentVariable("HOME");
#if defined(__APPLE__)
    if (home && !home->empty()) return fs::path(*home) / "Library" / "Application Support" / "Cauce";
#else
    if (const auto x = EnvironmentVariable("XDG_DATA_HOME"); x && !x->empty()) return fs::path(*x) / "cauce";
    if (home && !home->empty()) return fs::path(*home) / ".local" / "share" / "cauce";
#endif
    return fs::absolute("cauce-datos");
}

std::string UserLogin() {
    if (const passwd* pw = ::getpwuid(::geteuid()); pw && pw->pw_name) return pw->pw_name;
    if (const auto u = EnvironmentVariable("USER")) return *u;
    return "";
}

std::string UserFullName() {
    const passwd* pw = ::getpwuid(::geteuid());
    if (!pw || !pw->pw_gecos) return "";
    // The comment field holds the full name first, then office and telephone after commas.
    std::string gecos = pw->pw_gecos;
    return gecos.substr(0, gecos.find(','));
}

std::string HostName() {
    char name[HOST_NAME_MAX + 1] = {};
    if (::gethostname(name, sizeof name - 1) != 0) return "";
    return name;
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const char* v = std::getenv(name.c_str());
    if (!v) return std::nullopt;
    return std::string(v);
}

bool StandardErrorIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

void BinaryStandardOutput() {}

std::int64_t ProcessId() {
    return static_cast<std::int64_t>(::getpid());
}

bool ProcessAlive(std::int64_t pid) {
    if (pid <= 0 || pid > INT_MAX) return false;
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

fs::path ExecutablePath() {
#if defined(__APPLE__)
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string buf(size, '\0');
    if (_NSGetExecutablePath(buf.data(), &size) != 0) Throw(ENOENT);
    return fs::canonical(buf.c_str());
#else
    std::error_code ec;
    fs::path p = fs::read_symlink("/proc/self/exe", ec);
    if (ec) Throw(ec.value());
    return p;
#endif
}

ChildResult RunChild(const std::vector<std::string>& argv, std::chrono::milliseconds limit) {
    if (argv.empty()) Throw(EINVAL);
    // Both ends close on exec, so that no other child started meanwhile holds the pipe open; the
    // child's own standard output is a copy, which does not.
    int fds[2];
#if defined(__linux__)
    if (::pipe2(fds, O_CLOEXEC) != 0) Throw(errno);
#else
    if (::pipe(fds) != 0) Throw(errno);
    ::fcntl(fds[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(fds[1], F_SETFD, FD_CLOEXEC);
#endif
    Fd read_end(fds[0]);
    Fd write_end(fds[1]);

    // posix_spawn rather than fork: the caller may be a Qt application with threads.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, write_end.get(), STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = -1;
    const int rc = ::posix_spawn(&pid, argv[0].c_str(), &actions, nullptr, args.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) Throw(rc);
    write_end.Close();

    ChildResult result;
    const auto deadline = Clock::now() + limit;
    char buf[65536];
    bool open = true, reaped = false;
    int status = 0;
    // Reads whatever is there within wait_ms; false once the pipe is closed.
    auto read_some = [&](int wait_ms) {
        pollfd p{read_end.get(), POLLIN, 0};
        const int ready = ::poll(&p, 1, wait_ms);
        if (ready <= 0) return ready == 0 || errno == EINTR;
        const ssize_t n = ::read(read_end.get(), buf, sizeof buf);
        if (n < 0) return errno == EINTR;
        if (n == 0) return false;
        result.out.append(buf, static_cast<std::size_t>(n));
        return true;
    };
    for (;;) {
        if (open) {
            open = read_some(20);
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        const pid_t w = ::waitpid(pid, &status, WNOHANG);
        if (w == pid) {
            reaped = true;
            // What it wrote before it ended; a process it left behind may hold the pipe open.
            while (open) {
                pollfd p{read_end.get(), POLLIN, 0};
                if (::poll(&p, 1, 0) <= 0) break;
                open = read_some(0);
            }
            break;
        }
        if (w < 0 && errno != EINTR) Throw(errno);
        if (Clock::now() >= deadline) {
            result.timed_out = true;
            break;
        }
    }
    if (!reaped) {
        ::kill(pid, SIGKILL);
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    if (result.timed_out) {
        result.killed = true;
    } else if (WIFEXITED(status)) {
        result.exit_code = WEXITSTATUS(status);
    } else {
        result.killed = true;
    }
    return result;
}

}  // namespace cauce::platform
