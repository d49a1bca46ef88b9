// Critical depth for the discharge of the workflow.
//
// Trapezoidal family (Critica): the critical-flow condition Q^2 / g = A^3 / T solved as a fixed-point
// iteration on the depth, y = (Q / sqrt g)^(2/3) T^(1/3) / W, from y = 1 until the change is at most
// 0.0001.
//
// Circular conduit (Criticac): a 1 mm march on the depth from the normal depth, carrying the Froude
// number F. Supercritical flow first climbs (Criticac2) while F > 1; then the march goes down while
// F <= 1. Each step is taken after the evaluation, so Yc is one step past the last depth evaluated,
// and after a climb the descent runs once more from there. Both marches stay as the reference
// (`literal`); inside the conduit, where Froude's number only falls as it fills, the step each stops
// at is found by a bracketing search over the step count, with the march's own depths and arithmetic.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "hydraulics/accumulate.hpp"
#include "hydraulics/froude.hpp"
#include "hydraulics/prismatic/circle_guess.hpp"
#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

void State::Critica() {
    StepBudget budget(kIterationBudget, FaultCode::ChannelCriticalEndless,
                      "El tirante crítico no converge: el cálculo no termina "
                      "(revise la Base, el Talud y el Caudal)");
    const double scale = Pow(Div(Qc, Sqr(kGravity)), 2.0 / 3.0);
    double yi = 1;
    double change = 1;
    while (change > kTolerance) {
        budget.step();
        const double t = b + yi * z * 2;
        W = b + z * yi;
        const double next = Div(scale * Pow(t, 1.0 / 3.0), W);
        change = std::fabs(next - yi);
        yi = next;
    }
    Yc = yi;
    Vc = Div(Qc, Yc * W);
}

namespace {

constexpr const char* kConduitCriticalEndless =
    "El tirante crítico del conducto no se alcanza: el cálculo no termina (revise el Caudal)";

// A step of the march at y (Geometria's discharge and its faults included), without touching the
// state.
ConduitStep StepAt(const State& st, std::int64_t index, double y) {
    ConduitStep step;
    step.index = index;
    step.at = ConduitAtDepth(st, y);
    step.vc = Div(st.Q, step.at.A);
    step.froude = Froude(step.vc, step.at.A, step.at.T);
    return step;
}

// Depths where the search is trusted: strictly inside the conduit. There Q^2 T / (g A^3) falls as
// the conduit fills (A^3 / T grows, also across the jumps of the rounded angle at D / 2), and a
// 1 mm step changes Froude's number by more than 2.7e-3 mm / D of itself, far beyond rounding.
// At D and above the replaced sine makes it jump.
struct Trusted {
    double lo, hi;
};
Trusted TrustedDepths(double D) {
    return {1e-6 * D, D * (1 - 1e-6)};
}

bool FastConduit(const State& st) {
    return st.Q > 0 && std::isfinite(st.Q) && st.S > 0 && st.n > 0 && st.D > 0 &&
           st.D <= kLargestFastDiameter;
}

}  // namespace

void State::Criticac2() {
    if (literal || !ClimbFast()) ClimbMarch(0);
}

void State::ClimbMarch(std::int64_t done) {
    StepBudget budget(kMarchBudget - done, FaultCode::ConduitCriticalEndless, kConduitCriticalEndless);
    while (F > 1) {
        budget.step();
        Geometria();
        Vc = Div(Q, A);
        F = Froude(Vc, A, T);
        y = y + kStep1mm;
    }
}

