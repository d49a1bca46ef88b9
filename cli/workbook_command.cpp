// cauce libro: the workbook of a reach for batch work: a new workbook with every screen's sheet, and
// records added, removed and renumbered on a profile sheet.
#include <functional>
#include <iostream>

#include "cli/args.hpp"
#include "cli/command.hpp"
#include "hydraulics/checked_math.hpp"
#include "reach/book.hpp"
#include "reach/run.hpp"

namespace cauce::cli {

namespace {

struct Options {
    std::string book, sheet;
    int after = -1, record = 0;
};

std::string SheetOf(const Options& o) {
    if (!o.sheet.empty()) return o.sheet;
    std::string why;
    const std::string sheet = reach::DefaultSheet(o.book, why);
    if (sheet.empty()) throw Fault(FaultCode::NoSuchSheet, why);
    return sheet;
}

int Data(const std::string& verb, const std::function<void()>& body) {
    try {
        body();
        return kExitOk;
    } catch (const Fault& f) {
        std::cerr << "cauce libro " << verb << ": " << f.what() << "\n";
        return kExitData;
    }
}

}  // namespace

Command AddWorkbookCommand(CLI::App& parent) {
    static Options o;
    static std::string verb;
    CLI::App* app =
        parent.add_subcommand("libro", "Crea el libro de un tramo y agrega, elimina o renumera registros");
    app->require_subcommand(1);

    CLI::App* nuevo = app->add_subcommand("nuevo", "Escribe un libro nuevo con la hoja de cada pantalla");
    nuevo->add_option("ARCHIVO", o.book, "Libro .xlsx que se crea (no debe existir)")
        ->required()
        ->type_name("");
    nuevo->callback([] { verb = "nuevo"; });

    // The verbs on a reach's workbook: its file and its sheet.
    const auto on_reach = [app](const char* name, const char* description) {
        CLI::App* verb_app = app->add_subcommand(name, description);
        verb_app->add_option("LIBRO", o.book, "Libro del tramo")->required()->type_name("");
        verb_app->add_option("--hoja", o.sheet, "Hoja (por omisión, la primera hoja de perfiles)")
            ->type_name("NOMBRE");
        return verb_app;
    };
    CLI::App* agregar = on_reach("agregar", "Agrega un registro después de otro");
    agregar
        ->add_option("--despues", o.after,
                     "Registro tras el que se agrega (0: al principio; por omisión, al final)")
        ->type_name("R");
    agregar->callback([] { verb = "agregar"; });

    CLI::App* eliminar = on_reach("eliminar", "Elimina un registro");
    eliminar->add_option("--registro", o.record, "Registro que se elimina")->required()->type_name("R");
    eliminar->callback([] { verb = "eliminar"; });

    CLI::App* renumerar = on_reach("renumerar", "Numera las secciones por su orden");
    renumerar->callback([] { verb = "renumerar"; });

    return Described(
        app,
        "\"nuevo\" escribe las hojas Canales, Persecc, secciones , Percanal y Zorvena con la fila de\n"
        "encabezados que usan las pantallas y un registro; nunca reemplaza un archivo existente.\n"
        "\"agregar\" copia del registro anterior los valores de todo el tramo (No# secciones, Caudal,\n"
        "Rugosidad Zi, Darrastre) y numera la sección nueva; \"renumerar\" pone en SecId el orden de cada\n"
        "registro y en No# secciones su número.",
        {"cauce libro nuevo tramo.xlsx", "cauce libro agregar tramo.xlsx --hoja Persecc",
         "cauce libro eliminar tramo.xlsx --hoja Persecc --registro 3",
         "cauce libro renumerar tramo.xlsx --hoja Persecc"},
        [] {
            if (verb == "nuevo")
                return Data(verb, [] {
                    reach::CreateReachWorkbook(o.book);
                    std::cout << "Libro nuevo escrito en " << o.book << "\n";
                });
            if (verb == "agregar")
                return Data(verb, [] {
                    const std::string sheet = SheetOf(o);
                    int after = o.after;
                    if (after < 0) after = reach::RecordCountOf(o.book, sheet);  // at the end
                    const int added = reach::AddRecord(o.book, sheet, after);
                    std::cout << "Registro " << added << " agregado en la hoja \"" << sheet << "\"\n";
                });
            if (verb == "eliminar")
                return Data(verb, [] {
                    const std::string sheet = SheetOf(o);
                    reach::DeleteRecord(o.book, sheet, o.record);
                    std::cout << "Registro " << o.record << " eliminado de la hoja \"" << sheet << "\"\n";
                });
            return Data(verb, [] {
                const std::string sheet = SheetOf(o);
                const int n = reach::RenumberReach(o.book, sheet);
                std::cout << "Hoja \"" << sheet << "\": " << n << " secciones numeradas de 1 a " << n << "\n";
            });
        });
}

}  // namespace cauce::cli
