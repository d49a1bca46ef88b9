// Bank-full values of the trapezoidal family at the bank height h: area, wetted perimeter, top width
// and Manning's discharge Qb, the largest discharge the channel carries without the flood zone.
//
// "Yn?" computes them before it checks the roughness and the slope, so a zero roughness or a negative
// slope meets this arithmetic first; the fault says which datum is wrong.
#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

void State::Lleno() {
    Ab = TrapezoidArea(b, z, h);
    Pb = TrapezoidPerimeter(b, z, h);
    Tb = static_cast<float>(TrapezoidTopWidth(b, z, h));
    const double root = SlopeRoot(S);
    if (n == 0)
        raise(FaultCode::MissingRoughness,
              "Falta la Rugosidad: no se puede calcular el caudal a banca llena (revise la Rugosidad)");
    Qb = Div(Div(root, n) * Pow(Ab, 5.0 / 3.0), Pow(Pb, 2.0 / 3.0));
}

}  // namespace cauce::prismatic
