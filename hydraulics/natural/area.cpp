// Geometry of a natural section at the working depth Y: flow area, wetted perimeter and top width.
//
// The band is found from the levels; a water surface exactly at a level selects the band that ends
// there. Above the top level no band qualifies and the band index k keeps its previous value.
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

void State::Area(int s) {
    for (int j = 2; j <= npts(s); ++j) {
        const double above = (Y + Z(s, 1)) - Z(s, j);
        if (above <= 0) {
            k = j;
            break;
        }
    }
    const double hb = (Y + Z(s, 1)) - Z(s, k - 1);
    A(s) = Acum(s, k - 1) + hb * (T(s, k - 1) + m(s, k) * hb);
    P = Pcum(s, k - 1) + 2 * hb * Sqr(1 + m(s, k) * m(s, k));
    Tw(s) = T(s, k - 1) + 2 * m(s, k) * hb;
}

}  // namespace cauce::natural
