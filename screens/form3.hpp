// Form3 ("Rio Negro"): natural-channel profiles with the general scour of each section.
#pragma once

#include <memory>

#include "forms/screen.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::screens {

// Form3's controls by meaning: those of every natural-section screen (section::), the section's
// own boxes, the final depth, the grain size and the table with the scour.
namespace form3 {
using namespace section;
using forms::ControlName;

namespace box {
using namespace section::box;
inline constexpr ControlName Roughness{"Text123"};
inline constexpr ControlName Slope{"Text124"};
inline constexpr ControlName Discharge{"Text125"};
inline constexpr ControlName FloodWidth{"Text126"};
inline constexpr ControlName FloodRoughness{"Text127"};
inline constexpr ControlName FinalDepth{"Text128"};  // the depth at the last section, "Y final"
inline constexpr ControlName NormalDepth{"Text129"};
inline constexpr ControlName CriticalDepth{"Text130"};
inline constexpr ControlName Chainage{"Text131"};   // the section's own chainage
inline constexpr ControlName GrainSize{"Text122"};  // mm; 0 leaves the scour out
inline constexpr SectionBoxes kAll{Roughness,      Slope,       Discharge,    FloodWidth,
                                   FloodRoughness, NormalDepth, CriticalDepth};
}  // namespace box

namespace label {
using namespace section::label;
inline constexpr ControlName FinalDepth{"Label5"};  // "Yfinal", or "Incluya Y final"
}  // namespace label

// The table: row j (1..15) of water-surface elevation, mean velocity and scour depth.
inline std::string TableWaterLevel(int j) {
    return forms::TextName(75 + j);
}
inline std::string TableVelocity(int j) {
    return forms::TextName(90 + j);
}
inline std::string TableScour(int j) {
    return forms::TextName(105 + j);
}

inline constexpr ReachControls kReach{box::kAll,       box::FinalDepth, label::FinalDepth, nullptr,
                                      TableWaterLevel, TableVelocity,   TableScour};
}  // namespace form3

std::unique_ptr<forms::Screen> MakeForm3();

}  // namespace cauce::screens
