// Legacy .xls workbooks (Excel 5.0 to 2003), read through freexl. Formula cells come back empty: the
// old format's cached results are not read.
#pragma once

#include <filesystem>
#include <string>

namespace cauce::workbook {

// The workbook's sheets as a new .xlsx package in memory. Throws Fault naming the file.
std::string LegacyPackage(const std::filesystem::path& path);

}  // namespace cauce::workbook
