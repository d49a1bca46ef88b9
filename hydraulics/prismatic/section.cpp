// The trapezoidal family: which shape the data describe, and its geometry at a depth.
//
// One formula set serves the three shapes, with b = 0 for the triangle and z = 0 for the rectangle.
// The type tests run in a fixed order and the later one wins, so b = z = 0 reads as a rectangle; the
// callers refuse that section afterwards (b + z = 0).
#include "hydraulics/prismatic/state.hpp"

namespace cauce::prismatic {

SectionType State::Datos() const {
    SectionType type = SectionType::Trapezoidal;
    if (b == 0) type = SectionType::Triangular;
    if (z == 0) type = SectionType::Rectangular;
    return type;
}

double SlopeRoot(double S) {
    if (S < 0)
        raise(FaultCode::NegativeSlope,
              "Pendiente negativa: no hay flujo uniforme con esta pendiente (revise la Pendiente)");
    return Sqr(S);
}

double TrapezoidArea(double b, double z, double y) {
    return (b + z * y) * y;
}

double TrapezoidPerimeter(double b, double z, double y) {
    return b + 2 * y * Sqr(1 + z * z);
}

double TrapezoidTopWidth(double b, double z, double y) {
    return b + 2 * z * y;
}

}  // namespace cauce::prismatic
