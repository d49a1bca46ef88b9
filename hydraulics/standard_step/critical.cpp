// Critical and normal depth of a standard-step section.
//
// The critical depth is where the specific energy E = y + alpha V^2 / 2g is least over the whole
// compound section. A natural section, or one whose flood zone starts at the banks, can show several
// minima: the energy is scanned over the levels and an even grid first, and the least one refined.
#include <algorithm>
#include <cmath>
#include <string>

#include "hydraulics/checked_math.hpp"

#include "hydraulics/standard_step/root_finder.hpp"
#include "hydraulics/standard_step/section.hpp"

namespace cauce::standard_step {

namespace {

double Energy(const Section& s, double y) {
    return SpecificEnergy(s, y);
}

// The least energy in [a, b]: parabolas through the three best points, each checked against a
// golden-section step (Brent's minimizer), to within about 2e-5 m of the minimum. x is the best
// point so far, w the second best, v the one before w.
double RefineMinimum(const Section& s, double a, double b) {
    struct Point {
        double y, e;  // a depth and its specific energy
    };
    const double golden = (3 - std::sqrt(5.0)) / 2;
    constexpr double kTol = 2e-5;  // m
    const double y0 = a + golden * (b - a);
    Point x{y0, Energy(s, y0)}, w = x, v = x;
    double d = 0, e = 0;
    for (int iter = 0; iter < 100; ++iter) {
        const double xm = (a + b) / 2, tol1 = kTol + 1e-12 * std::fabs(x.y), tol2 = 2 * tol1;
        if (std::fabs(x.y - xm) <= tol2 - (b - a) / 2) break;
        bool parabolic = false;
        if (std::fabs(e) > tol1) {
            const double r = (x.y - w.y) * (x.e - v.e);
            double q = (x.y - v.y) * (x.e - w.e);
            double p = (x.y - v.y) * q - (x.y - w.y) * r;
            q = 2 * (q - r);
            if (q > 0) p = -p;
            q = std::fabs(q);
            // The parabola's vertex is taken when it lies inside and the step shrinks fast enough.
            if (std::fabs(p) < std::fabs(q * e / 2) && p > q * (a - x.y) && p < q * (b - x.y)) {
                e = d;
                d = p / q;
                const double u = x.y + d;
                if (u - a < tol2 || b - u < tol2) d = xm >= x.y ? tol1 : -tol1;
                parabolic = true;
            }
        }
        if (!parabolic) {
            e = (x.y >= xm ? a : b) - x.y;
            d = golden * e;
        }
        const double uy = std::fabs(d) >= tol1 ? x.y + d : x.y + (d > 0 ? tol1 : -tol1);
        const Point u{uy, Energy(s, uy)};
        if (u.e <= x.e) {
            (u.y >= x.y ? a : b) = x.y;
            v = w;
            w = x;
            x = u;
        } else {
            (u.y < x.y ? a : b) = u.y;
            if (u.e <= w.e || w.y == x.y) {
                v = w;
                w = u;
            } else if (u.e <= v.e || v.y == x.y || v.y == w.y) {
                v = u;
            }
        }
    }
    return x.y;
}

}  // namespace

/* Critical depth of a section for its discharge.
   Input:  s, a built section with its discharge q.
   Output: the depth of least specific energy, m.
   Purpose: the control where neither pass balances, the start of a supercritical pass, and the
            bound that separates the two branches of every balance. */
double CriticalDepth(const Section& s) {
    // A rectangle as wide as the banks gives the scale of the search.
    const double rect = std::cbrt(s.q * s.q / (kGravity * s.bank_width() * s.bank_width()));
    double hi = std::max(1.5 * s.top(), 3 * rect);
    for (;;) {
        // The even grid and the levels below hi, merged in order (both are sorted).
        constexpr int kSteps = 12;
        thread_local std::vector<double> grid;
        grid.clear();
        grid.reserve(kSteps + s.y.size());
        std::size_t level = 0;
        for (int i = 1; i <= kSteps; ++i) {
            const double step = hi * i / kSteps;
            for (; level < s.y.size() && s.y[level] < step; ++level)
                if (s.y[level] > 0) grid.push_back(s.y[level]);
            grid.push_back(step);
        }
        std::size_t best = 0;
        double least = Energy(s, grid[0]);
        for (std::size_t i = 1; i < grid.size(); ++i) {
            // E = y + alpha V^2 / 2g is never below y: no depth above the least energy found can
            // lower it, and the scan stops there.
            if (grid[i] >= least) break;
            const double e = Energy(s, grid[i]);
            if (e < least) {
                least = e;
                best = i;
            }
        }
        // The least energy at the end of the grid: the minimum lies higher up.
        if (best + 1 == grid.size() || grid[best] > s.top() + kDepthLimit) {
            if (hi > s.top() + kDepthLimit)
                raise(FaultCode::StandardStepNoDepth,
                      (s.number > 0 ? "La sección " + std::to_string(s.number)
                                    : "El tramo en la abscisa " + std::to_string(s.x)) +
                          " no lleva el caudal a ninguna profundidad razonable (revise su geometría y su "
                          "caudal).");
            hi *= 2;
            continue;
        }
        const double a = best == 0 ? grid[0] / 64 : grid[best - 1];
        const double b = best + 1 < grid.size() ? grid[best + 1] : grid[best];
        return RefineMinimum(s, a, b);
    }
}

/* Normal depth of a section.
   Input:  s with its slope and discharge.
   Output: the depth at which Manning's discharge K sqrt(S0) equals q; 0 for a slope that is not
           positive or a discharge no depth within the limit carries.
   Purpose: whether the flow enters the reach supercritical. */
double NormalDepth(const Section& s) {
    if (!(s.slope > 0)) return 0;
    const double root_s = std::sqrt(s.slope);
    auto excess = [&](double y) { return Evaluate(s, y).conveyance * root_s - s.q; };
    double hi = s.top();
    double fhi = excess(hi);
    while (fhi < 0) {
        if (hi > s.top() + kDepthLimit) return 0;
        hi *= 2;
        fhi = excess(hi);
    }
    const double lo = hi * 1e-9;
    return FindRoot(excess, lo, hi, excess(lo), fhi, 1e-7);
}

}  // namespace cauce::standard_step
