// The profile type of a section's reach: mild reaches (Yn >= Yc) are M1 at or above normal depth and
// M2 below it; steep reaches are S1 above critical depth and S2 at or below it. Each dispatch tests
// its second case afresh after the first, as the screens always did.
#include "hydraulics/profiles/profile.hpp"

namespace cauce::profiles {

void Perfilm(State& st, int k, const RunPolicy& policy) {
    if (st.Ysec(k) >= st.Yn(k)) Perfilm1(st, k, policy);  // a depth equal to Yn is M1
    if (st.Ysec(k) < st.Yn(k)) Perfilm2(st, k, policy);
}

void Perfils(State& st, int k, const RunPolicy& policy) {
    if (st.Ysec(k) > st.Yc(k)) Perfils1(st, k, policy);
    if (st.Ysec(k) <= st.Yc(k)) {
        // S2: no stepping, the section upstream starts at critical depth.
        st.Ysec(k - 1) = st.Yc(k);
        st.Tipo(k) = "S2";
    }
}

}  // namespace cauce::profiles
