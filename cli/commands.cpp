#include "cli/commands.hpp"

namespace cauce::cli {

void InstallWorkbooks() {}
void AddCommands(CLI::App&) {}
int RunCommand(CLI::App&) { return 0; }

}  // namespace cauce::cli
