#include "cli/standard_output.hpp"

#include <cmath>
#include <cstdio>

#include "cli/args.hpp"
#include "cli/text_table.hpp"
#include "screens/standard_reach.hpp"

namespace cauce::cli {

using namespace reach;

namespace {

using StandardSectionResult = standard_step::SectionResult;

std::string Fixed(double v, int decimals) {
    if (std::fabs(v) < 0.5 * std::pow(10.0, -decimals)) v = 0;  // no "-0.00"
    char buf[48];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    return buf;
}

double Rounded(double v, int decimals) {
    const double scale = std::pow(10.0, decimals);
    return std::round(v * scale) / scale;
}

const ProfileRow* LegacyRow(const ReachResult& r, int number) {
    for (const auto& p : r.profile)
        if (p.section == number) return &p;
    return nullptr;
}

// Standard-step water level minus the screen's, when the screen shows one for the section.
std::optional<double> Difference(const ReachResult& r, const StandardSectionResult& s) {
    const ProfileRow* row = LegacyRow(r, s.number);
    if (!row) return std::nullopt;
    const auto zw = ParseNumber(row->zw);
    if (!zw) return std::nullopt;
    return s.z_water - *zw;
}

const StandardSectionResult* StandardSection(const ReachResult& r, int number) {
    if (!r.standard) return nullptr;
    for (const auto& s : r.standard->sections)
        if (s.number == number) return &s;
    return nullptr;
}

bool HasScour(const ReachResult& r) {
    for (const auto& s : r.standard->sections)
        if (s.scour) return true;
    return false;
}

}  // namespace

void PrintStandardText(std::ostream& out, const ReachResult& r, bool with_legacy) {
    if (!r.standard) return;
    const auto& st = *r.standard;
    if (!st.Ok()) {
        out << "\nPerfil por paso estándar: " << st.error << "\n";
    } else {
        out << "\nPerfil por paso estándar (régimen mixto)\n";
        std::vector<std::string> head = screens::StandardHeads();
        const bool scour = HasScour(r);
        if (scour) head.push_back("Ysoc m");
        if (with_legacy) head.push_back("Dif. legado m");
        TextTable t(head);
        for (const auto& s : st.sections) {
            std::vector<std::string> cells = screens::StandardCells(s, Fixed);
            if (scour) cells.push_back(s.scour ? Fixed(*s.scour, 2) : "");
            if (with_legacy) {
                const auto d = Difference(r, s);
                cells.push_back(d ? Fixed(*d, 2) : "");
            }
            t.Row(cells);
        }
        t.Print(out);
        if (!st.jump) out << "Sin resalto hidráulico\n";
        for (const auto& n : st.notes) out << "Nota: " << n << "\n";
    }
    for (const auto& w : r.legacy_warnings) out << "Aviso (perfil de la pantalla): " << w << "\n";
}

void AppendStandardCsv(std::vector<std::string>& f, const ReachResult& r, int number) {
    const StandardSectionResult* s = StandardSection(r, number);
    if (!s) {
        f.insert(f.end(), 9, "");
        return;
    }
    const auto d = Difference(r, *s);
    f.insert(f.end(), {Fixed(s->y, 4), Fixed(s->z_water, 4), Fixed(s->z_energy, 4), Fixed(s->v, 4),
                       Fixed(s->froude, 4), Fixed(s->sf, 8), standard_step::RegimeName(s->regime),
                       Fixed(s->yc, 4), d ? Fixed(*d, 4) : ""});
}

void AddStandardJson(nlohmann::ordered_json& profile, nlohmann::ordered_json& reach, const ReachResult& r) {
    if (!r.standard) return;
    const auto& st = *r.standard;
    for (const auto& s : st.sections) {
        nlohmann::ordered_json e{{"y", Rounded(s.y, 4)},
                                 {"z_agua", Rounded(s.z_water, 4)},
                                 {"z_energia", Rounded(s.z_energy, 4)},
                                 {"v", Rounded(s.v, 4)},
                                 {"froude", Rounded(s.froude, 4)},
                                 {"sf", Rounded(s.sf, 8)},
                                 {"regimen", standard_step::RegimeName(s.regime)},
                                 {"yc", Rounded(s.yc, 4)}};
        if (s.scour) e["ysoc"] = Rounded(*s.scour, 4);
        const auto d = Difference(r, s);
        e["diferencia"] = d ? nlohmann::ordered_json(Rounded(*d, 4)) : nlohmann::ordered_json(nullptr);
        bool joined = false;
        for (auto& row : profile) {
            if (row["seccion"] == s.number) {
                row["estandar"] = e;
                joined = true;
            }
        }
        if (!joined)
            profile.push_back({{"seccion", s.number}, {"abscisa", Rounded(s.chainage, 4)}, {"estandar", e}});
    }
    if (st.jump)
        reach["resalto"] = {{"abscisa", Rounded(st.jump->chainage, 3)},
                            {"y1", Rounded(st.jump->y1, 4)},
                            {"y2", Rounded(st.jump->y2, 4)}};
    else
        reach["resalto"] = nullptr;
    reach["error_estandar"] = st.Ok() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(st.error);
}

void AddStandardNotes(nlohmann::ordered_json& notices, const ReachResult& r) {
    for (const auto& w : r.legacy_warnings) notices.push_back(w);
    if (r.standard)
        for (const auto& n : r.standard->notes) notices.push_back(n);
}

}  // namespace cauce::cli
