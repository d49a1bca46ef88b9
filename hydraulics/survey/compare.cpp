// How far a stack of levels strays from the survey: the largest relative difference of the flow area
// and of the wetted perimeter over the whole depth, bed to top.
//
// Between two consecutive elevations of either, both areas are quadratic in the water elevation
// and both perimeters linear, so the largest ratio is found exactly: the ends of each piece and,
// for the areas, where the derivative of their ratio vanishes (a quadratic equation).
#include <algorithm>
#include <cmath>

#include "hydraulics/survey/survey.hpp"

namespace cauce::survey {

namespace {

// A quadratic q0 + q1 t + q2 t^2 on t in [0, 1], from its values at 0, 1/2 and 1.
struct Quadratic {
    double q0, q1, q2;
    double operator()(double t) const { return q0 + t * (q1 + t * q2); }
};
Quadratic Through(double v0, double vm, double v1) {
    const double q2 = 2 * (v1 - 2 * vm + v0);
    return {v0, v1 - v0 - q2, q2};
}

// |s / v - 1| where v > 0; 0 where both vanish.
double Relative(double s, double v) {
    if (v > 0) return std::abs(s / v - 1);
    return s == 0 ? 0 : 1;
}

// Near the bed both perimeters may vanish: the ratio there is taken just above it.
constexpr double kNearBed = 1e-6;

}  // namespace

// Inputs: the survey's profile and a stack of levels between its bed and top. Output: the largest
// relative differences (stack against survey) of area and of wetted perimeter over the depth.
Differences Compare(const Profile& p, const std::vector<Level>& levels) {
    Differences d;
    if (p.z.size() < 2 || levels.empty()) return d;
    std::vector<double> grid = p.z;
    for (const Level& l : levels)
        if (l.z > p.z.front() && l.z < p.z.back()) grid.push_back(l.z);
    std::sort(grid.begin(), grid.end());
    grid.erase(std::unique(grid.begin(), grid.end()), grid.end());

    for (std::size_t k = 0; k + 1 < grid.size(); ++k) {
        const double lo = grid[k], hi = grid[k + 1], mid = (lo + hi) / 2;
        const Quadratic s = Through(StackArea(levels, lo), StackArea(levels, mid), StackArea(levels, hi));
        const Quadratic v = Through(SurveyArea(p, lo), SurveyArea(p, mid), SurveyArea(p, hi));
        std::vector<double> at = {1};
        if (v.q0 > 0) {
            at.push_back(0);
        } else {
            // At the bed both vanish: the limit of their ratio, by the first term that does not.
            const double limit = std::abs(v.q1) > 1e-9 * (std::abs(v.q1) + std::abs(v.q2)) ? s.q1 / v.q1
                                 : v.q2 != 0                                               ? s.q2 / v.q2
                                                                                           : 1;
            d.area = std::max(d.area, std::abs(limit - 1));
        }
        // d/dt (s / v) = 0: (s1 v0 - s0 v1) + 2 (s2 v0 - s0 v2) t + (s2 v1 - s1 v2) t^2 = 0.
        const double c0 = s.q1 * v.q0 - s.q0 * v.q1, c1 = 2 * (s.q2 * v.q0 - s.q0 * v.q2),
                     c2 = s.q2 * v.q1 - s.q1 * v.q2;
        if (c2 != 0) {
            const double disc = c1 * c1 - 4 * c2 * c0;
            if (disc >= 0) {
                at.push_back((-c1 + std::sqrt(disc)) / (2 * c2));
                at.push_back((-c1 - std::sqrt(disc)) / (2 * c2));
            }
        } else if (c1 != 0) {
            at.push_back(-c0 / c1);
        }
        for (double t : at)
            if (t >= 0 && t <= 1) d.area = std::max(d.area, Relative(s(t), v(t)));

        // Perimeters: linear on the piece (the survey's may jump at its ends), so the ends decide.
        const double ps_lo = StackPerimeter(levels, lo), ps_mid = StackPerimeter(levels, mid);
        const double pv_lo = SurveyPerimeter(p, lo), pv_mid = SurveyPerimeter(p, mid);
        const double ps_hi = 2 * ps_mid - ps_lo, pv_hi = 2 * pv_mid - pv_lo;
        d.perimeter = std::max(d.perimeter, Relative(ps_hi, pv_hi));
        if (pv_lo > 0) {
            d.perimeter = std::max(d.perimeter, Relative(ps_lo, pv_lo));
        } else {
            const double f = kNearBed;
            d.perimeter =
                std::max(d.perimeter, Relative(ps_lo + f * (ps_hi - ps_lo), pv_lo + f * (pv_hi - pv_lo)));
        }
    }
    return d;
}

}  // namespace cauce::survey
