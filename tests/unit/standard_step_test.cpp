// The standard-step profile against references worked out here, independently of the solver:
// gradually varied flow integrated by fourth-order Runge-Kutta, normal and critical depth by bisection,
// and the momentum balance of a jump in a rectangle (Belanger's sequent depth).
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "hydraulics/standard_step/reach.hpp"

namespace ss = cauce::standard_step;

namespace {

constexpr double g = 9.81;

// A rectangular channel of width b and roughness n, walls 20 m high.
struct Rectangle {
    double b, n, q;
    double Sf(double y) const {
        const double a = b * y, r = a / (b + 2 * y);
        return std::pow(n * q / (a * std::pow(r, 2.0 / 3.0)), 2);
    }
    double Fr2(double y) const { return q * q / (g * b * b * y * y * y); }
    // dy/dx of gradually varied flow, x growing downstream.
    double Slope(double s0, double y) const { return (s0 - Sf(y)) / (1 - Fr2(y)); }
};

double Bisect(const std::function<double(double)>& f, double lo, double hi) {
    for (int i = 0; i < 200; ++i) {
        const double mid = (lo + hi) / 2;
        ((f(lo) > 0) == (f(mid) > 0) ? lo : hi) = mid;
    }
    return (lo + hi) / 2;
}

double Normal(const Rectangle& c, double s0) {
    return Bisect([&](double y) { return c.Sf(y) - s0; }, 1e-4, 20);
}
double Critical(const Rectangle& c) {
    return std::cbrt(c.q * c.q / (g * c.b * c.b));
}

// Depth after integrating from (x0, y0) to x1 (either way) in steps of about 0.5 m.
double RungeKutta(const Rectangle& c, double s0, double x0, double y0, double x1) {
    const int steps = std::max(1, static_cast<int>(std::ceil(std::fabs(x1 - x0) / 0.5)));
    const double h = (x1 - x0) / steps;
    double y = y0;
    for (int i = 0; i < steps; ++i) {
        const double k1 = c.Slope(s0, y), k2 = c.Slope(s0, y + h * k1 / 2), k3 = c.Slope(s0, y + h * k2 / 2),
                     k4 = c.Slope(s0, y + h * k3);
        y += h * (k1 + 2 * k2 + 2 * k3 + k4) / 6;
    }
    return y;
}

ss::SectionInput Section(const Rectangle& c, int number, double x, double bed, double slope) {
    ss::SectionInput s;
    s.number = number;
    s.z = {bed, bed + 20};
    s.t = {c.b, c.b};
    s.n = c.n;
    s.q = c.q;
    s.slope = slope;
    s.flood_width = c.b;
    s.chainage = x;
    return s;
}

// A prismatic reach of `count` sections `spacing` apart on slope s0, with no eddy losses (the
// gradually varied flow equation has none).
ss::ReachInput Prismatic(const Rectangle& c, double s0, int count, double spacing) {
    ss::ReachInput in;
    for (int i = 0; i < count; ++i)
        in.sections.push_back(Section(c, i + 1, i * spacing, 100 - s0 * i * spacing, s0));
    in.options.contraction = in.options.expansion = 0;
    return in;
}

}  // namespace

// Profiles of gradually varied flow in a 5 m rectangle (n = 0.015, Q = 10 m3/s) against RK4
// integrations of dy/dx = (S0 - Sf) / (1 - Fr^2) from the same boundary depth.
TEST(StandardStepPrismatic, ProfilesMatchRungeKuttaIntegration) {
    const Rectangle c{5, 0.015, 10};
    const double mild = 0.0008, steep = 0.01;
    const double yc = Critical(c), yn_mild = Normal(c, mild), yn_steep = Normal(c, steep);
    ASSERT_LT(yc, yn_mild);
    ASSERT_GT(yc, yn_steep);
    struct Case {
        const char* name;
        double s0;
        bool from_downstream;  // the subcritical pass's boundary; else the supercritical one's
        double boundary;
        ss::Regime regime;
    };
    const Case cases[] = {
        {"M1", mild, true, yn_mild + 1.5, ss::Regime::Subcritical},
        {"M2", mild, true, yc + 0.5 * (yn_mild - yc), ss::Regime::Subcritical},
        {"S2", steep, false, 0.9 * yc, ss::Regime::Supercritical},
        {"S3", steep, false, 0.5 * yn_steep, ss::Regime::Supercritical},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(k.name);
        ss::ReachInput in = Prismatic(c, k.s0, 6, 100);
        if (k.from_downstream) {
            in.downstream_depth = k.boundary;
        } else {
            in.downstream_depth = yn_steep;  // below critical: the subcritical pass gives way
            in.upstream_depth = k.boundary;
        }
        const ss::Result r = ss::Solve(in);
        ASSERT_TRUE(r.Ok()) << r.error;
        ASSERT_EQ(r.sections.size(), 6u);
        for (const auto& s : r.sections) {
            const double x0 = k.from_downstream ? 500 : 0;
            const double expected = RungeKutta(c, k.s0, x0, k.boundary, s.chainage);
            EXPECT_NEAR(s.y, expected, 0.005) << "section " << s.number;
            EXPECT_EQ(s.regime, k.regime) << "section " << s.number;
        }
        EXPECT_FALSE(r.jump);
    }
}

