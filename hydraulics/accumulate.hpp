// The fixed-step searches of the legacy screens move a depth by repeated addition (h = h + 0.001)
// and stop at the first step where a quantity crosses a target. These helpers find that step
// without walking every one, and give exactly the depth the march would hold after j additions.
#pragma once

#include <cstdint>
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

// The value of x after j additions of c, for a single use.
double Accumulate(double x, double c, std::int64_t j);

// The first j in [lo, hi] for which reached(j) is true, assuming reached is false up to some step
// and true from there on (a monotone crossing); hi + 1 when it is never reached. Because rounding
// can blur a crossing by a few units in the last place, the steps just before the one found are
// checked again, so the answer is the first step as a literal march would find it.
template <typename Reached>
std::int64_t FirstReached(std::int64_t lo, std::int64_t hi, Reached&& reached) {
    if (lo > hi) return hi + 1;
    // Gallop from lo to bracket the crossing, then bisect.
    std::int64_t below = lo - 1, above = hi + 1;
    for (std::int64_t step = 1, probe = lo; probe <= hi; step *= 2, probe = lo + step - 1) {
        if (reached(probe)) {
            above = probe;
            break;
        }
        below = probe;
    }
    if (above == hi + 1) {
        if (below == hi || !reached(hi)) return hi + 1;
        above = hi;
    }
    while (above - below > 1) {
        const std::int64_t mid = below + (above - below) / 2;
        (reached(mid) ? above : below) = mid;
    }
    for (int back = 0; back < 4 && above > lo && reached(above - 1); ++back) --above;
    return above;
}

}  // namespace cauce
