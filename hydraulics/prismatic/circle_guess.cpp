#include "hydraulics/prismatic/circle_guess.hpp"

#include "hydraulics/constants.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace cauce::prismatic {

namespace {

constexpr double kPi = 3.14159265358979323846;

// alpha - sin(alpha) cos(alpha), four times the area of a unit-diameter circle below the chord; its
// series near zero, where the difference loses its digits.
double Segment(double alpha) {
    if (alpha < 1e-2) {
        const double a2 = alpha * alpha;
        return alpha * a2 * (2.0 / 3.0 - a2 * (2.0 / 15.0));
    }
    return alpha - std::sin(alpha) * std::cos(alpha);
}

// Depth of the water whose half angle is alpha.
double DepthOf(double D, double alpha) {
    return D / 2 * (1 - std::cos(alpha));
}

// Newton on f(u), u the logarithm of the half angle, kept inside [lo, hi]; fdf(u) gives
// {f, df/du, sin(alpha)}. It stops once a step moves the depth by less than a tenth of a
// millimetre: the guess need only fall on the right step of the march.
template <typename FDF>
double SolveDepth(double D, double u, double lo, double hi, FDF&& fdf) {
    for (int it = 0; it < 40; ++it) {
        const auto [f, d, sn] = fdf(u);
        if (!(d != 0)) break;
        double next = u - f / d;
        if (!(next > lo)) next = (u + lo) / 2;
        if (!(next < hi)) next = (u + hi) / 2;
        const double moved = D / 2 * sn * std::exp(u) * std::fabs(next - u);
        u = next;
        if (moved < 1e-4) break;
    }
    return DepthOf(D, std::exp(u));
}

}  // namespace

// Newton works on the logarithms (of the discharge, against that of the half angle), where the
// discharge of a shallow flow is nearly a straight line.
double NormalDepthGuess(double D, double coef, double q, double ytop) {
    const double top = std::log(std::acos(std::clamp(1 - 2 * ytop / D, -1.0, 1.0)));
    const double target = std::log(q) - std::log(coef);
    auto excess = [&](double u) {
        const double alpha = std::exp(u), sn = std::sin(alpha), seg = Segment(alpha);
        const double f = 5.0 / 3.0 * std::log(seg * D * D / 4) - 2.0 / 3.0 * std::log(D * alpha) - target;
        return std::tuple{f, alpha * (5.0 / 3.0 * 2 * sn * sn / seg) - 2.0 / 3.0, sn};
    };
    return SolveDepth(D, std::min(std::log(kPi / 2), top), -30.0, top, excess);
}

double CriticalDepthGuess(double D, double q) {
    const double target = 2 * std::log(q) - std::log(kGravity);
    auto excess = [&](double u) {
        const double alpha = std::exp(u), sn = std::sin(alpha), seg = Segment(alpha);
        const double f = 3 * std::log(seg * D * D / 4) - std::log(D * sn) - target;
        return std::tuple{f, alpha * (3 * 2 * sn * sn / seg - std::cos(alpha) / sn), sn};
    };
    return SolveDepth(D, std::log(kPi / 2), -30.0, std::log(kPi), excess);
}

}  // namespace cauce::prismatic
