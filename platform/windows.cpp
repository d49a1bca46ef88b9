// The platform layer on Windows: wide paths and the Win32 calls.
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <fcntl.h>
#include <io.h>
#include <lmcons.h>
#include <shlobj.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <random>
#include <thread>

#include "platform/os.hpp"
#include "platform/platform.hpp"

namespace cauce::platform {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

[[noreturn]] void Throw(DWORD err) {
    os::Throw(static_cast<int>(err));
}

[[noreturn]] void ThrowLast() {
    Throw(::GetLastError());
}

std::string Utf8(const std::wstring& w) {
    if (w.empty()) return "";
    const int n =
        ::WideCharToMultiByte(CP_UTF8, 0, w.data(), static_cast<int>(w.size()), nullptr, 0, nullptr, nullptr);
    std::string s(static_cast<std::size_t>(n), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, w.data(), static_cast<int>(w.size()), s.data(), n, nullptr, nullptr);
    return s;
}

std::wstring Wide(const std::string& s) {
    if (s.empty()) return L"";
    const int n = ::MultiByteToWideChar(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), nullptr, 0);
    std::wstring w(static_cast<std::size_t>(n), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), w.data(), n);
    return w;
}

class Handle {
  public:
    explicit Handle(HANDLE h = INVALID_HANDLE_VALUE) : h_(h) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { Close(); }
    HANDLE get() const { return h_; }
    bool valid() const { return h_ != INVALID_HANDLE_VALUE && h_ != nullptr; }
    bool Close() {
        const bool ok = valid() ? ::CloseHandle(h_) != 0 : true;
        h_ = INVALID_HANDLE_VALUE;
        return ok;
    }

  private:
    HANDLE h_;
};

void WriteAll(HANDLE h, std::string_view bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - done, 1u << 30));
        DWORD written = 0;
        if (!::WriteFile(h, bytes.data() + done, chunk, &written, nullptr)) ThrowLast();
        done += written;
    }
}

// Windows keeps times in 100 ns units since 1601.
std::int64_t Ns(const FILETIME& t) {
    const std::int64_t ticks = (static_cast<std::int64_t>(t.dwHighDateTime) << 32) | t.dwLowDateTime;
    return ticks * 100;
}

// Quotes one argument the way the C run time splits a command line back into argv.
std::wstring QuoteArgument(const std::wstring& a) {
    if (!a.empty() && a.find_first_of(L" \t\n\v\"") == std::wstring::npos) return a;
    std::wstring q = L"\"";
    for (std::size_t i = 0;; ++i) {
        std::size_t backslashes = 0;
        while (i < a.size() && a[i] == L'\\') {
            ++i;
            ++backslashes;
        }
        if (i == a.size()) {
            q.append(backslashes * 2, L'\\');
            break;
        }
        if (a[i] == L'"') {
            q.append(backslashes * 2 + 1, L'\\');
        } else {
            q.append(backslashes, L'\\');
        }
        q.push_back(a[i]);
    }
    q.push_back(L'"');
    return q;
}

}  // namespace

Cause CauseOf(int code) {
    static constexpr os::KnownCode kCauses[] = {{ERROR_DISK_FULL, Cause::NoSpace},
                                                {ERROR_HANDLE_DISK_FULL, Cause::NoSpace},
                                                {ERROR_FILE_TOO_LARGE, Cause::NoSpace},
                                                {ERROR_ACCESS_DENIED, Cause::Permission},
                                                {ERROR_SHARING_VIOLATION, Cause::Permission},
                                                {ERROR_LOCK_VIOLATION, Cause::Permission},
                                                {ERROR_WRITE_PROTECT, Cause::ReadOnlyDisk},
                                                {ERROR_FILE_NOT_FOUND, Cause::NotFound},
                                                {ERROR_PATH_NOT_FOUND, Cause::NotFound},
                                                {ERROR_DIRECTORY, Cause::NotFolder},
                                                {ERROR_FILE_EXISTS, Cause::Exists},
                                                {ERROR_ALREADY_EXISTS, Cause::Exists},
                                                {ERROR_CRC, Cause::Io},
                                                {ERROR_READ_FAULT, Cause::Io},
                                                {ERROR_WRITE_FAULT, Cause::Io},
                                                {ERROR_FILENAME_EXCED_RANGE, Cause::NameTooLong}};
    return os::CauseIn(kCauses, static_cast<DWORD>(code));
}

std::string Reason(int code) {
    const Cause cause = CauseOf(code);
    if (cause == Cause::Permission && static_cast<DWORD>(code) != ERROR_ACCESS_DENIED)
        return "otro programa tiene el archivo abierto";
    if (const char* reason = os::CommonReason(cause)) return reason;
    return "error del sistema " + std::to_string(code);
}

