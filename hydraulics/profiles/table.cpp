// The profile table: sections 1..15 as the arrays hold them. Rows beyond N and section 0 are not
// computed here: rows beyond N show what the arrays held before (an unset type is blank, an unset
// number 0), and section 0 is never shown.
#include "hydraulics/profiles/profile.hpp"

namespace cauce::profiles {

std::array<TableRow, kTableRows> Tabla(const State& st) {
    std::array<TableRow, kTableRows> rows;
    for (int j = 1; j <= kTableRows; ++j) {
        TableRow& r = rows[static_cast<std::size_t>(j - 1)];
        r.tipo = st.Tipo(j);
        r.zw = st.Za(j);
        r.v = st.V(j);
        r.ysoc = st.Ysoc(j);
    }
    return rows;
}

}  // namespace cauce::profiles
