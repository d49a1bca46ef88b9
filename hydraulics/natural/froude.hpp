// Froude number of a flow of mean velocity v over area a and top width t: v / sqrt(g a / t), with
// g = 9.81 m/s2 and the hydraulic depth a / t.
#pragma once

#include "hydraulics/fault.hpp"

namespace cauce::natural {

inline double Froude(double v, double a, double t) {
    return Div(v, Sqr(Div(9.81 * a, t)));
}

}  // namespace cauce::natural
