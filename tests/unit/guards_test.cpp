// Every guard of bounded work met as a user meets it: typed into the screens' boxes and clicked, as
// the driver does. The click stops with the guard's message; the same screen then computes a real
// channel exactly as a fresh screen does, and on that channel the guard stays quiet. Expected values
// come from Manning's equation solved by bisection, the critical-flow condition solved by bisection
// and, for the profile, the gradually varied flow equation integrated by Runge-Kutta: never from the
// program. The screens report the marches' fixed steps to two decimals, hence the tolerances.
//
// Guards the scripts in tests/guiones/ already drive are not repeated here: Form2's section 51, zero
// slope and zero roughness (form2_faltas), Form1's zero roughness and negative slope under a bank
// height (form1_trapecio_faltas), a profile through a section never computed (form2_perfil_faltas)
// and a profile depth with no flow area (form3_faltas).
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "forms/val.hpp"
#include "screens/form1.hpp"
#include "screens/form3.hpp"
#include "screens/form5.hpp"
#include "screens/profile_screen.hpp"
#include "screens/registry.hpp"

namespace {

using cauce::forms::Screen;
namespace form1 = cauce::screens::form1;
namespace form3 = cauce::screens::form3;
namespace form5 = cauce::screens::form5;
namespace profile = cauce::screens::profile;
namespace section = cauce::screens::section;

// ---- Independent references ---------------------------------------------------------------------

constexpr double kG = 9.81;

double Bisect(const std::function<double(double)>& f, double lo, double hi) {
    for (int i = 0; i < 200; ++i) {
        const double mid = (lo + hi) / 2;
        if ((f(lo) < 0) == (f(mid) < 0)) {
            lo = mid;
        } else {
            hi = mid;
        }
    }
    return (lo + hi) / 2;
}

double Manning(double a, double p, double n, double s) {
    return std::sqrt(s) / n * std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0);
}

// A trapezoid of bed width b and side slope m (horizontal per vertical).
double NormalDepth(double b, double m, double n, double s, double q) {
    return Bisect(
        [&](double y) { return Manning((b + m * y) * y, b + 2 * y * std::sqrt(1 + m * m), n, s) - q; }, 1e-9,
        100);
}

double CriticalDepth(double b, double m, double q) {
    return Bisect([&](double y) { return kG * std::pow((b + m * y) * y, 3) - q * q * (b + 2 * m * y); }, 1e-9,
                  100);
}

// Height over the banks at which a channel full to its banks (area ab, wetted perimeter pb, top width
// tb), rising between 1:1 walls with that perimeter, and a flood zone of total width bz (a rectangle
// bz - tb wide with 45-degree sides) carry q together.
double OverBankHeight(double ab, double pb, double tb, double bz, double n, double nz, double s, double q) {
    return Bisect(
        [&](double d) {
            const double w = bz - tb;
            return Manning(ab + d * (tb + d), pb, n, s) + Manning(w * d, w + 2 * std::sqrt(2.0) * d, nz, s) -
                   q;
        },
        1e-9, 100);
}

// Depth a distance upstream of a rectangular section at depth y0, by the gradually varied flow
// equation dy/dx = (S0 - Sf) / (1 - Fr^2) integrated with fourth-order Runge-Kutta in 1 cm steps.
double BackwaterDepth(double b, double n, double s0, double q, double y0, double distance) {
    auto slope = [&](double y) {
        const double a = b * y, r = a / (b + 2 * y), v = q / a;
        return (s0 - n * n * v * v / std::pow(r, 4.0 / 3.0)) / (1 - q * q * b / (kG * a * a * a));
    };
    const double h = -0.01;
    double y = y0;
    for (int i = 0; i < static_cast<int>(std::lround(distance / -h)); ++i) {
        const double k1 = slope(y), k2 = slope(y + h / 2 * k1), k3 = slope(y + h / 2 * k2),
                     k4 = slope(y + h * k3);
        y += h / 6 * (k1 + 2 * k2 + 2 * k3 + k4);
    }
    return y;
}

