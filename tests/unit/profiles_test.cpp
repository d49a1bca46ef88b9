// Profile marches: the section evaluation, the M1/M2/S1 direct steps and the S2 rule, the run over a
// reach and its guards. Expected values are hand formulas for a rectangle (A = b y, P = b + 2y,
// Sf = n^2 V^2 / R^(4/3), E = y + V^2 / 2g) and the step counts they imply; whole reaches against an
// independent reference are in the driver scripts tests/guiones/form2_perfil_*.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
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
constexpr double kSentinel = 99;  // a velocity or area the routine under test must leave alone

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
// Distance of one step from y to y + dy with bed slope s0.
double HandDx(double y, double dy, double s0) {
    const Hand s = HandEval(y), e = HandEval(y + dy);
    return std::fabs((e.e - s.e) / (s0 - (s.sf + e.sf) / 2));
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

TEST(ProfileMarches, WhereEachMarchStops) {
    // Section 2 of a two-section reach, its reach length L(2) and depth Ysec(2) set per case; the
    // dispatch (Perfilm or Perfils) picks the routine.
    const double dx1 = HandDx(2.0, -0.005, kS0), dx2 = HandDx(1.995, -0.005, kS0);
    const double m2_s00 = HandDx(0.9, 0.005, 0.0), m2_s0k = HandDx(0.9, 0.005, kS0);
    ASSERT_LT(m2_s00, m2_s0k);
    const struct {
        const char* name;
        bool steep;
        double y, length;
        std::string tipo;
        double upstream;  // Ysec(1)
        double velocity;  // Vsec(2) after the march (kSentinel: untouched)
    } cases[] = {
        {"M1, reach of length 0: no evaluation", false, 2.0, 0, "M1", 2.0, kSentinel},
        {"M1 at exactly Yn: one evaluation, then Yn", false, kYn, 50, "M1", kYn, kQ / (kB * kYn)},
        {"M1, one step covers the reach", false, 2.0, dx1 / 2, "M1", 1.995, HandEval(2.0).v},
        {"M1, the second step covers it", false, 2.0, dx1 + dx2 / 2, "M1", 1.990, HandEval(1.995).v},
        {"M1, a long reach reaches Yn", false, 2.0, 1e6, "M1", kYn, HandEval(1.235).v},
        {"M2 takes the bed slope of element 0", false, 0.9, (m2_s00 + m2_s0k) / 2, "M2", 0.910,
         HandEval(0.905).v},
        {"M2, a long reach reaches Yn", false, 0.9, 1e6, "M2", kYn, HandEval(1.230).v},
        {"S1, a long reach stops at Yc", true, 1.2, 1e6, "S1", kYc, kSentinel},
        {"S1 within 0.025 of Yc: one evaluation, then Yc", true, kYc + 0.024, 50, "S1", kYc, kSentinel},
        {"S1, reach of length 0", true, 1.2, 0, "S1", 1.2, kSentinel},
        {"S2 at exactly Yc: no stepping", true, kYc, 50, "S2", kYc, kSentinel},
        {"S2 below Yc", true, 0.5, 50, "S2", kYc, kSentinel},
    };
    for (const auto& c : cases) {
        State st = Reach(2);
        if (c.steep) st.Yn(2) = 0.48;
        st.L(2) = c.length;
        st.Ysec(2) = c.y;
        st.Y = c.y;
        st.V(2) = kSentinel;
        st.A(2) = kSentinel;
        if (c.steep) {
            pf::Perfils(st, 2);
        } else {
            pf::Perfilm(st, 2);
        }
        EXPECT_EQ(st.Tipo(2), c.tipo) << c.name;
        EXPECT_NEAR(st.Ysec(1), c.upstream, 1e-9) << c.name;
        EXPECT_NEAR(st.V(2), c.velocity, 1e-9) << c.name;
        EXPECT_EQ(st.Ysec(2), c.y) << c.name << ": the section's own depth is never changed";
        if (c.tipo == "S2") {
            EXPECT_EQ(st.A(2), kSentinel) << c.name << ": S2 evaluates nothing";
        }
        if (c.length >= 1e6 && (c.tipo == "M1" || c.tipo == "S1")) {
            // A march stopped by its limit hands over the limit depth itself, not the stepped one.
            EXPECT_EQ(st.Ysec(1), c.tipo == "M1" ? kYn : kYc) << c.name;
        }
    }
}

TEST(ProfileMarches, M2RaisedStartIsShownButNotStored) {
    // At or below Yc + 0.02 the march starts from Yc + 0.02 and shows it; just above, where it is.
    for (double y : {kYc + 0.02, kYc, 0.3, kYc + 0.021}) {
        const bool raised = y <= kYc + 0.02;
        State st = Reach(2);
        st.Ysec(2) = st.Y = y;
        st.Za(2) = -1;
        st.L(2) = 0;  // hands the working depth straight upstream
        pf::Perfilm(st, 2);
        EXPECT_EQ(st.Tipo(2), "M2");
        EXPECT_NEAR(st.Ysec(1), raised ? kYc + 0.02 : y, 1e-12) << y;
        EXPECT_NEAR(st.Za(2), raised ? kYc + 0.02 + st.Zbed(2) : -1, 1e-12) << y;
        EXPECT_EQ(st.Ysec(2), y);
    }
}

TEST(ProfileRun, MarchesFromNUpstreamToSectionZero) {
    // Five mild sections 100 m apart from 2 m: M1 all the way, each step's depth handed upstream;
    // section 1's reach, L(1), is never set, so section 0 gets section 1's depth.
    State st = Reach(5);
    st.L(1) = 0;
    for (int j = 1; j <= 15; ++j) st.X(j) = j <= 5 ? 100.0 * (j - 1) : 0;
    ASSERT_TRUE(pf::SetStartDepth(st, 2.0));
    EXPECT_EQ(pf::ProfileRun(st), pf::RunEnd::Complete);
    for (int s = 1; s <= 5; ++s) {
        EXPECT_EQ(st.Tipo(s), "M1") << s;
        EXPECT_NEAR(st.Za(s), st.Ysec(s) + st.Zbed(s), 1e-12) << s;
        if (s < 5) {
            EXPECT_LT(st.Ysec(s), st.Ysec(s + 1)) << "M1 falls upstream, section " << s;
        }
        if (s > 1) {
            EXPECT_DOUBLE_EQ(st.L(s), 100.0) << s;
        }
    }
    EXPECT_EQ(st.L(1), 0.0);
    EXPECT_EQ(st.Ysec(0), st.Ysec(1));
    EXPECT_EQ(st.k, 2) << "the band index of Area is not the run's section number";
}

TEST(ProfileRun, ReachLengthsAndSectionsBeyondFifteen) {
    State st = Reach(17);
    st.L(1) = 7;  // whatever it holds stays
    for (int j = 1; j <= 20; ++j) st.X(j) = 10.0 * j;
    pf::ReachLengths(st);
    EXPECT_EQ(st.L(1), 7);
    EXPECT_DOUBLE_EQ(st.L(15), 10);
    EXPECT_EQ(st.L(16), 0) << "the fifteen chainage boxes give lengths up to section 15 only";
    pf::RunPolicy up_to_n;
    up_to_n.lengths = pf::Lengths::UpToN;
    pf::ReachLengths(st, up_to_n);
    EXPECT_DOUBLE_EQ(st.L(17), 10);
    EXPECT_EQ(st.L(18), 0);

    // Sections 17 and 16 have no reach: they hand the start depth to section 15 unchanged.
    State run = Reach(17);
    ASSERT_TRUE(pf::SetStartDepth(run, 1.8));
    pf::ProfileRun(run);
    EXPECT_EQ(run.Tipo(17), "M1");
    EXPECT_EQ(run.Tipo(16), "M1");
    EXPECT_EQ(run.Ysec(15), 1.8);
}

TEST(ProfileRun, NormalEqualToCriticalIsMild) {
    State st = Reach(1);
    st.Yn(1) = st.Yc(1) = 0.74;
    ASSERT_TRUE(pf::SetStartDepth(st, 0.9));
    pf::ProfileRun(st);
    EXPECT_EQ(st.Tipo(1), "M1");
}

TEST(ProfileRun, StartDepthOfZeroRunsNothing) {
    State st = Reach(3);
    EXPECT_FALSE(pf::SetStartDepth(st, 0));
    EXPECT_EQ(st.Ysec(3), 0);
    EXPECT_EQ(st.Za(3), st.Zbed(3)) << "Zw(N) is set before the check";
}

TEST(ProfileRun, ScourScreenPolicy) {
    // Before the classification: Area at Ysec(k), Vsec(k) = Q / A, the friction slope, Zw; the march
    // does not store the velocity; the hook runs after the classification with that friction slope.
    State st = Reach(3);
    for (int j = 1; j <= 3; ++j) st.X(j) = 100.0 * (j - 1);
    st.X(4) = 1e9;  // beyond N: UpToN must not read it
    ASSERT_TRUE(pf::SetStartDepth(st, 2.0));
    std::vector<int> order;
    std::vector<double> slopes;
    pf::RunPolicy form3;
    form3.lengths = pf::Lengths::UpToN;
    form3.evaluate_at_march_depth = true;
    form3.steps_store_velocity = false;
    form3.friction_slope = [](const State& s, int k) { return s.A(k) / s.P; };  // R, to see what it was given
    form3.after_classification = [&](State& s, int k, double sf) {
        order.push_back(k);
        slopes.push_back(sf);
        EXPECT_FALSE(s.Tipo(k).empty());
    };
    EXPECT_EQ(pf::ProfileRun(st, form3), pf::RunEnd::Complete);
    EXPECT_EQ(order, (std::vector<int>{3, 2, 1}));
    for (int k = 1; k <= 3; ++k) {
        const double y = st.Ysec(k);
        EXPECT_NEAR(st.V(k), kQ / (kB * y), 1e-9) << k << ": the velocity at the march depth";
        EXPECT_NEAR(slopes[static_cast<std::size_t>(3 - k)], kB * y / (kB + 2 * y), 1e-9) << k;
    }
    EXPECT_EQ(st.L(4), 0);

    // A section with no flow area at its march depth ends the run: nothing below it is classed.
    // Section 2, steep with Yc(2) = 0, hands a depth of 0 to section 1.
    State dry = Reach(2);
    dry.Yn(2) = -1;
    dry.Yc(2) = 0;
    dry.X(2) = 1e6;
    ASSERT_TRUE(pf::SetStartDepth(dry, 2.0));
    order.clear();
    EXPECT_EQ(pf::ProfileRun(dry, form3), pf::RunEnd::NoArea);
    EXPECT_EQ(dry.Tipo(2), "S1");
    EXPECT_EQ(dry.Ysec(1), 0);
    EXPECT_EQ(dry.Tipo(1), "");
    EXPECT_EQ(order, (std::vector<int>{2}));
}

TEST(ProfileGuards, FaultsInsteadOfCrashesOrHangs) {
    const struct {
        const char* name;
        std::function<void(State&)> run;
        std::string message;
    } cases[] = {
        {"zero denominator: n = 0 makes Sf = 0 and the M2 slope S0(0) - Sfm = 0",
         [](State& st) {
             st.n = 0;
             st.Ysec(2) = st.Y = 0.9;
             st.L(2) = 100;
             pf::Perfilm(st, 2);
         },
         cauce::msg::kDivisionPorCero},
        {"no flow area at the depth of the march",
         [](State& st) {
             st.Yn(2) = -1;
             st.Ysec(2) = st.Y = 0;
             st.L(2) = 100;
             pf::Perfilm(st, 2);
         },
         cauce::msg::kDivisionPorCero},
        {"endless march: a depth so large that 5 mm no longer changes it",
         [](State& st) {
             pf::RunPolicy small;
             small.step_budget = 1000;
             st.Ysec(2) = st.Y = 1e17;
             st.L(2) = 100;
             pf::Perfilm(st, 2, small);
         },
         pf::kEndlessMarch},
        {"a section never computed (no levels)",
         [](State& st) {
             st.N = 3;
             st.Ysec(3) = 1.0;
             st.X(3) = 200;
             st.X(2) = 100;
             pf::ProfileRun(st);
         },
         cauce::msg::kIndeterminado},
    };
    for (const auto& c : cases) {
        State st = Reach(2);
        try {
            c.run(st);
            ADD_FAILURE() << c.name << ": no fault";
        } catch (const Fault& f) {
            EXPECT_EQ(std::string(f.what()), c.message) << c.name;
        }
    }
}
