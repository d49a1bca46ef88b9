// Grain-size exponent of the general-scour relation.
//
// The three tests run in this order, each later true test overriding the earlier ones, so the bands
// are [0, 0.028), [0.028, 0.182) and [0.182, 1) with strict comparisons. a and b start at 0 on every
// call: from 1 m up Dm^0 / (Dm^0 + 0) gives exactly 1.
#include "hydraulics/scour/scour.hpp"

namespace cauce::scour {

double GrainExponent(double dm) {
    if (dm < 0) raise(FaultCode::NegativeGrainSize, "El diámetro del material (Dmm) no puede ser negativo");
    double a = 0;
    double b = 0;
    if (dm < 1) {
        a = 0.187;
        b = 0.191;
    }
    if (dm < 0.182) {
        a = 0.092;
        b = 0.223;
    }
    if (dm < 0.028) {
        a = 0.03;
        b = 0.322;
    }
    const double da = Pow(dm, a);
    return Div(da, da + b);
}

}  // namespace cauce::scour
