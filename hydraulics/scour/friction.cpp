// Friction slope of a section from Manning's equation: Sf = (n V / R^(2/3))^2.
#include "hydraulics/scour/scour.hpp"

namespace cauce::scour {

double FrictionSlope(double n, double v, double a, double p) {
    const double r = Div(a, p);
    const double x = Div(n * v, Pow(r, 2.0 / 3.0));
    return Pow(x, 2.0);
}

}  // namespace cauce::scour
