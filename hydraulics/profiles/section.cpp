// A section of the reach evaluated at the working depth: the one computation every stepping march
// repeats at the start and at the end of each step.
//
//   V  = Q / A                     mean velocity
//   Sf = n^2 V^2 / R^(4/3)         Manning's friction slope, R = A / P, the exponent 4/3 in double
//   E  = Y + V^2 / 19.62           specific energy (2g = 19.62)
//
// The operations keep the order of these formulas: (n^2 V^2) / R^(4/3), Y + (V^2 / 19.62).
#include "hydraulics/profiles/profile.hpp"

namespace cauce::profiles {

SectionValues EvaluateSection(State& st, int k) {
    st.Area(k);
    SectionValues s;
    s.V = Div(st.Q(k), st.A(k));
    const double r = Div(st.A(k), st.P);
    s.Sf = Div((st.n * st.n) * (s.V * s.V), Pow(r, 4.0 / 3.0));
    s.E = Finite(st.Y + s.V * s.V / kTwiceGravity);
    return s;
}

}  // namespace cauce::profiles
