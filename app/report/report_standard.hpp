// The report's part about the standard-step profile: its table, with the difference from the screen's
// levels, the jump, its notes and the warnings about the screen's profile. The desktop's Informe and
// "cauce informe" both print it from here.
#pragma once

#include "app/report/report_pages.hpp"
#include "app/standard_profile.hpp"
#include "reach/run.hpp"

namespace cauce::app {

// Lays the part down after the screen's profile table, under the heading numbered `number`.
void StandardStepSection(ReportPages& pages, const reach::ReachResult& r, const StandardProfile& standard,
                         int number);

}  // namespace cauce::app
