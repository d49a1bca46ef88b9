// The surveyed ground, checked: enough points, finite numbers, left to right without crossing
// itself, both ends above the bed. Consecutive repeated points are merged.
#include <algorithm>
#include <charconv>
#include <cmath>

#include "hydraulics/checked_math.hpp"
#include "hydraulics/survey/survey.hpp"

namespace cauce::survey {

namespace {

std::string Where(const Point& p) {
    return p.line > 0 ? "línea " + std::to_string(p.line) : "punto";
}

std::string Capital(std::string s) {
    if (!s.empty() && s[0] >= 'a' && s[0] <= 'z') s[0] = static_cast<char>(s[0] - 'a' + 'A');
    return s;
}

// Sign of the turn a -> b -> c: positive to the left, 0 when in line.
int Turn(const Point& a, const Point& b, const Point& c) {
    const double cross = (b.x - a.x) * (c.z - a.z) - (b.z - a.z) * (c.x - a.x);
    return cross > 0 ? 1 : cross < 0 ? -1 : 0;
}

bool Within(const Point& a, const Point& b, const Point& p) {
    return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.z, b.z) <= p.z &&
           p.z <= std::max(a.z, b.z);
}

// Whether segments ab and cd touch or cross.
bool Meet(const Point& a, const Point& b, const Point& c, const Point& d) {
    const int t1 = Turn(a, b, c), t2 = Turn(a, b, d), t3 = Turn(c, d, a), t4 = Turn(c, d, b);
    if (t1 * t2 < 0 && t3 * t4 < 0) return true;
    return (t1 == 0 && Within(a, b, c)) || (t2 == 0 && Within(a, b, d)) || (t3 == 0 && Within(c, d, a)) ||
           (t4 == 0 && Within(c, d, b));
}

[[noreturn]] void Crossing(const Point& p) {
    raise(FaultCode::SurveyShape,
          Capital(Where(p)) + ": la abscisa " + NumberWords(p.x) +
              " vuelve atrás y el perfil se cruza consigo mismo; los puntos van de izquierda a derecha.");
}

}  // namespace

std::string NumberWords(double value) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, 3);
    std::string s(buf, r.ptr);
    while (s.find('.') != std::string::npos && (s.back() == '0' || s.back() == '.')) {
        const bool dot = s.back() == '.';
        s.pop_back();
        if (dot) break;
    }
    return s == "-0" ? "0" : s;
}

// Inputs: the points as read, left to right. Output: the ground with repeated points merged, its
// bed and top, and warnings. Purpose: refuse, naming the line, what no channel can be made of.
Ground CheckGround(std::vector<Point> points) {
    if (points.size() > kMaxPoints)
        raise(FaultCode::SurveyPoints, "El levantamiento tiene " + std::to_string(points.size()) +
                                           " puntos; el máximo es " + std::to_string(kMaxPoints) + ".");
    for (const Point& p : points)
        if (!std::isfinite(p.x) || !std::isfinite(p.z) || std::abs(p.x) > kMaxCoordinate ||
            std::abs(p.z) > kMaxCoordinate)
            raise(FaultCode::SurveyPoints,
                  Capital(Where(p)) + ": la abscisa y la cota deben ser números de metros entre -" +
                      NumberWords(kMaxCoordinate) + " y " + NumberWords(kMaxCoordinate) + ".");
    Ground g;
    for (const Point& p : points) {
        if (!g.points.empty() && g.points.back().x == p.x && g.points.back().z == p.z) {
            g.warnings.push_back("La " + Where(p) + " repite el punto (" + NumberWords(p.x) + "; " +
                                 NumberWords(p.z) + ") de la " + Where(g.points.back()) +
                                 ": se toma una vez.");
            continue;
        }
        g.points.push_back(p);
    }
    const auto& pts = g.points;
    if (pts.size() < 3)
        raise(FaultCode::SurveyPoints,
              "Hacen falta al menos 3 puntos (abscisa y cota) de izquierda a derecha; hay " +
                  std::to_string(pts.size()) + ".");
    if (pts.back().x <= pts.front().x)
        raise(FaultCode::SurveyShape, Capital(Where(pts.back())) + ": la última abscisa (" +
                                          NumberWords(pts.back().x) + ") no es mayor que la primera (" +
                                          NumberWords(pts.front().x) +
                                          "); los puntos van de izquierda a derecha.");

    // A point that turns straight back along the segment it came by retraces the ground.
    for (std::size_t i = 1; i + 1 < pts.size(); ++i) {
        const Point &a = pts[i - 1], &b = pts[i], &c = pts[i + 1];
        const double dot = (b.x - a.x) * (c.x - b.x) + (b.z - a.z) * (c.z - b.z);
        if (Turn(a, b, c) == 0 && dot < 0) {
            if (c.x < b.x) Crossing(c);
            raise(FaultCode::SurveyShape, Capital(Where(c)) +
                                              ": el perfil vuelve sobre sí mismo en la abscisa " +
                                              NumberWords(c.x) + "; los puntos van de izquierda a derecha.");
        }
    }
    // With abscissas that never go back the ground cannot cross itself; otherwise every pair of
    // segments that are not neighbours is checked.
    for (std::size_t i = 1; i < pts.size(); ++i) g.overhangs = g.overhangs || pts[i].x < pts[i - 1].x;
    if (g.overhangs) {
        for (std::size_t j = 2; j + 1 < pts.size(); ++j)
            for (std::size_t i = 0; i + 1 < j; ++i)
                if (Meet(pts[i], pts[i + 1], pts[j], pts[j + 1]))
                    Crossing(pts[j + 1].x < pts[j].x ? pts[j + 1] : pts[j]);
    }

    g.bed = pts.front().z;
    for (const Point& p : pts) g.bed = std::min(g.bed, p.z);
    g.top = std::min(pts.front().z, pts.back().z);
    for (const Point* end : {&pts.front(), &pts.back()})
        if (end->z <= g.bed)
            raise(FaultCode::SurveyShape, "El perfil no retiene agua: el extremo " +
                                              std::string(end == &pts.front() ? "izquierdo" : "derecho") +
                                              " (" + Where(*end) + ", cota " + NumberWords(end->z) +
                                              ") no está por encima del fondo (cota " + NumberWords(g.bed) +
                                              ").");
    return g;
}

}  // namespace cauce::survey