// The channels of the cases. Natural: a rectangle 3 m wide and 3 m deep (levels 100 and 103), n 0.015,
// S0 0.001, Q 6 m3/s in the banks or 30 m3/s over them into a flood zone 20 m wide (nz 0.04).
// Prismatic: a trapezoid b 2 m, z 1, banks 1 m high, the same n and S0.
constexpr double kN = 0.015, kS = 0.001, kNz = 0.04;
const double kRectYn = NormalDepth(3, 0, kN, kS, 6);  // 1.2314
const double kRectYc = CriticalDepth(3, 0, 6);        // 0.7415
const double kRectFull = Manning(9, 9, kN, kS);       // 18.974, the rectangle full to 3 m
const double kRectHz = OverBankHeight(9, 9, 3, 20, kN, kNz, kS, 30);
const double kTrapYn = NormalDepth(2, 1, kN, kS, 2);  // 0.6273
const double kTrapYc = CriticalDepth(2, 1, 2);        // 0.4329
const double kTrapPb = 2 + 2 * std::sqrt(2.0);
const double kTrapD = OverBankHeight(3, kTrapPb, 4, 20, kN, kNz, kS, 10);
const double kTrapQAt13 =
    Manning(3 + 0.3 * 4.3, kTrapPb, kN, kS) + Manning(16 * 0.3, 16 + 2 * std::sqrt(2.0) * 0.3, kNz, kS);
const double kBackwater = BackwaterDepth(3, kN, kS, 6, 2.0, 100);  // 1.925

// ---- Cases ---------------------------------------------------------------------------------------

// A step types a text into a box, or clicks a button (a click that must succeed).
struct Step {
    std::string control, text;
    bool click = false;
};
using Steps = std::vector<Step>;

Step Put(std::string_view box, std::string text) {
    return {std::string(box), std::move(text)};
}
Step Press(std::string_view button) {
    return {std::string(button), "", true};
}

struct Shown {
    std::string box;
    double value;
    double tol;  // half a displayed unit plus the march's step
};

using Texts = std::vector<std::pair<std::string, std::string>>;

struct Guard {
    const char* name;
    const char* screen;
    Steps before;        // the channel with the faulty datum, and any clicks before the faulty one
    std::string button;  // the click the guard stops
    std::string fault;   // its message, exactly; "" when the screen answers with a message instead
    Texts message;       // texts after the faulty click
    Steps fix;           // the datum corrected, and the clicks that compute the real channel
    std::vector<Shown> shown;
    Texts texts;  // exact texts of the real channel
};

// The natural rectangle in the level table, with its roughness, slope and discharge boxes.
Steps Rectangle(std::string_view n_box, std::string_view s_box, std::string_view q_box, const char* q) {
    return {Put(section::LevelElevation(1), "100"),
            Put(section::LevelWidth(1), "3"),
            Put(section::LevelElevation(2), "103"),
            Put(section::LevelWidth(2), "3"),
            Put(n_box, "0.015"),
            Put(s_box, "0.001"),
            Put(q_box, q)};
}

Steps Join(std::initializer_list<Steps> parts) {
    Steps all;
    for (const auto& p : parts) all.insert(all.end(), p.begin(), p.end());
    return all;
}

// Two sections of the rectangle 100 m apart on a slope of 0.001, both computed with "(Y?)", on Form2's
// boxes; the profile starts at section 2.
Steps TwoSectionReach() {
    return Join({{Put(profile::box::SectionCount, "2"), Put(profile::box::SectionNumber, "1")},
                 Rectangle(profile::box::Roughness, profile::box::Slope, profile::box::Discharge, "6"),
                 {Put(profile::LevelElevation(1), "100.1"), Put(profile::LevelElevation(2), "103.1"),
                  Press(profile::button::Section), Put(profile::box::SectionNumber, "2"),
                  Put(profile::LevelElevation(1), "100"), Put(profile::LevelElevation(2), "103"),
                  Press(profile::button::Section)}});
}

const char* const kEndless =
    "El cálculo del perfil no termina: la distancia no alcanza la longitud del tramo ni el tirante su límite "
    "(revise la sección, la pendiente y el caudal)";
const char* const kPendienteNula =
    "Pendiente nula: el caudal no se alcanza a ninguna profundidad (revise la Pendiente)";

