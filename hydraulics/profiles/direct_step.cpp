// The direct-step marches from section k to the section upstream, k-1: M1, M2 and S1.
//
// Each pass: if the distance covered has reached the reach length L(k), the depth reached is section
// k-1's; otherwise the section is evaluated at Y, the depth moves one 5 mm step, and if it has passed
// the march's limit section k-1 takes the limit's depth (the last partial step's distance is never
// added); otherwise the section is evaluated again and the distance grows by
//   dx = |(Ee - Es) / (S0 - Sfm)|,  Sfm = (Sfs + Sfe) / 2.
// The distance is tested before the depth moves, so a reach of length 0 (L(1), never set) hands its
// depth upstream unchanged.
//
// The three marches differ only in their direction, limit, stop depth and whose bed slope enters dx.
// M2 takes S0(0), the bed slope of element 0, not S0(k): the routine it comes from read its slope
// through an index that was never assigned. The steep march never stores the velocity.
#include <cmath>

#include "hydraulics/profiles/profile.hpp"

namespace cauce::profiles {

namespace {

struct March {
    double dy;            // -0.005 falling upstream, +0.005 rising
    double limit;         // the march stops once Y reaches it (<= falling, >= rising)
    double stop_depth;    // Ysec(k-1) on that stop
    int slope_section;    // whose S0 enters dx
    bool store_velocity;  // Vsec(k) := the velocity at the start of the step
};

void DirectStep(State& st, int k, const March& m, std::int64_t budget) {
    StepBudget passes(budget, FaultCode::ProfileEndless, kEndlessMarch);
    double d = 0;
    for (;;) {
        passes.step();
        if (d >= st.L(k)) {
            st.Ysec(k - 1) = st.Y;
            return;
        }
        const SectionValues start = EvaluateSection(st, k);
        if (m.store_velocity) st.V(k) = start.V;
        st.Y = st.Y + m.dy;
        if (m.dy < 0 ? st.Y <= m.limit : st.Y >= m.limit) {
            st.Ysec(k - 1) = m.stop_depth;
            return;
        }
        const SectionValues end = EvaluateSection(st, k);
        const double sfm = (start.Sf + end.Sf) / 2;
        const double dx = std::fabs(Div(end.E - start.E, st.S0(m.slope_section) - sfm));
        d = d + dx;
    }
}

}  // namespace

void Perfilm1(State& st, int k, const RunPolicy& policy) {
    st.Tipo(k) = "M1";
    DirectStep(st, k, {-kStep5mm, st.Yn(k), st.Yn(k), k, policy.steps_store_velocity}, policy.step_budget);
}

void Perfilm2(State& st, int k, const RunPolicy& policy) {
    st.Tipo(k) = "M2";
    // Too close to critical depth: start from Yc + 0.02 and show that raised depth at section k.
    if (st.Ysec(k) <= st.Yc(k) + kAboveCritical) {
        st.Y = st.Yc(k) + kAboveCritical;
        st.Za(k) = st.Y + st.Zbed(k);
    }
    DirectStep(st, k, {kStep5mm, st.Yn(k), st.Yn(k), 0, policy.steps_store_velocity}, policy.step_budget);
}

void Perfils1(State& st, int k, const RunPolicy& policy) {
    st.Tipo(k) = "S1";
    // The stop is tested 0.02 m above critical depth, but the depth handed upstream is Yc itself.
    DirectStep(st, k, {-kStep5mm, st.Yc(k) + kAboveCritical, st.Yc(k), k, false}, policy.step_budget);
}

}  // namespace cauce::profiles
