#include "reach/run.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "forms/format.hpp"
#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"
#include "hydraulics/constants.hpp"
#include "hydraulics/natural/state.hpp"
#include "hydraulics/profiles/profile.hpp"
#include "hydraulics/standard_step/warnings.hpp"
#include "screens/form3.hpp"
#include "screens/natural_screen.hpp"
#include "screens/profile_screen.hpp"
#include "screens/reach_run.hpp"
#include "screens/registry.hpp"
#include "screens/standard_reach.hpp"

#ifdef CAUCE_WITH_WORKBOOK
#include "workbook/data_folder.hpp"
#include "workbook/workbook.hpp"
#endif

namespace cauce::reach {

namespace {

namespace section = screens::section;

// The controls of each profile screen that the run types into and reads from.
const screens::ReachControls& BoxesOf(const ReachKind& kind) {
    return kind.scour ? screens::form3::kReach : screens::profile::kReach;
}

std::string Trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    std::string out(s);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

// The message the section's level table gave when "(Y?)" built it.
std::string TableMessage(const screens::NaturalScreen& screen) {
    switch (screen.TableVerdict()) {
        case natural::TableError::Cotas:
            return natural::kCotasError;
        case natural::TableError::Anchos:
            return natural::kAnchosError;
        case natural::TableError::None:
            break;
    }
    return "";
}

// Depth, Froude number, specific energy and friction slope of section j at its profile depth, on a
// copy of the state so that the screen's own band index and working depth are left as they were.
void AddFlowValues(const natural::State& shown, int j, ProfileRow& row) {
    try {
        natural::State st = shown;
        st.Y = st.Ysec(j);
        if (!(st.Y > 0)) return;
        const profiles::SectionValues v = profiles::EvaluateSection(st, j);
        const double depth = Div(st.A(j), st.Tw(j));
        const double froude = Div(v.V, Sqr(kGravity * depth));
        row.y = forms::Format(st.Y, "0.000");
        row.froude = forms::Format(froude, "0.00");
        row.energy = forms::Format(v.E, "0.000");
        row.sf = forms::FormatFixed(v.Sf, 6);
    } catch (const Fault&) {
        row.y = row.froude = row.energy = row.sf = "";
    }
}

void Append(std::string& to, const std::string& what) {
    if (what.empty()) return;
    if (!to.empty()) to += "; ";
    to += what;
}

SectionInput ReadInput(const forms::Screen& s, const ReachKind& kind) {
    const screens::ReachControls& b = BoxesOf(kind);
    SectionInput in;
    in.secid = s.Get(section::box::SectionNumber).text;
    in.sections = s.Get(section::box::SectionCount).text;
    for (int j = 1; j <= 15; ++j) {
        const std::string& z = s.Get(section::LevelElevation(j)).text;
        if (forms::Val(z) == 0) break;  // the screen's level count ends here too
        in.levels.emplace_back(z, s.Get(section::LevelWidth(j)).text);
    }
    in.roughness = s.Get(b.section.n).text;
    in.slope = s.Get(b.section.s0).text;
    in.discharge = s.Get(b.section.q).text;
    in.flood_width = s.Get(b.section.b).text;
    in.flood_roughness = s.Get(b.section.nz).text;
    if (kind.scour) {
        in.chainage = s.Get(screens::form3::box::Chainage).text;
        in.grain_size = s.Get(screens::form3::box::GrainSize).text;
    }
    return in;
}

// What "(Y?)" on the record shown gave.
SectionResult ReadSection(const forms::Screen& s, const ReachKind& kind, int record,
                          const std::optional<Fault>& fault) {
    const screens::ReachControls& b = BoxesOf(kind);
    const auto& model = dynamic_cast<const screens::NaturalScreen&>(s);
    SectionResult r;
    r.record = record;
    try {
        r.input = ReadInput(s, kind);
    } catch (const Fault&) {
        // A level box that overflows: "(Y?)" below reports the fault.
    }
    const natural::State& st = model.State();
    r.section = st.i;
    const std::string message = s.Get(section::label::Message).text;
    if (fault) {
        // A faulty section table is usually why the click faulted: it is told too.
        r.notice = TableMessage(model);
        r.error = fault->what();
        r.faulty = true;
        return r;
    }
    // Results are written when the section stays in its banks or the flood zone takes the rest;
    // a flood zone narrower than the channel, or Form3's missing roughness, leaves them as they were.
    try {
        const bool no_discharge = st.Q(st.i) == 0;
        r.computed = (message.empty() || message == natural::kDesbordamiento) && !no_discharge;
        r.overflow = message == natural::kDesbordamiento || message == natural::kAnchoMenor;
        if (r.computed || r.overflow || (message.empty() && no_discharge)) {
            const std::string table = TableMessage(model);
            Append(r.notice, table);
            r.faulty = !table.empty();
            r.qlleno = forms::Format(st.Qlleno(st.i), "0.00");
        }
        if (message != natural::kDesbordamiento) {
            Append(r.notice, message);
            r.faulty = r.faulty || !message.empty();
        }
        if (message.empty() && no_discharge) Append(r.notice, "Sin caudal: la sección no se calcula");
    } catch (const Fault& f) {
        r.error = f.what();
        r.faulty = true;
        return r;
    }
    if (!r.computed) return r;
    r.yn = s.Get(b.section.yn).text;
    r.yc = s.Get(b.section.yc).text;
    return r;
}

}  // namespace

const std::vector<ReachKind>& ReachKinds() {
    static const std::vector<ReachKind> kinds{
        {"Form2", "Persecc", "perfiles en cauces naturales", "Y inicial", "--y-inicial", false},
        {"Form4", "Percanal", "perfiles en canales prismáticos", "Y inicial", "--y-inicial", false},
        {"Form3", "secciones ", "perfiles y socavación en cauces naturales", "Y final", "--y-final", true},
    };
    return kinds;
}

const ReachKind* KindOfSheet(std::string_view sheet) {
    const std::string want = Trim(sheet);
    for (const auto& k : ReachKinds())
        if (Trim(k.sheet) == want) return &k;
    return nullptr;
}

forms::ControlName DepthBox(const ReachKind& kind) {
    return BoxesOf(kind).depth;
}

std::string KindList() {
    return "Persecc (Form2), Percanal (Form4) o \"secciones \" (Form3)";
}

std::string DefaultSheet(const std::string& path, std::string& why) {
#ifdef CAUCE_WITH_WORKBOOK
    try {
        const auto book = workbook::Workbook::Open(workbook::ResolveWorkbookPath(path));
        const auto names = book->SheetNames();
        for (const auto& k : ReachKinds())
            if (std::find(names.begin(), names.end(), k.sheet) != names.end()) return k.sheet;
        std::string list;
        for (const auto& n : names) list += (list.empty() ? "\"" : ", \"") + n + "\"";
        why = "El libro \"" + path + "\" no tiene ninguna hoja de perfiles (" + KindList() +
              "); sus hojas son " + (list.empty() ? "ninguna" : list) + ".";
    } catch (const Fault& f) {
        why = f.what();
    }
#else
    (void)path;
    why = "Esta versión se compiló sin libros de Excel.";
#endif
    return "";
}

// The standard-step profile of the reach the screen holds, and the warnings about its own profile.
void AddStandard(const forms::Screen& screen, const ReachOptions& reach_options,
                 const standard_step::Options& options, std::optional<double> y_upstream, ReachResult& res) {
    res.legacy_warnings = standard_step::LegacyWarnings(screens::LegacyRunOf(screen));
    const ReachKind* kind = KindOfSheet(screen.Sheet());
    const std::string& depth = kind && kind->scour ? reach_options.y_final : reach_options.y_initial;
    screens::StandardReach reach = screens::StandardReachOf(screen, forms::Val(depth));
    if (!reach.error.empty()) {
        standard_step::Result failed;
        failed.error = reach.error;
        res.standard = failed;
        return;
    }
    reach.input.options = options;
    reach.input.upstream_depth = y_upstream;
    res.standard = standard_step::Solve(reach.input);
}

ReachResult RunReach(const std::string& path, const ReachOptions& options, const SectionObserver& observer) {
    ReachResult res;
    res.path = path;
    std::string sheet = options.sheet;
    if (sheet.empty()) {
        sheet = DefaultSheet(path, res.error);
        if (sheet.empty()) return res;
    }
    res.kind = KindOfSheet(sheet);
    if (!res.kind) {
        res.error =
            "La hoja \"" + sheet + "\" no es de ninguna pantalla de perfiles: use " + KindList() + ".";
        return res;
    }
    const ReachKind& kind = *res.kind;
    const screens::ReachControls& b = BoxesOf(kind);
    res.depth = kind.scour ? options.y_final : options.y_initial;
    if (res.depth.empty()) {
        res.error = std::string("La hoja \"") + kind.sheet + "\" (" + kind.form + ") necesita " +
                    kind.option + ": el tirante en la última sección.";
        return res;
    }

    auto screen = screens::MakeScreen(kind.form);
    try {
        screen->OpenWorkbook(path);
        res.file = screen->WorkbookPath();
        if (!screen->Notice().empty()) res.notices.push_back(screen->Notice());
        const screens::ReachPlan plan = screens::PlanReach(*screen->Source());
        for (const auto& n : plan.notices) res.notices.push_back(n);
        if (!plan.error.empty()) {
            res.error = plan.error;
            return res;
        }
        screens::ComputeSections(*screen, plan, [&](int record, const std::optional<Fault>& fault) {
            res.sections.push_back(ReadSection(*screen, kind, record, fault));
            if (observer) observer(*screen, &res.sections.back());
        });
    } catch (const Fault& f) {
        res.error = f.what();
        return res;
    }
    const auto& st = dynamic_cast<const screens::NaturalScreen&>(*screen).State();
    res.n_sections = st.N;
    if (screen->Get(section::button::Profiles).text != "Perfiles") {
        res.error = "La última sección no se pudo calcular: \"Perfiles\" no se activó.";
        return res;
    }

    const std::string before = screen->Get(section::label::Message).text;
    if (const auto fault = screens::RunProfile(*screen, res.depth)) {
        res.error = "El cálculo del perfil se detuvo: " + std::string(fault->what());
        return res;
    }
    // "Incluya Y inicial" beside the depth box, or a message of the run (Form3: no flow area) that
    // stopped it before the table.
    if (dynamic_cast<const screens::NaturalScreen&>(*screen).DepthAsked()) {
        res.error = screen->Get(b.depth_label).text + " (" + kind.option + ")";
        return res;
    }
    if (screen->Get(section::label::Message).text != before) {
        res.error = screen->Get(section::label::Message).text;
        return res;
    }

    // The table as the screen shows it, rows 1..N (at most the fifteen it has).
    res.scour = kind.scour && forms::Val(screen->Get(screens::form3::box::GrainSize).text) > 0;
    const int rows = std::min(std::max(st.N, 0), 15);
    try {
        for (int j = 1; j <= rows; ++j) {
            ProfileRow row;
            row.section = j;
            row.chainage = forms::Format(st.X(j), "0.00");
            row.type = b.type ? screen->Get(b.type(j)).text : st.Tipo(j);
            row.zw = screen->Get(b.water_level(j)).text;
            row.v = screen->Get(b.velocity(j)).text;
            if (res.scour) row.ysoc = screen->Get(b.scour(j)).text;
            AddFlowValues(st, j, row);
            res.profile.push_back(row);
        }
    } catch (const Fault& f) {
        res.error = f.what();
        return res;
    }
    if (observer) observer(*screen, nullptr);

    if (options.save) {
        try {
            res.save_note = screen->SavePending();
            res.saved = true;
            res.file = screen->WorkbookPath();
        } catch (const Fault& f) {
            res.error = "La tabla no se guardó: " + std::string(f.what());
        }
    }
    return res;
}

}  // namespace cauce::reach
