// What the desktop does when a workbook save is refused (a cell changed in two places, a workbook
// another program holds): the user chooses, and the window is never left stuck on the record.
#pragma once

#include <functional>

#include "forms/binding.hpp"
#include "forms/screen.hpp"

class QWidget;

namespace cauce::app {

class Prompter;

// Runs op (a record move, a save, opening another workbook); when a save inside it is refused, asks
// the user and settles it (keep mine / take the file's; or, for a workbook held elsewhere, discard
// the record's edits), then runs op again. Other faults, and a refusal left unsettled, are shown.
// True when op finally ran to its end.
bool SaveSettling(forms::Screen& model, Prompter& prompter, QWidget* parent, const std::function<void()>& op);

}  // namespace cauce::app
