// The workbook of a reach made and edited as a whole: a new workbook holding every screen's sheet,
// records added, removed and renumbered. Each operation opens the file, changes it and saves it
// safely; a screen showing the file opens it again afterwards.
#pragma once

#include <string>
#include <vector>

namespace cauce::reach {

// A screen's sheet and the columns its boxes bind, in the order the screen declares them.
struct SheetLayout {
    std::string sheet;
    std::vector<std::string> columns;
};
// Every screen's sheet, in menu order (a sheet two screens bind lists both screens' columns once).
std::vector<SheetLayout> ScreenSheets();

// Columns copied from the current record into a record added after it: what is the same along a
// reach (the number of sections, the discharge, the flood zone's roughness, the grain size).
const std::vector<std::string>& ReachWideColumns();

// Writes a new workbook at path with every screen's sheet: the header row and one record (section 1
// of 1; Form1's channel with a side slope of 0). Refuses an existing file. Throws Fault.
void CreateReachWorkbook(const std::string& path);

// The number of records of the sheet. Throws Fault.
int RecordCountOf(const std::string& path, const std::string& sheet);
// Adds a record after record `after` (0: before the first) copying the reach-wide columns of
// `after` (or of the first record), with its section number one more than that record's. Returns
// the new record's number. Throws Fault; the file is then as it was.
int AddRecord(const std::string& path, const std::string& sheet, int after);
// Removes record `record`. The last remaining record is never removed. Throws Fault.
void DeleteRecord(const std::string& path, const std::string& sheet, int record);
// Sets each record's section number ("SecId") to its order and the number of sections ("No#
// secciones") of every record to the count. Returns the number of records. Throws Fault.
int RenumberReach(const std::string& path, const std::string& sheet);

}  // namespace cauce::reach
