// The command line speaks Spanish: the help's headings, the option groups and the messages for
// options that cannot be understood.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace cauce::cli {

// Applies to the program and every sub-command added so far.
void SpanishCommandLine(CLI::App& app);

// The message shown for a parse error of CLI11 (what the user typed), in Spanish.
std::string SpanishParseError(const CLI::App* app, const CLI::Error& e);

}  // namespace cauce::cli
