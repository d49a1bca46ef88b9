// A circular conduit in uniform flow: the full-conduit values, the normal depth for a discharge and
// the results at the normal depth.
//
// The full conduit's discharge uses the exponent 0.66667 on Rf = D / 4, while the partly full
// discharge of Geometria uses 2/3: the two differ in the last digits, and both are kept. The maximum
// discharge Qm is taken at 0.94 D, near the depth where Manning's discharge of a circle peaks.
#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

double State::FullConduit() {
    if (D < 0) raise("Diámetro negativo: revise el Diametro");
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
    y = 0.001;
    double qc = 0;
    if (Q >= Qlleno / 2) {
        y = D / 2;
        qc = Qlleno / 2;
    }
    const char* endless =
        "El tirante normal del conducto no se alcanza: el cálculo no termina "
        "(revise el Caudal, el Diametro, la Rugosidad y la Pendiente)";
    StepBudget budget(kMarchBudget, endless);
    while (qc < Q) {
        budget.step();
        // Past the crown the discharge only falls as the depth grows: a march that has gone a
        // diameter above it without reaching Q never will.
        if (y > 2 * D) raise(endless);
        qc = Geometria();
        y = y + 0.001;
    }
    Yn = y;
}

ConduitFigure State::Final() {
    Vn = Div(Q, A);
    F = Div(Vn, Sqr(Div(9.81 * A, T)));
    QQlleno = Div(Q, Qlleno);
    YnD = Div(Yn, D);
    VnVlleno = Div(Vn, Vlleno);
    ConduitFigure figure = ConduitFigure::Low;
    if (Yn > 0.3 * D) figure = ConduitFigure::Middle;
    if (Yn > 0.5 * D) figure = ConduitFigure::High;
    return figure;
}

}  // namespace cauce::prismatic
