// Locks beside a workbook.
//
// The edit lock is the one spreadsheet programs write while they hold a file for editing:
// ".~lock.<file name>#" in the same folder, one line of comma-separated fields (the user's full name,
// the system user, the host, the date as dd.mm.yyyy hh:mm, the user's profile as a file: address)
// ending in ";". Cauce writes its own the same way, naming its data folder and its process in the
// profile field, so that it can tell its own locks (and those left by a Cauce that ended abruptly)
// from the locks of other programs.
//
// The save lock serialises the saves of several Cauce processes on one workbook: an advisory lock,
// held while a save reads, merges and replaces the file, on a file of the system's temporary folder
// named after the workbook's path (nothing is left beside the user's workbook).
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.hpp"

namespace cauce::workbook {

struct LockOwner {
    std::string name, user, host, date, profile;
    bool operator==(const LockOwner&) const = default;
};

std::filesystem::path EditLockPath(const std::filesystem::path& workbook);
// The fields of a lock file's text; nothing when it is not one. A comma inside a field is escaped
// with a backslash, as spreadsheet programs write it.
std::optional<LockOwner> ParseLock(std::string_view text);
std::string FormatLock(const LockOwner& owner);
// "Ana Pérez (ana en el equipo obra-3, desde el 24.11.2026 02:22)".
std::string Describe(const LockOwner& owner);

// Cauce's edit lock on a workbook while it lives, or who else holds the workbook for editing.
class EditLock {
  public:
    // Writes Cauce's lock file beside the workbook, unless one is there: a lock of another Cauce of
    // the same user on this machine that is still running is shared (that Cauce removes it), one
    // whose process has ended is taken over, any other (another program, user or machine) leaves
    // the workbook to its holder.
    explicit EditLock(const std::filesystem::path& workbook);
    // Removes the lock file if it is still this process's own.
    ~EditLock();
    EditLock(const EditLock&) = delete;
    EditLock& operator=(const EditLock&) = delete;

    // Looks again (before a save): true when this process may write the workbook, writing its own
    // lock if the one it shared or was kept out by is gone.
    bool Retake();
    // Who holds the workbook ("" when this process may write it).
    const std::string& Holder() const { return holder_; }
    // This process's lock fields.
    static LockOwner Own();

  private:
    void Take();
    std::filesystem::path workbook_, path_;
    LockOwner own_;
    bool owned_ = false;
    std::string holder_;
};

// Holds the save lock of a workbook while it lives, waiting for another Cauce's save to end (the
// system releases the lock of a process that ended). Throws Fault naming the file when the wait runs
// out; when the lock file cannot be made at all the save goes on without it.
class SaveLock {
  public:
    explicit SaveLock(const std::filesystem::path& workbook,
                      std::chrono::milliseconds wait = std::chrono::seconds(20));

  private:
    std::optional<platform::FileLock> lock_;
};

}  // namespace cauce::workbook
