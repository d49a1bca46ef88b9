// A headless sub-command: its CLI11 sub-application (options, help) and what runs when it was named.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
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

// Runs a command's body: a UsageError is told on standard error ("cauce perfil: ..." and where to
// find the help) and gives kExitUsage.
int Guarded(const std::string& name, const std::function<int()>& body);

}  // namespace cauce::cli
