// cauce canal and cauce tubo: a prismatic channel (trapezoid, rectangle, triangle, with an optional
// flood zone) or a circular conduit in uniform flow, computed on Form1 from options, printing every
// result the screen shows beside its caption, and its message.
#include <iostream>
#include <nlohmann/json.hpp>

#include "cli/args.hpp"
#include "cli/command.hpp"
#include "cli/text_table.hpp"
#include "cli/uniform.hpp"

namespace cauce::cli {

namespace {

struct Options {
    ChannelInput channel;
    ConduitInput conduit;
    std::string discharge, depth, format = "texto";
};

nlohmann::ordered_json Value(const std::string& text) {
    if (const auto v = ParseNumber(text)) return *v;
    if (text.empty()) return nullptr;
    return text;
}

// The given value: exactly one of --caudal and --tirante, a number above zero (the screen does
// nothing at all with 0).
std::pair<Given, std::string> GivenValue(const Options& o) {
    if (o.discharge.empty() == o.depth.empty())
        throw UsageError(
            "dé --caudal (para calcular el tirante normal) o --tirante (para calcular el caudal), uno de los "
            "dos");
    if (!o.discharge.empty()) {
        NumberOption("--caudal", o.discharge, Sign::Positive);
        return {Given::Discharge, o.discharge};
    }
    NumberOption("--tirante", o.depth, Sign::Positive);
    return {Given::Depth, o.depth};
}

// A data option: empty is allowed (the screen says what is missing); otherwise a number.
void CheckData(const char* option, const std::string& text, Sign sign) {
    if (!text.empty()) NumberOption(option, text, sign);
}

}  // namespace

void CheckChannel(const ChannelInput& c) {
    CheckData("--rugosidad", c.n, Sign::NonNegative);
    CheckData("--pendiente", c.S, Sign::Any);
    CheckData("--base", c.b, Sign::NonNegative);
    CheckData("--talud", c.z, Sign::NonNegative);
    CheckData("--altura", c.h, Sign::NonNegative);
    CheckData("--ancho-zona", c.Bz, Sign::NonNegative);
    CheckData("--rugosidad-zona", c.nz, Sign::NonNegative);
}

void CheckConduit(const ConduitInput& c) {
    CheckData("--rugosidad", c.n, Sign::NonNegative);
    CheckData("--pendiente", c.S, Sign::Any);
    CheckData("--diametro", c.D, Sign::NonNegative);
}

namespace {

void PrintText(const Shown& s, Given given) {
    std::cout << "Sección: " << s.section << "   (Form1, \"" << (given == Given::Discharge ? "Yn?" : "Q ?")
              << "\")\n";
    std::cout << "\nDatos\n";
    TextTable data({"", "Valor"});
    for (const auto& r : s.data)
        if (!r.values.front().empty()) data.Row({r.label, r.values.front()});
    data.Print(std::cout);
    if (!s.results.empty()) {
        std::cout << "\nResultados\n";
        std::vector<std::string> head{""};
        if (s.columns.empty()) {
            head.push_back("Valor");
        } else {
            head.insert(head.end(), s.columns.begin(), s.columns.end());
        }
        TextTable t(head);
        for (const auto& r : s.results) {
            std::vector<std::string> cells{r.label};
            cells.insert(cells.end(), r.values.begin(), r.values.end());
            t.Row(cells);
        }
        t.Print(std::cout);
    }
    if (!s.message.empty()) std::cout << "\nMensaje: " << s.message << "\n";
    if (!s.error.empty()) std::cout << "\nError: " << s.error << "\n";
}

void PrintJson(const Shown& s, Given given) {
    nlohmann::ordered_json j;
    j["pantalla"] = "Form1";
    j["seccion"] = s.section;
    j["orden"] = given == Given::Discharge ? "Yn?" : "Q ?";
    auto data = nlohmann::ordered_json::array();
    for (const auto& r : s.data) data.push_back({{"nombre", r.label}, {"valor", Value(r.values.front())}});
    j["datos"] = data;
    j["columnas"] = s.columns;
    auto results = nlohmann::ordered_json::array();
    for (const auto& r : s.results) {
        auto values = nlohmann::ordered_json::array();
        for (const auto& v : r.values) values.push_back(Value(v));
        results.push_back({{"nombre", r.label}, {"valores", values}});
    }
    j["resultados"] = results;
    j["mensaje"] = s.message.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(s.message);
    j["error"] = s.error.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(s.error);
    std::cout << j.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

int Report(const std::string& name, const Shown& s, Given given, Format format) {
    if (format == Format::Json) {
        PrintJson(s, given);
    } else {
        PrintText(s, given);
    }
    if (s.answered) return kExitOk;
    std::string why = !s.error.empty() ? s.error : s.message;
    if (why.empty()) why = "la pantalla no calculó nada con estos datos";
    std::cerr << "cauce " << name << ": " << why << "\n";
    return kExitData;
}

// Form1 run on the options by run, which checks the section's data first.
int RunForm1Command(const Options& o, const char* name, bool conduit,
                    const std::function<std::unique_ptr<forms::Screen>(Given, const std::string&)>& run) {
    const Format format = ParseFormat(o.format, true);
    if (format == Format::Csv) throw UsageError("--formato: use texto o json");
    const auto [given, value] = GivenValue(o);
    const auto screen = run(given, value);
    return Report(name, ShownOnForm1(*screen, conduit, given), given, format);
}

int RunChannelCommand(const Options& o) {
    return RunForm1Command(o, "canal", false, [&o](Given given, const std::string& value) {
        CheckChannel(o.channel);
        return RunChannel(o.channel, given, value);
    });
}

int RunConduitCommand(const Options& o) {
    return RunForm1Command(o, "tubo", true, [&o](Given given, const std::string& value) {
        CheckConduit(o.conduit);
        return RunConduit(o.conduit, given, value);
    });
}

void GivenOptions(CLI::App* app, Options& o) {
    app->add_option("--caudal", o.discharge, "Caudal Q (m3/s): calcula la profundidad normal (\"Yn?\")")
        ->type_name("Q");
    app->add_option("--tirante", o.depth, "Profundidad Yn (m): calcula el caudal (\"Q ?\")")->type_name("Y");
    app->add_option("--formato", o.format, "Salida: texto (por omisión) o json")->type_name("FORMATO");
}

}  // namespace

// Options of a prismatic channel, shared with "cauce curva".
void ChannelOptions(CLI::App* app, ChannelInput& c) {
    app->add_option("--base", c.b, "Base b (m); 0 para un triángulo")->type_name("B");
    app->add_option("--talud", c.z, "Talud z (horizontal por 1 vertical); 0 para un rectángulo")
        ->type_name("Z");
    app->add_option("--rugosidad", c.n, "Rugosidad n de Manning del canal")->type_name("N");
    app->add_option("--pendiente", c.S, "Pendiente S del fondo (m/m)")->type_name("S");
    app->add_option("--altura", c.h, "Altura del canal (m), opcional: sin ella no hay límite")
        ->type_name("H");
    app->add_option("--ancho-zona", c.Bz, "Ancho de la zona inundable (m), contado el canal")->type_name("B");
    app->add_option("--rugosidad-zona", c.nz, "Rugosidad n de la zona inundable")->type_name("N");
}

void ConduitOptions(CLI::App* app, ConduitInput& c, bool with_common) {
    app->add_option("--diametro", c.D, "Diámetro D del conducto (m)")->type_name("D");
    if (with_common) {
        app->add_option("--rugosidad", c.n, "Rugosidad n de Manning")->type_name("N");
        app->add_option("--pendiente", c.S, "Pendiente S (m/m)")->type_name("S");
    }
}

Command AddChannelCommand(CLI::App& parent) {
    static Options o;
    CLI::App* app = parent.add_subcommand(
        "canal", "Flujo uniforme en un canal trapezoidal, rectangular o triangular (Form1)");
    ChannelOptions(app, o.channel);
    GivenOptions(app, o);
    return Described(
        app,
        "Calcula como la pantalla Form1: elige la sección TRAPEZOIDAL, escribe los datos y oprime \"Yn?\"\n"
        "(con --caudal) o \"Q ?\" (con --tirante). Imprime cada resultado que la pantalla muestra con su\n"
        "leyenda y su mensaje (\"HAY DESBORDAMIENTO\", \"Falta la Rugosidad\", ...). Un dato omitido queda\n"
        "en blanco, como en la pantalla. Sale con 1 si la pantalla no calculó la incógnita.",
        {"cauce canal --base 2 --talud 1.5 --rugosidad 0.015 --pendiente 0.001 --caudal 5",
         "cauce canal --base 3 --talud 0 --rugosidad 0.013 --pendiente 0.002 --tirante 0.8",
         "cauce canal --base 2 --talud 1 --rugosidad 0.015 --pendiente 0.001 --altura 1 \\\n"
         "              --ancho-zona 20 --rugosidad-zona 0.035 --caudal 15"},
        [] { return RunChannelCommand(o); });
}

Command AddConduitCommand(CLI::App& parent) {
    static Options o;
    CLI::App* app =
        parent.add_subcommand("tubo", "Flujo uniforme en un conducto circular parcialmente lleno (Form1)");
    ConduitOptions(app, o.conduit, true);
    GivenOptions(app, o);
    return Described(
        app,
        "Calcula como la pantalla Form1 con la sección CIRCULAR: \"Yn?\" con --caudal (no mayor que el\n"
        "caudal máximo, a 0.94 D) o \"Q ?\" con --tirante (\"Tubo lleno\" cuando es igual al diámetro).\n"
        "Imprime el caudal a tubo lleno, el máximo, Yn, T, V, Froude, Yc, Vc y las razones Yn/D, Vn/Vlleno\n"
        "y Q/Qlleno. Sale con 1 si la pantalla no calculó la incógnita.",
        {"cauce tubo --diametro 0.9 --rugosidad 0.013 --pendiente 0.002 --caudal 0.5",
         "cauce tubo --diametro 0.9 --rugosidad 0.013 --pendiente 0.002 --tirante 0.6 --formato json"},
        [] { return RunConduitCommand(o); });
}

}  // namespace cauce::cli
