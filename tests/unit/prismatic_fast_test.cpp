// The fast searches of the prismatic screen give exactly what the legacy marches give: the same
// depths, areas, widths, velocities, Froude numbers and flood-zone shares, bit for bit, and the same
// fault, on many random channels of every family with their flood zones and on conduits of many
// diameters, filling from a trickle to past their largest discharge, subcritical and supercritical.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "hydraulics/prismatic/state.hpp"
#include "test_support.hpp"

using cauce::Fault;
using cauce::prismatic::FloodStatus;
using cauce::prismatic::State;
using cauce::test::Same;

namespace {

// Every value of the state, in declaration order.
std::vector<double> Values(const State& s) {
    return {s.n,  s.S,      s.b,      s.z,  s.h,       s.Bz,  s.nz,       s.D,  s.Q,  s.Yn, s.Qc, s.y,
            s.A,  s.P,      s.T,      s.Dh, s.Vn,      s.F,   s.Yc,       s.Vc, s.W,  s.Ab, s.Pb, s.Tb,
            s.Qb, s.Qlleno, s.Vlleno, s.Qm, s.QQlleno, s.YnD, s.VnVlleno, s.d,  s.Am, s.Wf, s.Af, s.Qf,
            s.Qt, s.Qrest,  s.Vmean,  s.Vm, s.Vf,      s.Tt,  s.Tm,       s.Fm, s.Ff};
}

// What a workflow of the screen leaves: its fault's message ("" when none) and what the routines
// returned (figure, flood status, critical depth above the banks), as one string.
struct Outcome {
    std::string fault, returned;
};

// "Yn?" of the trapezoidal family with a bank height, as the screen runs it.
Outcome ChannelYn(State& st) {
    Outcome o;
    try {
        st.Lleno();
        if (st.Q > st.Qb) {
            if (st.Qdesbord() == FloodStatus::MissingZone) return {"", "sin zona"};
            const bool above = st.Qdesbord3();
            o.returned = above ? "Yc > h" : "";
            if (!above) {
                st.Qc = st.Q;
                st.Critica();
            }
        } else {
            st.Qc = st.Q;
            st.Critica();
            st.Normal();
        }
    } catch (const Fault& f) {
        o.fault = f.what();
    }
    return o;
}

// The conduit's "Yn?" (depth 0: the discharge is given) or "Q ?" (the discharge at that depth).
Outcome ConduitRun(State& st, double depth) {
    Outcome o;
    try {
        st.Maximo();
        if (depth > 0) {
            st.Yn = depth;
            st.y = depth;
            st.Q = st.Geometria();
        } else {
            st.Circular();
        }
        o.returned = std::to_string(static_cast<int>(st.Final()));
        st.Criticac();
    } catch (const Fault& f) {
        o.fault = f.what();
    }
    return o;
}

void ExpectIdentical(State fast, const std::function<void(State&)>& run, const char* what) {
    State literal = fast;
    literal.literal = true;
    std::string ef, el;
    try {
        run(fast);
    } catch (const Fault& f) {
        ef = f.what();
    }
    try {
        run(literal);
    } catch (const Fault& f) {
        el = f.what();
    }
    EXPECT_EQ(ef, el) << what;
    const std::vector<double> vf = Values(fast), vl = Values(literal);
    for (size_t i = 0; i < vf.size(); ++i)
        EXPECT_TRUE(Same(vf[i], vl[i])) << what << ", value " << i << ": " << vf[i] << " vs " << vl[i];
}

State Conduit(double D, double S) {
    State st{.n = 0.013, .S = S, .D = D};
    st.Maximo();
    return st;
}

}  // namespace

// Starting states the random cases below never reach: descents and climbs of the conduit's critical
// depth from any depth and regime, and a march over the banks without end. (The crown, the largest
// discharge, a trickle, tiny conduits and the first step over the banks are among the random cases.)
TEST(PrismaticFastEdges, IdenticalToTheLiteralMarches) {
    struct Case {
        const char* what;
        State st;
        std::function<void(State&)> run;
    };
    auto descent_from = [](double D, double yn, double q) {
        State st = Conduit(D, 0.001);
        st.Q = q;
        st.Yn = yn;
        st.F = 0;
        return st;
    };
    auto criticac = [](State& st) { st.Criticac(); };
    State full = descent_from(1, 1, 0.3);
    State half = descent_from(1, 0.5, 0.3);
    State climb_half = descent_from(1, 0.5, 3);
    climb_half.F = 2;
    State climb_past_crown = descent_from(1, 0.5, 500);  // supercritical up to the crown and beyond
    climb_past_crown.F = 2;
    State banks{.n = 0.02, .S = 0.001, .b = 2, .z = 1, .h = 1, .nz = 0.04};
    banks.Lleno();
    banks.Q = 3 * banks.Qb;
    State endless = banks;
    endless.Bz = 30;
    endless.nz = -0.04;
    endless.n = -0.02;
    auto flood = [](State& st) { st.Qdesbord(); };
    const std::vector<Case> cases = {
        {"descent from a full conduit", full, criticac},
        {"descent from half full", half, criticac},
        {"climb from half full", climb_half, criticac},
        {"climb past the crown", climb_past_crown, criticac},
        {"march over the banks without end", endless, flood},
    };
    for (const auto& c : cases) ExpectIdentical(c.st, c.run, c.what);
}

