#include "cli/commands.hpp"

#include <iostream>
#include <vector>

#include "cli/args.hpp"
#include "cli/command.hpp"
#include "cli/spanish_errors.hpp"
#include "reach/run.hpp"

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

void RecordOptions(CLI::App* app, std::string& sheet, std::string& record, const std::string& sheets) {
    app->add_option("--hoja", sheet, "Hoja del libro (" + sheets + ")")->type_name("NOMBRE");
    app->add_option("--registro", record, "Fila de la hoja (1 es la primera bajo los encabezados)")
        ->type_name("N");
}

void CheckReachOptions(const std::string& sheet, const std::string& y_initial, const std::string& y_final) {
    if (y_initial.empty() && y_final.empty())
        throw UsageError(
            "falta el tirante en la última sección: --y-inicial (Persecc, Percanal) o --y-final (\"secciones "
            "\")");
    if (!y_initial.empty()) NumberOption("--y-inicial", y_initial, Sign::Positive);
    if (!y_final.empty()) NumberOption("--y-final", y_final, Sign::Positive);
    if (!sheet.empty() && !reach::KindOfSheet(sheet))
        throw UsageError("--hoja: \"" + sheet + "\" no es una hoja de perfiles (use " + reach::KindList() +
                         ")");
}

Command Described(CLI::App* app, const std::string& about, std::initializer_list<const char*> examples,
                  std::function<int()> body) {
    std::string footer = about + "\nEjemplos:";
    for (const char* example : examples) (footer += "\n  ") += example;
    app->footer(footer);
    return {app, [name = app->get_name(), body = std::move(body)] { return Guarded(name, body); }};
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
