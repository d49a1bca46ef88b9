// What Cauce asks of the operating system, behind one interface: files replaced atomically, a file's
// identity, exclusive creation and advisory locks, the user's data folder and names, processes, and
// running a child process with a time limit. posix.cpp serves Linux and macOS, windows.cpp serves
// Windows; no other file of the program includes a system header.
//
// Failures throw platform::Error: its Cause lets callers decide, its Reason is Spanish words ready to
// go after a colon in a message ("no hay espacio en el disco"). Paths are std::filesystem paths, UTF-8
// on POSIX, wide on Windows.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cauce::platform {

enum class Cause {
    NoSpace,       // the disk or the user's quota is full, or the file is too large
    Permission,    // the system refused access
    ReadOnlyDisk,  // the file system is mounted read-only
    NotFound,      // the file or a folder of its path does not exist
    NotFolder,     // a part of the path is not a folder
    Exists,        // the file already exists
    Io,            // the disk failed
    NameTooLong,
    Other,
};

class Error : public std::runtime_error {
  public:
    Error(Cause cause, int code, const std::string& reason)
        : std::runtime_error(reason), cause_(cause), code_(code) {}
    Cause GetCause() const { return cause_; }
    int Code() const { return code_; }  // errno, or Windows' GetLastError()
    std::string Reason() const { return what(); }

  private:
    Cause cause_;
    int code_;
};

// The cause and Spanish reason of a system error number (errno on POSIX, a Win32 error on Windows;
// std::error_code::value() of std::filesystem gives the same numbers).
Cause CauseOf(int code);
std::string Reason(int code);

// ---- Files

enum class FileKind { Absent, Regular, Folder, Other };

// Who a file is and when it last changed: two identities differ when the file was replaced or
// written in between (its device and inode, or volume and file index, its size and its
// modification time to the nanosecond where the system keeps it).
struct FileIdentity {
    FileKind kind = FileKind::Absent;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t mtime_ns = 0;
    bool Exists() const { return kind != FileKind::Absent; }
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

// The identity of the file at path, following symbolic links; kind Absent when there is no such
// file. Throws Error when the system cannot say (no permission to look into the folder, ...).
FileIdentity Identify(const std::filesystem::path& path);

// Whether a file or folder may be written as its marks say: a file or folder marked read-only is
// respected even by an administrator, who could write anywhere.
bool MarkedWritable(const std::filesystem::path& path);

// The file's bytes, at most limit + 1 of them (so a caller sees that it is longer than limit).
std::string ReadFile(const std::filesystem::path& path, std::size_t limit);

// Writes bytes as the file at target, replacing it or creating it: a new file in the same folder is
// written, flushed to the disk, then renamed over target, and the folder is flushed. An existing
// target keeps its permissions. before_rename, when given, runs between the flush and the rename (for
// tests: a crash there must leave the old file whole). On any failure, Error (or what before_rename
// threw) leaves the target untouched and no temporary file behind.
void ReplaceFile(const std::filesystem::path& target, std::string_view bytes,
                 const std::function<void(const std::filesystem::path& temp)>& before_rename = {});

// Moves a finished file (written by a library under a temporary name beside target) over target,
// flushing both to the disk. Throws Error; from is then left where it was.
void MoveOver(const std::filesystem::path& from, const std::filesystem::path& target);

// Creates the file with these bytes only if no file of that name exists (atomically: of two
// processes creating it at once, one wins). Returns false when it exists. Throws Error for any other
// failure; an incomplete file is removed.
bool CreateExclusive(const std::filesystem::path& path, std::string_view bytes);

// Removes a file; false when there was none. Throws Error for any other failure.
bool RemoveFile(const std::filesystem::path& path);

// An advisory exclusive lock on a file (created empty if absent), held while the object lives. Only
// processes that also lock it wait: it serialises Cauce's own saves, it does not stop other programs.
class FileLock {
  public:
    // Waits up to timeout for the lock; nullopt when another process still holds it then. Throws
    // Error when the lock file cannot be opened or created.
    static std::optional<FileLock> Acquire(const std::filesystem::path& path,
                                           std::chrono::milliseconds timeout);
    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

  private:
    explicit FileLock(std::intptr_t handle) : handle_(handle) {}
    void Release() noexcept;
    std::intptr_t handle_;  // a file descriptor or a HANDLE; -1 when moved from
};

// ---- The user, the machine, processes

// Where the user's data goes by this system's custom: $XDG_DATA_HOME/cauce or ~/.local/share/cauce on
// Linux, ~/Library/Application Support/Cauce on macOS, %APPDATA%\Cauce on Windows; "cauce-datos" in
// the working folder when none of these is known.
std::filesystem::path UserDataFolder();

// The user's login name ("" when unknown) and full name ("" when the system does not know it).
std::string UserLogin();
std::string UserFullName();
std::string HostName();

// A variable of this process's environment, in UTF-8; nullopt when unset.
std::optional<std::string> EnvironmentVariable(const std::string& name);

// Whether this process's error output is a terminal (a person watching, not a file or a pipe).
bool StandardErrorIsTerminal();

// Standard output passes bytes as they are (Windows would otherwise turn "\n" into "\r\n").
void BinaryStandardOutput();

std::int64_t ProcessId();
// Whether a process of that id is running on this machine (a process of another user counts).
bool ProcessAlive(std::int64_t pid);

// The running executable's own file. Throws Error when the system cannot say.
std::filesystem::path ExecutablePath();

struct ChildResult {
    std::string out;         // what it wrote to its standard output
    int exit_code = -1;      // its exit status when it ended by itself, else -1
    bool killed = false;     // it died of a signal (a crash) or was ended for its time
    bool timed_out = false;  // it was ended because it ran past the time limit
    bool Succeeded() const { return !killed && exit_code == 0; }
};

// Runs argv[0] (a path to an executable) with those arguments, its standard input empty and its
// error output discarded, and waits for it at most limit, after which it is ended. Throws Error when
// it cannot be started at all.
ChildResult RunChild(const std::vector<std::string>& argv, std::chrono::milliseconds limit);

}  // namespace cauce::platform
