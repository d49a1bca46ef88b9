// The physical constants and the fixed steps of the legacy routines, in one place.
//
// Each routine uses these exactly where it wrote the number, in the same order of operations: a
// march that adds kStep1mm to its depth adds 0.001, as it always has. Writing g * (a / t) where the
// routine wrote 9.81 * a / t would change the last bits of a result, so no formula is rearranged.
#pragma once

#include <cstdint>

namespace cauce {

inline constexpr double kGravity = 9.81;        // m/s2
inline constexpr double kTwiceGravity = 19.62;  // m/s2, the 2g of the velocity head V^2 / 2g

// Depth steps of the marches, in metres.
inline constexpr double kStep1mm = 0.001;     // normal and critical depth of natural sections and conduits
inline constexpr double kStep2mm = 0.002;     // natural sections: water over the banks
inline constexpr double kStep2_5mm = 0.0025;  // trapezoidal channels: water over the banks
// The direct-step profile; a full conduit's critical depth starts this far below the top.
inline constexpr double kStep5mm = 0.005;

// The fixed-point iterations of a trapezoidal channel stop when a pass changes the depth by no more
// than this (m).
inline constexpr double kTolerance = 0.0001;

// Budgets: every march counts its steps against one, far beyond any real channel, and running out
// of it is a fault that names the march instead of the legacy hang.
namespace natural {
// A kilometre of depth in 1 mm steps (two in 2 mm steps); a click that runs it out still ends
// within a second.
inline constexpr long long kMarchBudget = 1'000'000;
}  // namespace natural

namespace prismatic {
// The fixed-point iterations of a real channel converge in a few dozen passes; the 1 mm and 2.5 mm
// marches need a few thousand steps. These allow conduits of kilometres and a kilometre of water
// over the banks, so they never change a result where the search ends. The conduit's marches are
// also bounded by depth (see conduit.cpp and critical.cpp), so that a discharge no depth carries is
// told at once.
inline constexpr std::int64_t kIterationBudget = 100'000;
inline constexpr std::int64_t kMarchBudget = 5'000'000;
inline constexpr std::int64_t kFloodBudget = 400'000;
}  // namespace prismatic

namespace profiles {
// Passes of one direct-step march: each moves the depth 5 mm, so this is 500 m of depth, far beyond
// any channel (and a click that runs it out still ends quickly).
inline constexpr std::int64_t kStepBudget = 100'000;
}  // namespace profiles

}  // namespace cauce
