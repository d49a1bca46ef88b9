// The screen driver: runs a screen from a script, headless, and prints its controls as JSON.
//
//   pantalla FormN          opens screen FormN afresh, as its Form_Load leaves it
//   escribir CONTROL TEXTO  sets a text box's text: everything after the blank that follows CONTROL
//   oprimir CONTROL         clicks a button ("Salir" ends the run)
//   libro RUTA              binds Data1 to the workbook at RUTA and shows the first record; a
//                           relative RUTA is taken from the working folder, the legacy fixed paths
//                           ("C:\Programas\Datos\Rios.xls", ...) from the user's data folder
//   registro N              moves Data1 to record N, saving the record left when a bound box changed;
//                           "registro primero|anterior|siguiente|último" move as the navigator does
//   mostrar                 prints the screen's state as one line of JSON (with "registro": "3 de 12"
//                           once a workbook is bound, and "aviso" when a workbook operation said
//                           something)
//
// A workbook that cannot be opened or saved ends the run with its message and exit status 1; the
// pending record edits are saved on "Salir", on the next "pantalla" and at the end of the script.
//
// Blank lines and lines starting with '#' are skipped. A line that cannot be understood ends the run
// with a message naming its number and exit status 2.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "forms/screen.hpp"

namespace cauce::forms {

using ScreenFactory = std::function<std::unique_ptr<Screen>(std::string_view name)>;

// The screen's state as one JSON object: every control by name, plus "error" after a faulted click.
std::string StateJson(const Screen& screen);

// Runs the script; returns the exit status (0, or 2 for a line that cannot be understood).
int RunScript(std::istream& in, std::ostream& out, std::ostream& err, const ScreenFactory& make);

}  // namespace cauce::forms
