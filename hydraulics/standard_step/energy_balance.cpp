// The energy equation between two consecutive computed sections.
//
//   z_u + y_u + alpha_u V_u^2 / 2g = z_d + y_d + alpha_d V_d^2 / 2g + hf + ho
//   hf = L ((Q_u + Q_d) / (K_u + K_d))^2          friction, from the average conveyance
//   ho = C |alpha_d V_d^2 / 2g - alpha_u V_u^2 / 2g|  C: contraction where the velocity head rises
//                                                      downstream, expansion where it falls
// A subcritical pass knows the downstream section and seeks the upstream depth above critical; a
// supercritical pass knows the upstream section and seeks the downstream depth below critical.
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "hydraulics/checked_math.hpp"
#include "hydraulics/standard_step/balance.hpp"
#include "hydraulics/standard_step/root_finder.hpp"

namespace cauce::standard_step {

namespace {

constexpr double kTolerance = 1e-6;  // m

double Losses(const Section& up, const Props& pu, const Section& down, const Props& pd, const Options& o) {
    const double length = down.x - up.x;
    const double k = pu.conveyance + pd.conveyance;
    const double ratio = (up.q + down.q) / k;
    const double hvu = VelocityHead(up, pu), hvd = VelocityHead(down, pd);
    const double coefficient = hvd > hvu ? o.contraction : o.expansion;
    return length * ratio * ratio + coefficient * std::fabs(hvd - hvu);
}

[[noreturn]] void NoDepth(const Section& s, const Section& named) {
    const std::string where = named.number > 0 ? "La sección " + std::to_string(named.number)
                                               : "El tramo en la abscisa " + std::to_string(s.x);
    raise(
        FaultCode::StandardStepNoDepth,
        where + " no lleva el caudal a ninguna profundidad razonable (revise su geometría y su rugosidad).");
}

}  // namespace

/* Subcritical step upstream.
   Input:  up, down: consecutive sections; y_down, the known depth at down; o, the loss coefficients.
   Output: the depth at up, above its critical depth, that balances the energy; nothing when even the
           critical depth at up needs more energy than down and the losses leave (no subcritical
           solution). A discharge no depth carries raises a Fault naming the section.
   Purpose: one step of the subcritical pass. */
std::optional<double> StepUpstream(const Section& up, const Section& down, double y_down, const Options& o,
                                   const Section& named) {
    const Props pd = Evaluate(down, y_down);
    const double head = down.z_bed + y_down + VelocityHead(down, pd);
    auto residual = [&](double y) {
        const Props pu = Evaluate(up, y);
        return up.z_bed + y + VelocityHead(up, pu) - head - Losses(up, pu, down, pd, o);
    };
    // From the nearer of the known depth and critical depth: the eddy losses can make the residual
    // turn near critical depth, and the root sought is the one the flow reaches from the known side.
    double lo = std::max(y_down, up.yc), flo = residual(lo);
    if (flo > 0) {
        if (lo == up.yc) return std::nullopt;
        const double fyc = residual(up.yc);
        if (fyc > 0) return std::nullopt;
        return FindRoot(residual, up.yc, lo, fyc, flo, kTolerance);
    }
    double step = std::max(0.1, 0.1 * up.top());
    double hi = lo + step, fhi = residual(hi);
    while (fhi < 0) {
        if (hi > up.top() + kDepthLimit || !std::isfinite(fhi)) NoDepth(up, named);
        step *= 2;
        hi = lo + step;
        fhi = residual(hi);
    }
    return FindRoot(residual, lo, hi, flo, fhi, kTolerance);
}

/* Supercritical step downstream.
   Input:  up, down: consecutive sections; y_up, the known depth at up; o, the loss coefficients.
   Output: the depth at down, below its critical depth, that balances the energy; nothing when the
           energy at up cannot reach down even at critical depth.
   Purpose: one step of the supercritical pass. */
std::optional<double> StepDownstream(const Section& up, const Section& down, double y_up, const Options& o) {
    const Props pu = Evaluate(up, y_up);
    const double head = up.z_bed + y_up + VelocityHead(up, pu);
    auto residual = [&](double y) {
        const Props pd = Evaluate(down, y);
        return down.z_bed + y + VelocityHead(down, pd) + Losses(up, pu, down, pd, o) - head;
    };
    // From the nearer of the known depth and critical depth, as upstream.
    double hi = std::min(y_up, down.yc), fhi = residual(hi);
    double lo = 0, flo = 0;
    if (fhi > 0) {
        if (hi == down.yc) return std::nullopt;
        lo = hi;
        flo = fhi;
        hi = down.yc;
        fhi = residual(hi);
        if (fhi > 0) return std::nullopt;
        return FindRoot(residual, lo, hi, flo, fhi, kTolerance);
    }
    lo = hi / 2;
    flo = residual(lo);
    for (int i = 0; flo < 0; ++i) {
        if (i > 60) return std::nullopt;
        lo /= 2;
        flo = residual(lo);
    }
    return FindRoot(residual, lo, hi, flo, fhi, kTolerance);
}

}  // namespace cauce::standard_step
