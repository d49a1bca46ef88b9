// Warnings about the screens' direct-step profile, each a case where its method is rough.
#include "hydraulics/standard_step/warnings.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace cauce::standard_step {

namespace {

std::string Fixed(double v, int decimals) {
    char buf[48];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    return buf;
}

std::string Sec(int s) {
    return "Sección " + std::to_string(s);
}

// Froude number of section s filled to its top level with its whole discharge.
double BankFullFroude(const natural::State& st, int s) {
    const int top = st.npts(s);
    const double a = st.Acum(s, top), t = st.T(s, top);
    if (!(a > 0 && t > 0)) return 0;
    return (st.Q(s) / a) / std::sqrt(kGravity * a / t);
}

}  // namespace

/* Warnings beside the legacy profile.
   Input:  run, the screen's state after the profile and how the screen reads its chainages.
   Output: Spanish warnings, in section order:
           - a section in its banks whose flow is supercritical even at bank-full (its Yc is then a
             level's depth, not a critical depth);
           - a section the march evaluated above its top level (with the band of an earlier call);
           - rows 8 and 9 reading "Abscisa9" (reach 9 of length 0, reach 8 too long);
           - an S2 reach whose upstream depth was set to the critical depth without stepping;
           - an M2 reach measured with the bed slope of element 0.
   Purpose: tell the engineer where the screen's numbers, kept as they are, are rough. */
std::vector<std::string> LegacyWarnings(const LegacyRun& run) {
    std::vector<std::string> out;
    if (!run.state) return out;
    const natural::State& st = *run.state;
    const int last = std::min(st.N, 50);
    if (run.fifteen_boxes && last >= 8 && run.abscisa8 != run.abscisa9)
        out.push_back("Las filas 8 y 9 de la tabla muestran ambas \"Abscisa9\" (" + Fixed(run.abscisa9, 2) +
                      " m): el perfil por pasos fijos toma el tramo de la sección 8 desde la 7 hasta " +
                      Fixed(run.abscisa9, 2) + " m y el de la sección 9 con longitud 0; \"Abscisa8\" (" +
                      Fixed(run.abscisa8, 2) + " m) no se usa.");
    for (int s = 1; s <= last; ++s) {
        const int top = st.npts(s);
        if (top >= 2 && st.Q(s) <= st.Qlleno(s) && BankFullFroude(st, s) > 1)
            out.push_back(Sec(s) + ": el flujo es supercrítico aun a banca llena (Froude " +
                          Fixed(BankFullFroude(st, s), 2) + "); el Yc que muestra (" + Fixed(st.Yc(s), 2) +
                          " m) es la profundidad de un nivel, no el tirante crítico.");
        const std::string& tipo = st.Tipo(s);
        if (top >= 2 && tipo != "S2" && !tipo.empty()) {
            const double deepest = std::max(st.Ysec(s), st.Ysec(s - 1));
            if (deepest > st.Ylleno(s) + 1e-9)
                out.push_back(Sec(s) +
                              ": el perfil por pasos fijos evaluó la sección por encima de su nivel más "
                              "alto (" +
                              Fixed(deepest, 2) + " m sobre " + Fixed(st.Ylleno(s), 2) +
                              " m) con la franja que quedaba de un cálculo anterior.");
        }
        if (s >= 2 && tipo == "S2")
            out.push_back(Sec(s) + " (S2): el tirante de la sección " + std::to_string(s - 1) +
                          " se fijó en el crítico de esta sección (" + Fixed(st.Yc(s), 2) +
                          " m) sin calcular el tramo.");
        if (tipo == "M2" && st.L(s) > 0 && st.S0(0) != st.S0(s))
            out.push_back(Sec(s) + " (M2): el tramo se midió con la pendiente " + Fixed(st.S0(0), 4) +
                          " (la del elemento 0) en lugar de la de la sección, " + Fixed(st.S0(s), 4) + ".");
    }
    return out;
}

}  // namespace cauce::standard_step