const std::vector<Guard>& Cases() {
    static const std::vector<Guard> cases = {
        // Zero slope: no depth carries the discharge (the legacy march never ended).
        {"ZeroSlopeOverTheBanksForm5",
         "Form5",
         Join({{Put(form5::box::SectionNumber, "1"), Put(form5::box::FloodWidth, "20"),
                Put(form5::box::FloodRoughness, "0.04")},
               Rectangle(form5::box::Roughness, form5::box::Slope, form5::box::Discharge, "30"),
               {Put(form5::box::Slope, "0")}}),
         form5::button::Section,
         kPendienteNula,
         {},
         {Put(form5::box::Slope, "0.001"), Press(form5::button::Section)},
         {{form5::box::NormalDepth, 3 + kRectHz, 0.007},
          {form5::box::BankfullDischarge, kRectFull, 0.005},
          {form5::box::Area, 9 + kRectHz * (3 + kRectHz) + 17 * kRectHz, 0.005 + 0.002 * 21},
          {form5::box::TopWidth, 20 + 2 * kRectHz, 0.005 + 0.004}},
         {}},
        // Zero roughness: Form4 divides by it while building the tables; Form3 refuses it first.
        {"ZeroRoughnessForm4",
         "Form4",
         Join({{Put(profile::box::SectionCount, "3"), Put(profile::box::SectionNumber, "1")},
               Rectangle(profile::box::Roughness, profile::box::Slope, profile::box::Discharge, "6"),
               {Put(profile::box::Roughness, "0")}}),
         profile::button::Section,
         "División por cero",
         {},
         {Put(profile::box::Roughness, "0.015"), Press(profile::button::Section)},
         {{profile::box::NormalDepth, kRectYn, 0.007}, {profile::box::CriticalDepth, kRectYc, 0.007}},
         {{profile::label::Message, ""}}},
        {"ZeroRoughnessForm3",
         "Form3",
         Join({{Put(form3::box::SectionCount, "3"), Put(form3::box::SectionNumber, "1")},
               Rectangle(form3::box::Roughness, form3::box::Slope, form3::box::Discharge, "6"),
               {Put(form3::box::Roughness, "0")}}),
         form3::button::Section,
         "",
         {{form3::label::Message, "Falta la Rugosidad"}, {form3::box::NormalDepth, ""}},
         {Put(form3::box::Roughness, "0.015"), Press(form3::button::Section)},
         {{form3::box::NormalDepth, kRectYn, 0.007}, {form3::box::CriticalDepth, kRectYc, 0.007}},
         {{form3::label::Message, ""}}},
        // A flood zone narrower than the channel at its banks: a negative flood-zone area.
        {"NarrowFloodZoneQForm1",
         "Form1",
         {Press(form1::button::Trapezoidal), Put(form1::box::Roughness, "0.015"),
          Put(form1::box::Slope, "0.001"), Put(form1::box::Base, "2"), Put(form1::box::SideSlope, "1"),
          Put(form1::box::BankHeight, "1"), Put(form1::box::FloodWidth, "3"),
          Put(form1::box::FloodRoughness, "0.04"), Put(form1::box::NormalDepth, "1.3")},
         form1::button::Discharge,
         "El ancho de la zona inundable es menor que el ancho del canal a banca llena (revise el Ancho zona)",
         {{form1::box::Discharge, ""}},
         {Put(form1::box::FloodWidth, "20"), Press(form1::button::Discharge)},
         {{form1::box::Discharge, kTrapQAt13, 0.0005},
          {form1::box::MainArea, 4.29, 0.005},
          {form1::box::FloodArea, 4.8, 0.005}},
         {{form1::label::Message, "HAY DESBORDAMIENTO"}}},
        // A discharge no channel carries.
        {"HugeDischargeOverTheBanksForm5",
         "Form5",
         Join({{Put(form5::box::SectionNumber, "1"), Put(form5::box::FloodWidth, "20"),
                Put(form5::box::FloodRoughness, "0.04")},
               Rectangle(form5::box::Roughness, form5::box::Slope, form5::box::Discharge, "1e30")}),
         form5::button::Section,
         "La profundidad sobre las orillas no se alcanza: el cálculo no termina (revise la Pendiente y las "
         "rugosidades)",
         {{form5::box::NormalDepth, ""}},
         {Put(form5::box::Discharge, "30"), Press(form5::button::Section)},
         {{form5::box::NormalDepth, 3 + kRectHz, 0.007}},
         {}},
        {"HugeDischargeOverTheBanksForm1",
         "Form1",
         {Press(form1::button::Trapezoidal), Put(form1::box::Roughness, "0.015"),
          Put(form1::box::Slope, "0.001"), Put(form1::box::Base, "2"), Put(form1::box::SideSlope, "1"),
          Put(form1::box::BankHeight, "1"), Put(form1::box::FloodWidth, "20"),
          Put(form1::box::FloodRoughness, "0.04"), Put(form1::box::Discharge, "1e30")},
         form1::button::NormalDepth,
         "La profundidad sobre las orillas no se alcanza: el cálculo no termina (revise las rugosidades, la "
         "Pendiente y el Caudal)",
         {{form1::box::NormalDepth, ""}},
         {Put(form1::box::Discharge, "10"), Press(form1::button::NormalDepth)},
         {{form1::box::NormalDepth, 1 + kTrapD, 0.0075}},
         {}},
        {"HugeDischargeWithoutBanksForm1",
         "Form1",
         {Press(form1::button::Trapezoidal), Put(form1::box::Roughness, "0.015"),
          Put(form1::box::Slope, "0.001"), Put(form1::box::Base, "2"), Put(form1::box::SideSlope, "1"),
          Put(form1::box::Discharge, "1e30")},
         form1::button::NormalDepth,
         "El tirante crítico no converge: el cálculo no termina (revise la Base, el Talud y el Caudal)",
         {{form1::box::NormalDepth, ""}, {form1::box::CriticalDepth, ""}},
         {Put(form1::box::Discharge, "2"), Press(form1::button::NormalDepth)},
         {{form1::box::NormalDepth, kTrapYn, 0.006}, {form1::box::CriticalDepth, kTrapYc, 0.006}},
         {{form1::box::BankHeight, "Sin límite"}}},
        // A start depth so large that a 5 mm step leaves it as it is: the energy never changes, the
        // distance never grows (the legacy march never ended).
        {"EndlessProfileForm2",
         "Form2",
         Join({TwoSectionReach(),
               {Put(profile::TableChainage(1), "0"), Put(profile::TableChainage(2), "100"),
                Put(profile::box::StartDepth, "1e17")}}),
         profile::button::Profiles,
         kEndless,
         {{profile::TableWaterLevel(1), ""}},
         {Put(profile::box::StartDepth, "2"), Press(profile::button::Profiles)},
         {{profile::TableWaterLevel(2), 102.0, 0.001},
          {profile::TableWaterLevel(1), 100.1 + kBackwater, 0.005 + 0.006}},
         {{profile::TableType(2), "M1"}}},
    };
    return cases;
}

