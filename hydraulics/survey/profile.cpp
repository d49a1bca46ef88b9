// The survey's geometry over the depth: top width, wetted perimeter and area from the bed to the top.
//
// Between two consecutive point elevations the same segments of ground cross every water line, each
// crossing moving linearly with the elevation, so the width (the sum of the wet intervals) and the
// wetted perimeter (the length of ground below the water) are linear there and the area quadratic.
// A horizontal stretch of ground at an elevation (a flat bed, a terrace) makes them jump there.
#include <algorithm>
#include <cmath>

#include "hydraulics/checked_math.hpp"
#include "hydraulics/survey/survey.hpp"

namespace cauce::survey {

namespace {

struct Crossing {
    double lo, hi;  // abscissa of the crossing at the lower and upper elevation of the piece
};

// Height of the level added just below a terrace: a centimetre, less when the next level down is
// near.
constexpr double kTerraceStep = 0.01;

double Lerp(double a, double b, double f) {
    return a + (b - a) * f;
}

}  // namespace

// Inputs: a checked ground. Output: its Profile. Purpose: the survey's width, perimeter and area at
// every elevation where they change course, exactly (piecewise linear ground).
Profile ProfileOf(const Ground& g) {
    const auto& pts = g.points;
    Profile p;
    for (const Point& q : pts)
        if (q.z >= g.bed && q.z <= g.top) p.z.push_back(q.z);
    std::sort(p.z.begin(), p.z.end());
    p.z.erase(std::unique(p.z.begin(), p.z.end()), p.z.end());
    const std::size_t n = p.z.size();
    p.t_above.assign(n, 0);
    p.t_below.assign(n, 0);
    p.p_above.assign(n, 0);
    p.p_below.assign(n, 0);
    p.pieces.assign(n, 0);
    p.area.assign(n, 0);

    std::vector<Crossing> crossings;
    for (std::size_t k = 0; k + 1 < n; ++k) {
        const double lo = p.z[k], hi = p.z[k + 1];
        crossings.clear();
        double wet_length = 0, p_lo = 0, p_hi = 0;
        for (std::size_t i = 0; i + 1 < pts.size(); ++i) {
            const Point &a = pts[i], &b = pts[i + 1];
            const double zmin = std::min(a.z, b.z), zmax = std::max(a.z, b.z);
            const double length = std::hypot(b.x - a.x, b.z - a.z);
            if (zmax <= lo) {
                wet_length += length;  // wholly under water through the piece
            } else if (zmin <= lo && zmax >= hi) {
                const double x_lo = Lerp(a.x, b.x, (lo - a.z) / (b.z - a.z));
                const double x_hi = Lerp(a.x, b.x, (hi - a.z) / (b.z - a.z));
                crossings.push_back({x_lo, x_hi});
                p_lo += length * (lo - zmin) / (zmax - zmin);
                p_hi += length * (hi - zmin) / (zmax - zmin);
            }
        }
        // From the left end (dry ground above the water) every crossing enters or leaves the water.
        if (crossings.size() % 2 != 0)
            raise(FaultCode::SurveyShape, "El perfil del terreno no es una línea simple entre sus extremos.");
        std::sort(crossings.begin(), crossings.end(),
                  [](const Crossing& a, const Crossing& b) { return a.lo + a.hi < b.lo + b.hi; });
        double t_lo = 0, t_hi = 0;
        for (std::size_t c = 0; c + 1 < crossings.size(); c += 2) {
            t_lo += crossings[c + 1].lo - crossings[c].lo;
            t_hi += crossings[c + 1].hi - crossings[c].hi;
        }
        p.t_above[k] = t_lo;
        p.t_below[k + 1] = t_hi;
        p.p_above[k] = wet_length + p_lo;
        p.p_below[k + 1] = wet_length + p_hi;
        p.pieces[k] = static_cast<int>(crossings.size() / 2);
        p.area[k + 1] = p.area[k] + (hi - lo) * (t_lo + t_hi) / 2;
    }
    p.t_above[n - 1] = p.t_below[n - 1];
    p.p_above[n - 1] = p.p_below[n - 1];

    // Below a terrace the width jumps; a level a little under it lets the stack follow the jump.
    double widest = 0;
    for (double t : p.t_above) widest = std::max(widest, t);
    const double tol = 1e-9 * (1 + widest);
    for (std::size_t k = n - 1; k >= 1; --k) {
        if (k + 1 >= n || p.t_above[k] - p.t_below[k] <= tol) continue;
        const double step = std::min(kTerraceStep, (p.z[k] - p.z[k - 1]) / 4);
        const double z = p.z[k] - step;
        if (!(z > p.z[k - 1] && z < p.z[k])) continue;
        const double f = (z - p.z[k - 1]) / (p.z[k] - p.z[k - 1]);
        const double t = Lerp(p.t_above[k - 1], p.t_below[k], f);
        const double per = Lerp(p.p_above[k - 1], p.p_below[k], f);
        const double area = p.area[k - 1] + (z - p.z[k - 1]) * (p.t_above[k - 1] + t) / 2;
        const auto at = static_cast<std::ptrdiff_t>(k);
        p.z.insert(p.z.begin() + at, z);
        p.t_above.insert(p.t_above.begin() + at, t);
        p.t_below.insert(p.t_below.begin() + at, t);
        p.p_above.insert(p.p_above.begin() + at, per);
        p.p_below.insert(p.p_below.begin() + at, per);
        p.pieces.insert(p.pieces.begin() + at, p.pieces[k - 1]);
        p.area.insert(p.area.begin() + at, area);
    }
    return p;
}

namespace {
// The piece [z[k], z[k+1]] holding z, and how far up it z is (0..1).
std::size_t PieceOf(const Profile& p, double z, double& f) {
    auto it = std::upper_bound(p.z.begin(), p.z.end(), z);
    std::size_t k = it == p.z.begin() ? 0 : static_cast<std::size_t>(it - p.z.begin()) - 1;
    if (k + 1 >= p.z.size()) k = p.z.size() >= 2 ? p.z.size() - 2 : 0;
    const double h = p.z.size() >= 2 ? p.z[k + 1] - p.z[k] : 0;
    f = h > 0 ? (z - p.z[k]) / h : 0;
    return k;
}
}  // namespace

// Inputs: a profile and an elevation between its bed and top. Output: the survey's flow area there.
double SurveyArea(const Profile& p, double z) {
    if (p.z.size() < 2) return 0;
    double f = 0;
    const std::size_t k = PieceOf(p, z, f);
    const double h = p.z[k + 1] - p.z[k];
    const double t = Lerp(p.t_above[k], p.t_below[k + 1], f);
    return p.area[k] + f * h * (p.t_above[k] + t) / 2;
}

// Inputs: a profile and an elevation between its bed and top. Output: the survey's wetted perimeter
// there (at a jump, the value just above).
double SurveyPerimeter(const Profile& p, double z) {
    if (p.z.size() < 2) return 0;
    double f = 0;
    const std::size_t k = PieceOf(p, z, f);
    return Lerp(p.p_above[k], p.p_below[k + 1], f);
}

}  // namespace cauce::survey
