// Area and wetted perimeter of a stack of levels, as the natural-section screens compute them:
// symmetric trapezoidal bands between consecutive levels, the bottom width wetted, the band that ends
// at a level used for a water surface exactly at it. The stack is what the screens will compute
// with, so its differences from the survey are measured with their own expressions.
#include <cmath>

#include "hydraulics/survey/survey.hpp"

namespace cauce::survey {

namespace {

// Calls band(j, below, h, m) for the band j (levels j-1..j) holding z: below is the cumulative
// value at level j-1 passed along by step(j, dY, m), h the height of z above level j-1.
template <typename Step, typename Band>
double Walk(const std::vector<Level>& levels, double z, double start, Step step, Band band) {
    double below = start;
    for (std::size_t j = 1; j < levels.size(); ++j) {
        const double dY = levels[j].z - levels[j - 1].z;
        const double m = ((levels[j].t - levels[j - 1].t) / 2) / dY;
        if (z - levels[j].z <= 0 || j + 1 == levels.size()) return band(j, below, z - levels[j - 1].z, m);
        below = step(j, below, dY, m);
    }
    return start;
}

}  // namespace

// Inputs: levels (rising elevations, widths not shrinking) and a water elevation. Output: flow area.
double StackArea(const std::vector<Level>& levels, double z) {
    auto step = [&](std::size_t j, double acum, double dY, double m) {
        return acum + dY * (levels[j - 1].t + m * dY);
    };
    auto band = [&](std::size_t j, double acum, double h, double m) {
        return acum + h * (levels[j - 1].t + m * h);
    };
    return Walk(levels, z, 0.0, step, band);
}

// Inputs: as StackArea. Output: wetted perimeter, the bottom width included.
double StackPerimeter(const std::vector<Level>& levels, double z) {
    if (levels.empty()) return 0;
    auto step = [](std::size_t, double pcum, double dY, double m) {
        return pcum + 2 * dY * std::sqrt(1 + m * m);
    };
    auto band = [](std::size_t, double pcum, double h, double m) {
        return pcum + 2 * h * std::sqrt(1 + m * m);
    };
    return Walk(levels, z, levels.front().t, step, band);
}

}  // namespace cauce::survey
