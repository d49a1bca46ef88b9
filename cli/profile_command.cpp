// cauce perfil: the water-surface profile of one or more reaches, each a workbook, computed on its
// profile screen exactly as a person would (reach/run.hpp), printed as text, CSV or JSON.
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>

#include "cli/args.hpp"
#include "cli/command.hpp"
#include "cli/progress.hpp"
#include "cli/standard_output.hpp"
#include "cli/text_table.hpp"
#include "reach/csv.hpp"
#include "reach/run.hpp"

namespace cauce::cli {

using namespace reach;

namespace {

struct Options {
    std::vector<std::string> books;
    std::string sheet, y_initial, y_final, format = "texto", separator = ",";
    bool save = false;
    std::string method = "legado", contraction, expansion, y_upstream;
};

// Which profiles are printed: the screen's own, the standard step, or both side by side.
struct Methods {
    bool legacy = true, standard = false;
};

nlohmann::ordered_json NumberOrNull(const std::string& text) {
    if (const auto v = ParseNumber(text)) return *v;
    if (text.empty()) return nullptr;
    return text;
}

nlohmann::ordered_json TextOrNull(const std::string& text) {
    if (text.empty()) return nullptr;
    return text;
}

bool Faulty(const SectionResult& s) {
    return s.faulty;
}

std::string SectionNotice(const SectionResult& s) {
    if (s.error.empty()) return s.notice;
    return s.notice + (s.notice.empty() ? "" : "; ") + "el cálculo se detuvo: " + s.error;
}

// Whether the discharge leaves the banks; nothing for a section the screen did not get to compute.
std::string Overflow(const SectionResult& s, const char* yes) {
    if (s.overflow) return yes;
    return s.computed ? "no" : "";
}

// One line per section number: its "(Y?)" results joined with its row of the profile table.
struct Joined {
    const SectionResult* section = nullptr;
    const ProfileRow* row = nullptr;
};

std::map<int, Joined> JoinBySection(const ReachResult& r) {
    std::map<int, Joined> rows;
    for (const auto& s : r.sections) rows[s.section].section = &s;
    for (const auto& p : r.profile) rows[p.section].row = &p;
    return rows;
}

void PrintText(std::ostream& out, const ReachResult& r, const Methods& m) {
    out << "Libro: " << r.path << "\n";
    if (r.kind) out << "Hoja: " << r.kind->sheet << " (" << r.kind->form << ", " << r.kind->title << ")\n";
    if (!r.depth.empty() && r.kind) out << r.kind->depth_name << ": " << r.depth << " m\n";
    if (!r.sections.empty()) {
        out << "\nResultados por sección (\"(Y?)\")\n";
        TextTable t({"Registro", "Sección", "Yn m", "Yc m", "Q lleno m3/s", "Desborda", "Avisos"});
        for (const auto& s : r.sections)
            t.Row({std::to_string(s.record), std::to_string(s.section), s.yn, s.yc, s.qlleno,
                   Overflow(s, "sí"), SectionNotice(s)});
        t.Print(out);
    }
    if (!r.profile.empty() && m.legacy) {
        out << "\nPerfil de la superficie del agua (\"Perfiles\", " << r.n_sections << " secciones)\n";
        std::vector<std::string> head{"Sección", "Abscisa m", "Tipo", "Z agua m", "V media m/s"};
        if (r.scour) head.push_back("Ysoc m");
        TextTable t(head);
        for (const auto& p : r.profile) {
            std::vector<std::string> cells{std::to_string(p.section), p.chainage, p.type, p.zw, p.v};
            if (r.scour) cells.push_back(p.ysoc);
            t.Row(cells);
        }
        t.Print(out);
    }
    if (m.standard) PrintStandardText(out, r, m.legacy);
    for (const auto& n : r.notices) out << "Aviso: " << n << "\n";
    if (r.saved)
        out << "Tabla guardada en " << r.file << (r.save_note.empty() ? "" : " (" + r.save_note + ")")
            << "\n";
    if (!r.Ok()) out << "Error: " << r.error << "\n";
    out << "\n";
}

const std::vector<std::string> kCsvHeader{"libro", "hoja",     "pantalla",    "registro", "seccion",
                                          "yn_m",  "yc_m",     "q_lleno_m3s", "desborda", "abscisa_m",
                                          "tipo",  "z_agua_m", "v_media_ms",  "ysoc_m",   "aviso"};

std::vector<std::string> CsvHeader(bool standard) {
    std::vector<std::string> head = kCsvHeader;
    if (standard) {
        std::string columns = kStandardCsvColumns;
        std::size_t at = 0;
        for (std::size_t comma; (comma = columns.find(',', at)) != std::string::npos; at = comma + 1)
            head.push_back(columns.substr(at, comma - at));
        head.push_back(columns.substr(at));
    }
    return head;
}

void PrintCsv(std::ostream& out, const ReachResult& r, const Methods& m, char separator) {
    if (!r.kind) return;
    for (const auto& [number, j] : JoinBySection(r)) {
        std::vector<std::string> f{r.path, r.kind->sheet, r.kind->form};
        if (j.section) {
            const auto& s = *j.section;
            f.insert(f.end(), {std::to_string(s.record), std::to_string(number), s.yn, s.yc, s.qlleno,
                               Overflow(s, "si")});
        } else {
            f.insert(f.end(), {"", std::to_string(number), "", "", "", ""});
        }
        if (j.row && m.legacy) {
            f.insert(f.end(), {j.row->chainage, j.row->type, j.row->zw, j.row->v, j.row->ysoc});
        } else {
            f.insert(f.end(), {"", "", "", "", ""});
        }
        f.push_back(j.section ? SectionNotice(*j.section) : "");
        if (m.standard) AppendStandardCsv(f, r, number);
        out << CsvLine(f, separator) << "\n";
    }
}

nlohmann::ordered_json ToJson(const ReachResult& r, const Methods& m) {
    nlohmann::ordered_json j;
    j["libro"] = r.path;
    j["archivo"] = TextOrNull(r.file);
    j["hoja"] = r.kind ? nlohmann::ordered_json(r.kind->sheet) : nlohmann::ordered_json(nullptr);
    j["pantalla"] = r.kind ? nlohmann::ordered_json(r.kind->form) : nlohmann::ordered_json(nullptr);
    if (r.kind) j["tirante"] = {{"nombre", r.kind->depth_name}, {"valor", NumberOrNull(r.depth)}};
    j["n_secciones"] = r.n_sections;
    auto sections = nlohmann::ordered_json::array();
    for (const auto& s : r.sections) {
        sections.push_back({{"registro", s.record},
                            {"seccion", s.section},
                            {"yn", NumberOrNull(s.yn)},
                            {"yc", NumberOrNull(s.yc)},
                            {"q_lleno", NumberOrNull(s.qlleno)},
                            {"desborda", s.overflow},
                            {"calculada", s.computed},
                            {"aviso", TextOrNull(s.notice)},
                            {"error", TextOrNull(s.error)}});
    }
    j["secciones"] = sections;
    auto profile = nlohmann::ordered_json::array();
    for (const auto& p : r.profile) {
        if (!m.legacy) break;
        nlohmann::ordered_json row{{"seccion", p.section},
                                   {"abscisa", NumberOrNull(p.chainage)},
                                   {"tipo", TextOrNull(p.type)},
                                   {"z_agua", NumberOrNull(p.zw)},
                                   {"v_media", NumberOrNull(p.v)}};
        if (r.scour) row["ysoc"] = NumberOrNull(p.ysoc);
        profile.push_back(row);
    }
    if (m.standard) AddStandardJson(profile, j, r);
    j["perfil"] = profile;
    j["avisos"] = r.notices;
    if (m.standard) AddStandardNotes(j["avisos"], r);
    j["guardado"] = r.saved;
    if (r.saved) j["nota_guardado"] = TextOrNull(r.save_note);
    j["error"] = TextOrNull(r.error);
    return j;
}

Methods ParseMethods(const Options& o) {
    Methods m;
    if (o.method == "estandar" || o.method == "estándar") {
        m = {false, true};
    } else if (o.method == "ambos") {
        m = {true, true};
    } else if (o.method != "legado") {
        throw UsageError("--metodo: \"" + o.method + "\" no es legado, estandar ni ambos");
    }
    if (!m.standard && (!o.contraction.empty() || !o.expansion.empty() || !o.y_upstream.empty()))
        throw UsageError(
            "--contraccion, --expansion y --y-aguas-arriba son del perfil por paso estándar: "
            "use --metodo estandar o ambos");
    return m;
}

int Run(const Options& o) {
    const Format format = ParseFormat(o.format, true);
    const Methods methods = ParseMethods(o);
    CheckReachOptions(o.sheet, o.y_initial, o.y_final);

    ReachOptions ro{o.sheet, o.y_initial, o.y_final, o.save};
    standard_step::Options so;
    if (!o.contraction.empty())
        so.contraction = NumberOption("--contraccion", o.contraction, Sign::NonNegative);
    if (!o.expansion.empty()) so.expansion = NumberOption("--expansion", o.expansion, Sign::NonNegative);
    std::optional<double> y_up;
    if (!o.y_upstream.empty()) y_up = NumberOption("--y-aguas-arriba", o.y_upstream, Sign::Positive);
    Progress progress("perfil", static_cast<int>(o.books.size()));
    auto json = nlohmann::ordered_json::array();
    bool failed = false;
    if (o.separator != "," && o.separator != ";")
        throw UsageError("--separador: \"" + o.separator +
                         "\" no sirve: use \",\" (con punto decimal) o \";\" (con coma decimal)");
    const char separator = o.separator.front();
    if (format == Format::Csv) std::cout << CsvLine(CsvHeader(methods.standard), separator) << "\n";
    for (std::size_t b = 0; b < o.books.size(); ++b) {
        progress.Step(static_cast<int>(b) + 1, o.books[b]);
        ReachResult standard;  // the standard step's part, computed after "Perfiles"
        SectionObserver observer;
        if (methods.standard)
            observer = [&](const forms::Screen& screen, const SectionResult* section) {
                if (!section) AddStandard(screen, ro, so, y_up, standard);
            };
        ReachResult r = RunReach(o.books[b], ro, observer);
        r.standard = std::move(standard.standard);
        r.legacy_warnings = std::move(standard.legacy_warnings);
        bool bad = !r.Ok() || (r.standard && !r.standard->Ok());
        for (const auto& s : r.sections) bad = bad || Faulty(s);
        failed = failed || bad;
        if (!r.Ok() || bad) {
            progress.Clear();
            if (!r.Ok()) std::cerr << "cauce perfil: " << o.books[b] << ": " << r.error << "\n";
            if (r.standard && !r.standard->Ok())
                std::cerr << "cauce perfil: " << o.books[b] << ": paso estándar: " << r.standard->error
                          << "\n";
            for (const auto& s : r.sections)
                if (Faulty(s))
                    std::cerr << "cauce perfil: " << o.books[b] << ": registro " << s.record << " (sección "
                              << s.section << "): " << SectionNotice(s) << "\n";
        }
        switch (format) {
            case Format::Text:
                PrintText(std::cout, r, methods);
                break;
            case Format::Csv:
                PrintCsv(std::cout, r, methods, separator);
                break;
            case Format::Json:
                json.push_back(ToJson(r, methods));
                break;
        }
        std::cout.flush();
    }
    progress.Clear();
    if (format == Format::Json)
        std::cout << json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
    return failed ? kExitData : kExitOk;
}

}  // namespace

Command AddProfileCommand(CLI::App& parent) {
    static Options o;
    CLI::App* app = parent.add_subcommand(
        "perfil", "Calcula el perfil de la superficie del agua de uno o más tramos (libros)");
    app->add_option("LIBRO", o.books, "Libros de Excel (.xlsx o .xls), uno por tramo")
        ->required()
        ->type_name("");
    app->add_option("--hoja", o.sheet,
                    "Hoja del tramo: Persecc (Form2), Percanal (Form4) o \"secciones \" (Form3); "
                    "sin ella, la primera de ellas que tenga el libro")
        ->type_name("NOMBRE");
    app->add_option("--y-inicial", o.y_initial, "Tirante en la última sección (m), Form2 y Form4")
        ->type_name("Y");
    app->add_option("--y-final", o.y_final, "Tirante en la última sección (m), Form3 (\"secciones \")")
        ->type_name("Y");
    app->add_flag("--guardar", o.save,
                  "Guarda la tabla del perfil en el registro de la última sección, como la pantalla");
    app->add_option(
           "--metodo", o.method,
           "Perfil: legado (el de la pantalla, por omisión), estandar (paso estándar en régimen mixto) "
           "o ambos")
        ->type_name("METODO");
    app->add_option("--contraccion", o.contraction,
                    "Coeficiente de pérdida por contracción del paso estándar (0.1)")
        ->type_name("C");
    app->add_option("--expansion", o.expansion,
                    "Coeficiente de pérdida por expansión del paso estándar (0.3)")
        ->type_name("E");
    app->add_option(
           "--y-aguas-arriba", o.y_upstream,
           "Tirante supercrítico en la primera sección (m) para el paso estándar; sin él, el crítico si "
           "el flujo entra en pendiente fuerte")
        ->type_name("Y");
    app->add_option("--formato", o.format, "Salida: texto (por omisión), csv o json")->type_name("FORMATO");
    app->add_option("--separador", o.separator,
                    "CSV: \",\" con punto decimal (por omisión) o \";\" con coma decimal, para hojas de "
                    "cálculo en español")
        ->type_name("SEP");
    return Described(
        app,
        "Cada libro se calcula como en la pantalla: \"(Y?)\" en cada registro (la sección número N al "
        "final),\n"
        "luego el tirante y \"Perfiles\". Se imprimen por sección Yn, Yc, el caudal a banca llena y si "
        "desborda,\n"
        "y la tabla del perfil (abscisa, tipo, cota del agua, velocidad y, en Form3, socavación).\n"
        "Sale con 0 si todo se calculó, 1 si un libro o una sección no se pudo calcular, 2 si la orden está "
        "mal.",
        {"cauce perfil Rios.xlsx --y-inicial 1.8",
         "cauce perfil Rios.xlsx --hoja Percanal --y-inicial 1.2 --formato csv > perfil.csv",
         "cauce perfil Ormandi.xlsx --y-final 2.5 --formato json",
         "cauce perfil tramo-*.xlsx --y-inicial 1.8 --guardar",
         "cauce perfil Rios.xlsx --y-inicial 2.2 --metodo ambos"},
        [] { return Run(o); });
}

}  // namespace cauce::cli
