// Replacing a file safely: the new contents go to a new file in the same folder, are flushed to the
// disk, and only then renamed over the old file, which is therefore either wholly old or wholly new.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace cauce::workbook {

// Writes bytes as the file at path (replacing it or creating it). Throws Fault naming the file and
// the reason (read-only file or folder, full disk, ...); the old file is then untouched and no
// temporary file is left behind.
void ReplaceFile(const std::filesystem::path& path, const std::string& bytes);

// For tests: runs between the flush of the new file and the rename (a crash there must leave the old
// file whole). An empty function removes the hook.
void SetBeforeRenameHook(std::function<void(const std::filesystem::path& temp)> hook);

// The Spanish words for a system error number ("no hay espacio en el disco", ...).
std::string SystemReason(int err);

}  // namespace cauce::workbook
