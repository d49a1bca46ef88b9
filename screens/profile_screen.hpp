// Form2 ("Perfiles en cauces", the startup screen) and Form4 ("Perfiles de zorvena"): one screen
// configured twice. Both compute each section with "(Y?)" and, after the section numbered N, the
// water-surface profile of the reach with "Perfiles".
#pragma once

#include <memory>
#include <string>

#include "screens/natural_screen.hpp"

namespace cauce::screens {

struct ProfileScreenConfig {
    std::string name;         // "Form2"
    std::string title;        // window title
    std::string instruction;  // Label25 at load, before the 98 blanks
    std::string instruction_tail;
    std::string sheet;         // Data1's record source
    std::string caption;       // Data1's caption
    std::string slope_column;  // column bound to Text94
};

class ProfileScreen : public NaturalScreen {
public:
    explicit ProfileScreen(const ProfileScreenConfig& config);

private:
    void FormLoad();
    void Command1Click();  // "Perfiles"
    void Tabla();
    void LastSection() override;
};

std::unique_ptr<forms::Screen> MakeForm2();
std::unique_ptr<forms::Screen> MakeForm4();

}  // namespace cauce::screens
