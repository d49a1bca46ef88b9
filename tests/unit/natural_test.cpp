// Natural sections: level tables, bank-full discharge, normal and critical depth, flood zone.
// Expected values come from closed forms and from a bisection of Manning's equation written here,
// independently of the marches under test; the marches are then expected on their 1 mm (2 mm) grid,
// with the depth reported one step off as the legacy screens reported it.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "hydraulics/natural/state.hpp"
#include "test_support.hpp"

using cauce::Fault;
using cauce::natural::State;
using cauce::natural::TableError;
using namespace cauce::test;

namespace {

struct Level {
    double z, t;
};

State Section(int i, const std::vector<Level>& levels, double n, double s0,
              TableError expect = TableError::None) {
    State st;
    for (std::size_t j = 0; j < levels.size(); ++j) {
        st.Z(i, static_cast<int>(j) + 1) = levels[j].z;
        st.T(i, static_cast<int>(j) + 1) = levels[j].t;
    }
    st.n = n;
    st.S0(i) = s0;
    st.CountLevels(i);
    EXPECT_EQ(st.Qful(i), expect);
    return st;
}

// The first grid depth (multiples of step) at or above y.
double GridAbove(double y, double step) {
    return std::ceil(y / step - 1e-9) * step;
}

}  // namespace