// The climb, by a bracketing search for the first step whose flow is no longer supercritical; above
// the trusted depths the march goes on.
bool State::ClimbFast() {
    if (!(F > 1 && FastConduit(*this))) return false;
    const Trusted trusted = TrustedDepths(D);
    const double start = y;
    if (!(start >= trusted.lo && start <= trusted.hi)) return false;
    const double span = std::floor((trusted.hi - start) / kStep1mm) - 2;  // see kLargestFastDiameter
    if (!(span >= 0)) return false;
    const auto last = static_cast<std::int64_t>(std::min(span, static_cast<double>(kMarchBudget - 1)));
    thread_local AccumulationCache cache(kStep1mm);
    Accumulation& steps = cache.From(start);  // y = y + 0.001 from the normal depth
    ConduitStep found;
    std::int64_t stop;
    try {
        const double guess = (CriticalDepthGuess(D, Q) - start) / kStep1mm;
        stop = FirstReachedNear(0, last, StepNear(guess, 0, last), [&](std::int64_t j) {
            const ConduitStep here = StepAt(*this, j, steps.At(j));
            if (here.froude > 1) return false;
            found = here;
            return true;
        });
    } catch (const Fault&) {
        return false;
    }
    CriticalStep(found, stop, steps.At(std::min(stop, last)));
    y = y + kStep1mm;
    if (stop > last) ClimbMarch(last + 1);
    return true;
}

void State::Criticac() {
    y = Yn;
    const bool climbed = F > 1;
    if (climbed) Criticac2();
    if (y == D) y = D - kStep5mm;
    // The Froude number has the sign of Q: with no positive discharge the descent never ends.
    if (Q <= 0) raise(FaultCode::ConduitCriticalEndless, kConduitCriticalEndless);
    // After a climb the descent turns back within a step or two of where the climb stopped.
    if (literal || !DescentFast(climbed ? 2 : -1)) DescentMarch(0);
    Yc = y;
}

void State::DescentMarch(std::int64_t done) {
    StepBudget budget(kMarchBudget - done, FaultCode::ConduitCriticalEndless, kConduitCriticalEndless);
    while (F <= 1) {
        budget.step();
        Geometria();
        Vc = Div(Q, A);
        F = Froude(Vc, A, T);
        y = y - kStep1mm;
    }
}

// The descent, by a bracketing search for the first supercritical step, from a guess of the step
// (a negative guess: from Newton on the exact circle); below the trusted depths the march goes on.
bool State::DescentFast(std::int64_t guess) {
    if (!(F <= 1 && FastConduit(*this))) return false;
    const Trusted trusted = TrustedDepths(D);
    const double start = y;
    if (!(start >= trusted.lo && start <= trusted.hi)) return false;
    const double span = std::floor((start - trusted.lo) / kStep1mm) - 2;  // see kLargestFastDiameter
    if (!(span >= 0)) return false;
    const auto last = static_cast<std::int64_t>(std::min(span, static_cast<double>(kMarchBudget - 1)));
    thread_local AccumulationCache cache(-kStep1mm);
    Accumulation& steps = cache.From(start);  // y = y - 0.001 from the start of the descent
    ConduitStep found;
    std::int64_t stop;
    try {
        if (guess < 0) guess = StepNear((start - CriticalDepthGuess(D, Q)) / kStep1mm, 0, last);
        stop = FirstReachedNear(0, last, guess, [&](std::int64_t i) {
            const ConduitStep here = StepAt(*this, i, steps.At(i));
            if (!(here.froude > 1)) return false;
            found = here;
            return true;
        });
    } catch (const Fault&) {
        return false;
    }
    CriticalStep(found, stop, steps.At(std::min(stop, last)));
    y = y - kStep1mm;
    if (stop > last) DescentMarch(last + 1);
    return true;
}

// What a step of the conduit's critical march leaves at the depth y (the step `index`): from the
// search's own evaluation when it made one there, else by taking the step.
void State::CriticalStep(const ConduitStep& found, std::int64_t index, double depth) {
    y = depth;
    if (found.index != index) {
        Geometria();
        Vc = Div(Q, A);
        F = Froude(Vc, A, T);
        return;
    }
    A = found.at.A;
    P = found.at.P;
    T = found.at.T;
    Dh = found.at.Dh;
    Vc = found.vc;
    F = found.froude;
}

}  // namespace cauce::prismatic
