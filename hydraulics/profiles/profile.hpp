// Water-surface profiles of gradually varied flow along a reach, by the direct-step method.
//
// The run starts at the last section, N (the downstream end), with the depth the user gives there,
// and works upstream to section 1. Each section's reach is classed as mild (Yn >= Yc) or steep
// (Yn < Yc), and the routine of its profile type (M1, M2, S1, S2) carries the depth to the section
// upstream, k-1. Every step evaluates section k alone, as if it extended over the whole reach; the
// last step, from section 1, fills section 0, which is never shown.
//
// The arrays are those of natural::State: Ysec (profile depth), L and X (reach length, chainage),
// Tipo, Za (the water-surface elevation Zw), V (the mean velocity Vsec), Yn, Yc, Q, S0, A, P, n and
// the working depth Y. The band index st.k belongs to Area; the run's section number is its own.
//
// How the screens use it:
// - Form2 and Form4: SetStartDepth (a depth of 0 stops the run), the fifteen chainages into X(1..15),
//   ProfileRun with the default policy, then the table (TableRow) of types, elevations, velocities.
// - Form3 (profiles with scour) runs the same march with a RunPolicy naming what it does differently:
//   lengths = Lengths::UpToN (its X(i) come from each section's "(Y?)"); evaluate_at_march_depth with
//   friction_slope = scour::FrictionSlope(st.n, st.V(k), st.A(k), st.P), so that each section gets
//   Area, Vsec = Q / A and its friction slope at Ysec(k) before the classification (an area of 0 ends
//   the run with RunEnd::NoArea: no table); steps_store_velocity = false; and, when a grain size is
//   given, after_classification calling Socavacion with Ysec(k) and that friction slope.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "hydraulics/natural/state.hpp"

namespace cauce::profiles {

using natural::State;

inline constexpr double kAboveCritical = 0.02;  // m, M2 start and S1 stop margin above Yc
inline constexpr int kTableRows = 15;           // sections 1..15 are shown, whatever N is

inline constexpr const char* kEndlessMarch =
    "El cálculo del perfil no termina: la distancia no alcanza la longitud del tramo ni el tirante su límite "
    "(revise la sección, la pendiente y el caudal)";

// Section k at the working depth st.Y: Area, then the mean velocity, Manning's friction slope and the
// specific energy. Leaves A(k), P, Tw(k) and the band index as Area does.
struct SectionValues {
    double V = 0;   // Q(k) / A(k)
    double Sf = 0;  // n^2 V^2 / R^(4/3), R = A / P
    double E = 0;   // Y + V^2 / 19.62
};
SectionValues EvaluateSection(State& st, int k);

// Where the reach lengths L(j) = X(j) - X(j-1) come from.
enum class Lengths {
    FifteenBoxes,  // j = 2..15 from the fifteen chainage boxes; sections above 15 keep L = 0
    UpToN,         // j = 2..N from each section's own chainage
};

// What the screens' profile runs do differently. The defaults are Form2's (and Form4's).
struct RunPolicy {
    Lengths lengths = Lengths::FifteenBoxes;
    // The mild routines store the velocity at the start of their last step as Vsec(k).
    bool steps_store_velocity = true;
    // Before the classification: Area at Ysec(k) (an area of 0 ends the run), Vsec(k) = Q / A, the
    // friction slope by friction_slope, then Zw(k).
    bool evaluate_at_march_depth = false;
    std::function<double(const State&, int k)> friction_slope;
    // After the classification of section k, with the friction slope computed before it (0 without
    // evaluate_at_march_depth).
    std::function<void(State&, int k, double sf)> after_classification;
    std::int64_t step_budget = kStepBudget;
};

// The given depth at the last section: Ysec(N) and Zw(N). False when it is 0 (nothing to run).
bool SetStartDepth(State& st, double y);

// L(j) = X(j) - X(j-1) over the policy's range; L(1) is never set.
void ReachLengths(State& st, const RunPolicy& policy = {});

enum class RunEnd {
    Complete,  // every section from N to 1 stepped: the table can be written
    NoArea,    // a section had no flow area at its march depth (evaluate_at_march_depth only)
};

// The reach lengths, then the march from section N to 1.
RunEnd ProfileRun(State& st, const RunPolicy& policy = {});

// Mild reach at section k: "M1" when Ysec(k) >= Yn(k), "M2" when below.
void Perfilm(State& st, int k, const RunPolicy& policy = {});
// M1: the depth falls upstream from Y towards Yn(k).
void Perfilm1(State& st, int k, const RunPolicy& policy = {});
// M2: the depth rises upstream towards Yn(k), from at least Yc(k) + 0.02.
void Perfilm2(State& st, int k, const RunPolicy& policy = {});
// Steep reach at section k: "S1" above Yc(k), "S2" (Ysec(k-1) = Yc(k), no stepping) at or below.
void Perfils(State& st, int k, const RunPolicy& policy = {});
// S1: the depth falls upstream towards Yc(k) + 0.02; never stores the velocity.
void Perfils1(State& st, int k, const RunPolicy& policy = {});

// One row of the profile table: what the arrays hold for section j (1..15), run or not.
struct TableRow {
    std::string tipo;
    double zw = 0;
    double v = 0;
    double ysoc = 0;
};
std::array<TableRow, kTableRows> Tabla(const State& st);

}  // namespace cauce::profiles
