#include "screens/registry.hpp"

#include "screens/form1.hpp"
#include "screens/form3.hpp"
#include "screens/form5.hpp"
#include "screens/profile_screen.hpp"

namespace cauce::screens {

namespace {
struct Entry {
    std::string_view name;
    std::unique_ptr<forms::Screen> (*make)();
};
const Entry kScreens[] = {
    {"Form1", MakeForm1}, {"Form2", MakeForm2}, {"Form3", MakeForm3},
    {"Form4", MakeForm4}, {"Form5", MakeForm5},
};
}  // namespace

std::unique_ptr<forms::Screen> MakeScreen(std::string_view name) {
    for (const auto& e : kScreens)
        if (e.name == name) return e.make();
    return nullptr;
}

std::vector<std::string_view> ScreenNames() {
    std::vector<std::string_view> names;
    for (const auto& e : kScreens) names.push_back(e.name);
    return names;
}

}  // namespace cauce::screens
