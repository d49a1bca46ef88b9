// The form-level state of the prismatic-channel screen (Form1): the data of the channel or conduit,
// the working depth, the bank-full and full-conduit values and the flood-zone shares.
//
// Two families share it: the trapezoidal family (trapezoid, rectangle, triangle: bottom width b and
// side slope z, optionally a bank height h and a flood zone Bz, nz beside it) and the circular
// conduit (diameter D). Routines keep their legacy names and work on these fields; what they would
// have written to a label or a picture comes back as a return value for the screen to turn into text.
// Routines that write no label are plain procedures on the state, as they always were.
#pragma once

#include <cstdint>

#include "hydraulics/checked_math.hpp"
#include "hydraulics/constants.hpp"

namespace cauce::prismatic {

// The shape the trapezoidal family's data describe (the type button's caption and figure).
enum class SectionType { Trapezoidal, Triangular, Rectangular };

// The conduit's figure by depth: up to 0.3 D, up to 0.5 D, more than half full.
enum class ConduitFigure { Low, Middle, High };

// What Qdesbord found before marching.
enum class FloodStatus { Computed, MissingZone };

// Above this diameter the conduit's searches walk their marches: a 1 mm step is then too small a part
// of the conduit to be sure that rounding cannot blur the change it makes. Below it, a march's depth
// after j steps (j within the budget, the depth within 10 km, each addition off by at most half a
// unit in the last place, 1e-12 m) strays from start + j mm by less than 5e-6 m: two steps of
// margin keep the steps a search looks at inside the depths trusted to it.
inline constexpr double kLargestFastDiameter = 1e4;

// The full conduit has no free surface: its Froude number is shown as this fixed value.
inline constexpr double kFullConduitFroude = 0;

// Geometria's arithmetic at a depth y, without touching the state: area, wetted perimeter, top
// width, hydraulic depth and Manning's discharge (at y = D the state's Dh and Qlleno, as Geometria).
struct ConduitAt {
    double A, P, T, Dh, q;
};

// A step of the conduit's critical march: the step's number, the conduit there, the velocity and
// Froude's number.
struct ConduitStep {
    std::int64_t index = -1;
    ConduitAt at{};
    double vc = 0, froude = 0;
};

// Qdesbord2's arithmetic at a depth d over the banks, without touching the state.
struct OverBanksAt {
    double Am, Qm, Wf, Af, Qf, Qt;
};

struct State {
    // Data of the screen (Text1..Text7; D is Text3 in the conduit's layout).
    double n = 0;   // Manning roughness of the channel
    double S = 0;   // bed slope, m/m
    double b = 0;   // bottom width
    double z = 0;   // side slope, horizontal per unit rise
    double h = 0;   // bank height; 0 means no limit
    double Bz = 0;  // flood-zone width, the channel's top width counted in
    double nz = 0;  // flood-zone roughness
    double D = 0;   // conduit diameter

    // The workflow: its discharge and normal depth, the discharge handed to the critical depth.
    double Q = 0;
    double Yn = 0;
    double Qc = 0;

    // Geometry at the working depth y (the conduit's Geometria and the marches move y).
    double y = 0;
    double A = 0, P = 0, T = 0;
    double Dh = 0;  // hydraulic depth A / T
    double Vn = 0;  // mean velocity at the normal depth
    double F = 0;   // Froude number; the conduit's critical march carries it along

    // Critical depth and velocity; W is the mean width of Critica's last pass.
    double Yc = 0, Vc = 0, W = 0;

    // Bank-full values at h (Lleno). The top width is single precision, as it always was: the flood
    // zone's width Bz - Tb and the main channel's strip above the banks carry its rounding.
    double Ab = 0, Pb = 0;
    float Tb = 0;
    double Qb = 0;

    // Full-conduit values (Maximo, Clleno) and the results' ratios to them (Final).
    double Qlleno = 0, Vlleno = 0;
    // Qm is the conduit's maximum discharge (at 0.94 D) in the conduit's layout and the main
    // channel's share over the banks in the flood zone; one screen value served both.
    double Qm = 0;
    double QQlleno = 0, YnD = 0, VnVlleno = 0;

