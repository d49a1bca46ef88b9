#include "hydraulics/accumulate.hpp"

#include <algorithm>
#include <cmath>

namespace cauce {

Accumulation::Accumulation(double start, double step) : step_(step), next_x_(start) {}

void Accumulation::Extend() {
    const double x = next_x_;
    std::int64_t count = 1;
    double r = 0;
    if (x != 0 && std::isfinite(x)) {
        int e;
        std::frexp(x, &e);                                   // |x| in [2^(e-1), 2^e)
        const double u = std::ldexp(1.0, e - 53);            // spacing of doubles in that binade
        const double q = step_ / u;                          // exact: a power-of-two scaling
        if (std::isfinite(q) && q - std::floor(q) != 0.5) {  // an exact tie rounds to even: one by one
            r = std::nearbyint(q) * u;
            if (r == 0) {
                still_ = true;
                runs_.push_back({next_, x, 0});
                return;
            }
            // Additions that keep x, and x + step, inside the binade, with a margin of two.
            const double lo = std::ldexp(1.0, e - 1), hi = std::ldexp(1.0, e);
            const double room = (x > 0) == (r > 0) ? hi - std::fabs(x) : std::fabs(x) - lo;
            const double fit = std::floor(room / std::fabs(r)) - 2;
            if (fit >= 1) count = static_cast<std::int64_t>(std::min(fit, 4.0e18));
        }
    }
    if (count == 1) {
        runs_.push_back({next_, x, 0});
        next_x_ = x + step_;  // as the march does it
    } else {
        runs_.push_back({next_, x, r});
        next_x_ = x + static_cast<double>(count) * r;  // exact inside the binade
    }
    next_ += count;
}

double Accumulation::At(std::int64_t j) {
    while (next_ <= j && !still_) Extend();
    const auto it = std::upper_bound(runs_.begin(), runs_.end(), j,
                                     [](std::int64_t v, const Run& run) { return v < run.first; });
    const Run& run = *(it - 1);
    return run.r == 0 ? run.x : run.x + static_cast<double>(j - run.first) * run.r;
}

double Accumulate(double x, double c, std::int64_t j) {
    return Accumulation(x, c).At(j);
}

}  // namespace cauce
