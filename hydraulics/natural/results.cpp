// Per-section results of "(Y?)": the water-surface elevation and the mean velocity, the arrays the
// profile table later shows.
#include "hydraulics/natural/state.hpp"

namespace cauce::natural {

void State::Resultados(int s) {
    Za(s) = Yn(s) + Z(s, 1);
    V(s) = Div(Q(s), A(s));
}

}  // namespace cauce::natural
