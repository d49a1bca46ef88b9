#include "app/report/report_standard.hpp"

#include <cmath>
#include <string>
#include <vector>

namespace cauce::app {

namespace {

QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

QString Fixed(double v, int decimals) {
    if (std::fabs(v) < 0.5 * std::pow(10.0, -decimals)) v = 0;  // no "-0.00"
    return QString::number(v, 'f', decimals);
}

}  // namespace

void StandardStepSection(ReportPages& pages, const reach::ReachResult& r, const StandardProfile& standard,
                         int number) {
    const standard_step::Result& st = standard.result;
    std::vector<std::vector<QString>> rows;
    for (const auto& s : st.sections) {
        // The difference from the level the screen shows, where it shows one.
        QString difference;
        for (const auto& p : r.profile) {
            bool number = false;
            const double zw = Q(p.zw).trimmed().toDouble(&number);
            if (p.section == s.number && number && std::isfinite(zw)) difference = Fixed(s.z_water - zw, 2);
        }
        rows.push_back({QString::number(s.number), Fixed(s.chainage, 2), Fixed(s.y, 3), Fixed(s.z_water, 3),
                        Fixed(s.z_energy, 3), Fixed(s.v, 2), Fixed(s.froude, 2),
                        Q(standard_step::RegimeName(s.regime)), Fixed(s.yc, 3), difference});
    }
    pages.Heading(QStringLiteral("%1. Perfil por paso estándar y avisos").arg(number),
                  pages.TableStart(rows.size()) + 24 * pages.Mm());
    pages.Text(
        QStringLiteral("Comprobación moderna junto al perfil de la pantalla, que no cambia: paso estándar "
                       "con la geometría propia de cada sección y secciones interpoladas entre ellas, "
                       "pérdidas por fricción (conductividad media), contracción y expansión, régimen "
                       "mixto (pasada subcrítica desde aguas abajo, supercrítica desde aguas arriba) y "
                       "resalto hidráulico por fuerza específica. Diferencia: cota del paso estándar "
                       "menos la de la pantalla."),
        8.5);
    pages.Skip(2);
    std::vector<QString> bullets;
    if (st.Ok()) {
        pages.Table({QStringLiteral("Sección"), QStringLiteral("Abscisa m"), QStringLiteral("Y m"),
                     QStringLiteral("Z agua m"), QStringLiteral("Z energía m"), QStringLiteral("V m/s"),
                     QStringLiteral("Froude"), QStringLiteral("Régimen"), QStringLiteral("Yc m"),
                     QStringLiteral("Dif. m")},
                    rows, {1, 1.3, 0.9, 1.2, 1.4, 0.9, 0.9, 1.5, 0.9, 1});
        if (!st.jump) bullets.push_back(QStringLiteral("Sin resalto hidráulico."));
        for (const auto& n : st.notes) bullets.push_back(Q(n));
    } else {
        bullets.push_back(QStringLiteral("El perfil por paso estándar no se calculó: ") + Q(st.error));
    }
    for (const auto& w : standard.warnings)
        bullets.push_back(QStringLiteral("Aviso sobre el perfil de la pantalla: ") + Q(w));
    for (const auto& b : bullets) pages.Text(QStringLiteral("• ") + b, 8.5);
}

}  // namespace cauce::app
