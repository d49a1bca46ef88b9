// Legacy .xls workbooks (Excel 5.0 to 2003), read through freexl.
//
// freexl reads past its own buffers on some damaged files, and a crash there would take the program
// and the user's other work with it. So the file is read by a child process, this same program run
// with the hidden command `cauce __leer-xls ARCHIVO`, which writes the cells to its standard output;
// a child that dies, or takes longer than any real workbook could, means a damaged file.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace cauce::workbook {

// The hidden command's name.
inline constexpr const char* kLegacyReaderCommand = "__leer-xls";

struct LegacyBook {
    std::string package;               // the sheets as a new .xlsx package in memory
    std::vector<std::string> omitted;  // what could not be read ("la hoja \"Gráfico1\" (un gráfico)")
};

// Reads the file in a child process. Throws Fault naming the file and the cause.
LegacyBook ReadLegacyBook(const std::filesystem::path& path);

// What the .xlsx saved beside a legacy workbook does not carry, as the end of a sentence for the
// notice after the save; omitted names what was not read at all.
std::string LegacyLosses(const std::vector<std::string>& omitted);

// The hidden command: reads the file with freexl and writes its cells to out. Returns the exit status.
int RunLegacyReader(const std::string& file, std::ostream& out);

// The program run as the child: by default this executable when it is cauce, else a cauce beside it;
// $CAUCE_XLS_READER or this setting (for tests and tools that are not cauce) take precedence.
void SetLegacyReaderProgram(const std::filesystem::path& program);

}  // namespace cauce::workbook
