// Form2 ("Perfiles en cauces", the startup screen) and Form4 ("Perfiles de zorvena"): one screen
// configured twice. Both compute each section with "(Y?)" and, after the section numbered N, the
// water-surface profile of the reach with "Perfiles".
#pragma once

#include <memory>
#include <string>

#include "screens/natural_screen.hpp"

namespace cauce::screens {

// Form2's and Form4's controls by meaning: those of every natural-section screen (section::), the
// section's boxes as Form2 numbers them, the start depth and the profile table.
namespace profile {
using namespace section;
using forms::ControlName;

namespace box {
using namespace section::stream_box;
inline constexpr ControlName StartDepth{"Text98"};  // the depth at the last section, "Y inicial"
}  // namespace box

namespace label {
using namespace section::label;
inline constexpr ControlName StartDepth{"Label32"};  // "Yinicial", or "Incluya Y inicial"
}  // namespace label

namespace picture {
using namespace section::picture;
inline constexpr ControlName Summer{"Picture2"};
}  // namespace picture

// The profile table: row j (1..15) of chainage (data), profile type, water-surface elevation and
// mean velocity.
inline std::string TableChainage(int j) {
    return forms::TextName(29 + 2 * j);
}
inline std::string TableType(int j) {
    return forms::TextName(30 + 2 * j);
}
inline std::string TableWaterLevel(int j) {
    return forms::TextName(62 + j);
}
inline std::string TableVelocity(int j) {
    return forms::TextName(77 + j);
}

inline constexpr ReachControls kReach{
    box::kAll, box::StartDepth, label::StartDepth, TableType, TableWaterLevel, TableVelocity, nullptr};
}  // namespace profile

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
};

std::unique_ptr<forms::Screen> MakeForm2();
std::unique_ptr<forms::Screen> MakeForm4();

}  // namespace cauce::screens
