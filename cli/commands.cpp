#include "cli/commands.hpp"

#include <iostream>
#include <vector>

#include "cli/args.hpp"
#include "cli/command.hpp"
#include "cli/spanish_errors.hpp"

#ifdef CAUCE_WITH_WORKBOOK
#include "workbook/install.hpp"
#endif

namespace cauce::cli {

namespace {
std::vector<Command>& Registered() {
    static std::vector<Command> commands;
    return commands;
}
}  // namespace

void InstallWorkbooks() {
#ifdef CAUCE_WITH_WORKBOOK
    workbook::Install();
#endif
}

void AddCommands(CLI::App& app) {
    auto& commands = Registered();
    commands.push_back(AddProfileCommand(app));
    commands.push_back(AddChannelCommand(app));
    commands.push_back(AddConduitCommand(app));
    commands.push_back(AddCurveCommand(app));
    commands.push_back(AddReportCommand(app));
    commands.push_back(AddWorkbookCommand(app));
    commands.push_back(AddSectionCommand(app));
    SpanishCommandLine(app);
}

int RunCommand(CLI::App&) {
    for (const auto& c : Registered())
        if (c.app->parsed()) {
            InstallWorkbooks();
            return c.run();
        }
    return 0;
}

int Guarded(const std::string& name, const std::function<int()>& body) {
    try {
        return body();
    } catch (const UsageError& e) {
        std::cerr << "cauce " << name << ": " << e.what() << "\nVea \"cauce " << name << " --help\".\n";
        return kExitUsage;
    }
}

}  // namespace cauce::cli