// Mild, steep, mild: critical depth at the first break, S2 down the steep reach to its normal depth,
// M3 on the mild reach below until the jump to the normal depth there. The reference jump is where
// the M3 depth (RK4) has yn_mild as its Belanger sequent depth, y2 = y1 / 2 (sqrt(1 + 8 Fr1^2) - 1),
// the momentum balance of a rectangle.
TEST(StandardStepPrismatic, JumpOnMildSteepMildReachMatchesMomentumBalance) {
    const Rectangle c{5, 0.015, 15};
    const double mild = 0.001, steep = 0.03;
    const double yn_mild = Normal(c, mild), yn_steep = Normal(c, steep);
    ss::ReachInput in;
    double bed = 100;
    int number = 1;
    auto add = [&](double x, double slope_before, double slope_here) {
        if (!in.sections.empty()) bed -= slope_before * (x - in.sections.back().chainage);
        in.sections.push_back(Section(c, number++, x, bed, slope_here));
    };
    for (double x = 0; x <= 1000; x += 250) add(x, mild, mild);
    for (double x = 1250; x <= 2000; x += 250) add(x, steep, steep);
    for (double x = 2250; x <= 3500; x += 250) add(x, mild, mild);
    in.downstream_depth = yn_mild;
    const double length = 3500;

    // The supercritical depth at the foot of the steep reach: 1000 m of S2 from (nearly) critical depth.
    const double yc = Critical(c);
    const double y_foot = RungeKutta(c, steep, 1000, 0.9 * yc, 2000);
    ASSERT_NEAR(y_foot, yn_steep, 0.002);
    auto belanger = [&](double y1) { return y1 / 2 * (std::sqrt(1 + 8 * c.Fr2(y1)) - 1); };
    const double x_jump = Bisect(
        [&](double x) { return belanger(RungeKutta(c, mild, 2000, y_foot, x)) - yn_mild; }, 2000, 3500);
    const double y1 = RungeKutta(c, mild, 2000, y_foot, x_jump);

    const ss::Result r = ss::Solve(in);
    ASSERT_TRUE(r.Ok()) << r.error;
    ASSERT_TRUE(r.jump);
    EXPECT_NEAR(r.jump->chainage, x_jump, 0.01 * length);
    EXPECT_NEAR(r.jump->y1, y1, 0.01 * y1);
    EXPECT_NEAR(r.jump->y2, yn_mild, 0.01 * yn_mild);
    for (const auto& s : r.sections) {
        SCOPED_TRACE(s.number);
        const ss::Regime expected = s.chainage < 1000     ? ss::Regime::Subcritical
                                    : s.chainage == 1000  ? ss::Regime::Critical
                                    : s.chainage < x_jump ? ss::Regime::Supercritical
                                                          : ss::Regime::Subcritical;
        EXPECT_EQ(s.regime, expected);
        if (s.chainage > x_jump) {
            EXPECT_NEAR(s.y, yn_mild, 0.002);
        }
    }
}

