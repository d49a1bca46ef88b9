// Flow over the banks of a trapezoidal-family channel into the flood zone ("zona inundable").
//
// At a depth d over the banks the main channel adds a strip d (Tb + d) to its bank-full area and
// keeps its bank-full wetted perimeter; the flood zone, of width Wf = Bz - Tb (the entered width
// counts the channel's top width in), is a rectangle Wf x d with two 45-degree sides. Each carries
// Manning's discharge with its own roughness. The normal depth for a discharge above Qb is marched
// over the banks in 2.5 mm steps until the two together carry it.
#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

void State::Qdesbord2() {
    const double root = SlopeRoot(S);
    Am = Ab + d * (Tb + d);
    Qm = Div(root * Pow(Am, 5.0 / 3.0), n * Pow(Pb, 2.0 / 3.0));
    Wf = Bz - Tb;
    Af = Wf * d;
    if (Af < 0)
        raise(
            "El ancho de la zona inundable es menor que el ancho del canal a banca llena "
            "(revise el Ancho zona)");
    const double pf = Wf + 2 * Sqr(2) * d;
    Qf = Div(root * Pow(Af, 5.0 / 3.0), nz * Pow(pf, 2.0 / 3.0));
    Qt = Qm + Qf;
}

FloodStatus State::Qdesbord() {
    d = 0;
    Qt = Qb;
    if (Bz == 0 || nz == 0) return FloodStatus::MissingZone;
    StepBudget budget(kFloodBudget,
                      "La profundidad sobre las orillas no se alcanza: el cálculo no termina "
                      "(revise las rugosidades, la Pendiente y el Caudal)");
    while (Qt < Q) {
        budget.step();
        d = d + 0.0025;
        Qdesbord2();
    }
    Yn = h + d;
    return FloodStatus::Computed;
}

bool State::Qdesbord3() {
    if (Qm > Q) Qm = Q;
    Qrest = Q - Qm;
    Vmean = Div(Q, Am + Af);
    Vm = Div(Qm, Am);
    // A flood zone as wide as the channel has no area and carries nothing.
    Vf = Af == 0 ? 0.0 : Div(Qrest, Af);
    Tt = Bz + 2 * d;
    Tm = Tb + 2 * d;
    Fm = Div(Vm, Sqr(Div(9.81 * Am, Tm)));
    Ff = Af == 0 ? 0.0 : Div(Vf, Sqr(Div(9.81 * Af, Wf)));
    // The whole discharge in the bank-full area: supercritical there means the critical depth is
    // above the banks.
    const double bankfull_froude = Div(Div(Q, Ab), Sqr(Div(9.81 * Ab, Tb)));
    return bankfull_froude > 1;
}

}  // namespace cauce::prismatic
