// Where the screens' direct-step profile is silently rough: warnings shown beside its results, read
// from the state a profile screen holds after "Perfiles". Nothing here changes that state.
#pragma once

#include <string>
#include <vector>

#include "hydraulics/natural/state.hpp"

namespace cauce::standard_step {

struct LegacyRun {
    const natural::State* state = nullptr;  // after every "(Y?)" and "Perfiles"
    // The screen reads its chainages from fifteen boxes where rows 8 and 9 both show "Abscisa9"
    // (the natural and prismatic profile screens; not the scour screen, whose sections carry their own).
    bool fifteen_boxes = true;
    double abscisa8 = 0, abscisa9 = 0;  // the record's own "Abscisa8" and "Abscisa9"
};

// The warnings, in Spanish, one per case and section, in section order.
std::vector<std::string> LegacyWarnings(const LegacyRun& run);

}  // namespace cauce::standard_step
