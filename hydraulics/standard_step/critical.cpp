// Critical and normal depth of a standard-step section.
//
// The critical depth is where the specific energy E = y + alpha V^2 / 2g is least over the whole
// compound section. A natural section, or one whose flood zone starts at the banks, can show several
// minima: the energy is scanned over the levels and an even grid first, and the least one refined.
#include <algorithm>
#include <cmath>
#include <string>

#include "hydraulics/checked_math.hpp"

#include "hydraulics/standard_step/section.hpp"

namespace cauce::standard_step {

namespace {

double Energy(const Section& s, double y) {
    return y + VelocityHead(s, Evaluate(s, y));
}

// Golden-section search for the least energy in [a, b].
double RefineMinimum(const Section& s, double a, double b) {
    const double r = (std::sqrt(5.0) - 1) / 2;
    double c = b - r * (b - a), d = a + r * (b - a);
    double fc = Energy(s, c), fd = Energy(s, d);
    while (b - a > 1e-4) {
        if (fc < fd) {
            b = d;
            d = c;
            fd = fc;
            c = b - r * (b - a);
            fc = Energy(s, c);
        } else {
            a = c;
            c = d;
            fc = fd;
            d = a + r * (b - a);
            fd = Energy(s, d);
        }
    }
    return (a + b) / 2;
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
        std::vector<double> grid;
        constexpr int kSteps = 12;
        for (int i = 1; i <= kSteps; ++i) grid.push_back(hi * i / kSteps);
        for (double y : s.y)
            if (y > 0 && y < hi) grid.push_back(y);
        std::sort(grid.begin(), grid.end());
        std::size_t best = 0;
        double least = Energy(s, grid[0]);
        for (std::size_t i = 1; i < grid.size(); ++i) {
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
