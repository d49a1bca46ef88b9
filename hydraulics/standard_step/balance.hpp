// One step of each pass of the standard-step march (energy_balance.cpp).
#pragma once

#include <optional>

#include "hydraulics/standard_step/section.hpp"

namespace cauce::standard_step {

// Subcritical: the depth at up from the depth at down; nothing when no subcritical depth balances.
// named is the surveyed section a fault about up is told by.
std::optional<double> StepUpstream(const Section& up, const Section& down, double y_down, const Options& o,
                                   const Section& named);
// Supercritical: the depth at down from the depth at up; nothing when no supercritical depth balances.
std::optional<double> StepDownstream(const Section& up, const Section& down, double y_up, const Options& o);

}  // namespace cauce::standard_step
