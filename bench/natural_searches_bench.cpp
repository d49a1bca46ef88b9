// The fixed-step depth searches side by side: the literal march (the reference), the fast path that
// finds the march's stopping step by a bracketing search, and a plain Newton solve of the same
// equation (the cost a root finder would have, without the legacy digits).
#include <benchmark/benchmark.h>

#include <cmath>

#include "bench/timing.hpp"
#include "hydraulics/natural/state.hpp"

namespace {

using cauce::bench::TimeNewton;
using cauce::bench::TimeSearch;
using cauce::natural::State;

// A rectangle 4 m wide and height m deep, n 0.03, S 0.001.
State Rectangle(double height, bool literal) {
    State st;
    st.Z(1, 1) = 100;
    st.T(1, 1) = 4;
    st.Z(1, 2) = 100 + height;
    st.T(1, 2) = 4;
    st.n = 0.03;
    st.S0(1) = 0.001;
    st.CountLevels(1);
    st.Qful(1);
    st.literal = literal;
    return st;
}

// 10 m deep, carrying the discharge of a 5 m normal depth.
State Rectangle(bool literal) {
    State st = Rectangle(10, literal);
    const double a = 20, p = 14;
    st.Q(1) = std::sqrt(0.001) / 0.03 * std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0);
    return st;
}

void NormalDepth(benchmark::State& state, bool literal) {
    State st = Rectangle(literal);
    TimeSearch(
        state, st, "Yn", [](State& s) { s.NormalInBank(1); }, [](const State& s) { return s.Yn(1); });
}

// Newton on Q(y) = q for the same band, from half the band's height, to the march's resolution.
void NormalDepthNewton(benchmark::State& state) {
    const State st = Rectangle(false);
    const double q = st.Q(1), b = 4, n = st.n, rs = std::sqrt(st.S0(1));
    TimeNewton(state, "Yn", 5.0 + 0.5, [=](double y) {  // from half the band
        const double a = b * y, p = b + 2 * y;
        const double qy = rs / n * std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0);
        const double dq = qy * (5.0 / 3.0 * b / a - 2.0 / 3.0 * 2 / p);
        return y - (qy - q) / dq;
    });
}

void Critical(benchmark::State& state, bool literal) {
    State st = Rectangle(literal);
    st.Qc = st.Q(1);
    TimeSearch(
        state, st, "Yc", [](State& s) { s.Critica(1); }, [](const State& s) { return s.Yc(1); });
}

// Critical flow in a rectangle: y^3 = q^2 / (g b^2).
void CriticalNewton(benchmark::State& state) {
    const double q = Rectangle(false).Q(1), b = 4;
    const double target = q * q / (9.81 * b * b);
    TimeNewton(state, "Yc", 5, [=](double y) { return y - (y * y * y - target) / (3 * y * y); });
}

// Overflowing: a rectangle 4 m wide and 2 m deep with a flood zone 40 m wide, at four times bank-full.
void Overflow(benchmark::State& state, bool literal) {
    State st = Rectangle(2, literal);
    st.Q(1) = 4 * st.Qlleno(1);
    st.B = 40;
    st.nz = 0.05;
    TimeSearch(
        state, st, "Yn",
        [](State& s) {
            s.Qdesbord(1);
            s.Qdesbord3(1);
        },
        [](const State& s) { return s.Yn(1); });
    state.SetLabel("Yn " + std::to_string(st.Yn(1)) + " Yc " + std::to_string(st.Yc(1)));
}

const bool kRegistered = [] {
    cauce::bench::LiteralAndFast("TiranteNormal5m", NormalDepth, NormalDepthNewton);
    cauce::bench::LiteralAndFast("Critica", Critical, CriticalNewton);
    cauce::bench::LiteralAndFast("Desborde", Overflow);
    return true;
}();

}  // namespace
