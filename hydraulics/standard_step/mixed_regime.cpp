// The standard-step profile in mixed regime: both passes, the regime at each section, the jump.
//
// The subcritical pass runs upstream from the downstream depth; where no subcritical depth balances,
// the section takes its critical depth. The supercritical pass runs downstream from the upstream
// depth (given, or critical when the flow enters steep) and restarts at critical depth wherever the
// subcritical pass found a control. At each section the pass with the greater specific force
// Q^2 / (gA) + moment governs; where the supercritical pass gives way to the subcritical one the
// hydraulic jump stands, at the chainage where the two specific forces are equal.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory_resource>
#include <optional>
#include <string>
#include <utility>

#include "hydraulics/checked_math.hpp"
#include "hydraulics/natural/state.hpp"
#include "hydraulics/scour/scour.hpp"
#include "hydraulics/standard_step/balance.hpp"

namespace cauce::standard_step {

namespace {

std::string Meters(double v) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.2f", v);
    return buf;
}

// A pass's depth at a computed section; critical marks a depth taken as critical (no balance).
struct PassDepth {
    bool set = false;
    double y = 0;
    bool critical = false;
};

struct Node {
    Node() = default;
    explicit Node(Section section) : s(std::move(section)) {}

    Section s;
    int surveyed = -1;  // index into the input's sections, -1 for an interpolated section
    int reach = 0;      // the surveyed section upstream of it (index)
    PassDepth sub, sup;
    Regime regime = Regime::Subcritical;
    double y = 0;
};

/* Checks of the reach as a whole and the computed sections.
   Input:  in, the reach; arena, where the interpolated sections' tables go.
   Output: nodes, the surveyed and interpolated sections from upstream down; "" or the message.
   Purpose: bad data stop the run before any depth, naming the section. */
std::string BuildNodes(const ReachInput& in, std::vector<Node>& nodes, std::pmr::memory_resource* arena) {
    if (in.sections.size() < 2) return "El tramo necesita al menos dos secciones.";
    const Options& o = in.options;
    if (!(o.contraction >= 0 && o.expansion >= 0 && std::isfinite(o.contraction) &&
          std::isfinite(o.expansion)))
        return "Los coeficientes de contracción y de expansión no pueden ser negativos.";
    if (!(o.max_spacing > 0)) return "La separación entre secciones calculadas debe ser mayor que 0.";
    std::vector<Section> surveyed(in.sections.size());
    for (std::size_t i = 0; i < in.sections.size(); ++i) {
        const std::string why = BuildSection(in.sections[i], surveyed[i]);
        if (!why.empty()) return why;
        if (i > 0 && !(surveyed[i].x > surveyed[i - 1].x))
            return "La sección " + std::to_string(in.sections[i].number) + " (abscisa " +
                   Meters(surveyed[i].x) + " m) no está aguas abajo de la sección " +
                   std::to_string(in.sections[i - 1].number) + " (abscisa " + Meters(surveyed[i - 1].x) +
                   " m): la longitud del tramo es cero o negativa; las abscisas deben crecer aguas abajo.";
    }
    const Section& last = surveyed.back();
    const double yd = in.downstream_depth;
    if (!(yd > 0) || !(yd < last.top() + kDepthLimit))
        return "El tirante en la última sección (" + std::to_string(in.sections.back().number) +
               ") debe ser mayor que 0 y estar dentro de la sección.";
    if (in.upstream_depth &&
        (!(*in.upstream_depth > 0) || !(*in.upstream_depth < surveyed[0].top() + kDepthLimit)))
        return "El tirante aguas arriba, en la sección " + std::to_string(in.sections.front().number) +
               ", debe ser mayor que 0 y estar dentro de la sección.";

    std::size_t count = surveyed.size();
    for (std::size_t i = 1; i < surveyed.size(); ++i)
        count += static_cast<std::size_t>(std::ceil((surveyed[i].x - surveyed[i - 1].x) / o.max_spacing));
    nodes.reserve(count);
    for (std::size_t i = 0; i < surveyed.size(); ++i) {
        if (i > 0) {
            const double length = surveyed[i].x - surveyed[i - 1].x;
            const int parts = static_cast<int>(std::ceil(length / o.max_spacing - 1e-9));
            for (int j = 1; j < parts; ++j) {
                // Built in place: assigning would copy the tables out of the arena.
                Node n(Interpolate(surveyed[i - 1], surveyed[i], static_cast<double>(j) / parts, arena));
                n.reach = static_cast<int>(i) - 1;
                nodes.push_back(std::move(n));
            }
        }
        Node n;
        n.s = surveyed[i];
        n.surveyed = static_cast<int>(i);
        n.reach = static_cast<int>(i);
        nodes.push_back(std::move(n));
    }
    // Surveyed sections first, so that a discharge no depth carries is told by its section.
    for (auto& n : nodes)
        if (n.surveyed >= 0) n.s.yc = CriticalDepth(n.s);
    for (auto& n : nodes)
        if (n.surveyed < 0) n.s.yc = CriticalDepth(n.s);
    return "";
}

// The surveyed section that names the computed section n in messages: its own, else the one below.
const Section& Named(const std::vector<Node>& nodes, std::size_t n) {
    while (nodes[n].surveyed < 0) ++n;
    return nodes[n].s;
}

/* Subcritical pass.
   Input:  nodes with their critical depths; the downstream depth.
   Output: nodes[*].sub; notes when the downstream depth is below critical.
   Purpose: the profile as the downstream control sees it. */
void SubcriticalPass(std::vector<Node>& nodes, double y_down, const Options& o,
                     std::vector<std::string>& notes) {
    Node& last = nodes.back();
    if (y_down < last.s.yc) {
        notes.push_back("El tirante en la última sección (" + Meters(y_down) +
                        " m) es menor que el crítico (" + Meters(last.s.yc) +
                        " m): la pasada subcrítica parte del crítico.");
        last.sub = {true, last.s.yc, true};
    } else {
        last.sub = {true, y_down, false};
    }
    for (std::size_t i = nodes.size() - 1; i-- > 0;) {
        const auto y = StepUpstream(nodes[i].s, nodes[i + 1].s, nodes[i + 1].sub.y, o, Named(nodes, i));
        nodes[i].sub = y ? PassDepth{true, *y, false} : PassDepth{true, nodes[i].s.yc, true};
    }
}

/* Supercritical pass.
   Input:  nodes after the subcritical pass; the upstream depth if given.
   Output: nodes[*].sup from where the pass starts; notes about the upstream depth.
   Purpose: the profile as the upstream and critical controls see it. */
void SupercriticalPass(std::vector<Node>& nodes, const std::optional<double>& y_up, const Options& o,
                       std::vector<std::string>& notes) {
    Node& first = nodes.front();
    if (y_up) {
        if (*y_up <= first.s.yc) {
            first.sup = {true, *y_up, false};
        } else {
            notes.push_back("El tirante aguas arriba dado (" + Meters(*y_up) +
                            " m) no es supercrítico (Yc = " + Meters(first.s.yc) +
                            " m): la pasada supercrítica no parte de la primera sección.");
        }
    } else {
        const double yn = NormalDepth(first.s);
        if (yn > 0 && yn < first.s.yc) first.sup = {true, first.s.yc, true};
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (i > 0 && nodes[i - 1].sup.set) {
            const auto y = StepDownstream(nodes[i - 1].s, nodes[i].s, nodes[i - 1].sup.y, o);
            nodes[i].sup = y ? PassDepth{true, *y, false} : PassDepth{true, nodes[i].s.yc, true};
        }
        // A critical control found by the subcritical pass starts the supercritical pass again.
        if ((!nodes[i].sup.set || nodes[i].sup.critical) && nodes[i].sub.critical)
            nodes[i].sup = {true, nodes[i].s.yc, true};
    }
}

double Force(const Node& n, double y) {
    return SpecificForce(n.s, y);
}

// The pass that governs a section: the greater specific force; equal forces stay subcritical.
void ChooseRegime(Node& n) {
    const bool sup_wins = n.sup.set && (n.sub.critical || Force(n, n.sup.y) > Force(n, n.sub.y));
    const PassDepth& d = sup_wins ? n.sup : n.sub;
    n.y = d.y;
    n.regime = d.critical ? Regime::Critical : (sup_wins ? Regime::Supercritical : Regime::Subcritical);
}

/* The jump between a supercritical section and the subcritical one below it.
   Input:  a, b consecutive computed sections, a governed by the supercritical pass, b by the
           subcritical one, both with a supercritical depth.
   Output: the chainage where the difference of the specific forces of the two passes, taken linear
           between a and b, is zero, and the sequent depths there.
   Purpose: the jump's place and size between computed sections. */
Jump JumpBetween(const Node& a, const Node& b) {
    const double da = Force(a, a.sup.y) - Force(a, a.sub.y);
    const double db = Force(b, b.sup.y) - Force(b, b.sub.y);
    const double f = da - db != 0 ? std::clamp(da / (da - db), 0.0, 1.0) : 0.0;
    Jump j;
    j.chainage = a.s.x + f * (b.s.x - a.s.x);
    j.y1 = a.sup.y + f * (b.sup.y - a.sup.y);
    j.y2 = a.sub.y + f * (b.sub.y - a.sub.y);
    return j;
}

SectionResult ResultAt(const Node& n, const SectionInput& in) {
    const Props p = Evaluate(n.s, n.y);
    SectionResult r;
    r.number = in.number;
    r.chainage = n.s.x;
    r.y = n.y;
    r.z_water = n.s.z_bed + n.y;
    r.z_energy = r.z_water + VelocityHead(n.s, p);
    r.v = n.s.q / p.area;
    r.froude = FroudeNumber(n.s, p);
    const double ratio = n.s.q / p.conveyance;
    r.sf = ratio * ratio;
    r.yc = n.s.yc;
    r.regime = n.regime;
    if (in.grain_size > 0) {
        // The scour relation of the scour screen, at this depth and friction slope.
        try {
            thread_local natural::State st;
            st.n = in.n;
            const scour::Bed bed{in.grain_size, scour::GrainExponent(in.grain_size)};
            scour::Socavacion(st, 1, r.y, r.sf, bed);
            r.scour = st.Ysoc(1);
        } catch (const Fault&) {
            // No scour value where the relation has none (a still section).
        }
    }
    return r;
}

}  // namespace

