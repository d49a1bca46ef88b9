// The reach of a profile sheet as the standard-step profile takes it: the one place where records
// (or a profile screen showing them) become the solver's input, for the command line and the desktop.
#pragma once

#include <string>
#include <vector>

#include "forms/screen.hpp"
#include "hydraulics/standard_step/reach.hpp"
#include "hydraulics/standard_step/warnings.hpp"

namespace cauce::screens {

struct StandardReach {
    standard_step::ReachInput input;
    std::string error;  // Spanish; the input is not usable when set
};

// Sections 1..N of the sheet bound to a profile screen (Form2, Form3 or Form4), N being the number of
// sections of the record shown, with its chainages (Form2 and Form4: the fifteen "Abscisa" columns
// of that record, all of them; Form3: each record's own) and the given downstream depth. The boxes of
// the record shown count as its data, edited or not.
StandardReach StandardReachOf(const forms::Screen& screen, double downstream_depth);

// The standard step's table as the desktop and the command line show it: the heads of its columns and
// one section's cells, numbers written by fixed with each column's decimals.
std::vector<std::string> StandardHeads();
std::vector<std::string> StandardCells(const standard_step::SectionResult& s,
                                       std::string (*fixed)(double value, int decimals));

// What the profile screen's state and record say for the warnings beside its own profile.
standard_step::LegacyRun LegacyRunOf(const forms::Screen& screen);

}  // namespace cauce::screens
