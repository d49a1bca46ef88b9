// A circular conduit in uniform flow: the full-conduit values, the normal depth for a discharge and
// the results at the normal depth.
//
// The full conduit's discharge uses the exponent 0.66667 on Rf = D / 4, while the partly full
// discharge of Geometria uses 2/3: the two differ in the last digits, and both are kept. The maximum
// discharge Qm is taken at 0.94 D, near the depth where Manning's discharge of a circle peaks.
//
// The normal depth is marched up in 1 mm steps; where the discharge surely rises the step the march
// stops at is found by a bracketing search over the step count instead, with the march's own depths
// and arithmetic (CircularFast). The march stays as the reference (`literal`).
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "hydraulics/accumulate.hpp"
#include "hydraulics/froude.hpp"
#include "hydraulics/prismatic/circle_guess.hpp"
#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

namespace {

constexpr const char* kConduitNormalEndless =
    "El tirante normal del conducto no se alcanza: el cálculo no termina "
    "(revise el Caudal, el Diametro, la Rugosidad y la Pendiente)";

}  // namespace

double State::FullConduit() {
    if (D < 0) raise(FaultCode::NegativeDiameter, "Diámetro negativo: revise el Diametro");
    const double af = 3.1416 * (D * D) / 4;
    const double rf = D / 4;
    Qlleno = Div(SlopeRoot(S) * Pow(rf, 0.66667) * af, n);
    return af;
}

void State::Maximo() {
    const double af = FullConduit();
    Vlleno = Div(Qlleno, af);
    y = 0.94 * D;
    Qm = Geometria();
}

void State::Clleno() {
    const double af = FullConduit();
    Q = Qlleno;
    Yn = D;
    Vn = Div(Q, af);
    F = kFullConduitFroude;
}

void State::Circular() {
    // From the half-full conduit when Q is at least half the full discharge: it carries Qlleno / 2.
    y = kStep1mm;
    double qc = 0;
    if (Q >= Qlleno / 2) {
        y = D / 2;
        qc = Qlleno / 2;
    }
    if (literal || !CircularFast(qc)) CircularMarch(qc, 0);
}

void State::CircularMarch(double qc, std::int64_t done) {
    StepBudget budget(kMarchBudget - done, FaultCode::ConduitNormalEndless, kConduitNormalEndless);
    while (qc < Q) {
        budget.step();
        // Past the crown the discharge only falls as the depth grows: a march that has gone a
        // diameter above it without reaching Q never will.
        if (y > 2 * D) raise(FaultCode::ConduitNormalEndless, kConduitNormalEndless);
        qc = Geometria();
        y = y + kStep1mm;
    }
    Yn = y;
}

bool State::CircularFast(double qc) {
    // Manning's discharge of the conduit rises with the depth up to about 0.938 D, where it peaks.
    // Up to 0.9 D a 1 mm step still raises it by more than 4e-4 mm / D of itself (D below 10 km),
    // far beyond rounding: there the first step that reaches Q is found by bisection. Above, the
    // march goes on from 0.9 D.
    if (!(qc < Q && Q > 0 && std::isfinite(Q) && S > 0 && n > 0 && D > 0 && D <= kLargestFastDiameter))
        return false;
    const double start = y, top = 0.9 * D;
    const double span = std::floor((top - start) / kStep1mm) - 2;  // see kLargestFastDiameter
    if (!(span >= 0)) return false;
    const auto last = static_cast<std::int64_t>(std::min(span, static_cast<double>(kMarchBudget - 1)));
    thread_local AccumulationCache cache(kStep1mm);
    Accumulation& steps = cache.From(start);  // y = y + 0.001 from the start
    std::int64_t stop, reached_at = -1;
    ConduitAt at{};  // the last step found to reach Q: where the search ends when it finds one
    try {
        const double guess = NormalDepthGuess(D, std::sqrt(S) / n, Q, top);
        stop = FirstReachedNear(0, last, StepNear((guess - start) / kStep1mm, 0, last), [&](std::int64_t j) {
            const ConduitAt here = ConduitAtDepth(*this, steps.At(j));
            if (here.q < Q) return false;
            reached_at = j;
            at = here;
            return true;
        });
    } catch (const Fault&) {
        return false;  // the march meets the fault where it arises
    }
    if (stop > last) {
        // Not within the depths trusted to the search: the march goes on from the last of them.
        y = steps.At(last);
        qc = Geometria();
        y = y + kStep1mm;
        CircularMarch(qc, last + 1);
        return true;
    }
    y = steps.At(stop);
    if (reached_at == stop) {  // what Geometria leaves there, computed already
        A = at.A;
        P = at.P;
        T = at.T;
        Dh = at.Dh;
    } else {
        Geometria();
    }
    y = y + kStep1mm;
    Yn = y;
    return true;
}

ConduitFigure State::Final() {
    Vn = Div(Q, A);
    F = Froude(Vn, A, T);
    QQlleno = Div(Q, Qlleno);
    YnD = Div(Yn, D);
    VnVlleno = Div(Vn, Vlleno);
    ConduitFigure figure = ConduitFigure::Low;
    if (Yn > 0.3 * D) figure = ConduitFigure::Middle;
    if (Yn > 0.5 * D) figure = ConduitFigure::High;
    return figure;
}

}  // namespace cauce::prismatic
