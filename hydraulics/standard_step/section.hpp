// The computed sections of a standard-step reach and what is evaluated on them.
#pragma once

#include <memory_resource>
#include <string>
#include <vector>

#include "hydraulics/standard_step/reach.hpp"

namespace cauce::standard_step {

// Depths above the bed are limited to this much over the top level: far beyond any real flood, and
// the bound that turns "no depth carries the discharge" into a message.
inline constexpr double kDepthLimit = 1000.0;  // m

// A section ready for evaluation: levels as depths above the bed, with the cumulative area and wetted
// perimeter of the bands below each level.
// The tables of the interpolated sections come from one arena per run rather than four allocations each.
struct Section {
    Section() = default;
    explicit Section(std::pmr::memory_resource* arena) : y(arena), t(arena), area(arena), perim(arena) {}

    int number = 0;  // surveyed section's number; 0 for an interpolated one
    double x = 0, z_bed = 0;
    std::pmr::vector<double> y, t;         // depth of each level above the bed, top width there
    std::pmr::vector<double> area, perim;  // below each level
    double n = 0, q = 0, flood_width = 0, flood_n = 0, slope = 0, grain_size = 0;
    double yc = 0;  // critical depth, filled once the section is built

    double top() const { return y.back(); }
    double bank_width() const { return t.back(); }
};

// Hydraulic properties at a depth (the area's moment, for the specific force, apart).
struct Props {
    double area = 0, top_width = 0, conveyance = 0;
    double alpha = 1;  // velocity-head coefficient of the subdivided section
};

// Builds the level tables of a surveyed section; returns a Spanish message naming it, or "".
std::string BuildSection(const SectionInput& in, Section& out);

// Properties of section s with the water y above its bed (y > 0).
Props Evaluate(const Section& s, double y);

double VelocityHead(const Section& s, const Props& p);  // alpha V^2 / 2g
// Specific energy y + alpha V^2 / 2g at depth y; in the banks alpha is 1 and no conveyance is needed.
double SpecificEnergy(const Section& s, double y);
double SpecificForce(const Section& s, double y);       // Q^2 / (g A) + the area's moment, m3
double FroudeNumber(const Section& s, const Props& p);  // sqrt(alpha Q^2 T / (g A^3))

// The section a fraction f of the way from a to b: bed, levels at equal relative depth, widths,
// roughness, discharge and flood zone interpolated linearly; its tables allocated from arena.
Section Interpolate(const Section& a, const Section& b, double f, std::pmr::memory_resource* arena);

// Depth of minimum specific energy (the lowest minimum when the section has several).
double CriticalDepth(const Section& s);
// Depth of uniform flow for the section's slope; 0 when the slope is not positive.
double NormalDepth(const Section& s);

}  // namespace cauce::standard_step
