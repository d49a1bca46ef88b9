// A section from survey points: the stack of levels the screens take, chosen and measured against the
// survey, with what the user should know about it.
#include <algorithm>
#include <cmath>

#include "hydraulics/checked_math.hpp"
#include "hydraulics/survey/survey.hpp"

namespace cauce::survey {

namespace {

// Widths are given to the millimetre, as a level table is typed.
double ToMillimetre(double t) {
    return std::round(t * 1000) / 1000;
}

// The width each elevation takes as a level: the survey's just above it (just below at the top),
// held where the survey's width shrinks (an overhanging bank), since a stack never narrows upwards.
std::vector<double> LevelWidths(const Profile& p) {
    const std::size_t n = p.z.size();
    std::vector<double> w(n);
    double held = 0;
    for (std::size_t k = 0; k < n; ++k) {
        held = std::max(held, p.t_below[k]);
        if (k + 1 < n) held = std::max(held, p.t_above[k]);
        w[k] = held;
    }
    return w;
}

// Ranges of elevation where the survey is narrower than the stack holds it (overhangs), and where
// the water stands in more than one stretch (islands, bars, pockets).
void Warn(const Profile& p, std::vector<std::string>& warnings) {
    const std::size_t n = p.z.size();
    double widest = 0;
    for (double t : p.t_above) widest = std::max(widest, t);
    const double tol = 1e-6 * (1 + widest);

    double held = 0;
    std::size_t k = 0;
    while (k + 1 < n) {
        held = std::max({held, p.t_below[k], p.t_above[k]});
        if (p.t_below[k + 1] >= held - tol) {
            ++k;
            continue;
        }
        // The width falls below the held one in this piece: follow it until it is back.
        const double from = p.z[k];
        double narrowest = p.t_below[k + 1];
        double to = p.z.back();
        for (++k; k + 1 < n; ++k) {
            narrowest = std::min(narrowest, p.t_above[k]);
            if (p.t_below[k + 1] >= held - tol) {
                const double a = p.t_above[k], b = p.t_below[k + 1];
                to = b > a ? p.z[k] + (p.z[k + 1] - p.z[k]) * (held - a) / (b - a) : p.z[k + 1];
                ++k;
                break;
            }
            narrowest = std::min(narrowest, p.t_below[k + 1]);
        }
        warnings.push_back("Entre las cotas " + NumberWords(from) + " y " + NumberWords(to) +
                           " el cauce se estrecha (orilla en voladizo): el ancho baja de " +
                           NumberWords(held) + " a " + NumberWords(narrowest) +
                           " m y la sección por niveles mantiene " + NumberWords(held) + " m.");
    }

    for (std::size_t i = 0; i + 1 < n;) {
        if (p.pieces[i] <= 1) {
            ++i;
            continue;
        }
        std::size_t j = i;
        int most = 0;
        while (j + 1 < n && p.pieces[j] > 1) most = std::max(most, p.pieces[j++]);
        warnings.push_back("Entre las cotas " + NumberWords(p.z[i]) + " y " + NumberWords(p.z[j]) +
                           " el agua ocupa " + std::to_string(most) +
                           " tramos separados (islotes, barras o depresiones): la sección suma sus anchos.");
        i = j;
    }
}

}  // namespace

// Inputs: ground points left to right, the most levels wanted (2..15). Output: the stack of levels,
// its differences from the survey and warnings. Purpose: the level table of a surveyed section.
Section SectionFromSurvey(std::vector<Point> points, int max_levels) {
    if (max_levels < 2 || max_levels > kMaxLevels)
        raise(FaultCode::SurveyLevels, "El número de niveles va de 2 a " + std::to_string(kMaxLevels) +
                                           "; se pidieron " + std::to_string(max_levels) + ".");
    Ground g = CheckGround(std::move(points));
    const Profile p = ProfileOf(g);
    const std::vector<double> widths = LevelWidths(p);

    Section s;
    s.bed = g.bed;
    s.top = g.top;
    s.warnings = std::move(g.warnings);
    {
        std::vector<double> zs;
        for (const Point& q : g.points)
            if (q.z >= g.bed && q.z <= g.top) zs.push_back(q.z);
        std::sort(zs.begin(), zs.end());
        s.elevations = static_cast<int>(std::unique(zs.begin(), zs.end()) - zs.begin());
    }
    for (std::size_t k : ChooseLevels(p, widths, max_levels))
        s.levels.push_back({p.z[k], ToMillimetre(widths[k])});
    const Differences d = Compare(p, s.levels);
    s.area_error = Finite(d.area);
    s.perimeter_error = Finite(d.perimeter);
    Warn(p, s.warnings);
    for (const Level& l : s.levels)
        if (l.z == 0)
            s.warnings.push_back(
                "Un nivel tiene la cota 0, que las pantallas toman como el fin de la tabla de niveles: "
                "sume una constante a todas las cotas (por ejemplo 100).");
    return s;
}

}  // namespace cauce::survey
