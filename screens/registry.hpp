// The five screens by name: "Form1" .. "Form5".
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "forms/screen.hpp"

namespace cauce::screens {

// The picture box every screen shows its section's figure in.
inline constexpr forms::ControlName kSectionPicture{"Picture1"};

// A fresh screen as its Form_Load leaves it; nullptr for an unknown name.
std::unique_ptr<forms::Screen> MakeScreen(std::string_view name);

// The names of the screens that exist, in menu order.
std::vector<std::string_view> ScreenNames();

}  // namespace cauce::screens
