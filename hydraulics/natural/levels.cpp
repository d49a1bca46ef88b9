// Level count, level tables and bank-full discharge of a natural section.
//
// A section is a stack of symmetric trapezoidal bands between consecutive levels (Z, T). For each
// level j the tables hold its depth above the bed Yj, the side slope m of the band below it, and the
// area Acum, wetted perimeter Pcum and uniform-flow discharge Qcum of the section filled to level j.
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

void State::CountLevels(int s) {
    // An elevation of exactly 0 ends the list; with all fifteen levels set, level 16 (empty) does.
    for (int j = 1; j <= 16; ++j) {
        if (Z(s, j) == 0) {
            npts(s) = j - 1;
            return;
        }
    }
    npts(s) = 16;  // unreachable with 15 text boxes, kept as the loop would leave it
}

TableError State::Qful(int s) {
    Yj(s, 1) = 0;
    Acum(s, 1) = 0;
    Qcum(s, 1) = 0;
    Pcum(s, 1) = T(s, 1);
    for (int j = 2; j <= npts(s); ++j) {
        Yj(s, j) = Z(s, j) - Z(s, 1);
        const double dY = Yj(s, j) - Yj(s, j - 1);
        if (dY <= 0) return TableError::Cotas;  // Qlleno and Ylleno keep their old values
        m(s, j) = Div((T(s, j) - T(s, j - 1)) / 2, dY);
        if (m(s, j) < 0) return TableError::Anchos;
        Acum(s, j) = Acum(s, j - 1) + dY * (T(s, j - 1) + m(s, j) * dY);
        Pcum(s, j) = Pcum(s, j - 1) + 2 * dY * Sqr(1 + m(s, j) * m(s, j));
        Qcum(s, j) = Div(Sqr(S0(s)) * Div(Pow(Acum(s, j), 5.0 / 3.0), n), Pow(Pcum(s, j), 2.0 / 3.0));
    }
    Qlleno(s) = Qcum(s, npts(s));
    Ylleno(s) = Yj(s, npts(s));
    return TableError::None;
}

}  // namespace cauce::natural
