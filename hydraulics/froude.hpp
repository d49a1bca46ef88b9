// Froude's number of a flow of mean velocity v over area a and top width t: v / sqrt(g a / t), the
// hydraulic depth being a / t.
#pragma once

#include "hydraulics/checked_math.hpp"
#include "hydraulics/constants.hpp"

namespace cauce {

inline double Froude(double v, double a, double t) {
    return Div(v, Sqr(Div(kGravity * a, t)));
}

// The same for a discharge q, the velocity being q / a. The root is taken before the velocity, as
// the screens always have: where a and t are both 0, the fault is the root's 0 / 0.
inline double DischargeFroude(double q, double a, double t) {
    const double root = Sqr(Div(kGravity * a, t));
    return Div(Div(q, a), root);
}

}  // namespace cauce
