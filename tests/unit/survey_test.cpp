// Sections from survey points. The survey's area is checked against an independent integration
// written here (the ground polygon clipped by the water line, its area by the shoelace formula), the
// stack's against the natural-section routines the screens run, and the choice of levels against a
// search of every choice.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "forms/survey_points.hpp"
#include "hydraulics/checked_math.hpp"
#include "hydraulics/natural/state.hpp"
#include "hydraulics/survey/survey.hpp"

using cauce::Fault;
using cauce::forms::ReadSurveyPoints;
namespace survey = cauce::survey;
using survey::Level;
using survey::Point;

namespace {

std::vector<Point> Pts(const std::vector<std::pair<double, double>>& xy) {
    std::vector<Point> out;
    int line = 0;
    for (auto [x, z] : xy) out.push_back({x, z, ++line});
    return out;
}

// Wet area under the water line z: the region above the ground and between the two ends, clipped to
// y <= z (Sutherland-Hodgman against one half-plane), by the shoelace formula.
double ClippedArea(const std::vector<Point>& ground, double z) {
    std::vector<std::pair<double, double>> poly;
    for (const Point& p : ground) poly.push_back({p.x, p.z});
    poly.push_back({ground.back().x, 1e6});
    poly.push_back({ground.front().x, 1e6});
    std::vector<std::pair<double, double>> clipped;
    for (std::size_t i = 0; i < poly.size(); ++i) {
        const auto a = poly[i], b = poly[(i + 1) % poly.size()];
        const bool ain = a.second <= z, bin = b.second <= z;
        if (ain) clipped.push_back(a);
        if (ain != bin) {
            const double f = (z - a.second) / (b.second - a.second);
            clipped.push_back({a.first + f * (b.first - a.first), z});
        }
    }
    double twice = 0;
    for (std::size_t i = 0; i < clipped.size(); ++i) {
        const auto a = clipped[i], b = clipped[(i + 1) % clipped.size()];
        twice += a.first * b.second - b.first * a.second;
    }
    return std::abs(twice) / 2;
}

// Length of ground below the water line z.
double WetLength(const std::vector<Point>& ground, double z) {
    double total = 0;
    for (std::size_t i = 0; i + 1 < ground.size(); ++i) {
        const Point &a = ground[i], &b = ground[i + 1];
        const double lo = std::min(a.z, b.z), hi = std::max(a.z, b.z), len = std::hypot(b.x - a.x, b.z - a.z);
        if (hi <= z)
            total += len;
        else if (lo < z)
            total += len * (z - lo) / (hi - lo);
    }
    return total;
}

struct Case {
    const char* name;
    std::vector<Point> ground;
    std::vector<Level> levels;  // expected stack; empty: only checked against the integration
    bool exact;                 // the stack's area equals the survey's at every depth
};

// A natural bed of n points: a meandering thalweg, a bar, banks rising to uneven crests.
std::vector<Point> NaturalBed(int n) {
    std::vector<Point> g;
    for (int i = 0; i < n; ++i) {
        const double x = 60.0 * i / (n - 1);
        const double u = (x - 30) / 30;
        double z = 100 + 6 * u * u + 0.8 * std::sin(x * 0.9) + 0.3 * std::cos(x * 2.3);
        if (x > 34 && x < 40) z = std::max(z, 102.2 - std::abs(x - 37) * 0.4);  // a bar
        g.push_back({x, std::round(z * 1000) / 1000, i + 1});
    }
    g.back().z = std::max(g.back().z, 104.5);
    return g;
}

std::vector<Case> Cases() {
    std::vector<Case> cases;
    cases.push_back({"V", Pts({{0, 105}, {5, 100}, {10, 105}}), {{100, 0}, {105, 10}}, true});
    cases.push_back({"U de paredes verticales",
                     Pts({{0, 104}, {0, 100}, {4, 100}, {4, 104}}),
                     {{100, 4}, {104, 4}},
                     true});
    // A trapezoid surveyed every half metre along its sides: the collinear points add no level.
    {
        std::vector<std::pair<double, double>> xy;
        for (int k = 0; k <= 6; ++k) xy.push_back({k * 0.75, 103 - k * 0.5});
        for (int k = 6; k >= 0; --k) xy.push_back({4.5 + 2 + (6 - k) * 0.75, 103 - k * 0.5});
        cases.push_back({"trapecio con puntos alineados", Pts(xy), {{100, 2}, {103, 11}}, true});
    }
    // A bar in mid-channel: two wet stretches below its crest.
    cases.push_back({"islote",
                     Pts({{0, 105}, {2, 100}, {4, 103}, {6, 100}, {8, 105}}),
                     {{100, 0}, {103, 6.4}, {105, 8}},
                     true});
    // A flat terrace on the left: the width jumps at its level.
    cases.push_back({"terraza horizontal",
                     Pts({{0, 104}, {1, 102}, {10, 102}, {12, 100}, {14, 100}, {16, 104}}),
                     {},
                     false});
    // The right bank undercut between 103 and 104: the width shrinks there and is held.
    cases.push_back(
        {"voladizo", Pts({{0, 106}, {3, 100}, {6, 100}, {8, 103}, {7, 104}, {10, 106}}), {}, false});
    cases.push_back({"natural de 40 puntos", NaturalBed(40), {}, false});
    cases.push_back({"natural de 200 puntos", NaturalBed(200), {}, false});
    return cases;
}

}  // namespace

