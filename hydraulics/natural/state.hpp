// The form-level state of a natural-section screen (Form2, Form3, Form4, Form5): the section tables,
// the per-section arrays and the scalars that the legacy routines share. Each screen owns one.
//
// Routines keep their legacy names and, like the originals, work on the current section and these
// arrays. What they would have written to a label or a picture comes back as a return value.
#pragma once

#include <string>

#include "hydraulics/constants.hpp"
#include "hydraulics/tables.hpp"

namespace cauce::natural {

// Messages of the section table, shown in Label26.
inline constexpr const char* kCotasError = "Revise las cotas Zi. Hay un error";
inline constexpr const char* kAnchosError = "Revise los anchos Ti. Hay un error";
// Messages of the flood zone, shown in Label31.
inline constexpr const char* kDesbordamiento = "HAY DESBORDAMIENTO";
inline constexpr const char* kAnchoMenor = "El ancho B no puede ser menor que Tn. Ver Figura";

enum class TableError { None, Cotas, Anchos };

struct State {
    // Section table and the cumulative level tables built from it (sections 0..50, levels 0..20).
    Arr2 Z, T, Yj, m, Acum, Pcum, Qcum;
    Arr1<int> npts;
    Arr1<double> Ylleno, Qlleno;

    // Per-section inputs and results.
    Arr1<double> Q, S0, Yn, Yc;
    Arr1<double> A;   // flow area at the working depth
    Arr1<double> Tw;  // top width at the working depth (T(i) of the legacy screens)
    Arr1<double> V;   // mean velocity: written by "(Y?)" and shown by the profile table (Vsec)
    Arr1<double> Za;  // water-surface elevation: "(Y?)" and the profile run (Zw)

    // Profile arrays.
    Arr1<double> Ysec, L, X, Ysoc;
    Arr1<std::string> Tipo;

    // Form-level scalars.
    int N = 0;
    int i = 0;      // current section of "(Y?)"
    double n = 0;   // Manning roughness, one per screen
    double Y = 0;   // working depth at which Area evaluates the current section
    double P = 0;   // wetted perimeter left by Area and the marches
    double h = 0;   // step of the in-bank normal-depth march
    int k = 0;      // band index shared by Area, the normal-depth march and Critica; never reset
    double Qc = 0;  // discharge handed to Critica

    // Flood zone (Qdesbord / Qdesbord3).
    double B = 0, nz = 0, hz = 0, Am = 0, Af = 0, Qm = 0;
    double Vm = 0, Vf = 0, Tm = 0;  // main-channel and flood-zone velocities, main-channel top width

    // The fixed-step searches (normal depth, critical depth, flood zone) find the step at which the
    // legacy march stops by a bracketing search over the step count, with exactly the march's results;
    // where the searched quantity is not monotone they walk the march. With `literal` set they always
    // walk it: the reference the fast paths are checked against.
    bool literal = false;

    // Bed elevation of a section: level 1 of its table.
    double Zbed(int s) const { return Z(s, 1); }

    // Level count: the first zero elevation among levels 1..16 ends the list.
    void CountLevels(int s);
    // Level tables, Qcum and the bank-full values; stops at the first faulty level.
    TableError Qful(int s);
    // Geometry of section s at the working depth Y: sets k, A(s), P and Tw(s).
    void Area(int s);
    // In-bank normal depth by the 0.001 m march; Yn(s) is reported one step above.
    void NormalInBank(int s);
    // Critical depth of section s for the discharge Qc, by the 0.001 m march down a band.
    void Critica(int s);
    // Flood zone: the 0.002 m march above the banks for B and nz already set (B >= Tn).
    void Qdesbord(int s);
    // True when the flood zone is as wide as the channel (figure Cauces2).
    bool NoFloodZone(int s) const;
    // Critical depth with the flood zone flowing, on the values Qdesbord left.
    void Qdesbord3(int s);
    // Water-surface elevation and mean velocity of the section just computed.
    void Resultados(int s);

    // Top width of the top level, Tn.
    double BankWidth(int s) const { return T(s, npts(s)); }

  private:
    void NormalMarch(int s);
    bool NormalFast(int s);
    void CriticaMarch(int s, double fr);
    bool CriticaFast(int s, double fr);
    void FloodMarch(int s);
    bool FloodFast(int s);
    double OverBankCritical(int s, double frb);
};

}  // namespace cauce::natural
