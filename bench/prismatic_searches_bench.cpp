// The prismatic screen's fixed-step searches side by side: the literal march (the reference), the
// fast path that finds the march's stopping step by a bracketing search, and a plain Newton solve of
// the same equation on the exact circle (the cost of a root finder, without the legacy digits).
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include "bench/timing.hpp"
#include "hydraulics/prismatic/state.hpp"

namespace {

using cauce::bench::TimeNewton;
using cauce::bench::TimeSearch;
using cauce::prismatic::State;

constexpr double kPi = 3.14159265358979323846;

// Conduits of n 0.013 and S 0.001: D 1.5 m at 45 % of the full discharge (Yn about 0.71 m, the march
// walks up from 1 mm), and D 12 m carrying what the exact circle carries at 5 m (the march walks
// 5,000 steps up from 1 mm).
State Conduit(double D, double share, bool literal) {
    State st{.n = 0.013, .S = 0.001, .D = D, .literal = literal};
    st.Maximo();
    st.Q = share * st.Qlleno;
    return st;
}

// A Newton step kept inside the section: above 0 and below top.
double Within(double y, double next, double top) {
    if (!(next > 0)) next = y / 2;
    if (!(next < top)) next = (y + top) / 2;
    return next;
}

double ShareAt(double D, double y) {
    const double alpha = std::acos(1 - 2 * y / D);
    const double a = D * D / 4 * (alpha - std::sin(alpha) * std::cos(alpha)), p = D * alpha;
    const double full = kPi * D * D / 4 * std::pow(D / 4, 2.0 / 3.0);
    return std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0) / full;
}

void NormalDepth(benchmark::State& state, double D, double share, bool literal) {
    State st = Conduit(D, share, literal);
    TimeSearch(
        state, st, "Yn", [](State& s) { s.Circular(); }, [](const State& s) { return s.Yn; });
}

// Newton on Manning's discharge of the exact circle against the depth, from half full, to a tenth of
// the march's step.
void NewtonNormal(benchmark::State& state, double D, double share) {
    const State st = Conduit(D, share, false);
    const double coef = std::sqrt(st.S) / st.n, q = st.Q;
    TimeNewton(state, "Yn", D / 2, [=](double y) {
        const double alpha = std::acos(1 - 2 * y / D), sn = std::sin(alpha);
        const double a = D * D / 4 * (alpha - sn * std::cos(alpha)), p = D * alpha, t = D * sn;
        const double qy = coef * std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0);
        const double dq = qy * (5.0 / 3.0 * t / a - 2.0 / 3.0 * (2 / sn) / p);
        return Within(y, y - (qy - q) / dq, 0.938 * D);
    });
}

// The critical depth after the normal depth (the descent from Yn; the 1.5 m conduit is mild).
void Critical(benchmark::State& state, double D, double share, bool literal) {
    State st = Conduit(D, share, literal);
    st.Circular();
    st.Final();
    const double yn = st.Yn, f = st.F;
    TimeSearch(
        state, st, "Yc",
        [yn, f](State& s) {
            s.Yn = yn;
            s.F = f;
            s.Criticac();
        },
        [](const State& s) { return s.Yc; });
}

// Newton on A^3 / T = Q^2 / g for the exact circle, from half full.
void NewtonCritical(benchmark::State& state, double D, double share) {
    const State st = Conduit(D, share, false);
    const double target = st.Q * st.Q / 9.81;
    TimeNewton(state, "Yc", D / 2, [=](double y) {
        const double alpha = std::acos(1 - 2 * y / D), sn = std::sin(alpha);
        const double a = D * D / 4 * (alpha - sn * std::cos(alpha)), t = D * sn;
        const double f = a * a * a / t - target;
        const double dtdy = 2 * std::cos(alpha) / sn;
        const double df = 3 * a * a - a * a * a * dtdy / (t * t);
        return Within(y, y - f / df, D);
    });
}

// A rating curve of the 1.5 m conduit: normal and critical depths for 40 discharges from 2 % to 99 %
// of the largest, each search starting afresh (the time is per discharge).
void RatingCurve(benchmark::State& state, bool literal) {
    State st = Conduit(1.5, 0.45, literal);
    const double qm = st.Qm;
    double sum = 0;
    for (auto _ : state) {
        for (int k = 0; k < 40; ++k) {
            st.Q = qm * (0.02 + 0.97 * k / 39);
            st.Circular();
            st.Final();
            st.Criticac();
            sum += st.Yn + st.Yc;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * 40);
    state.counters["por caudal"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * 40,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
// A trapezoid b 3, z 1.5, banks 1.5 m, flood zone 40 m wide, at twenty times bank-full.
void Flood(benchmark::State& state, bool literal) {
    State st{.n = 0.015, .S = 0.0008, .b = 3, .z = 1.5, .h = 1.5, .Bz = 40, .nz = 0.04, .literal = literal};
    st.Lleno();
    st.Q = 20 * st.Qb;
    TimeSearch(
        state, st, "Yn", [](State& s) { s.Qdesbord(); }, [](const State& s) { return s.Yn; });
}

const bool kRegistered = [] {
    using cauce::bench::LiteralAndFast;
    LiteralAndFast(
        "ConductoYn_D1_5", [](benchmark::State& s, bool literal) { NormalDepth(s, 1.5, 0.45, literal); },
        [](benchmark::State& s) { NewtonNormal(s, 1.5, 0.45); });
    LiteralAndFast(
        "ConductoYn5m",
        [](benchmark::State& s, bool literal) { NormalDepth(s, 12, ShareAt(12, 5), literal); },
        [](benchmark::State& s) { NewtonNormal(s, 12, ShareAt(12, 5)); });
    LiteralAndFast(
        "ConductoYc_D1_5", [](benchmark::State& s, bool literal) { Critical(s, 1.5, 0.45, literal); },
        [](benchmark::State& s) { NewtonCritical(s, 1.5, 0.45); });
    LiteralAndFast("CurvaConducto", RatingCurve);
    LiteralAndFast("ZonaInundable", Flood);
    return true;
}();

}  // namespace
