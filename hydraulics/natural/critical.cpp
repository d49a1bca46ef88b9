// Critical depth of a natural section for the discharge Qc.
//
// The first level at which the section filled to it carries Qc with Froude <= 1 gives the band; the
// water is then lowered from the top of that band in 1 mm steps while the flow stays subcritical.
// The step is taken after the Froude number, so Yc is reported one step below. If no level is
// subcritical the band index is stale, as it always was.
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

namespace {
double Froude(double q, double a, double t) { return Div(Div(q, a), Sqr(Div(9.81 * a, t))); }
}  // namespace

void State::Critica(int s) {
    double fr = 0;
    for (int j = 2; j <= npts(s); ++j) {
        fr = Froude(Qc, Acum(s, j), T(s, j));
        if (fr <= 1) {
            k = j;
            break;
        }
    }
    StepBudget budget(kMarchBudget, "El tirante crítico no se alcanza: el cálculo no termina");
    double hb = Z(s, k) - Z(s, k - 1);
    while (fr < 1) {
        budget.step();
        const double a = Acum(s, k - 1) + hb * (T(s, k - 1) + m(s, k) * hb);
        const double t = T(s, k - 1) + 2 * m(s, k) * hb;
        fr = Froude(Qc, a, t);
        hb = hb - 0.001;
    }
    Yc(s) = Yj(s, k - 1) + hb;
}

}  // namespace cauce::natural
