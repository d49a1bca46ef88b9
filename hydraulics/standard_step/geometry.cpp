// Geometry and conveyance of a standard-step section: the stack of trapezoidal bands below the top
// level, and above it the channel between 1:1 walls beside a flood zone with 45-degree sides.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

#include "hydraulics/standard_step/section.hpp"

namespace cauce::standard_step {

namespace {

std::string Named(int number) {
    return "La sección " + std::to_string(number);
}

bool AllFinite(const SectionInput& in) {
    for (double v : in.z)
        if (!std::isfinite(v)) return false;
    for (double v : in.t)
        if (!std::isfinite(v)) return false;
    for (double v : {in.n, in.slope, in.q, in.flood_width, in.flood_n, in.chainage, in.grain_size})
        if (!std::isfinite(v)) return false;
    return true;
}

// r^(2/3) for r > 0, to about 1e-15 relative: a cube root started from the exponent's bits and
// refined by two Halley steps (each triples the correct digits), squared. Every conveyance of the
// march goes through here; the library's cbrt and pow cost several times as much.
double TwoThirdsPower(double r) {
    std::uint64_t bits;
    std::memcpy(&bits, &r, sizeof bits);
    bits = bits / 3 + 0x2A9F7893782DA1CEull;  // within a few percent of the cube root
    double x;
    std::memcpy(&x, &bits, sizeof x);
    for (int i = 0; i < 3; ++i) {
        const double x3 = x * x * x;
        x *= (x3 + 2 * r) / (2 * x3 + r);
    }
    return x * x;
}

// Manning conveyance A R^(2/3) / n; 0 for an empty area.
double Conveyance(double area, double perim, double n) {
    if (area <= 0 || perim <= 0 || n <= 0) return 0;
    return area * TwoThirdsPower(area / perim) / n;
}

// Moment about the water surface (depth y) of the strip between depths a and b whose width goes
// linearly from wa to wb: the integral of (y - eta) w(eta) over [a, b].
double StripMoment(double y, double a, double b, double wa, double wb) {
    const double l = b - a;
    if (l <= 0) return 0;
    const double s = (wb - wa) / l;
    return (y - a) * l * (wa + wb) / 2 - (wa * l * l / 2 + s * l * l * l / 3);
}

}  // namespace

/* Cumulative tables of a section whose levels y, t are set.
   Input:  s.y (depths from 0, rising), s.t (widths, not shrinking).
   Output: s.area and s.perim below every level.
   Purpose: the sums every evaluation starts from, as the screens' level tables. */
void BuildTables(Section& s) {
    const std::size_t m = s.y.size();
    s.area.assign(m, 0.0);
    s.perim.assign(m, 0.0);
    s.perim[0] = s.t[0];
    for (std::size_t j = 1; j < m; ++j) {
        const double dy = s.y[j] - s.y[j - 1];
        const double side = (s.t[j] - s.t[j - 1]) / 2 / dy;
        s.area[j] = s.area[j - 1] + dy * (s.t[j - 1] + side * dy);
        s.perim[j] = s.perim[j - 1] + 2 * dy * std::sqrt(1 + side * side);
    }
}

/* A surveyed section from its record.
   Input:  in, the record's levels, roughness, discharge, flood zone and chainage.
   Output: out, ready for Evaluate; returns "" or a Spanish message naming the section.
   Purpose: the checks a section must pass before any depth is computed on it. */
std::string BuildSection(const SectionInput& in, Section& out) {
    const std::string who = Named(in.number);
    if (!AllFinite(in)) return who + " tiene un dato que no es un número.";
    if (in.z.size() < 2 || in.t.size() != in.z.size()) return who + " necesita al menos dos niveles (z, t).";
    for (std::size_t j = 1; j < in.z.size(); ++j) {
        if (!(in.z[j] > in.z[j - 1]))
            return who + ": la cota z" + std::to_string(j + 1) + " no es mayor que la z" + std::to_string(j) +
                   ".";
        if (in.t[j] < in.t[j - 1])
            return who + ": el ancho t" + std::to_string(j + 1) + " es menor que el t" + std::to_string(j) +
                   ".";
    }
    if (in.t.front() < 0) return who + ": el ancho t1 es negativo.";
    if (!(in.t.back() > 0)) return who + " no tiene ancho.";
    if (!(in.n > 0)) return who + " no tiene rugosidad (n).";
    if (!(in.q > 0)) return who + " no tiene caudal.";
    if (in.flood_width > in.t.back() && !(in.flood_n > 0))
        return who + " tiene zona inundable (B mayor que Tn) sin rugosidad nz.";
    out = Section{};
    out.number = in.number;
    out.x = in.chainage;
    out.z_bed = in.z.front();
    for (std::size_t j = 0; j < in.z.size(); ++j) {
        out.y.push_back(in.z[j] - in.z.front());
        out.t.push_back(in.t[j]);
    }
    out.n = in.n;
    out.q = in.q;
    out.flood_width = in.flood_width;
    out.flood_n = in.flood_n;
    out.slope = in.slope;
    out.grain_size = in.grain_size;
    BuildTables(out);
    return "";
}

/* Hydraulic properties of a section at a depth.
   Input:  s, a built section; y > 0, the depth above its bed.
   Output: area, top width, conveyance (channel plus flood zone), alpha and the area's moment.
   Purpose: the one evaluation the balances, the critical depth and the jump are made of. */
Props Evaluate(const Section& s, double y) {
    Props p;
    const std::size_t m = s.y.size();
    if (y <= s.top()) {
        std::size_t j = 1;
        while (j < m - 1 && y > s.y[j]) ++j;
        const double h = y - s.y[j - 1];
        const double side = (s.t[j] - s.t[j - 1]) / 2 / (s.y[j] - s.y[j - 1]);
        p.area = s.area[j - 1] + h * (s.t[j - 1] + side * h);
        const double perim = s.perim[j - 1] + 2 * h * std::sqrt(1 + side * side);
        p.top_width = s.t[j - 1] + 2 * side * h;
        p.conveyance = Conveyance(p.area, perim, s.n);
        return p;
    }
    // Over the banks: the channel between 1:1 walls keeps its bank-full wetted perimeter; the flood
    // zone beside it is a w x h rectangle with two 45-degree sides.
    const double h = y - s.top();
    const double tn = s.bank_width();
    const double am = s.area.back() + h * (tn + h);
    const double km = Conveyance(am, s.perim.back(), s.n);
    const double w = s.flood_width > tn ? s.flood_width - tn : 0.0;
    const double af = w * h;
    const double kf = w > 0 ? Conveyance(af, w + 2 * std::sqrt(2.0) * h, s.flood_n) : 0.0;
    p.area = am + af;
    p.top_width = tn + w + 2 * h;
    p.conveyance = km + kf;
    if (kf > 0) {
        const double k3a2 = p.conveyance * p.conveyance * p.conveyance / (p.area * p.area);
        p.alpha = (km * km * km / (am * am) + kf * kf * kf / (af * af)) / k3a2;
    }
    return p;
}

/* Moment of the flow area about the water surface.
   Input:  s; y > 0, the depth.
   Output: the integral of (y - eta) T(eta) over the wetted depth, m3 (over the banks the width is
           the channel's and the flood zone's, B + 2h).
   Purpose: the hydrostatic part of the specific force. */
double AreaMoment(const Section& s, double y) {
    double moment = 0;
    for (std::size_t i = 1; i < s.y.size(); ++i) {
        if (y <= s.y[i]) {
            const double side = (s.t[i] - s.t[i - 1]) / (s.y[i] - s.y[i - 1]);
            return moment + StripMoment(y, s.y[i - 1], y, s.t[i - 1], s.t[i - 1] + side * (y - s.y[i - 1]));
        }
        moment += StripMoment(y, s.y[i - 1], s.y[i], s.t[i - 1], s.t[i]);
    }
    const double tn = s.bank_width();
    const double wide = std::max(tn, s.flood_width);
    return moment + StripMoment(y, s.top(), y, wide, wide + 2 * (y - s.top()));
}

double VelocityHead(const Section& s, const Props& p) {
    const double v = s.q / p.area;
    return p.alpha * v * v / (2 * kGravity);
}

double SpecificEnergy(const Section& s, double y) {
    if (y > s.top()) return y + VelocityHead(s, Evaluate(s, y));
    std::size_t j = 1;
    while (j < s.y.size() - 1 && y > s.y[j]) ++j;
    const double h = y - s.y[j - 1];
    const double side = (s.t[j] - s.t[j - 1]) / 2 / (s.y[j] - s.y[j - 1]);
    const double v = s.q / (s.area[j - 1] + h * (s.t[j - 1] + side * h));
    return y + v * v / (2 * kGravity);
}

double SpecificForce(const Section& s, double y) {
    return s.q * s.q / (kGravity * Evaluate(s, y).area) + AreaMoment(s, y);
}

double FroudeNumber(const Section& s, const Props& p) {
    return std::sqrt(p.alpha * s.q * s.q * p.top_width / (kGravity * p.area * p.area * p.area));
}

}  // namespace cauce::standard_step
