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
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "forms/val.hpp"
#include "screens/natural_screen.hpp"
#include "screens/registry.hpp"

namespace {

using cauce::forms::Screen;

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

// A step is "Box=text" (typing) or "Command" (a click that must succeed).
using Steps = std::vector<std::string>;

struct Shown {
    const char* box;
    double value;
    double tol;  // half a displayed unit plus the march's step
};

struct Guard {
    const char* name;
    const char* screen;
    Steps before;        // the channel with the faulty datum, and any clicks before the faulty one
    const char* button;  // the click the guard stops
    std::string fault;   // its message, exactly; "" when the screen answers with a message instead
    std::vector<std::pair<const char*, std::string>> message;  // texts after the faulty click
    Steps fix;  // the datum corrected, and the clicks that compute the real channel
    std::vector<Shown> shown;
    std::vector<std::pair<const char*, std::string>> texts;  // exact texts of the real channel
};

// The natural rectangle in the level table, with its roughness, slope and discharge boxes.
Steps Rectangle(const char* n_box, const char* s_box, const char* q_box, const char* q) {
    return {"Text1=100",
            "Text2=3",
            "Text3=103",
            "Text4=3",
            std::string(n_box) + "=0.015",
            std::string(s_box) + "=0.001",
            std::string(q_box) + "=" + q};
}

Steps Join(std::initializer_list<Steps> parts) {
    Steps all;
    for (const auto& p : parts) all.insert(all.end(), p.begin(), p.end());
    return all;
}

// Two sections of the rectangle 100 m apart on a slope of 0.001, both computed with "(Y?)", on Form2's
// boxes; the profile starts at section 2.
Steps TwoSectionReach() {
    return Join(
        {{"Text61=2", "Text62=1"},
         Rectangle("Text93", "Text94", "Text95", "6"),
         {"Text1=100.1", "Text3=103.1", "Command2", "Text62=2", "Text1=100", "Text3=103", "Command2"}});
}

Steps TwoSectionReachForm3() {
    return Join({{"Text61=2", "Text62=1", "Text131=0"},
                 Rectangle("Text123", "Text124", "Text125", "6"),
                 {"Text1=100.1", "Text3=103.1", "Command2", "Text62=2", "Text131=100", "Text1=100",
                  "Text3=103", "Command2"}});
}

const char* const kEndless =
    "El cálculo del perfil no termina: la distancia no alcanza la longitud del tramo ni el tirante su límite "
    "(revise la sección, la pendiente y el caudal)";
const char* const kPendienteNula =
    "Pendiente nula: el caudal no se alcanza a ninguna profundidad (revise la Pendiente)";

const std::vector<Guard>& Cases() {
    static const std::vector<Guard> cases = {
        // Zero slope: no depth carries the discharge (the legacy march never ended).
        {"ZeroSlopeOverTheBanksForm3",
         "Form3",
         Join({{"Text61=3", "Text62=1", "Text126=20", "Text127=0.04"},
               Rectangle("Text123", "Text124", "Text125", "30"),
               {"Text124=0"}}),
         "Command2",
         kPendienteNula,
         {},
         {"Text124=0.001", "Command2"},
         {{"Text129", 3 + kRectHz, 0.005 + 0.002}},
         {{"Label31", "HAY DESBORDAMIENTO"}}},
        {"ZeroSlopeOverTheBanksForm5",
         "Form5",
         Join({{"Text62=1", "Text96=20", "Text97=0.04"},
               Rectangle("Text93", "Text94", "Text95", "30"),
               {"Text94=0"}}),
         "Command2",
         kPendienteNula,
         {},
         {"Text94=0.001", "Command2"},
         {{"Text99", 3 + kRectHz, 0.007},
          {"Text101", kRectFull, 0.005},
          {"Text102", 9 + kRectHz * (3 + kRectHz) + 17 * kRectHz, 0.005 + 0.002 * 21},
          {"Text103", 20 + 2 * kRectHz, 0.005 + 0.004}},
         {}},
        // Zero roughness: Form4 divides by it while building the tables; Form3 refuses it first.
        {"ZeroRoughnessForm4",
         "Form4",
         Join({{"Text61=3", "Text62=1"}, Rectangle("Text93", "Text94", "Text95", "6"), {"Text93=0"}}),
         "Command2",
         "División por cero",
         {},
         {"Text93=0.015", "Command2"},
         {{"Text99", kRectYn, 0.007}, {"Text100", kRectYc, 0.007}},
         {{"Label31", ""}}},
        {"ZeroRoughnessForm3",
         "Form3",
         Join({{"Text61=3", "Text62=1"}, Rectangle("Text123", "Text124", "Text125", "6"), {"Text123=0"}}),
         "Command2",
         "",
         {{"Label31", "Falta la Rugosidad"}, {"Text129", ""}},
         {"Text123=0.015", "Command2"},
         {{"Text129", kRectYn, 0.007}, {"Text130", kRectYc, 0.007}},
         {{"Label31", ""}}},
        // A flood zone narrower than the channel at its banks: a negative flood-zone area.
        {"NarrowFloodZoneYnForm1",
         "Form1",
         {"Command1", "Text1=0.015", "Text2=0.001", "Text3=2", "Text4=1", "Text5=1", "Text6=3", "Text7=0.04",
          "Text8=10"},
         "Command4",
         "El ancho de la zona inundable es menor que el ancho del canal a banca llena (revise el Ancho zona)",
         {{"Text9", ""}},
         {"Text6=20", "Command4"},
         {{"Text9", 1 + kTrapD, 0.005 + 0.0025},
          {"Text16", 3 + kTrapD * (4 + kTrapD), 0.005 + 0.0025 * 5},
          {"Text20", 16 * kTrapD, 0.005 + 0.0025 * 16},
          {"Text14", Manning(3, kTrapPb, kN, kS), 0.0005}},
         {{"Label21", "HAY DESBORDAMIENTO"}}},
        {"NarrowFloodZoneQForm1",
         "Form1",
         {"Command1", "Text1=0.015", "Text2=0.001", "Text3=2", "Text4=1", "Text5=1", "Text6=3", "Text7=0.04",
          "Text9=1.3"},
         "Command5",
         "El ancho de la zona inundable es menor que el ancho del canal a banca llena (revise el Ancho zona)",
         {{"Text8", ""}},
         {"Text6=20", "Command5"},
         {{"Text8", kTrapQAt13, 0.0005}, {"Text16", 4.29, 0.005}, {"Text20", 4.8, 0.005}},
         {{"Label21", "HAY DESBORDAMIENTO"}}},
        // A discharge no channel carries.
        {"HugeDischargeOverTheBanksForm5",
         "Form5",
         Join({{"Text62=1", "Text96=20", "Text97=0.04"}, Rectangle("Text93", "Text94", "Text95", "1e30")}),
         "Command2",
         "La profundidad sobre las orillas no se alcanza: el cálculo no termina (revise la Pendiente y las "
         "rugosidades)",
         {{"Text99", ""}},
         {"Text95=30", "Command2"},
         {{"Text99", 3 + kRectHz, 0.007}},
         {}},
        {"HugeDischargeOverTheBanksForm1",
         "Form1",
         {"Command1", "Text1=0.015", "Text2=0.001", "Text3=2", "Text4=1", "Text5=1", "Text6=20", "Text7=0.04",
          "Text8=1e30"},
         "Command4",
         "La profundidad sobre las orillas no se alcanza: el cálculo no termina (revise las rugosidades, la "
         "Pendiente y el Caudal)",
         {{"Text9", ""}},
         {"Text8=10", "Command4"},
         {{"Text9", 1 + kTrapD, 0.0075}},
         {}},
        {"HugeDischargeWithoutBanksForm1",
         "Form1",
         {"Command1", "Text1=0.015", "Text2=0.001", "Text3=2", "Text4=1", "Text8=1e30"},
         "Command4",
         "El tirante crítico no converge: el cálculo no termina (revise la Base, el Talud y el Caudal)",
         {{"Text9", ""}, {"Text12", ""}},
         {"Text8=2", "Command4"},
         {{"Text9", kTrapYn, 0.006}, {"Text12", kTrapYc, 0.006}},
         {{"Text5", "Sin límite"}}},
        // Section 51: one past the arrays.
        {"SectionFiftyOneForm5",
         "Form5",
         Join({{"Text62=51"}, Rectangle("Text93", "Text94", "Text95", "6")}),
         "Command2",
         "Subíndice fuera del intervalo: 51 no está entre 0 y 50",
         {{"Text99", ""}},
         {"Text62=1", "Command2"},
         {{"Text99", kRectYn, 0.007}, {"Text100", kRectYc, 0.007}, {"Text101", kRectFull, 0.005}},
         {}},
        {"SectionFiftyOneForm3",
         "Form3",
         Join({{"Text61=3", "Text62=51"}, Rectangle("Text123", "Text124", "Text125", "6")}),
         "Command2",
         "Subíndice fuera del intervalo: 51 no está entre 0 y 50",
         {{"Text129", ""}},
         {"Text62=1", "Command2"},
         {{"Text129", kRectYn, 0.007}, {"Text130", kRectYc, 0.007}},
         {}},
        // A start depth so large that a 5 mm step leaves it as it is: the energy never changes, the
        // distance never grows (the legacy march never ended).
        {"EndlessProfileForm2",
         "Form2",
         Join({TwoSectionReach(), {"Text31=0", "Text33=100", "Text98=1e17"}}),
         "Command1",
         kEndless,
         {{"Text63", ""}},
         {"Text98=2", "Command1"},
         {{"Text64", 102.0, 0.001}, {"Text63", 100.1 + kBackwater, 0.005 + 0.006}},
         {{"Text34", "M1"}}},
        {"EndlessProfileForm3",
         "Form3",
         Join({TwoSectionReachForm3(), {"Text128=1e17"}}),
         "Command1",
         kEndless,
         {{"Text76", ""}},
         {"Text128=2", "Command1"},
         {{"Text77", 102.0, 0.001}, {"Text76", 100.1 + kBackwater, 0.005 + 0.006}},
         {}},
    };
    return cases;
}

void Do(Screen& screen, const Steps& steps) {
    for (const auto& s : steps) {
        const auto eq = s.find('=');
        if (eq != std::string::npos) {
            screen.Type(s.substr(0, eq), s.substr(eq + 1));
        } else {
            const auto error = screen.Click(s);
            ASSERT_FALSE(error.has_value()) << s << ": " << *error;
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
        EXPECT_FALSE(error.has_value()) << *error;
    } else {
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(*error, g.fault);
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

// Q exactly the bank-full discharge counts as in the banks, yet no level carries more than Q: the march
// finds no band and runs in the one a previous search left, none on a fresh screen. The bank-full
// discharge is read from another screen given the same section, so that Q equals it to the last bit.
TEST(StaleBand, DischargeEqualToBankFullOnAFreshScreen) {
    for (const char* name : {"Form2", "Form5"}) {
        SCOPED_TRACE(name);
        const Steps numbers =
            std::string(name) == "Form5" ? Steps{"Text62=1"} : Steps{"Text61=3", "Text62=1"};
        const Steps section = Join({numbers, Rectangle("Text93", "Text94", "Text95", "6")});
        auto probe = cauce::screens::MakeScreen(name);
        ASSERT_NO_FATAL_FAILURE(Do(*probe, Join({section, {"Command2"}})));
        const auto& natural = dynamic_cast<const cauce::screens::NaturalScreen&>(*probe);
        const double full = natural.State().Qlleno(1);
        EXPECT_NEAR(full, kRectFull, 1e-6);
        char q[32];
        std::snprintf(q, sizeof q, "%.17g", full);

        auto screen = cauce::screens::MakeScreen(name);
        ASSERT_NO_FATAL_FAILURE(Do(*screen, section));
        screen->Type("Text95", q);
        const auto error = screen->Click("Command2");
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(*error, "Subíndice fuera del intervalo: -1 no está entre 0 y 20");
        EXPECT_EQ(screen->Get("Text99").text, "");

        // The next discharge, in the banks, is computed as on a fresh screen.
        screen->Type("Text95", "6");
        ASSERT_FALSE(screen->Click("Command2").has_value());
        EXPECT_NEAR(cauce::forms::Val(screen->Get("Text99").text), kRectYn, 0.007);
        EXPECT_NEAR(cauce::forms::Val(screen->Get("Text100").text), kRectYc, 0.007);
        EXPECT_EQ(screen->Get("Text99").text, probe->Get("Text99").text);
        EXPECT_EQ(screen->Get("Text100").text, probe->Get("Text100").text);
    }
}

}  // namespace
