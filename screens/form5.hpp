// Form5 ("Flujo uniforme"): a natural channel in uniform flow, one section at a time.
#pragma once

#include <memory>

#include "forms/screen.hpp"

namespace cauce::screens {

std::unique_ptr<forms::Screen> MakeForm5();

}  // namespace cauce::screens
