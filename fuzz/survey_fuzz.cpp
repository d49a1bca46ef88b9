// Any text read as survey points and turned into a stack of levels: no crash, no sanitizer report, no
// hang; a refusal is a Fault; an accepted survey gives 2 to 15 levels rising from its bed to its top,
// widths that never shrink, finite figures that bound the area difference at the top.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "forms/survey_points.hpp"
#include "fuzz/fuzz_support.hpp"
#include "hydraulics/checked_math.hpp"
#include "hydraulics/survey/survey.hpp"

namespace survey = cauce::survey;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const int wanted = 2 + data[0] % 14;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    survey::Section s;
    std::vector<survey::Point> points;
    try {
        points = cauce::forms::ReadSurveyPoints(text);
        s = survey::SectionFromSurvey(points, wanted);
    } catch (const cauce::Fault&) {
        return 0;
    }
    const auto& l = s.levels;
    if (l.size() < 2 || l.size() > static_cast<std::size_t>(wanted)) cauce::fuzz::Fail("level count");
    if (l.front().z != s.bed || l.back().z != s.top) cauce::fuzz::Fail("levels do not span bed to top");
    for (std::size_t j = 1; j < l.size(); ++j)
        if (!(l[j].z > l[j - 1].z) || !(l[j].t >= l[j - 1].t)) cauce::fuzz::Fail("levels not rising");
    if (!std::isfinite(s.area_error) || !std::isfinite(s.perimeter_error))
        cauce::fuzz::Fail("figures not finite");
    const survey::Profile p = survey::ProfileOf(survey::CheckGround(points));
    const double a = survey::SurveyArea(p, s.top);
    if (a > 0 && a > 1e-6 * (1 + p.t_below.back()) * (s.top - s.bed) &&
        std::abs(survey::StackArea(l, s.top) / a - 1) > s.area_error + 1e-6)
        cauce::fuzz::Fail("area difference at the top beyond the figure");
    return 0;
}