    // Flood zone: depth over the banks, main-channel area, flood-zone width, area and discharge,
    // total discharge (Qdesbord2), and the shares shown by Qdesbord3.
    double d = 0, Am = 0, Wf = 0, Af = 0, Qf = 0, Qt = 0;
    double Qrest = 0;  // flood zone's share shown: the remainder Q - Qm, so the shares add up to Q
    double Vmean = 0;  // whole discharge over the whole area
    double Vm = 0;     // main channel
    double Vf = 0;     // flood zone (0 when it has no width)
    double Tt = 0;     // total top width Bz + 2 d
    double Tm = 0;     // main channel's top width Tb + 2 d
    double Fm = 0;     // main channel's Froude number
    double Ff = 0;     // flood zone's Froude number (0 when it has no width)

    // The fixed-step marches (the conduit's normal and critical depths, the depth over the banks) find
    // the step at which the march stops by a bracketing search over the step count, with exactly the
    // march's results; where the searched quantity is not surely monotone they walk the march. With
    // `literal` set they always walk it: the reference the fast paths are checked against.
    bool literal = false;

    // --- trapezoidal family (section.cpp, normal.cpp, bankfull.cpp, critical.cpp) ---
    // The shape the data describe; the later test wins, so b = z = 0 is a rectangle.
    SectionType Datos() const;
    // Bank-full area, perimeter, top width and discharge at h.
    void Lleno();
    // Normal depth Yn for Q by the fixed-point iteration; then A, Vn, T, Dh, F at Yn.
    void Normal();
    // Discharge Q for the depth Yn; then A, P, Vn, T, F.
    void Normal2();
    // Critical depth Yc and velocity Vc for Qc by the fixed-point iteration.
    void Critica();

    // --- circular conduit (conduit_geometry.cpp, conduit.cpp, critical.cpp) ---
    // A, P, T, Dh of the conduit at y; returns Manning's discharge there (Qlleno at y = D exactly).
    double Geometria();
    // Full-conduit discharge and velocity, and the maximum discharge Qm at 0.94 D.
    void Maximo();
    // Normal depth for Q by the 1 mm march; Yn is one step above the depth last evaluated.
    void Circular();
    // Velocity, Froude number and ratios at Yn with the geometry last evaluated; the figure.
    ConduitFigure Final();
    // The conduit flowing full: Q = Qlleno, Vn, the fixed Froude number.
    void Clleno();
    // Critical depth of the conduit by the 1 mm march from Yn, with F the Froude number at Yn.
    void Criticac();
    void Criticac2();

    // --- flood zone (flood.cpp) ---
    // Normal depth for Q > Qb by the 2.5 mm march over the banks.
    FloodStatus Qdesbord();
    // Shares of the main channel and the flood zone at the depth d over the banks.
    void Qdesbord2();
    // The shares shown with the flood zone flowing; returns true when the bank-full flow with the
    // whole discharge is supercritical (the critical depth is above the banks).
    bool Qdesbord3();

  private:
    // Full-conduit discharge; returns the full area.
    double FullConduit();
    // The marches as they always were, from the depth y (and the discharge qc last computed), with
    // `done` steps already taken; and their fast paths, which return false to leave it to them.
    void CircularMarch(double qc, std::int64_t done);
    bool CircularFast(double qc);
    void ClimbMarch(std::int64_t done);
    bool ClimbFast();
    void DescentMarch(std::int64_t done);
    bool DescentFast(std::int64_t guess);
    // What the critical march leaves after the step `index` at `depth` (before moving y on).
    void CriticalStep(const ConduitStep& found, std::int64_t index, double depth);
    void FloodMarch();
    bool FloodFast();
};

ConduitAt ConduitAtDepth(const State& st, double y);
OverBanksAt OverBanksAtDepth(const State& st, double d);

// Square root of the slope, with a message that names the datum when it is negative.
double SlopeRoot(double S);

// Geometry of the trapezoidal family at depth y (b = 0: triangle, z = 0: rectangle).
double TrapezoidArea(double b, double z, double y);
double TrapezoidPerimeter(double b, double z, double y);
double TrapezoidTopWidth(double b, double z, double y);

}  // namespace cauce::prismatic
