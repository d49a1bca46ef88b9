#include "cli/commands.hpp"

#ifdef CAUCE_HAS_WORKBOOK
#include "workbook/install.hpp"
#endif

namespace cauce::cli {

void InstallWorkbooks() {
#ifdef CAUCE_HAS_WORKBOOK
    workbook::Install();
#endif
}
void AddCommands(CLI::App&) {}
int RunCommand(CLI::App&) { return 0; }

}  // namespace cauce::cli
