// Bounds on what Cauce agrees to read: a workbook of river sections is a few hundred kilobytes, so
// these are far above any real one and far below what would exhaust the machine.
#pragma once

#include <cstdint>

namespace cauce::workbook {

inline constexpr std::uint64_t kMaxFileBytes = 256ull << 20;   // the workbook file itself
inline constexpr std::uint64_t kMaxPartBytes = 128ull << 20;   // one part of an .xlsx, expanded
inline constexpr std::uint64_t kMaxTotalBytes = 512ull << 20;  // all the parts read, expanded
inline constexpr std::uint64_t kMaxEntries = 20000;            // parts in the package
inline constexpr int kMaxRow = 1048576;                        // the sheet grid of the format
inline constexpr int kMaxColumn = 16384;

}  // namespace cauce::workbook