// A natural reach of twelve surveyed sections (the bundled Persecc reach: a mild reach, a steep one
// with a jump below it, a flood zone at section 10): halving the spacing of the computed sections
// moves no depth by more than 1 mm, in either regime.
TEST(StandardStepNatural, HalvingTheSpacingMovesNoDepthMoreThanAMillimetre) {
    struct Row {
        double z1, dz[5];
        int levels;
        double t[6], slope, flood;
    };
    // Levels above the bed of Persecc: 0.4, 1.0, 1.8, 2.6, 3.3 m (fewer on some sections).
    const Row rows[] = {
        {120, {0.4, 1.0, 1.8, 2.6, 3.3}, 6, {6.5, 10.5, 16, 22.5, 28, 35}, 0.0015, 40},
        {119.85, {0.4, 1.0, 1.8, 2.6, 3.3}, 6, {6, 10, 16, 22, 28, 34}, 0.0015, 40},
        {119.7, {0.5, 1.1, 1.9, 2.7, 3.4}, 6, {5.5, 9.5, 15, 21, 27.5, 33}, 0.0015, 40},
        {119.52, {0.4, 1.0, 1.8, 2.6, 3.3}, 6, {6, 9, 14, 20, 26, 31}, 0.0015, 40},
        {117.02, {0.3, 0.8, 1.5, 2.3}, 5, {6, 9, 13, 17, 21}, 0.025, 40},
        {115.02, {0.3, 0.8, 1.5, 2.3}, 5, {5.5, 8.5, 12.5, 16.5, 20}, 0.025, 40},
        {113.02, {0.35, 0.9, 1.6, 2.4}, 5, {6, 9.5, 13.5, 17.5, 21.5}, 0.025, 40},
        {111.02, {0.3, 0.8, 1.5, 2.3}, 5, {6.5, 9.5, 13.5, 17.5, 22}, 0.025, 40},
        {110.9, {0.4, 1.0, 1.8, 2.6, 3.3}, 6, {7, 11, 17, 23, 29, 35}, 0.001, 40},
        {110.78, {0.4, 0.9, 1.4}, 4, {8, 14, 20, 26}, 0.001, 70},
        {110.68, {0.4, 1.0, 1.8, 2.6, 3.3}, 6, {6.5, 10.5, 16.5, 22.5, 28.5, 34}, 0.001, 40},
        {110.58, {0.4, 1.0, 1.8, 2.6, 3.3}, 6, {6, 10, 16, 22, 28, 34}, 0.001, 40},
    };
    const double chainage[] = {0, 100, 200, 320, 420, 500, 580, 660, 780, 900, 1000, 1100};
    ss::ReachInput in;
    for (int i = 0; i < 12; ++i) {
        ss::SectionInput s;
        s.number = i + 1;
        s.z.push_back(rows[i].z1);
        for (int j = 0; j + 1 < rows[i].levels; ++j) s.z.push_back(rows[i].z1 + rows[i].dz[j]);
        s.t.assign(rows[i].t, rows[i].t + rows[i].levels);
        s.n = 0.035;
        s.slope = rows[i].slope;
        s.q = 38;
        s.flood_width = rows[i].flood;
        s.flood_n = 0.05;
        s.chainage = chainage[i];
        in.sections.push_back(s);
    }
    in.downstream_depth = 2.2;
    const ss::Result coarse = ss::Solve(in);
    in.options.max_spacing /= 2;
    const ss::Result fine = ss::Solve(in);
    ASSERT_TRUE(coarse.Ok()) << coarse.error;
    ASSERT_TRUE(fine.Ok()) << fine.error;
    for (std::size_t i = 0; i < coarse.sections.size(); ++i) {
        EXPECT_NEAR(coarse.sections[i].y, fine.sections[i].y, 0.001) << "section " << i + 1;
        EXPECT_EQ(coarse.sections[i].regime, fine.sections[i].regime) << "section " << i + 1;
    }
    ASSERT_TRUE(coarse.jump && fine.jump);
    EXPECT_GT(coarse.jump->chainage, 580);  // between sections 7 and 8
    EXPECT_LT(coarse.jump->chainage, 660);
}

// Bad data: one message naming the section, and no table presented as a result.
TEST(StandardStepInput, BadDataIsToldByItsSection) {
    const Rectangle c{5, 0.015, 10};
    struct Case {
        const char* name;
        std::function<void(ss::ReachInput&)> spoil;
        const char* message;
    };
    const Case cases[] = {
        {"chainage going back", [](ss::ReachInput& in) { in.sections[2].chainage = 50; },
         "La sección 3 (abscisa 50.00 m) no está aguas abajo de la sección 2"},
        {"zero length", [](ss::ReachInput& in) { in.sections[1].chainage = 0; },
         "la longitud del tramo es cero"},
        {"no roughness", [](ss::ReachInput& in) { in.sections[3].n = 0; }, "La sección 4 no tiene rugosidad"},
        {"levels not rising", [](ss::ReachInput& in) { in.sections[0].z[1] = in.sections[0].z[0]; },
         "La sección 1: la cota z2 no es mayor que la z1"},
        {"narrowing upwards", [](ss::ReachInput& in) { in.sections[1].t[1] = 1; },
         "La sección 2: el ancho t2 es menor que el t1"},
        {"flood zone without roughness", [](ss::ReachInput& in) { in.sections[2].flood_width = 30; },
         "La sección 3 tiene zona inundable"},
        {"no depth", [](ss::ReachInput& in) { in.downstream_depth = 0; },
         "El tirante en la última sección (4)"},
        {"nothing carries it", [](ss::ReachInput& in) { in.sections[0].q = in.sections[1].q = 1e12; },
         "no lleva el caudal a ninguna profundidad"},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(k.name);
        ss::ReachInput in = Prismatic(c, 0.001, 4, 100);
        in.downstream_depth = 2;
        k.spoil(in);
        const ss::Result r = ss::Solve(in);
        EXPECT_NE(r.error.find(k.message), std::string::npos) << r.error;
        EXPECT_TRUE(r.sections.empty());
        EXPECT_TRUE(r.line.empty());
    }
}
