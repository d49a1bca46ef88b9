// Critical depth for the discharge of the workflow.
//
// Trapezoidal family (Critica): the critical-flow condition Q^2 / g = A^3 / T solved as a fixed-point
// iteration on the depth, y = (Q / sqrt g)^(2/3) T^(1/3) / W, from y = 1 until the change is at most
// 0.0001.
//
// Circular conduit (Criticac): a 1 mm march on the depth from the normal depth, carrying the Froude
// number F. Supercritical flow first climbs (Criticac2) while F > 1; then the march goes down while
// F <= 1. Each step is taken after the evaluation, so Yc is one step past the last depth evaluated,
// and after a climb the descent runs once more from there.
#include <cmath>

#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

void State::Critica() {
    StepBudget budget(kIterationBudget,
                      "El tirante crítico no converge: el cálculo no termina "
                      "(revise la Base, el Talud y el Caudal)");
    const double scale = Pow(Div(Qc, Sqr(9.81)), 2.0 / 3.0);
    double yi = 1;
    double change = 1;
    while (change > 0.0001) {
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

double ConduitFroude(double v, double a, double t) {
    return Div(v, Sqr(Div(9.81 * a, t)));
}
}  // namespace

void State::Criticac2() {
    StepBudget budget(kMarchBudget, kConduitCriticalEndless);
    while (F > 1) {
        budget.step();
        Geometria();
        Vc = Div(Q, A);
        F = ConduitFroude(Vc, A, T);
        y = y + 0.001;
    }
}

void State::Criticac() {
    y = Yn;
    if (F > 1) Criticac2();
    if (y == D) y = D - 0.005;
    // The Froude number has the sign of Q: with no positive discharge the descent never ends.
    if (Q <= 0) raise(kConduitCriticalEndless);
    StepBudget budget(kMarchBudget, kConduitCriticalEndless);
    while (F <= 1) {
        budget.step();
        Geometria();
        Vc = Div(Q, A);
        F = ConduitFroude(Vc, A, T);
        y = y - 0.001;
    }
    Yc = y;
}

}  // namespace cauce::prismatic