FileIdentity Identify(const fs::path& path) {
    Handle h(::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                           FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!h.valid()) {
        const DWORD err = ::GetLastError();
        if (err == ERROR_FILE_NOT_FOUND || err == ERROR_PATH_NOT_FOUND || err == ERROR_INVALID_NAME)
            return {};
        Throw(err);
    }
    BY_HANDLE_FILE_INFORMATION info{};
    if (!::GetFileInformationByHandle(h.get(), &info)) ThrowLast();
    FileIdentity id;
    id.kind = (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? FileKind::Folder
              : (info.dwFileAttributes & FILE_ATTRIBUTE_DEVICE)  ? FileKind::Other
                                                                 : FileKind::Regular;
    id.device = info.dwVolumeSerialNumber;
    id.inode = (static_cast<std::uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    id.size =
        static_cast<std::int64_t>((static_cast<std::uint64_t>(info.nFileSizeHigh) << 32) | info.nFileSizeLow);
    id.mtime_ns = Ns(info.ftLastWriteTime);
    return id;
}

bool MarkedWritable(const fs::path& path) {
    const DWORD a = ::GetFileAttributesW(path.c_str());
    if (a == INVALID_FILE_ATTRIBUTES) return false;
    // The read-only mark of a folder only tells Explorer to look for a desktop.ini in it.
    return (a & FILE_ATTRIBUTE_DIRECTORY) || !(a & FILE_ATTRIBUTE_READONLY);
}

std::string ReadFile(const fs::path& path, std::size_t limit) {
    Handle h(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                           nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!h.valid()) ThrowLast();
    return os::ReadUpTo(limit, [&h](char* buf, std::size_t size) {
        DWORD n = 0;
        if (!::ReadFile(h.get(), buf, static_cast<DWORD>(size), &n, nullptr)) ThrowLast();
        return static_cast<std::size_t>(n);
    });
}

void ReplaceFile(const fs::path& target, std::string_view bytes,
                 const std::function<void(const fs::path&)>& before_rename) {
    const fs::path folder = target.parent_path();
    std::random_device rd;
    fs::path temp;
    HANDLE raw = INVALID_HANDLE_VALUE;
    for (int attempt = 0; attempt < 100 && raw == INVALID_HANDLE_VALUE; ++attempt) {
        temp = folder / (L"." + target.filename().wstring() + L".cauce-" + std::to_wstring(rd() % 1000000u));
        raw = ::CreateFileW(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                            nullptr);
        if (raw == INVALID_HANDLE_VALUE && ::GetLastError() != ERROR_FILE_EXISTS) ThrowLast();
    }
    if (raw == INVALID_HANDLE_VALUE) Throw(ERROR_FILE_EXISTS);
    Handle h(raw);
    try {
        WriteAll(h.get(), bytes);
        if (!::FlushFileBuffers(h.get())) ThrowLast();
        if (!h.Close()) ThrowLast();
        if (before_rename) before_rename(temp);
        if (!::MoveFileExW(temp.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            ThrowLast();
    } catch (...) {
        h.Close();
        ::DeleteFileW(temp.c_str());
        throw;
    }
}

void MoveOver(const fs::path& from, const fs::path& target) {
    {
        Handle h(::CreateFileW(from.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                               nullptr));
        if (!h.valid()) ThrowLast();
        if (!::FlushFileBuffers(h.get())) ThrowLast();
    }
    if (!::MoveFileExW(from.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        ThrowLast();
}

bool CreateExclusive(const fs::path& path, std::string_view bytes) {
    Handle h(::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!h.valid()) {
        const DWORD err = ::GetLastError();
        if (err == ERROR_FILE_EXISTS || err == ERROR_ALREADY_EXISTS) return false;
        Throw(err);
    }
    try {
        WriteAll(h.get(), bytes);
        if (!::FlushFileBuffers(h.get())) ThrowLast();
        if (!h.Close()) ThrowLast();
    } catch (...) {
        h.Close();
        ::DeleteFileW(path.c_str());
        throw;
    }
    return true;
}

bool RemoveFile(const fs::path& path) {
    if (::DeleteFileW(path.c_str())) return true;
    const DWORD err = ::GetLastError();
    if (err == ERROR_FILE_NOT_FOUND || err == ERROR_PATH_NOT_FOUND) return false;
    Throw(err);
}

std::intptr_t os::OpenLockFile(const fs::path& path) {
    HANDLE h = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) ThrowLast();
    return reinterpret_cast<std::intptr_t>(h);
}

os::LockTry os::TryLock(std::intptr_t handle, int& error) {
    OVERLAPPED o{};
    if (::LockFileEx(reinterpret_cast<HANDLE>(handle), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0,
                     MAXDWORD, MAXDWORD, &o))
        return LockTry::Locked;
    const DWORD err = ::GetLastError();
    error = static_cast<int>(err);
    return err == ERROR_LOCK_VIOLATION ? LockTry::Busy : LockTry::Failed;
}

void os::UnlockAndClose(std::intptr_t handle) noexcept {
    HANDLE h = reinterpret_cast<HANDLE>(handle);
    OVERLAPPED o{};
    ::UnlockFileEx(h, 0, MAXDWORD, MAXDWORD, &o);
    ::CloseHandle(h);
}

fs::path UserDataFolder() {
    PWSTR appdata = nullptr;
    if (::SHGetKnownFolderPath(FOLDERID_RoamingAppData, 0, nullptr, &appdata) == S_OK) {
        fs::path p = fs::path(appdata) / L"Cauce";
        ::CoTaskMemFree(appdata);
        return p;
    }
    if (const auto a = EnvironmentVariable("APPDATA"); a && !a->empty()) return fs::path(Wide(*a)) / L"Cauce";
    return fs::absolute(L"cauce-datos");
}

std::string UserLogin() {
    wchar_t name[UNLEN + 1];
    DWORD n = UNLEN + 1;
    if (!::GetUserNameW(name, &n)) return "";
    return Utf8(name);
}

std::string UserFullName() {
    // The full name lives in the domain's or the machine's account database; not asked here.
    return "";
}

std::string HostName() {
    wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD n = MAX_COMPUTERNAME_LENGTH + 1;
    if (!::GetComputerNameW(name, &n)) return "";
    return Utf8(name);
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const std::wstring w = Wide(name);
    const DWORD n = ::GetEnvironmentVariableW(w.c_str(), nullptr, 0);
    if (n == 0)
        return ::GetLastError() == ERROR_ENVVAR_NOT_FOUND ? std::nullopt : std::optional<std::string>("");
    std::wstring v(n, L'\0');
    const DWORD got = ::GetEnvironmentVariableW(w.c_str(), v.data(), n);
    v.resize(got);
    return Utf8(v);
}

bool StandardErrorIsTerminal() {
    DWORD mode = 0;
    return ::GetConsoleMode(::GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

void BinaryStandardOutput() {
    _setmode(_fileno(stdout), _O_BINARY);
}

std::int64_t ProcessId() {
    return static_cast<std::int64_t>(::GetCurrentProcessId());
}

bool ProcessAlive(std::int64_t pid) {
    if (pid <= 0 || pid > static_cast<std::int64_t>(MAXDWORD)) return false;
    HANDLE h = ::OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(pid));
    if (!h) return ::GetLastError() == ERROR_ACCESS_DENIED;
    const bool alive = ::WaitForSingleObject(h, 0) == WAIT_TIMEOUT;
    ::CloseHandle(h);
    return alive;
}

fs::path ExecutablePath() {
    std::wstring buf(MAX_PATH, L'\0');
    for (;;) {
        const DWORD n = ::GetModuleFileNameW(nullptr, buf.data(), static_cast<DWORD>(buf.size()));
        if (n == 0) ThrowLast();
        if (n < buf.size()) {
            buf.resize(n);
            return fs::path(buf);
        }
        buf.resize(buf.size() * 2);
    }
}

ChildResult RunChild(const std::vector<std::string>& argv, std::chrono::milliseconds limit) {
    if (argv.empty()) Throw(ERROR_INVALID_PARAMETER);
    SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE read_raw = nullptr, write_raw = nullptr;
    if (!::CreatePipe(&read_raw, &write_raw, &inherit, 0)) ThrowLast();
    Handle read_end(read_raw), write_end(write_raw);
    ::SetHandleInformation(read_end.get(), HANDLE_FLAG_INHERIT, 0);
    Handle null_in(::CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                 OPEN_EXISTING, 0, nullptr));
    Handle null_err(::CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                                  OPEN_EXISTING, 0, nullptr));

    std::wstring command;
    for (const std::string& a : argv) {
        if (!command.empty()) command.push_back(L' ');
        command += QuoteArgument(Wide(a));
    }
    STARTUPINFOW si{};
    si.cb = sizeof si;
    si.dwFlags = STARTF_USESTDHANDLES;
    si.hStdInput = null_in.get();
    si.hStdOutput = write_end.get();
    si.hStdError = null_err.get();
    PROCESS_INFORMATION pi{};
    const std::wstring program = Wide(argv[0]);
    if (!::CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                          nullptr, &si, &pi))
        ThrowLast();
    Handle process(pi.hProcess), thread(pi.hThread);
    write_end.Close();
    null_in.Close();
    null_err.Close();

    // The pipe is looked into rather than read blind: a process the child left behind may hold it
    // open after the child ended.
    ChildResult result;
    const auto deadline = Clock::now() + limit;
    char buf[65536];
    auto drain = [&] {
        DWORD avail = 0, n = 0;
        while (::PeekNamedPipe(read_end.get(), nullptr, 0, nullptr, &avail, nullptr) && avail > 0 &&
               ::ReadFile(read_end.get(), buf, std::min<DWORD>(avail, sizeof buf), &n, nullptr) && n > 0)
            result.out.append(buf, n);
    };
    for (;;) {
        drain();
        if (::WaitForSingleObject(process.get(), 10) == WAIT_OBJECT_0) {
            drain();
            break;
        }
        if (Clock::now() >= deadline) {
            result.timed_out = true;
            ::TerminateProcess(process.get(), 1);
            ::WaitForSingleObject(process.get(), INFINITE);
            break;
        }
    }
    DWORD code = 0;
    ::GetExitCodeProcess(process.get(), &code);
    // A crash ends a process with an exception code (0xC0000005 and the like) as its status.
    if (result.timed_out || (code & 0xC0000000u) == 0xC0000000u) {
        result.killed = true;
    } else {
        result.exit_code = static_cast<int>(code);
    }
    return result;
}

}  // namespace cauce::platform
