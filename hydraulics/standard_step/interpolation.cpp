// Sections between two surveyed ones: each level placed at the same relative depth in both.
#include <algorithm>
#include <cmath>

#include "hydraulics/standard_step/section.hpp"

namespace cauce::standard_step {

void BuildTables(Section& s);  // geometry.cpp

namespace {

// Width of section s at the relative depth r (0 at the bed, 1 at the top level). j is the band the
// search starts from and is left at the band found: the relative depths asked for rise, so each
// section's levels are walked once.
double WidthAt(const Section& s, double r, std::size_t& j) {
    const double y = r * s.top();
    while (j < s.y.size() - 1 && y > s.y[j]) ++j;
    const double f = (y - s.y[j - 1]) / (s.y[j] - s.y[j - 1]);
    return s.t[j - 1] + f * (s.t[j] - s.t[j - 1]);
}

double Lerp(double a, double b, double f) {
    return a + f * (b - a);
}

}  // namespace

/* The section a fraction of the way between two surveyed sections.
   Input:  a (upstream), b (downstream), f in [0, 1].
   Output: a section whose levels are the union of both sections' levels taken at equal relative
           depth, with widths, top depth, bed, roughness, discharge, slope and flood zone
           interpolated linearly.
   Purpose: the short steps of the standard-step march between surveyed sections. */
Section Interpolate(const Section& a, const Section& b, double f, std::pmr::memory_resource* arena) {
    // Both sections' relative levels, merged in order, those closer than 1e-12 taken once.
    thread_local std::vector<double> rel;
    rel.clear();
    rel.reserve(a.y.size() + b.y.size());
    const double ta = a.top(), tb = b.top();
    std::size_t i = 0, j = 0;
    while (i < a.y.size() || j < b.y.size()) {
        const double ra = i < a.y.size() ? a.y[i] / ta : 2.0, rb = j < b.y.size() ? b.y[j] / tb : 2.0;
        const double r = std::min(ra, rb);
        (ra <= rb ? i : j)++;
        if (rel.empty() || r - rel.back() >= 1e-12) rel.push_back(r);
    }
    rel.front() = 0.0;
    rel.back() = 1.0;

    Section s(arena);
    s.x = Lerp(a.x, b.x, f);
    s.z_bed = Lerp(a.z_bed, b.z_bed, f);
    const double top = Lerp(a.top(), b.top(), f);
    s.y.reserve(rel.size());
    s.t.reserve(rel.size());
    std::size_t ja = 1, jb = 1;
    for (double r : rel) {
        s.y.push_back(r * top);
        s.t.push_back(Lerp(WidthAt(a, r, ja), WidthAt(b, r, jb), f));
    }
    s.n = Lerp(a.n, b.n, f);
    s.q = Lerp(a.q, b.q, f);
    s.slope = Lerp(a.slope, b.slope, f);
    s.flood_width = Lerp(a.flood_width, b.flood_width, f);
    s.flood_n = Lerp(a.flood_n, b.flood_n, f);
    BuildTables(s);
    return s;
}

}  // namespace cauce::standard_step
