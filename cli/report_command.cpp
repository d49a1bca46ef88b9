// cauce informe: the calculation report of a reach as a PDF, ready to attach to a design report: the
// data of each section, its results, the profile table, the cross-sections and the profile drawn.
#include "cli/args.hpp"
#include "cli/command.hpp"
#include "cli/graphics.hpp"
#include "reach/run.hpp"

namespace cauce::cli {

using namespace reach;

namespace {

struct Options {
    std::string book, sheet, y_initial, y_final, output;
    ProjectOptions project;
};

int Run(const Options& o) {
    if (o.output.empty()) throw UsageError("falta -o ARCHIVO.pdf: dónde escribir el informe");
    CheckReachOptions(o.sheet, o.y_initial, o.y_final);
    if (!CanDraw()) throw UsageError(CannotDraw());
    return WriteReport(o.book, ReachOptions{o.sheet, o.y_initial, o.y_final, false}, o.project, o.output);
}

}  // namespace

Command AddReportCommand(CLI::App& parent) {
    static Options o;
    CLI::App* app = parent.add_subcommand("informe", "Escribe en PDF el informe de cálculo de un tramo");
    app->add_option("LIBRO", o.book, "Libro de Excel del tramo")->required()->type_name("");
    app->add_option("--hoja", o.sheet,
                    "Hoja del tramo: Persecc (Form2), Percanal (Form4) o \"secciones \" (Form3)")
        ->type_name("NOMBRE");
    app->add_option("--y-inicial", o.y_initial, "Tirante en la última sección (m), Form2 y Form4")
        ->type_name("Y");
    app->add_option("--y-final", o.y_final, "Tirante en la última sección (m), Form3")->type_name("Y");
    app->add_option("-o,--salida", o.output, "Archivo PDF del informe")->type_name("ARCHIVO");
    app->add_option("--proyecto", o.project.proyecto, "Proyecto (si no, el guardado en el libro)")
        ->type_name("TEXTO");
    app->add_option("--cliente", o.project.cliente, "Cliente (si no, el guardado en el libro)")
        ->type_name("TEXTO");
    app->add_option("--autor", o.project.autor, "Autor (si no, el guardado en el libro)")->type_name("TEXTO");
    app->add_option("--reviso", o.project.reviso, "Revisó (si no, el guardado en el libro)")
        ->type_name("TEXTO");
    app->add_flag("--guardar", o.project.store, "Guarda en el libro los datos del proyecto dados");
    return Described(
        app,
        "El tramo se calcula como en \"cauce perfil\" (las mismas pantallas, los mismos números) y el "
        "informe\n"
        "reúne los datos de entrada de cada sección, sus resultados, la tabla del perfil, el dibujo de cada\n"
        "sección transversal y el perfil longitudinal. El archivo se escribe completo o no se escribe.\n"
        "Los datos del proyecto (Proyecto, Cliente, Autor, Revisó) se leen de las propiedades del libro;\n"
        "las opciones los cambian solo para este informe, salvo con --guardar, que los guarda en el libro.",
        {"cauce informe Rios.xlsx --y-inicial 1.8 -o informe.pdf",
         "cauce informe Ormandi.xlsx --y-final 2.5 -o rio-negro.pdf"},
        [] { return Run(o); });
}

}  // namespace cauce::cli
