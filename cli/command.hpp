// A headless sub-command: its CLI11 sub-application (options, help) and what runs when it was named.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <initializer_list>
#include <string>

#include "cli/uniform.hpp"

namespace cauce::cli {

struct Command {
    CLI::App* app = nullptr;
    std::function<int()> run;
};

Command AddProfileCommand(CLI::App& parent);
Command AddChannelCommand(CLI::App& parent);
Command AddConduitCommand(CLI::App& parent);
Command AddCurveCommand(CLI::App& parent);
Command AddReportCommand(CLI::App& parent);
Command AddWorkbookCommand(CLI::App& parent);
Command AddSectionCommand(CLI::App& parent);

// The options of a prismatic channel (--base --talud --rugosidad --pendiente --altura --ancho-zona
// --rugosidad-zona) and of a conduit (--diametro, with --rugosidad --pendiente when with_common).
void ChannelOptions(CLI::App* app, ChannelInput& c);
void ConduitOptions(CLI::App* app, ConduitInput& c, bool with_common);
// Their values: numbers, not negative (the slope may be); a UsageError naming the option otherwise.
void CheckChannel(const ChannelInput& c);
void CheckConduit(const ConduitInput& c);

// --hoja and --registro: a record of one of sheets (named in the help) of a workbook.
void RecordOptions(CLI::App* app, std::string& sheet, std::string& record, const std::string& sheets);

// The sheet and the depth at the last section of a command on a reach (--hoja, --y-inicial,
// --y-final): a UsageError naming the option when they do not serve.
void CheckReachOptions(const std::string& sheet, const std::string& y_initial, const std::string& y_final);

// A command's registration: its help ends with about, then "Ejemplos:" and the examples, one a line
// (a long one goes on over its own indented lines); its body runs Guarded under the command's name.
Command Described(CLI::App* app, const std::string& about, std::initializer_list<const char*> examples,
                  std::function<int()> body);

// Runs a command's body: a UsageError is told on standard error ("cauce perfil: ..." and where to
// find the help) and gives kExitUsage.
int Guarded(const std::string& name, const std::function<int()>& body);

}  // namespace cauce::cli
