// Profile marches: the section evaluation against hand formulas for a rectangle (A = b y, P = b + 2y,
// Sf = n^2 V^2 / R^(4/3), E = y + V^2 / 2g), and the guard no screen reaches. The marches themselves
// (M1, M2, S1, S2, the raised M2 start, reaches beyond fifteen sections, the scour screen's run and
// the screens' faults) are pinned end to end against an independent reference by the driver scripts
// tests/guiones/form2_perfil_* and form3_*.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "hydraulics/profiles/profile.hpp"

using cauce::Fault;
using cauce::natural::State;
namespace pf = cauce::profiles;

namespace {

// Rectangle b = 3 m, n = 0.015, Q = 6 m3/s, S0 = 0.001: Yn = 1.23137 m (bisection of Manning's
// equation) and Yc = (q^2 / g)^(1/3) = 0.74153 m. The cases set Yn and Yc as "(Y?)" reports them on
// its 1 mm grids, off the 5 mm grid of the marches from the depths used here.
constexpr double kB = 3, kN = 0.015, kQ = 6, kS0 = 0.001, kYn = 1.233, kYc = 0.741, kBed = 1.0;

void AddRect(State& st, int s, double bed = kBed, double s0 = kS0, double yn = kYn, double yc = kYc) {
    st.Z(s, 1) = bed;
    st.T(s, 1) = kB;
    st.Z(s, 2) = bed + 4;
    st.T(s, 2) = kB;
    st.S0(s) = s0;
    st.Q(s) = kQ;
    st.Yn(s) = yn;
    st.Yc(s) = yc;
    st.CountLevels(s);
    ASSERT_EQ(st.Qful(s), cauce::natural::TableError::None);
}

State Reach(int sections) {
    State st;
    st.n = kN;
    st.N = sections;
    for (int s = 1; s <= sections; ++s) AddRect(st, s, kBed + 0.1 * (sections - s));
    st.k = 2;  // the band "(Y?)" leaves behind
    return st;
}

struct Hand {
    double v, sf, e;
};
Hand HandEval(double y) {
    const double a = kB * y, p = kB + 2 * y, v = kQ / a;
    return {v, kN * kN * v * v / std::pow(a / p, 4.0 / 3.0), y + v * v / (2 * 9.81)};
}

}  // namespace

TEST(ProfileSection, VelocityFrictionSlopeAndEnergyOfARectangle) {
    State st = Reach(1);
    for (double y : {0.3, 0.74, 1.23, 2.5}) {
        st.Y = y;
        const pf::SectionValues got = pf::EvaluateSection(st, 1);
        const Hand want = HandEval(y);
        EXPECT_NEAR(got.V, want.v, 1e-12 * want.v) << y;
        EXPECT_NEAR(got.Sf, want.sf, 1e-12 * want.sf) << y;
        EXPECT_NEAR(got.E, want.e, 1e-12 * want.e) << y;
        EXPECT_NEAR(st.A(1), kB * y, 1e-12) << y;
        EXPECT_NEAR(st.P, kB + 2 * y, 1e-12) << y;
    }
    // At the normal depth of Manning's equation the friction slope is the bed slope.
    st.Y = 1.23137;
    EXPECT_NEAR(pf::EvaluateSection(st, 1).Sf, kS0, 5e-9);
}

// The screens' data faults are pinned by tests/guiones/form2_perfil_faltas; this one no screen reaches.
TEST(ProfileGuards, AnEndlessMarchIsAFaultNotAHang) {
    State st = Reach(2);
    pf::RunPolicy small;
    small.step_budget = 1000;
    st.Ysec(2) = st.Y = 1e17;  // so large that 5 mm no longer changes it
    st.L(2) = 100;
    try {
        pf::Perfilm(st, 2, small);
        ADD_FAILURE() << "no fault";
    } catch (const Fault& f) {
        EXPECT_EQ(std::string(f.what()), pf::kEndlessMarch);
    }
}