namespace {

// Four shards of the random cases, so that a parallel test run spreads them over the cores.
class PrismaticFastSearches : public ::testing::TestWithParam<int> {};

TEST_P(PrismaticFastSearches, IdenticalToTheLiteralMarchesOnRandomChannels) {
    std::mt19937_64 rng(20261123 + GetParam());
    std::uniform_real_distribution<double> u(0, 1);
    auto between = [&](double lo, double hi) { return lo + (hi - lo) * u(rng); };
    auto logBetween = [&](double lo, double hi) { return std::exp(between(std::log(lo), std::log(hi))); };
    const int cases = cauce::test::IdentityCases() / 4;
    int flooded = 0, conduits = 0, climbed = 0, faulted = 0;
    for (int c = 0; c < cases; ++c) {
        State fast;
        fast.n = between(0.009, 0.05);
        fast.S = logBetween(1e-5, 0.15);
        Outcome (*run)(State&, double) = nullptr;
        double depth = 0;
        const double kind = u(rng);
        if (kind < 0.4) {
            // Trapezoid, rectangle or triangle with banks and, mostly, a flood zone beside them.
            const int family = static_cast<int>(u(rng) * 3);
            fast.b = family == 2 ? 0.0 : between(0.2, 25);
            fast.z = family == 1 ? 0.0 : between(0.25, 4);
            fast.h = between(0.2, 6);
            fast.Lleno();
            const double tb = fast.Tb, pick = u(rng);
            fast.Bz = pick < 0.1 ? tb : pick < 0.13 ? tb * 0.9 : tb * (1 + logBetween(1e-3, 30));
            fast.nz = u(rng) < 0.02 ? 0.0 : between(0.02, 0.12);
            const double share = u(rng);
            fast.Q = share < 0.05   ? fast.Qb * (1 + 1e-12)  // the first step over the banks
                     : share < 0.15 ? fast.Qb * between(0.1, 1)
                     : share < 0.97 ? fast.Qb * logBetween(1.001, 60)
                                    : fast.Qb * between(500, 3000);  // metres of water over the banks
            if (u(rng) < 0.01) fast.S = -fast.S;
        } else {
            // A conduit of D from 5 cm to 6 m (rarely a few millimetres or 15 m).
            const double pick = u(rng);
            fast.D = pick < 0.01    ? between(0.0005, 0.01)
                     : pick < 0.015 ? between(6, 15)
                                    : logBetween(0.05, 6);
            if (u(rng) < 0.005) fast.S = -fast.S;
            State probe = fast;
            try {
                probe.Maximo();
            } catch (const Fault&) {
            }
            const double qm = probe.Qm, share = u(rng);
            if (kind < 0.75) {
                fast.Q = share < 0.02    ? qm
                         : share < 0.04  ? probe.Qlleno / 2
                         : share < 0.05  ? -between(0.01, 1)
                         : share < 0.055 ? qm * between(1.001, 1.2)  // above the largest discharge
                         : share < 0.2   ? qm * between(0.97, 1)     // near the crown
                                         : qm * std::pow(u(rng), 2);
            } else {
                depth = fast.D * (u(rng) < 0.02 ? between(1e-7, 1e-3) : between(0.001, 0.999));
            }
            run = ConduitRun;
        }
        State literal = fast;
        literal.literal = true;

        const Outcome of = run ? run(fast, depth) : ChannelYn(fast);
        const Outcome ol = run ? run(literal, depth) : ChannelYn(literal);
        ASSERT_EQ(of.fault, ol.fault) << "case " << c;
        ASSERT_EQ(of.returned, ol.returned) << "case " << c;
        const std::vector<double> vf = Values(fast), vl = Values(literal);
        for (size_t i = 0; i < vf.size(); ++i)
            ASSERT_TRUE(Same(vf[i], vl[i]))
                << "case " << c << ", value " << i << ": " << vf[i] << " vs " << vl[i];
        faulted += !of.fault.empty();
        flooded += !run && fast.d > 0;
        conduits += run != nullptr;
        climbed += run && fast.Yc > fast.Yn;
    }
    // The cases reach every march.
    EXPECT_GT(flooded, cases / 5);
    EXPECT_GT(conduits, cases / 2);
    EXPECT_GT(climbed, cases / 50);
    EXPECT_LT(faulted, cases / 10);
}

INSTANTIATE_TEST_SUITE_P(Shards, PrismaticFastSearches, ::testing::Range(0, 4));

}  // namespace
