// The Ayuda menu: the user's guide shipped with the program, and "Acerca de Cauce" with its version.
#pragma once

#include <QString>

class QMenu;
class QWidget;

namespace cauce::app {

// The guide's text (Markdown), from the program's resources.
QString GuideText();
// The program's version ("0.1").
QString Version();
// Adds "Guía de uso" and "Acerca de Cauce" to the menu.
void AddHelpActions(QMenu& help, QWidget* parent);

}  // namespace cauce::app
