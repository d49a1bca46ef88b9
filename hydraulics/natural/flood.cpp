// Flow over the banks into the flood zone ("zona inundable") of a natural section.
//
// Above the banks the main channel rises between 1:1 walls and keeps its bank-full wetted perimeter;
// the flood zone, of total width B (the channel's top width Tn counted in), adds a rectangle w x hz
// with two 45-degree sides. The depth over the banks is marched in 2 mm steps until both carry Q.
// Both discharges only rise with the depth, so the stopping step is found by a bracketing search over
// the step count, with exactly the march's results.
#include <cmath>
#include <cstdint>
#include <utility>

#include "hydraulics/accumulate.hpp"
#include "hydraulics/froude.hpp"
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

namespace {

constexpr const char* kNoEnd =
    "La profundidad sobre las orillas no se alcanza: el cálculo no termina "
    "(revise la Pendiente y las rugosidades)";
constexpr const char* kNoCritical =
    "El tirante crítico sobre las orillas no se alcanza: el cálculo no termina";

struct OverBank {
    double am, af, qm, qt;
};

// Main channel and flood zone with the water hz over the banks, in the march's order of operations.
OverBank AtHeight(const State& st, int s, double hz) {
    const int top = st.npts(s);
    const double tn = st.T(s, top);
    OverBank o;
    o.am = st.Acum(s, top) + hz * (tn + hz);
    const double w = st.B - tn;
    o.af = w * hz;
    const double pf = w + 2 * Sqr(2) * hz;
    o.qm = Div(Div(Sqr(st.S0(s)) * Pow(o.am, 5.0 / 3.0), st.n), Pow(st.Pcum(s, top), 2.0 / 3.0));
    const double qf = Div(Div(Sqr(st.S0(s)) * Pow(o.af, 5.0 / 3.0), st.nz), Pow(pf, 2.0 / 3.0));
    o.qt = qf + o.qm;
    return o;
}

// Heights over the banks: 0, then height = height + 0.002.
Accumulation& OverBankSteps() {
    thread_local Accumulation steps(0.0, kStep2mm);
    return steps;
}

}  // namespace

void State::Qdesbord(int s) {
    if (S0(s) == 0 && Q(s) > Qlleno(s))
        raise(FaultCode::ZeroSlope,
              "Pendiente nula: el caudal no se alcanza a ninguna profundidad (revise la Pendiente)");
    if (literal || !FloodFast(s)) FloodMarch(s);
    Tw(s) = B + 2 * hz;
    Yn(s) = Ylleno(s) + hz;
    V(s) = Div(Q(s), A(s));
}

void State::FloodMarch(int s) {
    StepBudget budget(kMarchBudget, FaultCode::FloodDepthEndless, kNoEnd);
    hz = 0;
    double qt = Qlleno(s);
    while (qt < Q(s)) {
        budget.step();
        hz = hz + kStep2mm;
        const OverBank o = AtHeight(*this, s, hz);
        Am = o.am;
        Af = o.af;
        A(s) = o.am + o.af;
        Qm = o.qm;
        qt = o.qt;
    }
}

bool State::FloodFast(int s) {
    if (!(Qlleno(s) < Q(s) && S0(s) > 0 && n > 0 && nz > 0 && B >= T(s, npts(s)))) return false;
    std::int64_t stop = 0;
    try {
        auto height = [](std::int64_t j) { return OverBankSteps().At(j); };
        // Where channel plus flood zone carry Q, by Newton on the continuous height: a guess.
        const int top = npts(s);
        const double tn = T(s, top), abank = Acum(s, top), w = B - tn, rs = std::sqrt(S0(s));
        const double pb23 = std::pow(Pcum(s, top), 2.0 / 3.0);
        auto excess = [&](double y) {
            const double am = abank + y * (tn + y), af = w * y, pf = w + 2 * std::sqrt(2.0) * y;
            const double qm = rs * std::pow(am, 5.0 / 3.0) / n / pb23;
            const double qf = af > 0 ? rs * std::pow(af, 5.0 / 3.0) / nz / std::pow(pf, 2.0 / 3.0) : 0.0;
            const double dqf = af > 0 ? qf * (5.0 / 3.0 / y - 2.0 / 3.0 * 2 * std::sqrt(2.0) / pf) : 0.0;
            return std::pair{qm + qf - Q(s), qm * 5.0 / 3.0 * (tn + 2 * y) / am + dqf};
        };
        const double y = NewtonGuess(1.0, 0.0, 1e4, excess);
        stop = FirstReachedNear(1, kMarchBudget, StepNear(y / kStep2mm, 1, kMarchBudget),
                                [&](std::int64_t j) { return !(AtHeight(*this, s, height(j)).qt < Q(s)); });
        if (stop <= kMarchBudget) {
            hz = height(stop);
            const OverBank o = AtHeight(*this, s, hz);
            Am = o.am;
            Af = o.af;
            A(s) = o.am + o.af;
            Qm = o.qm;
            return true;
        }
    } catch (const Fault&) {
        return false;
    }
    raise(FaultCode::FloodDepthEndless, kNoEnd);
}

bool State::NoFloodZone(int s) const {
    return B == T(s, npts(s));
}

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

    const double fr = DischargeFroude(Q(s), abank, tn);
    Qc = Q(s);
    if (fr < 1) {
        Critica(s);
        return;
    }
    const double frb = DischargeFroude(Qm, abank, tn);
    if (frb >= 1) {
        Yc(s) = Ylleno(s) + OverBankCritical(s, frb);
    } else {
        Qc = Qm;
        Critica(s);
    }
}

// The main channel alone, supercritical at bank-full: the height over the banks, in 2 mm steps, at
// which its Froude number is no longer above 1.
double State::OverBankCritical(int s, double frb) {
    const int top = npts(s);
    const double tn = T(s, top);
    const double abank = Acum(s, top);
    auto froude = [&](double height) {
        return DischargeFroude(Qm, abank + height * (tn + height), tn + 2 * height);
    };
    // Froude falls as the water rises between the 1:1 walls when 2 A <= 3 T^2 at the banks.
    if (!literal && frb > 1 && Qm > 0 && tn > 0 && abank > 0 && 2 * abank <= 3 * tn * tn) {
        try {
            auto height = [](std::int64_t j) { return OverBankSteps().At(j); };
            const double q2g = Qm * Qm / kGravity;
            auto excess = [&](double y) {
                const double a = abank + y * (tn + y), t = tn + 2 * y;
                return std::pair{a * a * a - q2g * t, 3 * a * a * t - 2 * q2g};
            };
            const double y = NewtonGuess(0.0, -1.0, 1e4, excess);
            const std::int64_t stop =
                FirstReachedNear(1, kMarchBudget, StepNear(y / kStep2mm, 1, kMarchBudget),
                                 [&](std::int64_t j) { return !(froude(height(j)) > 1); });
            if (stop <= kMarchBudget) return height(stop);
        } catch (const Fault&) {
        }
    }
    StepBudget budget(kMarchBudget, FaultCode::FloodCriticalEndless, kNoCritical);
    double height = 0;
    while (frb > 1) {
        budget.step();
        height = height + kStep2mm;
        frb = froude(height);
    }
    return height;
}

}  // namespace cauce::natural
