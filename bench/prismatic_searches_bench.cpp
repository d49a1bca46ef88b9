// The prismatic screen's fixed-step searches side by side: the literal march (the reference), the
// fast path that finds the march's stopping step by a bracketing search, and a plain Newton solve of
// the same equation on the exact circle (the cost of a root finder, without the legacy digits).
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include "hydraulics/prismatic/state.hpp"

namespace {

using cauce::prismatic::State;

constexpr double kPi = 3.14159265358979323846;

// Conduits of n 0.013 and S 0.001: D 1.5 m at 45 % of the full discharge (Yn about 0.71 m, the march
// walks up from 1 mm), and D 12 m carrying what the exact circle carries at 5 m (the march walks
// 5,000 steps up from 1 mm).
State Conduit(double D, double share, bool literal) {
    State st;
    st.n = 0.013;
    st.S = 0.001;
    st.D = D;
    st.Maximo();
    st.Q = share * st.Qlleno;
    st.literal = literal;
    return st;
}

double ShareAt(double D, double y) {
    const double alpha = std::acos(1 - 2 * y / D);
    const double a = D * D / 4 * (alpha - std::sin(alpha) * std::cos(alpha)), p = D * alpha;
    const double full = kPi * D * D / 4 * std::pow(D / 4, 2.0 / 3.0);
    return std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0) / full;
}

void NormalDepth(benchmark::State& state, double D, double share, bool literal) {
    State st = Conduit(D, share, literal);
    for (auto _ : state) {
        st.Circular();
        benchmark::DoNotOptimize(st.Yn + 0.0);
    }
    state.SetLabel("Yn " + std::to_string(st.Yn));
}

// Newton on Manning's discharge of the exact circle against the depth, from half full, to a tenth of
// the march's step.
double NewtonNormalDepth(double D, double n, double S, double q) {
    const double coef = std::sqrt(S) / n;
    double y = D / 2;
    for (int it = 0; it < 50; ++it) {
        const double alpha = std::acos(1 - 2 * y / D), sn = std::sin(alpha);
        const double a = D * D / 4 * (alpha - sn * std::cos(alpha)), p = D * alpha, t = D * sn;
        const double qy = coef * std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0);
        const double dq = qy * (5.0 / 3.0 * t / a - 2.0 / 3.0 * (2 / sn) / p);
        double next = y - (qy - q) / dq;
        if (!(next > 0)) next = y / 2;
        if (!(next < 0.938 * D)) next = (y + 0.938 * D) / 2;
        const double dy = next - y;
        y = next;
        if (std::fabs(dy) < 1e-4) break;
    }
    return y;
}

void NewtonNormal(benchmark::State& state, double D, double share) {
    const State st = Conduit(D, share, false);
    double y = 0;
    for (auto _ : state) {
        y = NewtonNormalDepth(st.D, st.n, st.S, st.Q);
        benchmark::DoNotOptimize(y);
    }
    state.SetLabel("Yn " + std::to_string(y));
}

void BM_ConductoYn_D1_5_Literal(benchmark::State& s) {
    NormalDepth(s, 1.5, 0.45, true);
}
void BM_ConductoYn_D1_5_Rapido(benchmark::State& s) {
    NormalDepth(s, 1.5, 0.45, false);
}
void BM_ConductoYn_D1_5_Newton(benchmark::State& s) {
    NewtonNormal(s, 1.5, 0.45);
}
void BM_ConductoYn5m_Literal(benchmark::State& s) {
    NormalDepth(s, 12, ShareAt(12, 5), true);
}
void BM_ConductoYn5m_Rapido(benchmark::State& s) {
    NormalDepth(s, 12, ShareAt(12, 5), false);
}
void BM_ConductoYn5m_Newton(benchmark::State& s) {
    NewtonNormal(s, 12, ShareAt(12, 5));
}

// The critical depth after the normal depth (the descent from Yn; the 1.5 m conduit is mild).
void Critical(benchmark::State& state, double D, double share, bool literal) {
    State st = Conduit(D, share, literal);
    st.Circular();
    st.Final();
    const double yn = st.Yn, f = st.F;
    for (auto _ : state) {
        st.Yn = yn;
        st.F = f;
        st.Criticac();
        benchmark::DoNotOptimize(st.Yc + 0.0);
    }
    state.SetLabel("Yc " + std::to_string(st.Yc));
}

// Newton on A^3 / T = Q^2 / g for the exact circle, from half full.
void NewtonCritical(benchmark::State& state, double D, double share) {
    const State st = Conduit(D, share, false);
    const double target = st.Q * st.Q / 9.81;
    double y = 0;
    for (auto _ : state) {
        y = D / 2;
        for (int it = 0; it < 50; ++it) {
            const double alpha = std::acos(1 - 2 * y / D), sn = std::sin(alpha);
            const double a = D * D / 4 * (alpha - sn * std::cos(alpha)), t = D * sn;
            const double f = a * a * a / t - target;
            const double dtdy = 2 * std::cos(alpha) / sn;
            const double df = 3 * a * a - a * a * a * dtdy / (t * t);
            double next = y - f / df;
            if (!(next > 0)) next = y / 2;
            if (!(next < D)) next = (y + D) / 2;
            const double dy = next - y;
            y = next;
            if (std::fabs(dy) < 1e-4) break;
        }
        benchmark::DoNotOptimize(y);
    }
    state.SetLabel("Yc " + std::to_string(y));
}

void BM_ConductoYc_D1_5_Literal(benchmark::State& s) {
    Critical(s, 1.5, 0.45, true);
}
void BM_ConductoYc_D1_5_Rapido(benchmark::State& s) {
    Critical(s, 1.5, 0.45, false);
}
void BM_ConductoYc_D1_5_Newton(benchmark::State& s) {
    NewtonCritical(s, 1.5, 0.45);
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
void BM_CurvaConducto_Literal(benchmark::State& s) {
    RatingCurve(s, true);
}
void BM_CurvaConducto_Rapido(benchmark::State& s) {
    RatingCurve(s, false);
}

// A trapezoid b 3, z 1.5, banks 1.5 m, flood zone 40 m wide, at twenty times bank-full.
void Flood(benchmark::State& state, bool literal) {
    State st;
    st.n = 0.015;
    st.S = 0.0008;
    st.b = 3;
    st.z = 1.5;
    st.h = 1.5;
    st.Bz = 40;
    st.nz = 0.04;
    st.Lleno();
    st.Q = 20 * st.Qb;
    st.literal = literal;
    for (auto _ : state) {
        st.Qdesbord();
        benchmark::DoNotOptimize(st.Yn + 0.0);
    }
    state.SetLabel("Yn " + std::to_string(st.Yn));
}
void BM_ZonaInundable_Literal(benchmark::State& s) {
    Flood(s, true);
}
void BM_ZonaInundable_Rapido(benchmark::State& s) {
    Flood(s, false);
}

BENCHMARK(BM_ConductoYn_D1_5_Literal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConductoYn_D1_5_Rapido)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConductoYn_D1_5_Newton)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConductoYn5m_Literal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConductoYn5m_Rapido)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConductoYn5m_Newton)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConductoYc_D1_5_Literal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConductoYc_D1_5_Rapido)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ConductoYc_D1_5_Newton)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CurvaConducto_Literal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CurvaConducto_Rapido)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ZonaInundable_Literal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ZonaInundable_Rapido)->Unit(benchmark::kMicrosecond);

}  // namespace
