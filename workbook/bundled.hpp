// The example workbooks built into the program (generated from examples/ at build time).
#pragma once

#include <cstddef>

namespace cauce::workbook {

struct BundledFile {
    const char* name;  // "Rios.xlsx"
    const unsigned char* data;
    std::size_t size;
};

extern const BundledFile kBundled[];
extern const std::size_t kBundledCount;

}  // namespace cauce::workbook
