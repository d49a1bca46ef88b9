// A circular conduit flowing partly full: area, wetted perimeter, top width and hydraulic depth at
// the working depth y, and Manning's discharge there.
//
// The half central angle comes from its cosine x = 1 - 2 y / D through the arctangent, with the
// constants 1.5708 and 3.1416 (not the full-precision pi): every conduit result carries them. A zero
// sine (empty or full conduit) is replaced by 0.01 so that the angle stays defined. At y = D exactly
// the discharge is the full-conduit value Qlleno, and the hydraulic depth is left as it was.
#include <cmath>

#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

namespace {

struct Shape {
    double A, P, T;
};

Shape ShapeAt(double D, double y) {
    const double x = 1 - Div(2 * y, D);
    double s2 = 1 - x * x;
    if (s2 <= 0) s2 = 0.0001;
    const double s = Sqr(s2);
    double alpha;
    if (x == 0) {
        alpha = 1.5708;
    } else {
        alpha = std::atan(Div(s, x));
        if (alpha < 0) alpha = alpha + 3.1416;
    }
    return {(alpha - std::sin(alpha) * std::cos(alpha)) * (D * D) / 4, D * alpha, D * std::sin(alpha)};
}

double Discharge(double S, double n, double A, double P) {
    return Div(Div(SlopeRoot(S), n) * Pow(A, 5.0 / 3.0), Pow(P, 2.0 / 3.0));
}

}  // namespace

double State::Geometria() {
    const Shape shape = ShapeAt(D, y);
    A = shape.A;
    P = shape.P;
    T = shape.T;
    if (y == D) return Qlleno;
    Dh = Div(A, T);
    return Discharge(S, n, A, P);
}

ConduitAt ConduitAtDepth(const State& st, double y) {
    const Shape shape = ShapeAt(st.D, y);
    ConduitAt at{shape.A, shape.P, shape.T, st.Dh, st.Qlleno};
    if (y == st.D) return at;
    at.Dh = Div(at.A, at.T);
    at.q = Discharge(st.S, st.n, at.A, at.P);
    return at;
}

}  // namespace cauce::prismatic
