// cauce seccion: the level table (z1..z15, t1..t15) of a natural section from its survey points, with
// how far the stack of levels strays from the survey; optionally written into a workbook record.
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/args.hpp"
#include "cli/command.hpp"
#include "cli/text_table.hpp"
#include "forms/binding.hpp"
#include "forms/survey_points.hpp"
#include "hydraulics/checked_math.hpp"
#include "hydraulics/survey/survey.hpp"
#include "reach/run.hpp"

namespace cauce::cli {

namespace {

struct Options {
    std::string points, levels = "15", format = "texto";
    std::string book, sheet, record;
};

// The columns of the level table in a workbook sheet.
std::string ElevationColumn(int j) {
    return "z" + std::to_string(j);
}
std::string WidthColumn(int j) {
    return "t" + std::to_string(j);
}

std::string ReadAll(const std::string& path) {
    if (path == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
    std::ifstream in(path, std::ios::binary);
    if (!in) throw Fault(FaultCode::FileNotFound, "No se puede leer el archivo de puntos " + path + ".");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string Percent(double fraction) {
    std::string s = NumberText(std::round(fraction * 1000) / 10);
    return s + " %";
}

void PrintText(const survey::Section& s, const std::string& source) {
    std::cout << "Sección por niveles de " << source << "\n";
    std::cout << "Fondo: cota " << NumberText(s.bed) << "; corona (el extremo más bajo): cota "
              << NumberText(s.top) << "\n";
    std::cout << s.levels.size() << " niveles de " << s.elevations
              << " cotas distintas del levantamiento\n\n";
    TextTable t({"Nivel", "z (m)", "t (m)"});
    for (std::size_t j = 0; j < s.levels.size(); ++j)
        t.Row({std::to_string(j + 1), NumberText(s.levels[j].z), NumberText(s.levels[j].t)});
    t.Print(std::cout);
    std::cout << "\nDiferencia máxima de área con el levantamiento: " << Percent(s.area_error) << "\n";
    std::cout << "Diferencia máxima de perímetro mojado: " << Percent(s.perimeter_error) << "\n";
    if (!s.warnings.empty()) {
        std::cout << "\nAvisos:\n";
        for (const auto& w : s.warnings) std::cout << "  - " << w << "\n";
    }
}

void PrintCsv(const survey::Section& s) {
    std::cout << "nivel,z,t\n";
    for (std::size_t j = 0; j < s.levels.size(); ++j)
        std::cout << j + 1 << "," << NumberText(s.levels[j].z) << "," << NumberText(s.levels[j].t) << "\n";
    std::cout << "\nerror_area," << NumberText(s.area_error) << "\n";
    std::cout << "error_perimetro," << NumberText(s.perimeter_error) << "\n";
    for (const auto& w : s.warnings) std::cout << "aviso," << CsvField(w) << "\n";
}

void PrintJson(const survey::Section& s) {
    nlohmann::ordered_json j;
    auto levels = nlohmann::ordered_json::array();
    for (const auto& l : s.levels) levels.push_back({{"z", l.z}, {"t", l.t}});
    j["niveles"] = levels;
    j["error_area"] = s.area_error;
    j["error_perimetro"] = s.perimeter_error;
    j["avisos"] = s.warnings;
    std::cout << j.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
}

// Writes the levels into z1..z15 / t1..t15 of the record, clearing those beyond, and saves the
// workbook; nothing is written when the sheet or the record cannot take them.
void WriteRecord(const Options& o, const survey::Section& s) {
    const auto opener = forms::GetSourceOpener();
    if (!opener) throw Fault(FaultCode::NoWorkbook, "Esta versión se compiló sin libros de Excel.");
    if (o.record.empty())
        throw UsageError("falta --registro: la fila de la hoja (1 es la primera bajo los encabezados)");
    const double r = NumberOption("--registro", o.record, Sign::Positive);
    if (r != std::floor(r) || r > 1e6)
        throw UsageError("--registro: \"" + o.record + "\" no es un número de fila");
    std::string sheet = o.sheet;
    if (sheet.empty()) {
        std::string why;
        sheet = reach::DefaultSheet(o.book, why);
        if (sheet.empty()) throw Fault(FaultCode::NoSuchSheet, why + " Dé la hoja con --hoja.");
    }
    for (const auto& l : s.levels)
        if (l.z == 0)
            throw Fault(
                FaultCode::RecordRefused,
                "No se escribe el registro: un nivel tiene la cota 0, que las pantallas toman como el fin de "
                "la tabla. Sume una constante a todas las cotas.");
    const int record = static_cast<int>(r);
    const auto source = opener(o.book, sheet);
    std::string missing;
    for (int j = 1; j <= survey::kMaxLevels; ++j)
        for (const std::string& c : {ElevationColumn(j), WidthColumn(j)})
            if (!source->HasColumn(c)) missing += (missing.empty() ? "" : ", ") + c;
    if (!missing.empty())
        throw Fault(
            FaultCode::NoSuchColumn,
            "La hoja \"" + sheet + "\" no tiene " +
                (missing.size() > 40 ? "la tabla de niveles (columnas z1..z15 y t1..t15)"
                                     : "todas las columnas de la tabla de niveles (faltan " + missing + ")") +
                "; no se escribió nada.");
    if (record > source->RecordCount())
        throw Fault(FaultCode::NoSuchRecord, "El registro " + std::to_string(record) +
                                                 " no existe: la hoja \"" + sheet + "\" tiene " +
                                                 std::to_string(source->RecordCount()) + " registros.");
    for (int j = 1; j <= survey::kMaxLevels; ++j) {
        const bool used = j <= static_cast<int>(s.levels.size());
        source->Set(record, ElevationColumn(j),
                    used ? NumberText(s.levels[static_cast<std::size_t>(j - 1)].z) : "");
        source->Set(record, WidthColumn(j),
                    used ? NumberText(s.levels[static_cast<std::size_t>(j - 1)].t) : "");
    }
    const std::string note = source->Save();
    std::cerr << "cauce seccion: " << s.levels.size() << " niveles escritos en el registro " << record
              << " de la hoja \"" << sheet << "\" de " << source->Path() << "\n";
    if (!note.empty()) std::cerr << "cauce seccion: " << note << "\n";
}

int Run(const Options& o) {
    const Format format = ParseFormat(o.format, true);
    const double n = NumberOption("--niveles", o.levels, Sign::Positive);
    if (n != std::floor(n) || n < 2 || n > survey::kMaxLevels)
        throw UsageError("--niveles: \"" + o.levels + "\" no es un número de niveles de 2 a 15");
    const bool to_book = !o.book.empty();
    if (!to_book && (!o.sheet.empty() || !o.record.empty()))
        throw UsageError("--hoja y --registro piden --libro");
    if (o.points.empty())
        throw UsageError("falta el archivo de PUNTOS (abscisa y cota por línea; \"-\" lee la entrada)");
    survey::Section s;
    try {
        s = survey::SectionFromSurvey(forms::ReadSurveyPoints(ReadAll(o.points)), static_cast<int>(n));
    } catch (const Fault& f) {
        std::cerr << "cauce seccion: " << (o.points == "-" ? "" : o.points + ": ") << f.what() << "\n";
        return kExitData;
    }
    if (to_book) {
        try {
            WriteRecord(o, s);
        } catch (const Fault& f) {
            std::cerr << "cauce seccion: " << f.what() << "\n";
            return kExitData;
        }
    }
    if (format == Format::Csv) {
        PrintCsv(s);
    } else if (format == Format::Json) {
        PrintJson(s);
    } else {
        PrintText(s, o.points == "-" ? "la entrada" : o.points);
    }
    return kExitOk;
}

}  // namespace

Command AddSectionCommand(CLI::App& parent) {
    static Options o;
    CLI::App* app = parent.add_subcommand(
        "seccion", "Tabla de niveles (z1..z15, t1..t15) de una sección desde sus puntos topográficos");
    app->add_option("PUNTOS", o.points,
                    "Archivo de puntos: abscisa y cota por línea, de izquierda a derecha (\"-\": la entrada)")
        ->type_name("");
    app->add_option("--niveles", o.levels, "Número máximo de niveles, de 2 a 15 (15 por omisión)")
        ->type_name("N");
    app->add_option("--formato", o.format, "Salida: texto (por omisión), csv o json")->type_name("FORMATO");
    app->add_option("--libro", o.book, "Escribe los niveles en este libro de Excel (con --hoja y --registro)")
        ->type_name("LIBRO");
    RecordOptions(app, o.sheet, o.record, "Persecc, Percanal, Zorvena, \"secciones \"");
    return Described(
        app,
        "Los puntos van uno por línea, abscisa y cota separadas por tabulador, punto y coma, coma o "
        "espacios; la\n"
        "coma decimal vale cuando no separa los números. Se admite una línea de encabezados. El cauce es lo "
        "que\n"
        "el agua llena entre los dos extremos: el fondo es el punto más bajo y la corona el extremo más "
        "bajo.\n"
        "Los niveles se eligen entre las cotas del levantamiento para que el área de la sección por niveles "
        "se\n"
        "acerque lo más posible a la del levantamiento a toda profundidad; se informan las diferencias "
        "máximas\n"
        "de área y de perímetro mojado. Con --libro, los niveles se escriben en z1..z15 y t1..t15 del "
        "registro\n"
        "(los que sobran se borran) y el libro se guarda; si algo falla no se escribe nada.",
        {"cauce seccion levantamiento.csv", "cauce seccion levantamiento.txt --niveles 10 --formato json",
         "cauce seccion levantamiento.csv --libro Rios.xlsx --hoja Persecc --registro 3"},
        [] { return Run(o); });
}

}  // namespace cauce::cli
