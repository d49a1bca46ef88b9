// In-bank normal depth of a natural section: Manning's discharge marched upwards in 1 mm steps.
//
// The step is added after the discharge is computed, so the depth reported is one step above the
// depth whose area and width are left in A(s) and Tw(s). When the discharge equals a level's Qcum no
// band qualifies (strict ">") and the band index keeps its previous value.
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

void State::NormalInBank(int s) {
    const double q = Q(s);
    for (int j = 2; j <= npts(s); ++j) {
        if (Qcum(s, j) > q) {
            k = j;
            break;
        }
    }
    if (S0(s) == 0 && q > 0)
        raise("Pendiente nula: el caudal no se alcanza a ninguna profundidad (revise la Pendiente)");
    StepBudget budget(kMarchBudget, "El tirante normal no se alcanza: el cálculo no termina "
                                    "(revise la Pendiente, la Rugosidad y el Caudal)");
    h = 0.001;
    double qcalc = 0;
    while (qcalc < q) {
        budget.step();
        A(s) = Acum(s, k - 1) + h * (T(s, k - 1) + m(s, k) * h);
        P = Pcum(s, k - 1) + 2 * h * Sqr(1 + m(s, k) * m(s, k));
        Tw(s) = T(s, k - 1) + 2 * m(s, k) * h;
        qcalc = Sqr(S0(s)) * Div(Div(Pow(A(s), 5.0 / 3.0), Pow(P, 2.0 / 3.0)), n);
        h = h + 0.001;
    }
    Yn(s) = Yj(s, k - 1) + h;
}

}  // namespace cauce::natural
