// What each system's implementation file (posix.cpp, windows.cpp) gives the code the systems share
// (common.cpp). Only the platform layer includes it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

#include "platform/platform.hpp"

namespace cauce::platform::os {

// Throws the Error of one of the system's error codes.
[[noreturn]] void Throw(int code);

// One of the system's error codes and its Cause; CauseIn looks a code up, Cause::Other when absent.
struct KnownCode {
    std::int64_t code;
    Cause cause;
};
Cause CauseIn(std::span<const KnownCode> known, std::int64_t code);

// The words of a Cause the systems tell alike; nullptr for Cause::Other.
const char* CommonReason(Cause cause);

// The lock file of a FileLock: opened (created when absent) or an Error; TryLock answers at once.
std::intptr_t OpenLockFile(const std::filesystem::path& path);
enum class LockTry { Locked, Busy, Failed };
LockTry TryLock(std::intptr_t handle, int& error);
void UnlockAndClose(std::intptr_t handle) noexcept;

// The bytes of a file up to one past limit: read_some puts what it reads next in buf (at most size
// bytes) and says how many, 0 at the end.
std::string ReadUpTo(std::size_t limit,
                     const std::function<std::size_t(char* buf, std::size_t size)>& read_some);

}  // namespace cauce::platform::os