TEST(SurveySection, AreaAndPerimeterAgainstAnIndependentIntegration) {
    for (const Case& c : Cases()) {
        SCOPED_TRACE(c.name);
        const survey::Section s = survey::SectionFromSurvey(c.ground);
        ASSERT_GE(s.levels.size(), 2u);
        ASSERT_LE(s.levels.size(), 15u);
        for (std::size_t j = 1; j < s.levels.size(); ++j) {
            EXPECT_GT(s.levels[j].z, s.levels[j - 1].z);
            EXPECT_GE(s.levels[j].t, s.levels[j - 1].t);
        }
        if (!c.levels.empty()) {
            ASSERT_EQ(s.levels.size(), c.levels.size());
            for (std::size_t j = 0; j < c.levels.size(); ++j) {
                EXPECT_DOUBLE_EQ(s.levels[j].z, c.levels[j].z) << j;
                EXPECT_NEAR(s.levels[j].t, c.levels[j].t, 1e-9) << j;
            }
        }
        // The survey's own geometry, and the stack within the figures it reports, at 400 depths.
        const survey::Profile p = survey::ProfileOf(survey::CheckGround(c.ground));
        for (int k = 1; k <= 400; ++k) {
            const double z = s.bed + (s.top - s.bed) * k / 400.0;
            const double a = ClippedArea(c.ground, z), per = WetLength(c.ground, z);
            EXPECT_NEAR(survey::SurveyArea(p, z), a, 1e-9 * (1 + a)) << z;
            EXPECT_NEAR(survey::SurveyPerimeter(p, z), per, 1e-9 * (1 + per)) << z;
            const double da = std::abs(survey::StackArea(s.levels, z) / a - 1);
            const double dp = std::abs(survey::StackPerimeter(s.levels, z) / per - 1);
            EXPECT_LE(da, s.area_error + 1e-9) << z;
            EXPECT_LE(dp, s.perimeter_error + 1e-9) << z;
            if (c.exact) {
                EXPECT_LE(da, 1e-9) << z;
            }
        }
        if (c.exact) {
            EXPECT_LE(s.area_error, 1e-9);
        }
        if (std::string(c.name).rfind("natural", 0) == 0) {  // many elevations: all 15 levels, close
            EXPECT_EQ(s.levels.size(), 15u);
            EXPECT_LT(s.area_error, 0.03);
        }
    }
}

TEST(SurveySection, WarningsForOverhangsIslandsAndRepeatedPoints) {
    struct Row {
        std::vector<Point> ground;
        std::vector<std::string> warnings;
    };
    const std::vector<Row> rows = {
        {Pts({{0, 106}, {3, 100}, {6, 100}, {8, 103}, {7, 104}, {10, 106}}),
         {"Entre las cotas 103 y 104.25 el cauce se estrecha (orilla en voladizo): el ancho baja de 6.5 a 6 "
          "m y la sección por niveles mantiene 6.5 m."}},
        {Pts({{0, 105}, {2, 100}, {4, 103}, {6, 100}, {8, 105}}),
         {"Entre las cotas 100 y 103 el agua ocupa 2 tramos separados (islotes, barras o depresiones): la "
          "sección suma sus anchos."}},
        {Pts({{0, 105}, {5, 100}, {5, 100}, {10, 105}}),
         {"La línea 3 repite el punto (5; 100) de la línea 2: se toma una vez."}},
        {Pts({{0, 5}, {5, 0}, {10, 5}}),
         {"Un nivel tiene la cota 0, que las pantallas toman como el fin de la tabla de niveles: sume una "
          "constante a todas las cotas (por ejemplo 100)."}},
    };
    for (const Row& r : rows) EXPECT_EQ(survey::SectionFromSurvey(r.ground).warnings, r.warnings);
    // The held width: the level at 104 keeps 6.5 m though the survey is 6 m wide there.
    const auto s = survey::SectionFromSurvey(rows[0].ground);
    for (const Level& l : s.levels)
        if (l.z == 104) {
            EXPECT_DOUBLE_EQ(l.t, 6.5);
        }
    EXPECT_GT(s.area_error, 0);
}

