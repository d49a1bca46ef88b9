// Flow over the banks of a trapezoidal-family channel into the flood zone ("zona inundable").
//
// At a depth d over the banks the main channel adds a strip d (Tb + d) to its bank-full area and
// keeps its bank-full wetted perimeter; the flood zone, of width Wf = Bz - Tb (the entered width
// counts the channel's top width in), is a rectangle Wf x d with two 45-degree sides. Each carries
// Manning's discharge with its own roughness. The normal depth for a discharge above Qb is marched
// over the banks in 2.5 mm steps until the two together carry it; as both only rise with the depth,
// the step the march stops at is found by a bracketing search over the step count instead, with the
// march's own depths and arithmetic. The march stays as the reference (`literal`).
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "hydraulics/accumulate.hpp"
#include "hydraulics/froude.hpp"
#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

namespace {

constexpr const char* kFloodEndless =
    "La profundidad sobre las orillas no se alcanza: el cálculo no termina "
    "(revise las rugosidades, la Pendiente y el Caudal)";

// Heights over the banks: 0, then d = d + 0.0025.
Accumulation& OverBankSteps() {
    thread_local Accumulation steps(0.0, kStep2_5mm);
    return steps;
}

}  // namespace

OverBanksAt OverBanksAtDepth(const State& st, double d) {
    const double root = SlopeRoot(st.S);
    OverBanksAt o;
    o.Am = st.Ab + d * (st.Tb + d);
    o.Qm = Div(root * Pow(o.Am, 5.0 / 3.0), st.n * Pow(st.Pb, 2.0 / 3.0));
    o.Wf = st.Bz - st.Tb;
    o.Af = o.Wf * d;
    if (o.Af < 0)
        raise(FaultCode::NarrowFloodZone,
              "El ancho de la zona inundable es menor que el ancho del canal a banca llena "
              "(revise el Ancho zona)");
    const double pf = o.Wf + 2 * Sqr(2) * d;
    o.Qf = Div(root * Pow(o.Af, 5.0 / 3.0), st.nz * Pow(pf, 2.0 / 3.0));
    o.Qt = o.Qm + o.Qf;
    return o;
}

void State::Qdesbord2() {
    const OverBanksAt o = OverBanksAtDepth(*this, d);
    Am = o.Am;
    Qm = o.Qm;
    Wf = o.Wf;
    Af = o.Af;
    Qf = o.Qf;
    Qt = o.Qt;
}

FloodStatus State::Qdesbord() {
    d = 0;
    Qt = Qb;
    if (Bz == 0 || nz == 0) return FloodStatus::MissingZone;
    if (literal || !FloodFast()) FloodMarch();
    Yn = h + d;
    return FloodStatus::Computed;
}

void State::FloodMarch() {
    StepBudget budget(kFloodBudget, FaultCode::ChannelFloodEndless, kFloodEndless);
    while (Qt < Q) {
        budget.step();
        d = d + kStep2_5mm;
        Qdesbord2();
    }
}

bool State::FloodFast() {
    // Both shares only rise with the depth over the banks: the main channel's area grows by
    // d (Tb + d) at a fixed perimeter, and the flood zone's rectangle Wf x d gains conveyance as it
    // deepens. With the bank-full hydraulic depth Ab / Tb below 1000 km, a step raises the main
    // channel's discharge by more than 4e-9 of itself up to the end of the budget, far beyond
    // rounding.
    const double tb = Tb, wf = Bz - tb;
    if (!(Qt < Q && std::isfinite(Q) && S > 0 && n > 0 && nz > 0 && std::isfinite(nz) && Pb > 0 && tb > 0 &&
          Ab > 0 && Ab <= 1e6 * tb && wf >= 0 && std::isfinite(wf)))
        return false;
    std::int64_t stop;
    try {
        // Where channel and flood zone carry Q together, by Newton on the continuous depth: a guess.
        const double rs = std::sqrt(S), pb23 = std::pow(Pb, 2.0 / 3.0), wall = 2 * std::sqrt(2.0);
        auto excess = [&](double x) {
            const double am = Ab + x * (tb + x), af = wf * x, pf = wf + wall * x;
            const double qm = rs * std::pow(am, 5.0 / 3.0) / (n * pb23);
            const double qf = af > 0 ? rs * std::pow(af, 5.0 / 3.0) / (nz * std::pow(pf, 2.0 / 3.0)) : 0.0;
            const double dqf = af > 0 ? qf * (5.0 / 3.0 / x - 2.0 / 3.0 * wall / pf) : 0.0;
            return std::pair{qm + qf - Q, qm * 5.0 / 3.0 * (tb + 2 * x) / am + dqf};
        };
        const double guess = NewtonGuess(1.0, 0.0, kFloodBudget * kStep2_5mm, excess) / kStep2_5mm;
        stop = FirstReachedNear(1, kFloodBudget, StepNear(guess, 1, kFloodBudget), [&](std::int64_t j) {
            return !(OverBanksAtDepth(*this, OverBankSteps().At(j)).Qt < Q);
        });
    } catch (const Fault&) {
        return false;  // the march meets the fault where it arises
    }
    // The march's state after the step it stops at, or after the last step of its budget.
    d = OverBankSteps().At(std::min(stop, kFloodBudget));
    Qdesbord2();
    if (stop > kFloodBudget) raise(FaultCode::ChannelFloodEndless, kFloodEndless);
    return true;
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
    Fm = Froude(Vm, Am, Tm);
    Ff = Af == 0 ? 0.0 : Froude(Vf, Af, Wf);
    // The whole discharge in the bank-full area: supercritical there means the critical depth is
    // above the banks.
    const double bankfull_froude = DischargeFroude(Q, Ab, Tb);
    return bankfull_froude > 1;
}

}  // namespace cauce::prismatic
