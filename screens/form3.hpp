// Form3 ("Rio Negro"): natural-channel profiles with the general scour of each section.
#pragma once

#include <memory>

#include "forms/screen.hpp"

namespace cauce::screens {

std::unique_ptr<forms::Screen> MakeForm3();

}  // namespace cauce::screens
