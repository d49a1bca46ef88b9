// The choice of levels: which of the survey's elevations make the stack closest to the survey.
//
// The stack's width is linear between two chosen levels; the survey's is linear between any two of
// its elevations. The levels are chosen, by dynamic programming over the elevations, to make least
// the integral over the depth of the squared relative width difference, (S - T)^2 / (T^2 + e^2),
// e a hundredth of the top width: a stack whose width is everywhere within a fraction of the
// survey's has its area within the same fraction at every depth, near the bed as well as at the
// top. The integral adds up band by band, which makes the choice exact rather than greedy.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "hydraulics/checked_math.hpp"
#include "hydraulics/survey/survey.hpp"

namespace cauce::survey {

namespace {

// Integrals from the bed up to each elevation, with the weight w = 1 / (T^2 + e^2), of w, u w,
// u^2 w, T w, u T w and T^2 w, u being the height above the bed; by Gauss-Legendre on each piece.
struct Moments {
    std::vector<double> w, uw, uuw, tw, utw, ttw;
};

Moments MomentsOf(const Profile& p) {
    const std::size_t n = p.z.size();
    Moments m;
    for (auto* v : {&m.w, &m.uw, &m.uuw, &m.tw, &m.utw, &m.ttw}) v->assign(n, 0);
    double widest = 0;
    for (std::size_t k = 0; k < n; ++k) widest = std::max({widest, p.t_above[k], p.t_below[k]});
    const double e = 0.01 * widest + 1e-3;
    static constexpr std::array<double, 4> kNode = {-0.8611363115940526, -0.3399810435848563,
                                                    0.3399810435848563, 0.8611363115940526};
    static constexpr std::array<double, 4> kWeight = {0.3478548451374538, 0.6521451548625461,
                                                      0.6521451548625461, 0.3478548451374538};
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const double a = p.t_above[k], b = p.t_below[k + 1];
        const double h = p.z[k + 1] - p.z[k], u0 = p.z[k] - p.z[0];
        double s[6] = {0, 0, 0, 0, 0, 0};
        for (std::size_t q = 0; q < kNode.size(); ++q) {
            const double f = (kNode[q] + 1) / 2, u = u0 + f * h, t = a + f * (b - a);
            const double w = kWeight[q] * h / 2 / (t * t + e * e);
            s[0] += w;
            s[1] += u * w;
            s[2] += u * u * w;
            s[3] += t * w;
            s[4] += u * t * w;
            s[5] += t * t * w;
        }
        m.w[k + 1] = m.w[k] + s[0];
        m.uw[k + 1] = m.uw[k] + s[1];
        m.uuw[k + 1] = m.uuw[k] + s[2];
        m.tw[k + 1] = m.tw[k] + s[3];
        m.utw[k + 1] = m.utw[k] + s[4];
        m.ttw[k + 1] = m.ttw[k] + s[5];
    }
    return m;
}

}  // namespace

// Inputs: the survey's profile, the width each elevation would take as a level (widths[k] for
// p.z[k], never shrinking upwards) and the most levels allowed (2 or more). Output: the indices of
// the chosen levels, rising, the bed first and the top last. Purpose: the least weighted squared
// width difference over the depth; of stacks equally close, the one with fewer levels.
std::vector<std::size_t> ChooseLevels(const Profile& p, const std::vector<double>& widths, int max_levels) {
    const std::size_t n = p.z.size();
    if (n < 2 || max_levels < 2)
        raise(FaultCode::SurveyLevels, "Hacen falta al menos 2 niveles: el fondo y la corona.");
    const std::size_t most = std::min<std::size_t>(static_cast<std::size_t>(max_levels), n);
    const Moments mo = MomentsOf(p);
    const double bed = p.z[0];

    // Weighted squared width difference over the band between elevations i and j as levels, the
    // stack's width there being S(u) = wi + slope (u - ui) = alpha + slope u.
    auto cost = [&](std::size_t i, std::size_t j) {
        const double ui = p.z[i] - bed, uj = p.z[j] - bed;
        const double slope = (widths[j] - widths[i]) / (uj - ui), alpha = widths[i] - slope * ui;
        auto d = [&](const std::vector<double>& v) { return v[j] - v[i]; };
        const double c = alpha * alpha * d(mo.w) + 2 * alpha * slope * d(mo.uw) + slope * slope * d(mo.uuw) -
                         2 * alpha * d(mo.tw) - 2 * slope * d(mo.utw) + d(mo.ttw);
        return std::max(0.0, c);
    };

    // best[c][j]: least cost of a stack of c + 1 levels from the bed up to elevation j.
    constexpr double kNone = std::numeric_limits<double>::infinity();
    std::vector<std::vector<double>> best(most, std::vector<double>(n, kNone));
    std::vector<std::vector<std::size_t>> from(most, std::vector<std::size_t>(n, 0));
    best[0][0] = 0;
    for (std::size_t c = 1; c < most; ++c)
        for (std::size_t j = c; j < n; ++j)
            for (std::size_t i = c - 1; i < j; ++i) {
                if (best[c - 1][i] == kNone) continue;
                const double v = best[c - 1][i] + cost(i, j);
                if (v < best[c][j]) {
                    best[c][j] = v;
                    from[c][j] = i;
                }
            }

    // The fewest levels within rounding of the least cost.
    double least = kNone;
    for (std::size_t c = 1; c < most; ++c) least = std::min(least, best[c][n - 1]);
    const double tolerance = 1e-10 * (1 + mo.ttw[n - 1]) + 1e-9 * least;
    std::size_t chosen = most - 1;
    for (std::size_t c = 1; c < most; ++c)
        if (best[c][n - 1] <= least + tolerance) {
            chosen = c;
            break;
        }
    std::vector<std::size_t> levels(chosen + 1);
    std::size_t j = n - 1;
    for (std::size_t c = chosen;; --c) {
        levels[c] = j;
        if (c == 0) break;
        j = from[c][j];
    }
    return levels;
}

}  // namespace cauce::survey
