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

Command AddPerfil(CLI::App& parent);
Command AddCanal(CLI::App& parent);
Command AddTubo(CLI::App& parent);
Command AddCurva(CLI::App& parent);
Command AddInforme(CLI::App& parent);
Command AddLibro(CLI::App& parent);
Command AddSeccion(CLI::App& parent);

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
