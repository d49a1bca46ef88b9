// General scour: the grain-size exponent, the friction slope and the scour depth of one section.
// Expected values are hand calculations (checked on a pocket calculator and in an independent
// script), not output of the program.
#include <gtest/gtest.h>

#include <cmath>

#include "hydraulics/checked_math.hpp"
#include "hydraulics/scour/scour.hpp"

namespace {

using cauce::scour::GrainExponent;

struct ExponentCase {
    const char* what;
    double mm;        // grain size as typed on the screen
    double expected;  // Dm^a / (Dm^a + b) worked by hand
    double tolerance;
};

// 1 mm and 100 mm are the worked examples of the method (about 0.716 and 0.784); the band edges are
// strict: 28 mm and 182 mm already belong to the coarser band, and from 1000 mm up the exponent is 1.
TEST(GrainExponent, BandsAndEdges) {
    const ExponentCase cases[] = {
        {"1 mm, fine band, about 0.716", 1, 0.716, 5e-4},
        {"100 mm, middle band, about 0.784", 100, 0.784, 5e-4},
        {"27.999 mm, still fine band (0.03, 0.322)", 27.999, 0.7361272734039085, 1e-13},
        {"28 mm, middle band (0.092, 0.223)", 28, 0.7634400318264838, 1e-13},
        {"181.999 mm, still middle band", 181.999, 0.7931204122231814, 1e-13},
        {"182 mm, coarse band (0.187, 0.191)", 182, 0.7919765327326165, 1e-13},
        {"1000 mm, exactly one", 1000, 1.0, 0},
    };
    for (const auto& c : cases) EXPECT_NEAR(GrainExponent(c.mm / 1000), c.expected, c.tolerance) << c.what;
}

TEST(GrainExponent, NegativeGrainSizeIsAFaultNotANan) {
    EXPECT_THROW(GrainExponent(-0.005), cauce::Fault);
}

// Rectangular channel 10 m wide, 2 m deep, 30 m3/s, n = 0.03: A = 20 m2, P = 14 m, R = 1.428571 m,
// V = 1.5 m/s, R^(2/3) = 1.268436, Sf = (0.03 * 1.5 / 1.268436)^2 = 0.0012586.
TEST(FrictionSlope, RectangularChannelByHand) {
    EXPECT_NEAR(cauce::scour::FrictionSlope(0.03, 1.5, 20, 14), 0.0012586039224701362, 1e-15);
}

// In uniform flow the friction slope is the bed slope: Manning's discharge for S0 = 0.001 on the same
// channel, fed back as a velocity, gives Sf = 0.001.
TEST(FrictionSlope, UniformFlowGivesTheBedSlope) {
    const double a = 20, p = 14, n = 0.03, s0 = 0.001;
    const double q = a * std::cbrt((a / p) * (a / p)) * std::sqrt(s0) / n;
    EXPECT_NEAR(cauce::scour::FrictionSlope(n, q / a, a, p), s0, 1e-15);
}

TEST(FrictionSlope, ZeroPerimeterIsAFault) {
    EXPECT_THROW(cauce::scour::FrictionSlope(0.03, 1.5, 0, 0), cauce::Fault);
}

struct ScourCase {
    const char* what;
    double q;     // discharge on the 10 m x 2 m rectangle above, m3/s
    double mm;    // grain size
    double ysoc;  // ds - Y worked by hand
};

// The same rectangle. alpha = sqrt(Sf) / n = V / R^(2/3); ds = (Y^(5/3) alpha / (4.7 * 0.9 * Dm^0.28))
// ^ exponent. For 30 m3/s and 10 mm: alpha = 1.18256, 2^(5/3) = 3.174802, 0.01^0.28 = 0.275423,
// base = 3.222549, exponent 0.730084, ds = 2.349786, so the bed scours 0.35 m. A 1.5 m boulder bed
// (exponent 1) and a slow flow leave ds below Y: the value is negative and kept as it is.
TEST(Socavacion, RectangularSectionByHand) {
    const ScourCase cases[] = {
        {"30 m3/s over 10 mm gravel", 30, 10, 0.349786279790941},
        {"30 m3/s over 1500 mm boulders, exponent 1", 30, 1500, -1.2076920288160145},
        {"2 m3/s over 100 mm gravel: no scour", 2, 100, -1.8193180711751875},
    };
    for (const auto& c : cases) {
        cauce::natural::State st;
        st.n = 0.03;
        const double y = 2, a = 20, p = 14;
        const double sf = cauce::scour::FrictionSlope(st.n, c.q / a, a, p);
        const cauce::scour::Bed bed{c.mm / 1000, GrainExponent(c.mm / 1000)};
        cauce::scour::Socavacion(st, 3, y, sf, bed);
        EXPECT_NEAR(st.Ysoc(3), c.ysoc, 1e-12) << c.what;
        EXPECT_EQ(st.Ysoc(2), 0.0) << "other sections untouched";
    }
}

}  // namespace
