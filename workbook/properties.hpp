// The workbook's own custom document properties (docProps/custom.xml): text fields that travel with
// the file, such as the project data of a report. Read and written on the file as a whole, every
// other part of the package copied as it is.
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace cauce::workbook {

// The text properties of the file ("Proyecto" -> "Presa Norte"); empty when it has none. Throws Fault
// when the file cannot be read as a package.
std::map<std::string, std::string> ReadCustomProperties(const std::filesystem::path& path);

// Sets these properties (an empty value removes one), keeping the others, and replaces the file
// safely. Throws Fault; the file is then as it was.
void WriteCustomProperties(const std::filesystem::path& path,
                           const std::map<std::string, std::string>& values);

}  // namespace cauce::workbook
