#include "cli/spanish_errors.hpp"

namespace cauce::cli {

namespace {

std::string After(const std::string& s, const std::string& marker) {
    const auto p = s.find(marker);
    return p == std::string::npos ? s : s.substr(p + marker.size());
}

std::string Before(const std::string& s, const std::string& marker) {
    const auto p = s.find(marker);
    return p == std::string::npos ? s : s.substr(0, p);
}

bool EndsWith(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

// The sub-command the user named, for the hint; "" for the program itself.
std::string ParsedCommand(const CLI::App* app) {
    if (!app) return "";
    for (const CLI::App* sub : app->get_subcommands()) return sub->get_name();
    return "";
}

void Translate(CLI::App& app) {
    for (CLI::Option* opt : app.get_options())
        if (opt->get_group() == "Options") opt->group("Opciones");
    for (CLI::App* sub : app.get_subcommands({})) {
        if (sub->get_group() == "Subcommands") sub->group("Órdenes");
        Translate(*sub);
    }
}

}  // namespace

std::string SpanishParseError(const CLI::App* app, const CLI::Error& e) {
    const std::string what = e.what();
    const std::string name = e.get_name();
    std::string message;
    // A sub-command's errors carry its name instead of the error's, so the messages are told apart
    // by their text as well.
    if (name == "ExtrasError" || what.find(" not expected: ") != std::string::npos) {
        const std::string extras = After(what, "expected: ");
        message = (what.find("arguments were") != std::string::npos ? "Argumentos no reconocidos: "
                                                                    : "Argumento no reconocido: ") +
                  extras;
    } else if (name == "RequiredError" || EndsWith(what, " is required")) {
        if (what.find("subcommand") != std::string::npos) {
            message = "Falta la orden (guion, perfil, canal, tubo, curva o informe).";
        } else if (EndsWith(what, " is required")) {
            message = "Falta " + Before(what, " is required") + ", que es obligatorio.";
        } else {
            message = "Faltan argumentos obligatorios: " + what;
        }
    } else if (name == "ArgumentMismatch" || what.find(" required ") != std::string::npos ||
               what.find(" arguments to ") != std::string::npos) {
        std::string option = Before(what, ":");
        if (what.find(" arguments to ") != std::string::npos)
            option = Before(After(what, " arguments to "), ",");
        message = "A " + option + " le falta su valor (o sobran valores).";
    } else if (what.find(" excludes ") != std::string::npos) {
        message =
            Before(what, " excludes ") + " no se puede usar junto con " + After(what, " excludes ") + ".";
    } else if (what.find(" requires ") != std::string::npos) {
        message = Before(what, " requires ") + " necesita también " + After(what, " requires ") + ".";
    } else if (name == "ConversionError" || name == "ValidationError") {
        message = "Valor no válido: " + what;
    } else {
        message = "No se entiende la línea de órdenes: " + what;
    }
    const std::string command = ParsedCommand(app);
    const std::string help = command.empty() ? "cauce --help" : "cauce " + command + " --help";
    return "cauce: " + message + "\nVea \"" + help + "\".\n";
}

void SpanishCommandLine(CLI::App& app) {
    auto fmt = app.get_formatter();
    fmt->label("Usage", "Uso");
    fmt->label("OPTIONS", "OPCIONES");
    fmt->label("Positionals", "Argumentos");
    fmt->label("SUBCOMMAND", "ORDEN");
    fmt->label("SUBCOMMANDS", "ÓRDENES");
    fmt->label("REQUIRED", "(obligatorio)");
    fmt->label("TEXT", "TEXTO");
    fmt->label("FLOAT", "NÚMERO");
    fmt->label("INT", "ENTERO");
    fmt->label("Needs", "Necesita");
    fmt->label("Excludes", "Excluye");
    fmt->label("Env", "Variable");
    fmt->column_width(34);
    Translate(app);
    app.failure_message(SpanishParseError);
}

}  // namespace cauce::cli