TEST(SurveySection, StackGeometryIsTheScreensOwn) {
    // A level table typed into a natural-section screen gives the same area and perimeter.
    const std::vector<Level> levels = {{100, 1.5}, {100.8, 3.1}, {101.5, 3.1}, {102, 9.4}, {103.2, 30}};
    cauce::natural::State st;
    for (std::size_t j = 0; j < levels.size(); ++j) {
        st.Z(1, static_cast<int>(j) + 1) = levels[j].z;
        st.T(1, static_cast<int>(j) + 1) = levels[j].t;
    }
    st.n = 0.03;
    st.S0(1) = 0.001;
    st.CountLevels(1);
    ASSERT_EQ(st.Qful(1), cauce::natural::TableError::None);
    for (double y : {0.0, 0.3, 0.8, 1.2, 1.5, 2.0, 2.7, 3.2}) {
        st.Y = y;
        st.Area(1);
        EXPECT_DOUBLE_EQ(survey::StackArea(levels, 100 + y), st.A(1)) << y;
        EXPECT_DOUBLE_EQ(survey::StackPerimeter(levels, 100 + y), st.P) << y;
    }
}

TEST(SurveySection, ChoiceIsTheBestOfEveryChoice) {
    // The squared width difference relative to the survey's width (softened by a hundredth of the
    // top width), integrated numerically here, is least for the levels chosen, of every choice of
    // four levels among the survey's elevations.
    const std::vector<Point> g = Pts({{0, 106},
                                      {2, 104.1},
                                      {3, 103.7},
                                      {5, 101.2},
                                      {6.5, 100},
                                      {8, 100.4},
                                      {9, 101.9},
                                      {12, 102.6},
                                      {13, 104.8},
                                      {15, 105.3},
                                      {16, 106.5}});
    const survey::Profile p = survey::ProfileOf(survey::CheckGround(g));
    std::vector<double> w(p.z.size());
    for (std::size_t k = 0; k < w.size(); ++k) w[k] = k + 1 < w.size() ? p.t_above[k] : p.t_below[k];
    auto width = [&](double z) {  // the survey's width: each segment's stretch below the water
        double t = 0;
        for (std::size_t i = 0; i + 1 < g.size(); ++i) {
            const double lo = std::min(g[i].z, g[i + 1].z), hi = std::max(g[i].z, g[i + 1].z);
            const double dx = g[i + 1].x - g[i].x;
            if (hi <= z)
                t += dx;
            else if (lo < z)
                t += dx * (z - lo) / (hi - lo);
        }
        return t;
    };
    std::vector<double> zs, ts;
    for (int k = 0; k < 3000; ++k) {
        zs.push_back(p.z.front() + (p.z.back() - p.z.front()) * (k + 0.5) / 3000);
        ts.push_back(width(zs.back()));
    }
    const double e = 0.01 * width(p.z.back()) + 1e-3;
    auto cost = [&](const std::vector<std::size_t>& idx) {
        double c = 0;
        for (std::size_t k = 0; k < zs.size(); ++k) {
            std::size_t b = 1;
            while (p.z[idx[b]] < zs[k]) ++b;
            const double f = (zs[k] - p.z[idx[b - 1]]) / (p.z[idx[b]] - p.z[idx[b - 1]]);
            const double t = w[idx[b - 1]] + f * (w[idx[b]] - w[idx[b - 1]]);
            c += (t - ts[k]) * (t - ts[k]) / (ts[k] * ts[k] + e * e);
        }
        return c;
    };
    const auto chosen = survey::ChooseLevels(p, w, 4);
    ASSERT_EQ(chosen.size(), 4u);
    const double mine = cost(chosen);
    const std::size_t n = p.z.size();
    for (std::size_t a = 1; a < n - 1; ++a)
        for (std::size_t b = a + 1; b < n - 1; ++b)
            EXPECT_LE(mine, cost({0, a, b, n - 1}) * (1 + 1e-3)) << a << " " << b;
}

