// Flow over the banks into the flood zone ("zona inundable") of a natural section.
//
// Above the banks the main channel rises between 1:1 walls and keeps its bank-full wetted perimeter;
// the flood zone, of total width B (the channel's top width Tn counted in), adds a rectangle w x hz
// with two 45-degree sides. The depth over the banks is marched in 2 mm steps until both carry Q.
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

void State::Qdesbord(int s) {
    const int top = npts(s);
    const double tn = T(s, top);
    if (S0(s) == 0 && Q(s) > Qlleno(s))
        raise("Pendiente nula: el caudal no se alcanza a ninguna profundidad (revise la Pendiente)");
    StepBudget budget(kMarchBudget, "La profundidad sobre las orillas no se alcanza: el cálculo no termina "
                                    "(revise la Pendiente y las rugosidades)");
    hz = 0;
    double qt = Qlleno(s);
    while (qt < Q(s)) {
        budget.step();
        hz = hz + 0.002;
        Am = Acum(s, top) + hz * (tn + hz);
        const double w = B - tn;
        Af = w * hz;
        const double pf = w + 2 * Sqr(2) * hz;
        A(s) = Am + Af;
        Qm = Div(Div(Sqr(S0(s)) * Pow(Am, 5.0 / 3.0), n), Pow(Pcum(s, top), 2.0 / 3.0));
        const double qf = Div(Div(Sqr(S0(s)) * Pow(Af, 5.0 / 3.0), nz), Pow(pf, 2.0 / 3.0));
        qt = qf + Qm;
    }
    Tw(s) = B + 2 * hz;
    Yn(s) = Ylleno(s) + hz;
    V(s) = Div(Q(s), A(s));
}

bool State::NoFloodZone(int s) const { return B == T(s, npts(s)); }

void State::Qdesbord3(int s) {
    const int top = npts(s);
    const double tn = T(s, top);
    const double abank = Acum(s, top);
    Za(s) = Yn(s) + Z(s, 1);
    if (Qm > Q(s)) Qm = Q(s);
    // The shares' velocities and the main channel's width (shown on Form5).
    Vf = Af == 0 ? 0.0 : Div(Q(s) - Qm, Af);
    Vm = Div(Qm, Am);
    Tm = tn + 2 * hz;

    const double fr = Div(Div(Q(s), abank), Sqr(Div(9.81 * abank, tn)));
    Qc = Q(s);
    if (fr < 1) {
        Critica(s);
        return;
    }
    double frb = Div(Div(Qm, abank), Sqr(Div(9.81 * abank, tn)));
    if (frb >= 1) {
        StepBudget budget(kMarchBudget, "El tirante crítico sobre las orillas no se alcanza: el cálculo no termina");
        double height = 0;
        while (frb > 1) {
            budget.step();
            height = height + 0.002;
            const double a = abank + height * (tn + height);
            const double t = tn + 2 * height;
            frb = Div(Div(Qm, a), Sqr(Div(9.81 * a, t)));
        }
        Yc(s) = Ylleno(s) + height;
    } else {
        Qc = Qm;
        Critica(s);
    }
}

}  // namespace cauce::natural
