// Where the user's workbooks live, and the names the legacy screens used for them.
//
// The data folder is $CAUCE_DATOS when set, otherwise the folder this system keeps for the user's
// data (platform::UserDataFolder: cauce/ under $XDG_DATA_HOME or ~/.local/share on Linux).
// The fixed paths of the legacy screens ("C:\Programas\Datos\Rios.xls", "C:\Ormandi\Ormandi.xls",
// "rios.xls", in any case) name a workbook of that folder: its .xlsx if there is one, else its .xls,
// else the bundled example, copied there first.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace cauce::workbook {

std::filesystem::path DataFolder();

// The file a path given to Data1 names: the legacy absolute paths as above, any other path as it
// is, a relative one from the working folder ("rios.xls" typed by the user is the working folder's).
// Throws Fault when the data folder cannot be made.
std::filesystem::path ResolveWorkbookPath(const std::string& path);

// The fixed path the legacy screen used for its workbook: "C:\Programas\Datos\Rios.xls" for Form2, Form4
// (and Form1, whose sheet "Canales" is in the same workbook), "C:\Ormandi\Ormandi.xls" for Form3,
// "rios.xls" for Form5; "" for any other name.
std::string LegacyWorkbookPath(std::string_view screen);

// The user's workbook of a screen: the file its legacy path names in the data folder, the bundled
// example copied there on first use; "" for a screen without one. Throws Fault when the data folder
// cannot be made.
std::string DefaultWorkbook(std::string_view screen);

// Copies every bundled example workbook that the data folder lacks (neither its .xlsx nor its .xls
// is there); never over an existing file. Returns the files copied.
std::vector<std::filesystem::path> InstallExamples();

}  // namespace cauce::workbook
