// In-bank normal depth of a natural section: Manning's discharge marched upwards in 1 mm steps.
//
// The step is added after the discharge is computed, so the depth reported is one step above the
// depth whose area and width are left in A(s) and Tw(s). When the discharge equals a level's Qcum no
// band qualifies (strict ">") and the band index keeps its previous value.
//
// The march's h after j steps is 0.001 added to itself j - 1 times; within a band whose conveyance
// only rises the first step reaching Q is found by a bracketing search over j instead.
#include <cmath>
#include <cstdint>
#include <utility>

#include "hydraulics/accumulate.hpp"
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

namespace {

constexpr const char* kNoEnd =
    "El tirante normal no se alcanza: el cálculo no termina "
    "(revise la Pendiente, la Rugosidad y el Caudal)";

struct BandFlow {
    double a, p, t, q;
};

// Manning's discharge in band k at height hb above level k-1, in the march's order of operations.
BandFlow InBand(const State& st, int s, double hb) {
    BandFlow f;
    f.a = st.Acum(s, st.k - 1) + hb * (st.T(s, st.k - 1) + st.m(s, st.k) * hb);
    f.p = st.Pcum(s, st.k - 1) + 2 * hb * Sqr(1 + st.m(s, st.k) * st.m(s, st.k));
    f.t = st.T(s, st.k - 1) + 2 * st.m(s, st.k) * hb;
    f.q = Sqr(st.S0(s)) * Div(Div(Pow(f.a, 5.0 / 3.0), Pow(f.p, 2.0 / 3.0)), st.n);
    return f;
}

}  // namespace

void State::NormalInBank(int s) {
    const double q = Q(s);
    for (int j = 2; j <= npts(s); ++j) {
        if (Qcum(s, j) > q) {
            k = j;
            break;
        }
    }
    if (S0(s) == 0 && q > 0)
        raise(FaultCode::ZeroSlope,
              "Pendiente nula: el caudal no se alcanza a ninguna profundidad (revise la Pendiente)");
    if (literal || !NormalFast(s)) NormalMarch(s);
}

void State::NormalMarch(int s) {
    const double q = Q(s);
    StepBudget budget(kMarchBudget, FaultCode::NormalDepthEndless, kNoEnd);
    h = kStep1mm;
    double qcalc = 0;
    while (qcalc < q) {
        budget.step();
        const BandFlow f = InBand(*this, s, h);
        A(s) = f.a;
        P = f.p;
        Tw(s) = f.t;
        qcalc = f.q;
        h = h + kStep1mm;
    }
    Yn(s) = Yj(s, k - 1) + h;
}

bool State::NormalFast(int s) {
    const double q = Q(s);
    if (!(q > 0 && S0(s) > 0 && n > 0)) return false;
    try {
        // The band's conveyance A^(5/3) / P^(2/3) rises with depth from its foot on when
        // 5 T0 P0 >= 2 P' A0 (P' = 2 sqrt(1 + m^2)); the excess then only grows with the depth.
        const double t0 = T(s, k - 1), a0 = Acum(s, k - 1), p0 = Pcum(s, k - 1), mm = m(s, k);
        if (!(t0 >= 0 && a0 >= 0 && mm >= 0 && 5 * t0 * p0 >= 2 * (2 * Sqr(1 + mm * mm)) * a0)) return false;
        thread_local Accumulation steps(kStep1mm, kStep1mm);  // h = 0.001, then h = h + 0.001
        auto depth = [](std::int64_t j) { return steps.At(j - 1); };
        // Where Manning's equation crosses q in the band, by Newton on the continuous depth: only a
        // guess of the step, which the search then confirms on the march's own depths.
        const double coef = std::sqrt(S0(s)) / n, dp = 2 * std::sqrt(1 + mm * mm);
        auto excess = [&](double y) {
            const double a = a0 + y * (t0 + mm * y), p = p0 + dp * y;
            const double f = coef * std::pow(a, 5.0 / 3.0) / std::pow(p, 2.0 / 3.0);
            return std::pair{f - q, f * (5.0 / 3.0 * (t0 + 2 * mm * y) / a - 2.0 / 3.0 * dp / p)};
        };
        const double top = Z(s, k) - Z(s, k - 1);
        const double y = NewtonGuess(top > 0 ? top : 1.0, 0.0, 1e4, excess);
        const std::int64_t stop =
            FirstReachedNear(1, kMarchBudget, StepNear(y / kStep1mm, 1, kMarchBudget),
                             [&](std::int64_t j) { return InBand(*this, s, depth(j)).q >= q; });
        if (stop <= kMarchBudget) {
            const double hstop = depth(stop);
            const BandFlow f = InBand(*this, s, hstop);
            A(s) = f.a;
            P = f.p;
            Tw(s) = f.t;
            h = hstop + kStep1mm;
            Yn(s) = Yj(s, k - 1) + h;
            return true;
        }
    } catch (const Fault&) {
        return false;  // the march meets the fault where it arises
    }
    raise(FaultCode::NormalDepthEndless, kNoEnd);  // the discharge is never reached within the march's budget
}

}  // namespace cauce::natural
