// The profile run over the reach: from the last section, N, upstream to section 1.
//
// For each section the working depth is the depth the march has given it, Zw(k) = Ysec(k) + Zbed(k),
// and the reach is classed: steep (Yn < Yc) or, testing again, mild (Yn >= Yc); the routine called
// fills Ysec(k-1). The policy adds the scour screen's evaluation before the classification and its
// hook after it.
#include "hydraulics/profiles/profile.hpp"

namespace cauce::profiles {

bool SetStartDepth(State& st, double y) {
    st.Ysec(st.N) = y;
    st.Za(st.N) = st.Ysec(st.N) + st.Zbed(st.N);
    return st.Ysec(st.N) != 0;
}

void ReachLengths(State& st, const RunPolicy& policy) {
    const int last = policy.lengths == Lengths::FifteenBoxes ? kTableRows : st.N;
    for (int j = 2; j <= last; ++j) st.L(j) = st.X(j) - st.X(j - 1);
}

RunEnd ProfileRun(State& st, const RunPolicy& policy) {
    ReachLengths(st, policy);
    for (int sec = st.N; sec >= 1; --sec) {
        st.Y = st.Ysec(sec);
        double sf = 0;
        if (policy.evaluate_at_march_depth) {
            st.Area(sec);
            if (st.A(sec) == 0) return RunEnd::NoArea;
            st.V(sec) = Div(st.Q(sec), st.A(sec));
            if (policy.friction_slope) sf = policy.friction_slope(st, sec);
        }
        st.Za(sec) = st.Ysec(sec) + st.Zbed(sec);
        if (st.Yn(sec) < st.Yc(sec)) Perfils(st, sec, policy);
        if (st.Yn(sec) >= st.Yc(sec)) Perfilm(st, sec, policy);
        if (policy.after_classification) policy.after_classification(st, sec, sf);
    }
    return RunEnd::Complete;
}

}  // namespace cauce::profiles
