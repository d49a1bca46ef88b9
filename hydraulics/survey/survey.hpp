// Sections from survey points: the ground of a cross-section as surveyed, points (abscisa, cota)
// from left to right, turned into the stack of levels (elevation, total top width) that the
// natural-section screens compute with, with how far the stack's area and wetted perimeter stray
// from the survey's.
//
// The channel is what the water fills between the two ends of the survey: the bed is the lowest
// point, the top is the lower of the two ends (above it the water leaves the section). At an
// elevation z the wet intervals are where the water stands above the ground between the two ends;
// an island counts dry, and a pocket behind a bank counts wet once the water is above its bottom
// (the survey does not say whether it is cut off, and a stack of levels cannot leave it out).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace cauce::survey {

// A ground point: abscissa and elevation, in metres, and the line it was read from (1-based; 0
// when it was not read from text), which messages name.
struct Point {
    double x = 0;
    double z = 0;
    int line = 0;
};

// A level of the stack: elevation and total top width with the water at that elevation.
struct Level {
    double z = 0;
    double t = 0;
};

// The most levels the screens hold.
inline constexpr int kMaxLevels = 15;
// The most points of a survey (the choice of levels grows with the square of their elevations) and
// the largest abscissa or elevation, in metres, far beyond any real survey.
inline constexpr std::size_t kMaxPoints = 5000;
inline constexpr double kMaxCoordinate = 1e6;

// The ground checked and cleaned: consecutive repeated points merged, bed and top found.
struct Ground {
    std::vector<Point> points;
    double bed = 0;          // elevation of the lowest point
    double top = 0;          // elevation of the lower end
    bool overhangs = false;  // some abscissa goes back (an undercut bank)
    std::vector<std::string> warnings;
};

// The survey's own geometry from the bed to the top: the elevations where its width changes
// course (every point's elevation, and the levels added just below a terrace), with the width and
// wetted perimeter just above and just below each. Between two of them both vary linearly.
struct Profile {
    std::vector<double> z;                 // strictly rising, z.front() = bed, z.back() = top
    std::vector<double> t_above, t_below;  // top width just above / just below z[k]
    std::vector<double> p_above, p_below;  // wetted perimeter just above / just below z[k]
    std::vector<int> pieces;               // wet intervals between z[k] and z[k + 1]
    std::vector<double> area;              // flow area with the water at z[k]
};

// The stack of levels chosen for a survey and what it costs.
struct Section {
    std::vector<Level> levels;
    double area_error = 0;       // largest |A_stack - A_survey| / A_survey over the depth
    double perimeter_error = 0;  // the same for the wetted perimeter
    double bed = 0, top = 0;
    int elevations = 0;  // distinct elevations of the survey from the bed to the top
    std::vector<std::string> warnings;
};

// Checks the points and finds the bed and top. Raises a Fault with a Spanish message naming the
// line at fault: fewer than 3 points or more than kMaxPoints, a coordinate out of range, abscissas that go
// back so that the ground crosses itself, a last abscissa not beyond the first, an end not above the bed.
Ground CheckGround(std::vector<Point> points);

// The survey's geometry between its bed and top (see Profile).
Profile ProfileOf(const Ground& ground);

// Area, wetted perimeter and top width of the survey with the water at z (bed <= z <= top).
double SurveyArea(const Profile& p, double z);
double SurveyPerimeter(const Profile& p, double z);

// Area and wetted perimeter of a stack of levels with the water at z, computed as the screens
// compute them: symmetric trapezoidal bands, the bottom width wetted.
double StackArea(const std::vector<Level>& levels, double z);
double StackPerimeter(const std::vector<Level>& levels, double z);

// The levels (indices into p.z, rising, first the bed and last the top, at most max_levels of
// them) whose stack is closest to the survey, with the widths each level would take.
std::vector<std::size_t> ChooseLevels(const Profile& p, const std::vector<double>& widths, int max_levels);

// The largest relative differences of area and wetted perimeter between a stack and the survey.
struct Differences {
    double area = 0, perimeter = 0;
};
Differences Compare(const Profile& p, const std::vector<Level>& levels);

// The whole path: check, profile, choice of at most max_levels levels (2..15), widths rounded to
// the millimetre and held where the survey's width shrinks, differences and warnings.
Section SectionFromSurvey(std::vector<Point> points, int max_levels = kMaxLevels);

// A number for a message: fixed, at most three decimals, no trailing zeros ("100.25", "3").
std::string NumberWords(double value);

}  // namespace cauce::survey
