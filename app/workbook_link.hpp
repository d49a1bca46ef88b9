// The desktop's link to the workbook layer, which this build may lack: installing the opener through
// which the screens bind Data1 to a workbook, and the workbook a screen opens with.
#pragma once

#include <string>
#include <string_view>

namespace cauce::app {

// Lets forms/ open workbooks; does nothing when the program was built without them.
void InstallWorkbooks();

// The user's workbook of the screen (copied from the bundled example on first run), or "" when the
// screen has none or the program was built without workbooks. Throws Fault when the data folder
// cannot be made.
std::string DefaultWorkbook(std::string_view screen);

}  // namespace cauce::app
