// The run of a whole reach on a profile screen (Form2, Form3, Form4), as a person does it by hand:
// "(Y?)" on each record of the sheet, the record of section N last (that click hands over to
// "Perfiles" and no section can be computed after it), then the depth at the last section typed
// and "Perfiles" pressed. The command line and the desktop both run a reach through here, so their
// numbers are the same.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "forms/binding.hpp"
#include "forms/screen.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::screens {

// The records to compute, in order, and those left out (with why).
struct ReachPlan {
    std::vector<int> records;
    std::vector<std::string> notices;
    std::string error;  // no record hands over to "Perfiles"
};

// The sections below N in the sheet's order, then the record of section N (or, lacking it, the
// first numbered above N).
ReachPlan PlanReach(const forms::RecordSource& source);

// The controls of a reach run on a profile screen (Form2, Form3, Form4); nullptr for any other.
const ReachControls* ReachControlsOf(const forms::Screen& screen);

// "(Y?)" on each record of the plan, moving to it first; `done` sees the screen after each click
// with the click's fault. Moving saves the record left, as the binding does (a failed save throws).
using SectionDone = std::function<void(int record, const std::optional<Fault>& fault)>;
void ComputeSections(forms::Screen& screen, const ReachPlan& plan, const SectionDone& done = {});

// Types the depth into its box and presses "Perfiles"; the click's fault, if any.
std::optional<Fault> RunProfile(forms::Screen& screen, const std::string& depth);

}  // namespace cauce::screens
