// Form5 ("Flujo uniforme"): a natural channel in uniform flow, one section at a time.
#pragma once

#include <memory>

#include "forms/screen.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::screens {

// Form5's controls by meaning: those of every natural-section screen (section::), the section's
// boxes as Form2 numbers them, and the flow at the normal depth.
namespace form5 {
using namespace section;
using forms::ControlName;

namespace box {
using namespace section::stream_box;
inline constexpr ControlName BankfullDischarge{"Text101"};
inline constexpr ControlName Area{"Text102"};
inline constexpr ControlName TopWidth{"Text103"};
inline constexpr ControlName Velocity{"Text104"};
inline constexpr ControlName Froude{"Text105"};
}  // namespace box
}  // namespace form5

std::unique_ptr<forms::Screen> MakeForm5();

}  // namespace cauce::screens
