// Water-surface profile of a reach by the standard-step method, in mixed regime.
//
// This is the modern profile shown beside the screens' direct-step profile: every surveyed section
// keeps its own geometry, sections are interpolated between them, the energy equation is balanced
// between consecutive sections with friction, contraction and expansion losses, and a subcritical
// pass (from the downstream depth) and a supercritical pass (from upstream) are joined by the
// hydraulic jump where their specific forces meet. Inputs and outputs are explicit: nothing here
// reads or writes a screen's state.
//
// A section is the screens' stack of levels (elevation, top width), each band a symmetric trapezoid.
// Above the top level the channel rises between 1:1 walls with its bank-full wetted perimeter, and a
// flood zone of width B - Tn and roughness nz, with 45-degree sides, flows beside it. Conveyance is
// computed for the channel and the flood zone separately and added; the velocity-head coefficient
// alpha comes from that subdivision.
//
// Sections are numbered 1..N from upstream to downstream; chainages grow downstream.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hydraulics/constants.hpp"

namespace cauce::standard_step {

// One surveyed section, as its record holds it.
struct SectionInput {
    int number = 0;            // the section's number, for messages
    std::vector<double> z, t;  // levels from the bed up: elevation (m) and top width (m)
    double n = 0;              // Manning roughness of the channel
    double slope = 0;          // bed slope (only for the normal depth at the upstream end)
    double q = 0;              // discharge, m3/s
    double flood_width = 0;    // B, total width of the flood zone (Tn counted in), m
    double flood_n = 0;        // nz, roughness of the flood zone
    double chainage = 0;       // m, growing downstream
    double grain_size = 0;     // m; > 0 to evaluate the scour relation at the result
};

struct Options {
    double contraction = 0.1;  // coefficient of the contraction loss (velocity head rising downstream)
    double expansion = 0.3;    // coefficient of the expansion loss (velocity head falling downstream)
    // Longest distance between computed sections, m. The default keeps the depths within 1 mm of
    // those at half the spacing on natural reaches of the bundled kind.
    double max_spacing = 5.0;
};

struct ReachInput {
    std::vector<SectionInput> sections;    // upstream (1) to downstream (N)
    double downstream_depth = 0;           // m, at section N: the subcritical pass starts here
    std::optional<double> upstream_depth;  // m, at section 1: the supercritical pass starts here
    Options options;
};

enum class Regime { Subcritical, Supercritical, Critical };

// Results at one surveyed section.
struct SectionResult {
    int number = 0;
    double chainage = 0;
    double y = 0;         // depth, m
    double z_water = 0;   // water-surface elevation, m
    double z_energy = 0;  // energy-grade elevation, m
    double v = 0;         // mean velocity Q / A, m/s
    double froude = 0;    // of the compound section, alpha counted in
    double sf = 0;        // friction slope (Q / K)^2
    double yc = 0;        // critical depth (minimum specific energy), m
    Regime regime = Regime::Subcritical;
    std::optional<double> scour;  // scour below the bed, m, when a grain size is given
};

struct Jump {
    double chainage = 0;  // m
    double y1 = 0;        // supercritical sequent depth, m
    double y2 = 0;        // subcritical sequent depth, m
};

// Water and energy lines at every computed section (surveyed and interpolated), for plotting.
struct ProfilePoint {
    double chainage = 0, z_bed = 0, z_water = 0, z_energy = 0;
};

struct Result {
    std::vector<SectionResult> sections;  // one per surveyed section, upstream first
    std::vector<ProfilePoint> line;       // every computed section, upstream first
    std::optional<Jump> jump;             // the first hydraulic jump of the reach
    std::vector<std::string> notes;       // Spanish: critical depth assumed, boundary depths adjusted
    std::string error;                    // Spanish, naming the section; no results when set

    bool Ok() const { return error.empty(); }
};

// Runs the profile. Never throws for bad data: the result's error says what is wrong, and then the
// result holds no sections.
Result Solve(const ReachInput& input);

const char* RegimeName(Regime r);  // "subcrítico", "supercrítico", "crítico"

}  // namespace cauce::standard_step
