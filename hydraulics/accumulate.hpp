// The fixed-step searches of the legacy screens move a depth by repeated addition (h = h + 0.001)
// and stop at the first step where a quantity crosses a target. These helpers find that step
// without walking every one, and give exactly the depth the march would hold after j additions.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace cauce {

// The values start, start + step, (start + step) + step, ... bit for bit as a march computes them.
// Within one binade every addition rounds the same way, so the sequence is kept as a few runs of
// exact arithmetic progressions (built lazily, one or a few per binade); near binade edges and at
// the rare exact ties the additions are done one by one, as the march does them.
class Accumulation {
  public:
    Accumulation(double start, double step);
    // The value after j additions (j >= 0).
    double At(std::int64_t j);

  private:
    struct Run {
        std::int64_t first;  // index of the first value of the run
        double x;            // that value
        double r;            // what each addition adds within the run (exact)
    };
    void Extend();

    double step_;
    std::vector<Run> runs_;
    std::int64_t next_ = 0;  // index of the value that starts the next run
    double next_x_;
    bool still_ = false;  // the additions no longer change the value
};

// An Accumulation kept from one search to the next while its start stays the same: building the runs
// from scratch costs more than a search (a conduit's march from 1 mm crosses ten binades), and
// successive searches often start alike (from 1 mm, from half a conduit, a rating curve).
class AccumulationCache {
  public:
    explicit AccumulationCache(double step) : step_(step) {}
    Accumulation& From(double start) {
        if (!acc_ || std::bit_cast<std::uint64_t>(start) != std::bit_cast<std::uint64_t>(start_)) {
            acc_.emplace(start, step_);
            start_ = start;
        }
        return *acc_;
    }

  private:
    double step_;
    double start_ = 0;
    std::optional<Accumulation> acc_;
};

// The value of x after j additions of c, for a single use.
double Accumulate(double x, double c, std::int64_t j);

// The first j in [lo, hi] for which reached(j) is true, assuming reached is false up to some step
// and true from there on (a monotone crossing); hi + 1 when it is never reached. The callers use it
// only where the quantity changes by far more from one step to the next than rounding can blur.
// The search starts from a guess of the step (from a root finder on the continuous quantity): when
// the guess is right, two evaluations confirm it; otherwise it gallops from the guess.
template <typename Reached>
std::int64_t FirstReachedNear(std::int64_t lo, std::int64_t hi, std::int64_t guess, Reached&& reached) {
    if (lo > hi) return hi + 1;
    guess = guess < lo ? lo : guess > hi ? hi : guess;
    std::int64_t below, above;
    if (reached(guess)) {
        above = guess;
        below = guess - 1;
        for (std::int64_t step = 1; below >= lo && reached(below); step *= 2) {
            above = below;
            below = above - step < lo ? lo - 1 : above - step;
        }
    } else {
        below = guess;
        above = guess + 1;
        for (std::int64_t step = 1;; step *= 2) {
            if (above > hi) {
                if (below == hi || !reached(hi)) return hi + 1;
                above = hi;
                break;
            }
            if (reached(above)) break;
            below = above;
            above = below + step;
        }
    }
    while (above - below > 1) {
        const std::int64_t mid = below + (above - below) / 2;
        (reached(mid) ? above : below) = mid;
    }
    return above;
}

// A step count from a real estimate (a guess), kept inside [lo, hi]; a NaN gives lo.
inline std::int64_t StepNear(double steps, std::int64_t lo, std::int64_t hi) {
    if (!(steps > static_cast<double>(lo))) return lo;
    if (!(steps < static_cast<double>(hi))) return hi;
    return static_cast<std::int64_t>(std::ceil(steps));
}

// A few steps of Newton's method from x, kept inside [lo, hi]; fdf(x) gives {f(x), f'(x)}. The
// result is only a guess of a march's stopping depth, so a tenth of a millimetre is close enough.
template <typename FDF>
double NewtonGuess(double x, double lo, double hi, FDF&& fdf) {
    for (int it = 0; it < 30; ++it) {
        const auto [f, d] = fdf(x);
        if (!(d != 0)) break;
        double next = x - f / d;
        if (!(next > lo)) next = (x + lo) / 2;
        if (!(next < hi)) next = (x + hi) / 2;
        if (std::fabs(next - x) < 1e-5) return next;
        x = next;
    }
    return x;
}

}  // namespace cauce
