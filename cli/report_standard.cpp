#include "cli/report_standard.hpp"

#include <cmath>
#include <cstdio>

#include "cli/args.hpp"

namespace cauce::cli {

using namespace reach;

namespace {

std::string Fixed(double v, int decimals) {
    if (std::fabs(v) < 0.5 * std::pow(10.0, -decimals)) v = 0;  // no "-0.00"
    char buf[48];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    return buf;
}

}  // namespace

std::optional<ReportPart> StandardReportPart(const ReachResult& r) {
    if (!r.standard) return std::nullopt;
    const auto& st = *r.standard;
    ReportPart part;
    part.heading = "Perfil por paso estándar y avisos";
    part.intro =
        "Comprobación moderna junto al perfil de la pantalla, que no cambia: paso estándar con la geometría "
        "propia de cada sección y secciones interpoladas entre ellas, pérdidas por fricción (conductividad "
        "media), contracción y expansión, régimen mixto (pasada subcrítica desde aguas abajo, supercrítica "
        "desde aguas arriba) y resalto hidráulico por fuerza específica. Diferencia: cota del paso estándar "
        "menos la de la pantalla.";
    if (st.Ok()) {
        part.head = {"Sección", "Abscisa m", "Y m",     "Z agua m", "Z energía m",
                     "V m/s",   "Froude",    "Régimen", "Yc m",     "Dif. m"};
        part.weights = {1, 1.3, 0.9, 1.2, 1.4, 0.9, 0.9, 1.5, 0.9, 1};
        for (const auto& s : st.sections) {
            std::string difference;
            for (const auto& p : r.profile)
                if (p.section == s.number)
                    if (const auto zw = ParseNumber(p.zw)) difference = Fixed(s.z_water - *zw, 2);
            part.rows.push_back({std::to_string(s.number), Fixed(s.chainage, 2), Fixed(s.y, 3),
                                 Fixed(s.z_water, 3), Fixed(s.z_energy, 3), Fixed(s.v, 2), Fixed(s.froude, 2),
                                 standard_step::RegimeName(s.regime), Fixed(s.yc, 3), difference});
        }
        if (!st.jump) part.bullets.push_back("Sin resalto hidráulico.");
        for (const auto& n : st.notes) part.bullets.push_back(n);
    } else {
        part.bullets.push_back("El perfil por paso estándar no se calculó: " + st.error);
    }
    for (const auto& w : r.legacy_warnings)
        part.bullets.push_back("Aviso sobre el perfil de la pantalla: " + w);
    return part;
}

}  // namespace cauce::cli