const char* RegimeName(Regime r) {
    switch (r) {
        case Regime::Subcritical:
            return "subcrítico";
        case Regime::Supercritical:
            return "supercrítico";
        case Regime::Critical:
            return "crítico";
    }
    return "";
}

/* The profile of a reach.
   Input:  in, the surveyed sections from upstream down, the boundary depths and the options.
   Output: per surveyed section depth, levels, velocity, Froude number, friction slope, regime and
           critical depth; the water and energy lines at every computed section; the jump; notes.
           On bad data only the error, naming the section.
   Purpose: the modern profile shown beside the screens' own. */
Result Solve(const ReachInput& in) {
    Result res;
    std::pmr::monotonic_buffer_resource arena(1 << 16);  // outlives the nodes
    std::vector<Node> nodes;
    try {
        res.error = BuildNodes(in, nodes, &arena);
        if (!res.error.empty()) return res;
        SubcriticalPass(nodes, in.downstream_depth, in.options, res.notes);
        SupercriticalPass(nodes, in.upstream_depth, in.options, res.notes);
        for (auto& n : nodes) ChooseRegime(n);

        for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
            if (nodes[i].regime == Regime::Supercritical && nodes[i + 1].regime == Regime::Subcritical) {
                const Jump j = JumpBetween(nodes[i], nodes[i + 1]);
                if (!res.jump) res.jump = j;
                res.notes.push_back("Resalto hidráulico entre las secciones " +
                                    std::to_string(in.sections[nodes[i].reach].number) + " y " +
                                    std::to_string(in.sections[nodes[i].reach + 1].number) +
                                    ", en la abscisa " + Meters(j.chainage) + " m: de " + Meters(j.y1) +
                                    " m a " + Meters(j.y2) + " m.");
            }
        }
        // Where neither pass balances: once per surveyed section, once per reach between them.
        int noted_reach = -1;
        for (const auto& n : nodes) {
            if (n.regime != Regime::Critical) continue;
            if (n.surveyed >= 0) {
                res.notes.push_back("Sección " + std::to_string(in.sections[n.surveyed].number) +
                                    ": ninguna de las dos pasadas equilibra la energía; se toma el tirante "
                                    "crítico (" +
                                    Meters(n.s.yc) + " m).");
            } else if (n.reach != noted_reach) {
                noted_reach = n.reach;
                res.notes.push_back(
                    "Entre las secciones " + std::to_string(in.sections[n.reach].number) + " y " +
                    std::to_string(in.sections[n.reach + 1].number) +
                    " hay tramos donde ninguna pasada equilibra la energía: se toma el tirante "
                    "crítico.");
            }
        }
        res.line.reserve(nodes.size());
        for (const auto& n : nodes) {
            const Props p = Evaluate(n.s, n.y);
            res.line.push_back({n.s.x, n.s.z_bed, n.s.z_bed + n.y, n.s.z_bed + n.y + VelocityHead(n.s, p)});
            if (n.surveyed < 0) continue;
            const SectionInput& sin = in.sections[n.surveyed];
            res.sections.push_back(ResultAt(n, sin));
            if (n.y > n.s.top() && !(sin.flood_width > n.s.bank_width()))
                res.notes.push_back(
                    "La sección " + std::to_string(sin.number) +
                    " se desborda y no tiene zona inundable (B no es mayor que Tn): se calculó "
                    "con el cauce entre paredes a 45 grados.");
        }
    } catch (const Fault& f) {
        res = Result{};
        res.error = f.what();
    }
    return res;
}

}  // namespace cauce::standard_step
