// Uniform flow in the trapezoidal family: the normal depth for a discharge (Normal) and the discharge
// for a depth (Normal2), each with the top width, mean velocity and Froude number.
//
// Normal solves Manning's equation for the area, A = (n Q / sqrt S)^0.6 P^0.4, and divides by the
// mean width W = b + y z to get the next depth, from y = 1 until the change is at most 0.0001. The
// guards P -> 0.0001 and W -> 1 keep a triangle's first passes from dividing by zero.
#include <cmath>

#include "hydraulics/froude.hpp"
#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

void State::Normal() {
    StepBudget budget(kIterationBudget, FaultCode::ChannelNormalEndless,
                      "El tirante normal no converge: el cálculo no termina "
                      "(revise la Rugosidad, la Pendiente, la Base, el Talud y el Caudal)");
    const double scale = Pow(Div(n * Q, SlopeRoot(S)), 0.6);
    double yi = 1;
    double change = 1;
    while (change > kTolerance) {
        budget.step();
        double p = b + yi * 2 * Sqr(1 + z * z);
        if (p == 0) p = 0.0001;
        double w = b + yi * z;
        if (w == 0) w = 1;
        const double next = Div(scale * Pow(p, 0.4), w);
        change = std::fabs(yi - next);
        yi = next;
    }
    Yn = yi;
    A = (b + Yn * z) * Yn;
    Vn = Div(Q, A);
    T = b + Yn * z * 2;
    Dh = Div(A, T);
    F = Div(Vn, Sqr(kGravity * Dh));
}

void State::Normal2() {
    const double yi = Yn;
    A = TrapezoidArea(b, z, yi);
    P = TrapezoidPerimeter(b, z, yi);
    const double R = Div(A, P);
    Q = Div(SlopeRoot(S) * Pow(R, 2.0 / 3.0) * A, n);
    Vn = Div(Q, A);
    T = b + yi * z * 2;
    F = Froude(Vn, A, T);
}

}  // namespace cauce::prismatic
