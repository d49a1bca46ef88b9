// General scour of a cohesionless river bed under the computed water depth of a section
// (Lischtvan-Lebediev, non-cohesive soil, mean-velocity coefficient from Manning's equation).
//
// The profile run of the scour screen computes, for each section at the depth the march gave it,
// the friction slope; when a grain size is given, Socavacion turns depth, friction slope, roughness
// and grain size into the scour depth below the present bed.
#pragma once

#include "hydraulics/natural/state.hpp"

namespace cauce::scour {

// Scour exponent 1/(1+x) for a characteristic grain size dm in metres, from the piecewise fit of its
// tabulated values: below 0.028 m, from 0.028 m up to 0.182 m, from 0.182 m up to 1 m. From 1 m up
// no band applies and the exponent is exactly 1. A negative grain size is a fault.
double GrainExponent(double dm);

// Friction slope of a section carrying velocity v over area a and wetted perimeter p:
// Sf = (n v / R^(2/3))^2 with R = a / p.
double FrictionSlope(double n, double v, double a, double p);

// The scour computation of one section, as the profile run hands it over.
struct Bed {
    double Dm = 0;        // characteristic grain size, m
    double exponent = 0;  // GrainExponent(Dm), fixed once per run
};

// Socavacion: writes st.Ysoc(s), the scour below the bed of section s for the water depth y at which
// the friction slope sf was computed, with the screen's roughness st.n. The value is stored as it
// comes: negative where the flow is too slow to scour.
void Socavacion(natural::State& st, int s, double y, double sf, const Bed& bed);

}  // namespace cauce::scour
