// Hooks of the program's entry point into the layers that are built optionally.
#pragma once

#include <CLI/CLI.hpp>

namespace cauce::cli {

// Opens the desktop application (or explains how to get it when it was not built).
int RunDesktop(int argc, char** argv);
// Lets forms/ open workbooks through workbook/ (when it is built).
void InstallWorkbooks();
// The headless sub-commands besides "guion" (batch, rating curves, reports).
void AddCommands(CLI::App& app);
int RunCommand(CLI::App& app);

}  // namespace cauce::cli
