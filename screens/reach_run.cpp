#include "screens/reach_run.hpp"

#include <algorithm>
#include <cctype>

#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"
#include "screens/form3.hpp"
#include "screens/profile_screen.hpp"

namespace cauce::screens {

namespace {

std::string Trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return std::string(s);
}

// A box's number as the screen reads it; a text that overflows reads as nothing usable.
bool WholeNumber(const std::string& text, int& out) {
    try {
        out = forms::CInt(forms::Val(text));
        return true;
    } catch (const Fault&) {
        return false;
    }
}

}  // namespace

const ReachControls* ReachControlsOf(const forms::Screen& screen) {
    if (screen.Name() == "Form2" || screen.Name() == "Form4") return &profile::kReach;
    if (screen.Name() == "Form3") return &form3::kReach;
    return nullptr;
}

ReachPlan PlanReach(const forms::RecordSource& src) {
    ReachPlan plan;
    // The record that hands over to "Perfiles" (section N, else the first numbered above N), and
    // those left out because of it: record, section number, N.
    struct Numbered {
        int record = 0, i = 0, n = 0;
    };
    Numbered last;
    std::vector<Numbered> late;
    for (int r = 1; r <= src.RecordCount(); ++r) {
        const std::string secid = src.HasColumn("SecId") ? src.Get(r, "SecId") : "";
        const std::string count = src.HasColumn("No# secciones") ? src.Get(r, "No# secciones") : "";
        int i = 0, n = 0;
        if (!WholeNumber(secid, i) || !WholeNumber(count, n)) {
            plan.notices.push_back("El registro " + std::to_string(r) +
                                   " no tiene un número de sección válido: no se calcula.");
            continue;
        }
        if (Trim(secid).empty() && Trim(count).empty()) continue;  // an empty row
        if (n < 1) {
            plan.notices.push_back("El registro " + std::to_string(r) + " (sección " + secid +
                                   ") no dice el número de secciones: no se calcula.");
            continue;
        }
        const Numbered here{r, i, n};
        if (i < n) {
            plan.records.push_back(r);
        } else if (last.record == 0 || (i == n && last.i != last.n)) {
            if (last.record != 0) late.push_back(last);
            last = here;
        } else {
            late.push_back(here);
        }
    }
    std::sort(late.begin(), late.end(),
              [](const Numbered& a, const Numbered& b) { return a.record < b.record; });
    for (const auto& l : late)
        plan.notices.push_back("El registro " + std::to_string(l.record) + " (sección " +
                               std::to_string(l.i) + ") no se calcula: el tramo termina en la sección " +
                               std::to_string(last.i) + ", que activa \"Perfiles\".");
    if (last.record == 0) {
        plan.error =
            "Ningún registro tiene el número de sección igual al número de secciones: \"Perfiles\" no se "
            "activa.";
        return plan;
    }
    plan.records.push_back(last.record);
    return plan;
}

void ComputeSections(forms::Screen& screen, const ReachPlan& plan, const SectionDone& done) {
    if (!ReachControlsOf(screen)) return;
    for (const int record : plan.records) {
        screen.MoveTo(record);
        const auto fault = screen.Click(section::button::Section);
        if (done) done(record, fault);
    }
}

std::optional<Fault> RunProfile(forms::Screen& screen, const std::string& depth) {
    const ReachControls* controls = ReachControlsOf(screen);
    if (!controls) return std::nullopt;
    screen.Type(controls->depth, depth);
    return screen.Click(section::button::Profiles);
}

}  // namespace cauce::screens
