// Scour depth below the bed of one section.
//
// alpha = sqrt(Sf) / n is the mean-velocity coefficient; the scoured depth is
//   ds = ((y^(5/3) alpha / 4.7) / 0.9 / Dm^0.28) ^ (1/(1+x))
// done in that order, and the scour below the present bed is ds - y.
#include "hydraulics/scour/scour.hpp"

namespace cauce::scour {

void Socavacion(natural::State& st, int s, double y, double sf, const Bed& bed) {
    const double alpha = Div(Sqr(sf), st.n);
    double x = Pow(y, 5.0 / 3.0) * alpha;
    x = x / 4.7;
    x = x / 0.9;
    x = Div(x, Pow(bed.Dm, 0.28));
    const double ds = Pow(x, bed.exponent);
    st.Ysoc(s) = Finite(ds - y);
}

}  // namespace cauce::scour
