// The fixed-step depth searches side by side: the literal march (the reference), the fast path that
// finds the march's stopping step by a bracketing search, and a plain Newton solve of the same
// equation (the cost a root finder would have, without the legacy digits).
#include <benchmark/benchmark.h>

#include <cmath>

#include "hydraulics/natural/state.hpp"

namespace {

using cauce::natural::State;

// A rectangle 4 m wide and 10 m deep (n 0.03, S 0.001) carrying the discharge of a 5 m normal depth.
State Rectangle(bool literal) {
    State st;
    st.Z(1, 1) = 100;
    st.T(1, 1) = 4;
    st.Z(1, 2) = 110;
    st.T(1, 2) = 4;
    st.n = 0.03;
    st.S0(1) = 0.001;
    st.CountLevels(1);
    st.Qful(1);
    const double a = 20, p = 14;
    st.Q(1) = std::sqrt(0.001) / 0.03 * std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0);
    st.literal = literal;
    return st;
}

void NormalDepth(benchmark::State& state, bool literal) {
    State st = Rectangle(literal);
    for (auto _ : state) {
        st.NormalInBank(1);
        benchmark::DoNotOptimize(st.Yn(1) + 0.0);
    }
    state.SetLabel("Yn " + std::to_string(st.Yn(1)));
}
void BM_TiranteNormal5m_Literal(benchmark::State& s) {
    NormalDepth(s, true);
}
void BM_TiranteNormal5m_Rapido(benchmark::State& s) {
    NormalDepth(s, false);
}

// Newton on Q(y) = q for the same band, from half the band's height, to the march's resolution.
void BM_TiranteNormal5m_Newton(benchmark::State& state) {
    State st = Rectangle(false);
    const double q = st.Q(1), b = 4, n = st.n, rs = std::sqrt(st.S0(1));
    double y = 0;
    for (auto _ : state) {
        y = 5.0 + 0.5;  // half the band
        for (int it = 0; it < 50; ++it) {
            const double a = b * y, p = b + 2 * y;
            const double qy = rs / n * std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0);
            const double dq = qy * (5.0 / 3.0 * b / a - 2.0 / 3.0 * 2 / p);
            const double dy = (qy - q) / dq;
            y -= dy;
            if (std::fabs(dy) < 1e-4) break;
        }
        benchmark::DoNotOptimize(y);
    }
    state.SetLabel("Yn " + std::to_string(y));
}

void Critical(benchmark::State& state, bool literal) {
    State st = Rectangle(literal);
    st.Qc = st.Q(1);
    for (auto _ : state) {
        st.Critica(1);
        benchmark::DoNotOptimize(st.Yc(1) + 0.0);
    }
    state.SetLabel("Yc " + std::to_string(st.Yc(1)));
}
void BM_Critica_Literal(benchmark::State& s) {
    Critical(s, true);
}
void BM_Critica_Rapido(benchmark::State& s) {
    Critical(s, false);
}

void BM_Critica_Newton(benchmark::State& state) {
    const double q = Rectangle(false).Q(1), b = 4;
    double y = 0;
    for (auto _ : state) {
        y = 5;
        const double target = q * q / (9.81 * b * b);
        for (int it = 0; it < 50; ++it) {  // critical flow in a rectangle: y^3 = q^2 / (g b^2)
            const double dy = (y * y * y - target) / (3 * y * y);
            y -= dy;
            if (std::fabs(dy) < 1e-4) break;
        }
        benchmark::DoNotOptimize(y);
    }
    state.SetLabel("Yc " + std::to_string(y));
}

// Overflowing: a rectangle 4 m wide and 2 m deep with a flood zone 40 m wide, at four times bank-full.
void Overflow(benchmark::State& state, bool literal) {
    State st;
    st.Z(1, 1) = 100;
    st.T(1, 1) = 4;
    st.Z(1, 2) = 102;
    st.T(1, 2) = 4;
    st.n = 0.03;
    st.S0(1) = 0.001;
    st.CountLevels(1);
    st.Qful(1);
    st.Q(1) = 4 * st.Qlleno(1);
    st.B = 40;
    st.nz = 0.05;
    st.literal = literal;
    for (auto _ : state) {
        st.Qdesbord(1);
        st.Qdesbord3(1);
        benchmark::DoNotOptimize(st.Yn(1) + 0.0);
    }
    state.SetLabel("Yn " + std::to_string(st.Yn(1)) + " Yc " + std::to_string(st.Yc(1)));
}
void BM_Desborde_Literal(benchmark::State& s) {
    Overflow(s, true);
}
void BM_Desborde_Rapido(benchmark::State& s) {
    Overflow(s, false);
}

BENCHMARK(BM_TiranteNormal5m_Literal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TiranteNormal5m_Rapido)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TiranteNormal5m_Newton)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Critica_Literal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Critica_Rapido)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Critica_Newton)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Desborde_Literal)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Desborde_Rapido)->Unit(benchmark::kMicrosecond);

}  // namespace