TEST(NaturalLevels, TablesOfATrapezoidStack) {
    // Bed 2 m wide; 1:1 sides up 1 m (m = 1), then vertical walls (m = 0) up another metre.
    State st = Section(3, {{100, 2}, {101, 4}, {102, 4}}, 0.03, 0.002);
    EXPECT_DOUBLE_EQ(st.m(3, 2), 1.0);
    EXPECT_DOUBLE_EQ(st.m(3, 3), 0.0);
    EXPECT_DOUBLE_EQ(st.Acum(3, 2), 3.0);  // (2 + 4) / 2 x 1
    EXPECT_DOUBLE_EQ(st.Acum(3, 3), 7.0);
    EXPECT_DOUBLE_EQ(st.Pcum(3, 2), 2 + 2 * std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(st.Pcum(3, 3), 4 + 2 * std::sqrt(2.0));
    EXPECT_NEAR(st.Qlleno(3), Manning(7, 4 + 2 * std::sqrt(2.0), 0.03, 0.002), 1e-12);
    EXPECT_DOUBLE_EQ(st.Ylleno(3), 2.0);
}

TEST(NaturalArea, WaterAtALevelSelectsTheBandBelow) {
    State st = Section(1, {{100, 2}, {101, 4}, {102, 4}}, 0.03, 0.002);
    st.Y = 1.0;
    st.Area(1);
    EXPECT_EQ(st.k, 2);
    EXPECT_DOUBLE_EQ(st.A(1), 3.0);
    st.Y = 1.5;
    st.Area(1);
    EXPECT_EQ(st.k, 3);
    EXPECT_DOUBLE_EQ(st.A(1), 5.0);
    EXPECT_DOUBLE_EQ(st.Tw(1), 4.0);
    EXPECT_DOUBLE_EQ(st.P, 2 + 2 * std::sqrt(2.0) + 1.0);
    // Above the top level no band qualifies and the band index stays.
    st.Y = 2.5;
    st.Area(1);
    EXPECT_EQ(st.k, 3);
    EXPECT_DOUBLE_EQ(st.A(1), 9.0);
}

TEST(NaturalNormalDepth, MatchesABisectionOfManningOneStepHigh) {
    const struct {
        const char* name;
        std::vector<Level> levels;
        double n, s, q;
        std::function<std::pair<double, double>(double)> geometry;  // area and perimeter at depth y
    } cases[] = {
        {"rectangle b=2",
         {{100, 2}, {102, 2}},
         0.015,
         0.001,
         2.0,
         [](double y) {
             return std::pair{2 * y, 2 + 2 * y};
         }},
        {"triangle m=1",
         {{50, 0}, {52, 4}},
         0.025,
         0.004,
         1.5,
         [](double y) {
             return std::pair{y * y, 2 * y * std::sqrt(2.0)};
         }},
        {"second band",
         {{100, 2}, {101, 4}, {102, 4}},
         0.03,
         0.002,
         5.0,
         [](double y) {
             return std::pair{3 + 4 * (y - 1), 2 + 2 * std::sqrt(2.0) + 2 * (y - 1)};
         }},
    };
    for (const auto& c : cases) {
        State st = Section(1, c.levels, c.n, c.s);
        st.Q(1) = c.q;
        ASSERT_LE(c.q, st.Qlleno(1)) << c.name;
        st.NormalInBank(1);
        const double y = Bisect(
            [&](double d) {
                auto [a, p] = c.geometry(d);
                return Manning(a, p, c.n, c.s) - c.q;
            },
            1e-6, 2.0);
        EXPECT_NEAR(st.Yn(1), GridAbove(y, 0.001) + 0.001, 1e-9) << c.name << ": root " << y;
        // Area and width are those of the depth one step below the reported one.
        const auto [a, p] = c.geometry(st.Yn(1) - 0.001);
        EXPECT_NEAR(st.A(1), a, 1e-9) << c.name;
    }
}

TEST(NaturalNormalDepth, DischargeEqualToBankFullUsesTheStaleBand) {
    State st = Section(1, {{100, 2}, {102, 2}}, 0.015, 0.001);
    st.Q(1) = st.Qlleno(1);
    // A fresh screen's band index is 0: the march reaches level -1, a subscript fault.
    EXPECT_THROW(st.NormalInBank(1), Fault);
    st.k = 2;  // left there by an earlier search
    st.NormalInBank(1);
    // 2000 added steps of 0.001 fall short of 2 m by about 1e-13: the march takes one step more
    // before it reaches the bank-full discharge, and reports one step above that.
    EXPECT_NEAR(st.Yn(1), 2.002, 1e-9);
}

TEST(NaturalCriticalDepth, ClosedFormsOneStepLow) {
    const double g = 9.81;
    const struct {
        const char* name;
        std::vector<Level> levels;
        double q, yc;
    } cases[] = {
        {"rectangle b=2", {{100, 2}, {102, 2}}, 2.0, std::cbrt(4.0 / (g * 4.0))},
        {"rectangle b=5", {{10, 5}, {13, 5}}, 12.0, std::cbrt(144.0 / (g * 25.0))},
        {"triangle m=1", {{50, 0}, {52, 4}}, 1.5, std::pow(2 * 1.5 * 1.5 / g, 0.2)},
    };
    for (const auto& c : cases) {
        State st = Section(1, c.levels, 0.015, 0.001);
        st.Qc = c.q;
        st.Critica(1);
        EXPECT_EQ(st.k, 2) << c.name;
        // The march lowers the water from the top of the band; it stops at the first grid depth at or
        // below yc and reports one step lower.
        const double top = c.levels[1].z - c.levels[0].z;
        const double last = top - std::ceil((top - c.yc) / 0.001 - 1e-9) * 0.001;
        EXPECT_NEAR(st.Yc(1), last - 0.001, 1e-9) << c.name << ": yc " << c.yc;
    }
}

TEST(NaturalFloodZone, DepthOverTheBanksMatchesABisection) {
    // Rectangle 2 m wide, 1 m deep; flood zone 10 m wide in all (8 m beside the channel).
    const double n = 0.015, nz = 0.04, s = 0.001, b = 10, q = 12;
    State st = Section(1, {{100, 2}, {101, 2}}, n, s);
    st.Q(1) = q;
    ASSERT_GT(q, st.Qlleno(1));
    st.B = b;
    st.nz = nz;
    st.Qdesbord(1);
    const double hz = Bisect(
        [&](double d) {
            const double am = 2 + d * (2 + d), pm = 4;
            const double af = 8 * d, pf = 8 + 2 * std::sqrt(2.0) * d;
            return Manning(am, pm, n, s) + Manning(af, pf, nz, s) - q;
        },
        1e-6, 5.0);
    EXPECT_NEAR(st.hz, GridAbove(hz, 0.002), 1e-9);
    EXPECT_FALSE(st.NoFloodZone(1));
}

TEST(NaturalFloodZone, ADischargeNoDepthOverTheBanksCarriesIsAFault) {
    State st = Section(1, {{100, 2}, {101, 2}}, 0.015, 0.001);
    st.Q(1) = 1e30;
    st.B = 10;
    st.nz = 0.04;
    for (const bool literal : {false, true}) {
        st.literal = literal;
        try {
            st.Qdesbord(1);
            ADD_FAILURE() << "no fault";
        } catch (const Fault& f) {
            EXPECT_NE(std::string(f.what()).find("el cálculo no termina"), std::string::npos) << f.what();
        }
    }
}

// Within the banks the critical depth is ClosedFormsOneStepLow's.
TEST(NaturalFloodZone, CriticalDepthAboveTheBanks) {
    // Supercritical at bank-full and in the main channel alone: the water rises over the banks
    // between 1:1 walls until Froude is no longer above 1 (steep, shallow, smooth channel).
    State sup = Section(1, {{100, 2}, {100.2, 2}}, 0.010, 0.05);
    sup.Q(1) = 4;
    sup.B = 2;  // no flood zone: the channel alone carries the flow
    sup.nz = 0.04;
    sup.Qdesbord(1);
    EXPECT_TRUE(sup.NoFloodZone(1));
    sup.Qdesbord3(1);
    // Independent: smallest 2 mm height d over the banks with Fr(d) <= 1 for Q in A = 0.4 + d (2 + d).
    double d = 0;
    auto fr = [](double q, double a, double t) { return q / a / std::sqrt(9.81 * a / t); };
    while (fr(4, 0.4 + d * (2 + d), 2 + 2 * d) > 1) d += 0.002;
    EXPECT_NEAR(sup.Yc(1), 0.2 + d, 1e-9);
}