void Do(Screen& screen, const Steps& steps) {
    for (const auto& s : steps) {
        if (!s.click) {
            screen.Type(s.control, s.text);
        } else {
            const auto error = screen.Click(s.control);
            ASSERT_FALSE(error.has_value()) << s.control << ": " << error->what();
        }
    }
}

class GuardTest : public ::testing::TestWithParam<Guard> {};

TEST_P(GuardTest, StopsTheClickWithItsMessageAndTheScreenComputesTheRealChannel) {
    const Guard& g = GetParam();
    auto screen = cauce::screens::MakeScreen(g.screen);
    ASSERT_NO_FATAL_FAILURE(Do(*screen, g.before));
    const auto error = screen->Click(g.button);
    if (g.fault.empty()) {
        EXPECT_FALSE(error.has_value()) << error->what();
    } else {
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->what(), g.fault);
    }
    for (const auto& [box, text] : g.message) EXPECT_EQ(screen->Get(box).text, text) << box;

    // The same screen, the datum corrected: the real channel, and the guard quiet on it.
    ASSERT_NO_FATAL_FAILURE(Do(*screen, g.fix));
    for (const auto& s : g.shown)
        EXPECT_NEAR(cauce::forms::Val(screen->Get(s.box).text), s.value, s.tol)
            << s.box << " shows " << screen->Get(s.box).text;
    for (const auto& [box, text] : g.texts) EXPECT_EQ(screen->Get(box).text, text) << box;

    // Nothing of the fault is left behind: a fresh screen given the same data shows the same.
    auto fresh = cauce::screens::MakeScreen(g.screen);
    ASSERT_NO_FATAL_FAILURE(Do(*fresh, g.before));
    ASSERT_NO_FATAL_FAILURE(Do(*fresh, g.fix));
    for (const auto& c : fresh->Controls()) EXPECT_EQ(screen->Get(c.name).text, c.text) << c.name;
}

INSTANTIATE_TEST_SUITE_P(Guards, GuardTest, ::testing::ValuesIn(Cases()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
