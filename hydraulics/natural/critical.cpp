// Critical depth of a natural section for the discharge Qc.
//
// The first level at which the section filled to it carries Qc with Froude <= 1 gives the band; the
// water is then lowered from the top of that band in 1 mm steps while the flow stays subcritical.
// The step is taken after the Froude number, so Yc is reported one step below. If no level is
// subcritical the band index is stale, as it always was.
//
// Where the Froude number only rises as the band empties, the step at which the march stops is
// found by a bracketing search over the step count instead of walking every step.
#include <cmath>
#include <cstdint>
#include <utility>

#include "hydraulics/accumulate.hpp"
#include "hydraulics/froude.hpp"
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

namespace {

constexpr const char* kNoEnd = "El tirante crítico no se alcanza: el cálculo no termina";

// Froude number in band k with the water hb above level k-1, in the march's order of operations.
double InBand(const State& st, int s, double hb) {
    const double a = st.Acum(s, st.k - 1) + hb * (st.T(s, st.k - 1) + st.m(s, st.k) * hb);
    const double t = st.T(s, st.k - 1) + 2 * st.m(s, st.k) * hb;
    return DischargeFroude(st.Qc, a, t);
}

}  // namespace

void State::Critica(int s) {
    double fr = 0;
    for (int j = 2; j <= npts(s); ++j) {
        fr = DischargeFroude(Qc, Acum(s, j), T(s, j));
        if (fr <= 1) {
            k = j;
            break;
        }
    }
    if (literal || !CriticaFast(s, fr)) CriticaMarch(s, fr);
}

void State::CriticaMarch(int s, double fr) {
    StepBudget budget(kMarchBudget, FaultCode::CriticalDepthEndless, kNoEnd);
    double hb = Z(s, k) - Z(s, k - 1);
    while (fr < 1) {
        budget.step();
        fr = InBand(*this, s, hb);
        hb = hb - kStep1mm;
    }
    Yc(s) = Yj(s, k - 1) + hb;
}

bool State::CriticaFast(int s, double fr) {
    if (!(fr < 1)) return false;  // the march takes no step
    try {
        // Froude^2 = Q^2 T / (g A^3) falls as the band fills when 3 T0^2 >= 2 m A0: then, lowering
        // the water from the top of the band, it only rises until the band's foot.
        const double t0 = T(s, k - 1), a0 = Acum(s, k - 1), mm = m(s, k);
        const double top = Z(s, k) - Z(s, k - 1);
        if (!(Qc > 0 && top > 0 && t0 >= 0 && a0 >= 0 && mm >= 0 && 3 * t0 * t0 >= 2 * mm * a0)) return false;
        // h = h - 0.001 from the top of the band, kept while the band stays the same.
        thread_local AccumulationCache cache(-kStep1mm);
        Accumulation& steps = cache.From(top);
        auto depth = [&steps](std::int64_t j) { return steps.At(j); };
        // Steps that surely leave water in the band (the accumulated steps stray from j x 0.001 by
        // far less than a step); a crossing below them is left to the march.
        const double span = std::floor(top / kStep1mm) - 2;
        if (!(span >= 1 && span < static_cast<double>(kMarchBudget))) return false;
        const auto last = static_cast<std::int64_t>(span);
        // Critical flow, A^3 = (Qc^2 / g) T, by Newton on the continuous depth: a guess of the step.
        const double q2g = Qc * Qc / kGravity;
        auto excess = [&](double y) {
            const double a = a0 + y * (t0 + mm * y), t = t0 + 2 * mm * y;
            return std::pair{a * a * a - q2g * t, 3 * a * a * t - q2g * 2 * mm};
        };
        const double y = NewtonGuess(top, 0.0, top, excess);
        const std::int64_t stop =
            FirstReachedNear(0, last, StepNear((top - y) / kStep1mm, 0, last),
                             [&](std::int64_t j) { return InBand(*this, s, depth(j)) >= 1; });
        if (stop > last) return false;  // still subcritical at the band's foot: walk the march on
        Yc(s) = Yj(s, k - 1) + (depth(stop) - kStep1mm);
        return true;
    } catch (const Fault&) {
        return false;
    }
}

}  // namespace cauce::natural
