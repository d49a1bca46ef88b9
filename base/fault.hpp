// A run-time fault of the program: a code that names it, for the code that decides what to do, and
// the Spanish message the user reads.
//
// The legacy screens died on a division by zero, the square root of a negative number, a power that
// is not a real number or a subscript outside 0..50, and hung on marches that never end. Here each of
// those raises a Fault at the point where it arises; the screen keeps what it had written and the
// program goes on. The workbook layer and the command line raise their own faults the same way.
#pragma once

#include <stdexcept>
#include <string>

namespace cauce {

enum class FaultCode {
    // The legacy run time's arithmetic.
    DivisionByZero,   // x / 0
    ZeroOverZero,     // 0 / 0
    NegativeRoot,     // the square root of a negative number
    NotRealPower,     // a negative base with a fractional exponent
    Overflow,         // a result too large, or a number typed too large
    IntegerOverflow,  // a whole number outside -32768..32767
    Subscript,        // a subscript outside a table's bounds

    // Marches and iterations that do not end: each has its own budget of steps.
    NormalDepthEndless,      // natural section, in-bank normal depth
    CriticalDepthEndless,    // natural section, critical depth
    FloodDepthEndless,       // natural section, depth over the banks
    FloodCriticalEndless,    // natural section, critical depth over the banks
    ChannelNormalEndless,    // trapezoidal channel, normal depth iteration
    ChannelCriticalEndless,  // trapezoidal channel, critical depth iteration
    ChannelFloodEndless,     // trapezoidal channel, depth over the banks
    ConduitNormalEndless,    // circular conduit, normal depth
    ConduitCriticalEndless,  // circular conduit, critical depth
    ProfileEndless,          // the direct-step profile
    StandardStepNoDepth,     // the standard step finds no depth for a section

    // Data a computation cannot use.
    ZeroSlope,
    NegativeSlope,
    MissingRoughness,
    NegativeDiameter,
    NegativeGrainSize,
    NarrowFloodZone,  // a flood zone narrower than the channel at bank-full

    // Survey points turned into a section.
    SurveyPoints,  // too few, too many, out of range or unreadable points
    SurveyShape,   // a ground line that turns back, crosses itself or holds no water
    SurveyLevels,  // a number of levels outside 2..15

    // Records and screens.
    NoWorkbook,     // a screen without a workbook, or a build without workbooks
    NoSuchRecord,   // a record number outside the sheet, or a sheet with none
    NoSuchSheet,    // a sheet or a header row that is not there
    NoSuchColumn,   // a column the sheet lacks
    RecordRefused,  // a record the command will not write, insert or delete

    // Workbook files.
    FileNotFound,    // no file, a folder, or a file that is not a workbook
    FileExists,      // a new workbook never replaces a file
    FileDamaged,     // a workbook that cannot be read (damaged, a zip bomb, not XML)
    FileNotSaved,    // the system or another program stopped a save
    FolderNotMade,   // the data folder or its examples could not be written
    SaveConflict,    // a cell changed both here and on disk
    WorkbookLocked,  // another program holds the workbook's lock

    // An exception no layer expected, caught so that the program goes on.
    Internal,
};

class Fault : public std::runtime_error {
  public:
    Fault(FaultCode code, const std::string& message) : std::runtime_error(message), code_(code) {}
    FaultCode code() const { return code_; }

  private:
    FaultCode code_;
};

[[noreturn]] inline void raise(FaultCode code, const std::string& message) {
    throw Fault(code, message);
}

}  // namespace cauce
