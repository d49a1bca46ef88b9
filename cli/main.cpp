// cauce: with no arguments opens the desktop application; sub-commands run the screens headless.
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>

#include "cli/commands.hpp"
#include "forms/guion.hpp"
#include "screens/registry.hpp"
#ifdef CAUCE_HAS_WORKBOOK
#include "platform/platform.hpp"
#include "workbook/legacy.hpp"
#endif

int main(int argc, char** argv) {
    using namespace cauce;
    if (argc == 1) return cli::RunDesktop(argc, argv);
#ifdef CAUCE_HAS_WORKBOOK
    // The legacy .xls reader's child process (workbook/legacy.hpp), not a command for users.
    if (argc == 3 && std::string_view(argv[1]) == workbook::kLegacyReaderCommand) {
        platform::BinaryStandardOutput();
        return workbook::RunLegacyReader(argv[2], std::cout);
    }
#endif

    CLI::App app{"Cauce: hidráulica de canales y cauces naturales en flujo permanente.", "cauce"};
    app.set_help_flag("-h,--help", "Muestra esta ayuda y termina");
    app.require_subcommand(1);
    app.footer("Sin argumentos, cauce abre la aplicación de escritorio.");

    std::string script = "-";
    auto* guion =
        app.add_subcommand("guion", "Ejecuta una pantalla desde un guion y muestra sus controles en JSON");
    guion->add_option("ARCHIVO", script, "Guion a ejecutar (\"-\" o nada: la entrada estándar)");
    guion->footer(
        "Órdenes, una por línea:\n"
        "  pantalla FormN           abre la pantalla FormN (1 a 5)\n"
        "  escribir CONTROL TEXTO   escribe TEXTO en el cuadro CONTROL\n"
        "  oprimir CONTROL          oprime el botón CONTROL\n"
        "  libro RUTA               enlaza Data1 con el libro RUTA\n"
        "  registro N               va al registro N (guarda el que deja); también\n"
        "                           primero, anterior, siguiente, último\n"
        "  mostrar                  imprime el estado de la pantalla en JSON\n"
        "Ejemplo:\n"
        "  printf 'pantalla Form2\\nescribir Text1 100\\nmostrar\\n' | cauce guion");
    cli::AddCommands(app);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        // The help is a success; any option that cannot be understood ends with status 2.
        return app.exit(e) == 0 ? 0 : 2;
    }
    if (guion->parsed()) {
        cli::InstallWorkbooks();
        const forms::ScreenFactory make = [](std::string_view name) { return screens::MakeScreen(name); };
        if (script == "-") return forms::RunScript(std::cin, std::cout, std::cerr, make);
        std::ifstream in(script, std::ios::binary);
        if (!in) {
            std::cerr << "guion: no se puede abrir el archivo \"" << script << "\"\n";
            return 2;
        }
        return forms::RunScript(in, std::cout, std::cerr, make);
    }
    return cli::RunCommand(app);
}
