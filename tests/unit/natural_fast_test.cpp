// The fast searches give exactly what the legacy marches give: the same depth, area, width,
// perimeter, band and step, bit for bit, on many random sections, in the banks and overflowing,
// including bands whose conveyance first falls and then rises, stale bands and faults.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "hydraulics/accumulate.hpp"
#include "hydraulics/natural/state.hpp"

using cauce::Fault;
using cauce::natural::State;

namespace {

int Cases() {
    const char* env = std::getenv("CAUCE_IDENTITY_CASES");
    return env ? std::atoi(env) : 100000;
}

bool Same(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Runs "(Y?)" on section 1 of st; returns the fault's message or "".
std::string SectionRun(State& st) {
    try {
        st.CountLevels(1);
        st.Qful(1);
        if (st.Q(1) > st.Qlleno(1)) {
            st.Qdesbord(1);
            st.Qdesbord3(1);
        } else {
            st.NormalInBank(1);
            st.Qc = st.Q(1);
            st.Critica(1);
        }
        st.Resultados(1);
    } catch (const Fault& f) {
        return f.what();
    }
    return "";
}

}  // namespace

TEST(Accumulate, EqualsRepeatedAddition) {
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> start(-50, 50);
    const double steps[] = {0.001, -0.001, 0.002, 0.0025, -0.005, 0.1, 1e-7};
    for (int t = 0; t < 400; ++t) {
        double x = t % 5 == 0 ? 0.0 : start(rng);
        if (t % 7 == 0) x = 0.001;
        const double c = steps[t % 7];
        double literal = x;
        for (int j = 0; j <= 30000; ++j) {
            if (j % 997 == 0 || j == 30000) {
                ASSERT_TRUE(Same(cauce::Accumulate(x, c, j), literal)) << x << " " << c << " " << j;
            }
            literal = literal + c;
        }
    }
}

// Four shards of the random cases, so that a parallel test run spreads them over the cores.
class FastSearches : public ::testing::TestWithParam<int> {};

TEST_P(FastSearches, IdenticalToTheLiteralMarchesOnRandomSections) {
    std::mt19937_64 rng(20261122 + GetParam());
    std::uniform_real_distribution<double> u(0, 1);
    const int cases = Cases() / 4;
    int overflowing = 0, faulted = 0;
    for (int c = 0; c < cases; ++c) {
        State fast;
        const int levels = 2 + static_cast<int>(u(rng) * 8);
        double z = 50 + u(rng) * 100, t = u(rng) < 0.3 ? 0.0 : u(rng) * 20;
        for (int j = 1; j <= levels; ++j) {
            fast.Z(1, j) = z;
            fast.T(1, j) = t;
            z += 0.02 + u(rng) * 0.9;
            const double kind = u(rng);
            // Vertical walls, gentle banks, or a wide flat band whose conveyance first falls.
            t += kind < 0.15 ? 0.0 : kind < 0.85 ? u(rng) * 10 : 50 + u(rng) * 300;
        }
        fast.n = 0.01 + u(rng) * 0.07;
        fast.S0(1) = std::pow(10.0, -5 + u(rng) * 3.7);
        fast.k = static_cast<int>(u(rng) * levels) + 1;  // a band left by an earlier section
        fast.CountLevels(1);
        fast.Qful(1);
        const double full = fast.Qlleno(1);
        const double share = u(rng);
        fast.Q(1) = share < 0.75 ? full * (0.0005 + u(rng)) : full * (1 + u(rng) * 1.5);
        if (share > 0.97) fast.Q(1) = full;  // the stale band of Q = Qlleno
        fast.B = fast.T(1, levels) * (1 + (u(rng) < 0.2 ? 0 : u(rng) * 5));
        fast.nz = 0.02 + u(rng) * 0.1;
        State literal = fast;
        literal.literal = true;

        const std::string ef = SectionRun(fast), el = SectionRun(literal);
        ASSERT_EQ(ef, el) << "case " << c;
        if (!ef.empty()) {
            ++faulted;
            continue;
        }
        overflowing += fast.Q(1) > full;
        const double pairs[][2] = {
            {fast.Yn(1), literal.Yn(1)}, {fast.Yc(1), literal.Yc(1)}, {fast.A(1), literal.A(1)},
            {fast.Tw(1), literal.Tw(1)}, {fast.P, literal.P},         {fast.h, literal.h},
            {fast.hz, literal.hz},       {fast.Am, literal.Am},       {fast.Af, literal.Af},
            {fast.Qm, literal.Qm},       {fast.V(1), literal.V(1)},   {fast.Za(1), literal.Za(1)}};
        for (const auto& p : pairs)
            ASSERT_TRUE(Same(p[0], p[1])) << "case " << c << ": " << p[0] << " vs " << p[1];
        ASSERT_EQ(fast.k, literal.k) << "case " << c;
    }
    EXPECT_GT(overflowing, cases / 10);
    RecordProperty("faulted", faulted);
}

INSTANTIATE_TEST_SUITE_P(Shards, FastSearches, ::testing::Range(0, 4));