TEST(SurveySection, BadSurveysAreRefusedNamingTheLine) {
    struct Row {
        std::vector<Point> ground;
        int levels;
        std::string message;
    };
    const std::vector<Row> rows = {
        {Pts({{0, 105}, {5, 100}}), 15,
         "Hacen falta al menos 3 puntos (abscisa y cota) de izquierda a derecha; hay 2."},
        {Pts({{0, 100}, {5, 102}, {10, 105}}), 15,
         "El perfil no retiene agua: el extremo izquierdo (línea 1, cota 100) no está por encima del fondo "
         "(cota 100)."},
        {Pts({{10, 105}, {5, 100}, {0, 105}}), 15,
         "Línea 3: la última abscisa (0) no es mayor que la primera (10); los puntos van de izquierda a "
         "derecha."},
        {Pts({{0, 105}, {6, 100}, {8, 104}, {3, 99}, {12, 105}}), 15,
         "Línea 4: la abscisa 3 vuelve atrás y el perfil se cruza consigo mismo; los puntos van de izquierda "
         "a derecha."},
        {Pts({{0, 105}, {5, 100}, {5, 103}, {5, 101}, {10, 105}}), 15,
         "Línea 4: el perfil vuelve sobre sí mismo en la abscisa 5; los puntos van de izquierda a derecha."},
        {Pts({{0, 105}, {5, 2e6}, {10, 105}}), 15,
         "Línea 2: la abscisa y la cota deben ser números de metros entre -1000000 y 1000000."},
        {std::vector<Point>(5001, Point{0, 100, 1}), 15,
         "El levantamiento tiene 5001 puntos; el máximo es 5000."},
        {Pts({{0, 105}, {5, 100}, {10, 105}}), 16, "El número de niveles va de 2 a 15; se pidieron 16."},
    };
    for (const Row& r : rows) {
        try {
            survey::SectionFromSurvey(r.ground, r.levels);
            ADD_FAILURE() << "accepted: " << r.message;
        } catch (const Fault& f) {
            EXPECT_EQ(f.what(), r.message);
        }
    }
}

TEST(SurveyPoints, ReadsTheUsualLayouts) {
    struct Row {
        const char* text;
        std::vector<std::pair<double, double>> points;
        std::vector<int> lines;
    };
    const std::vector<Row> rows = {
        {"abscisa;cota\n0;105\n5,5;100,25\n10;105\n", {{0, 105}, {5.5, 100.25}, {10, 105}}, {2, 3, 4}},
        {"0,105\r\n5.5,100.25\r\n\r\n10,105\r\n", {{0, 105}, {5.5, 100.25}, {10, 105}}, {1, 2, 4}},
        {"0\t105\t\t\n5,5\t100,25\t\t\n", {{0, 105}, {5.5, 100.25}}, {1, 2}},
        {"\xEF\xBB\xBFx y\n  0   105\n 5,5  100.25 \n", {{0, 105}, {5.5, 100.25}}, {2, 3}},
    };
    for (const Row& r : rows) {
        const auto pts = ReadSurveyPoints(r.text);
        ASSERT_EQ(pts.size(), r.points.size()) << r.text;
        for (std::size_t k = 0; k < pts.size(); ++k) {
            EXPECT_EQ(pts[k].x, r.points[k].first) << r.text;
            EXPECT_EQ(pts[k].z, r.points[k].second) << r.text;
            EXPECT_EQ(pts[k].line, r.lines[k]) << r.text;
        }
    }
}

TEST(SurveyPoints, RefusesALineThatIsNotTwoNumbers) {
    const std::vector<std::pair<const char*, std::string>> rows = {
        {"0;105\n5;abc\n", "Línea 2: «5;abc» no son dos números (abscisa y cota)."},
        {"12,5,100,3\n",
         "Línea 1: «12,5,100,3» no son dos números (abscisa y cota); con la coma decimal, separe los números "
         "con punto y coma o tabulador."},
        {"0;1e999\n", "Línea 1: «0;1e999» no son dos números (abscisa y cota)."},
    };
    for (const auto& [text, message] : rows) {
        try {
            ReadSurveyPoints(text);
            ADD_FAILURE() << "accepted: " << text;
        } catch (const Fault& f) {
            EXPECT_EQ(f.what(), message);
        }
    }
    try {
        ReadSurveyPoints("0\t105\n1\t\n", "Fila");
        ADD_FAILURE();
    } catch (const Fault& f) {
        EXPECT_EQ(std::string(f.what()), "Fila 2: «1» no son dos números (abscisa y cota).");
    }
}
