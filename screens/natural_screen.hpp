// What the natural-section screens (Form2, Form3, Form4, Form5) share: the level table Text1..Text30,
// N in Text61, the section number in Text62, and the "(Y?)" computation of one section: Inicio, the
// bank-full discharge, the in-bank normal depth or the flood zone, the critical depth, Resultados.
// The boxes of roughness, slope, discharge, flood zone and results are named per screen.
#pragma once

#include <string>

#include "forms/screen.hpp"
#include "hydraulics/natural/state.hpp"

namespace cauce::screens {

inline constexpr const char* kFigCauces1 = "C:\\programas\\figuras\\Cauces1.wmf";
inline constexpr const char* kFigCauces = "C:\\programas\\figuras\\Cauces.wmf";
inline constexpr const char* kFigCauces2 = "C:\\programas\\figuras\\Cauces2.wmf";
inline constexpr const char* kFigSummer = "C:\\programas\\figuras\\SUMMER.wmf";

// Names of the boxes that differ between the natural-section screens.
struct SectionBoxes {
    std::string n = "Text93", s0 = "Text94", q = "Text95", b = "Text96", nz = "Text97";
    std::string yn = "Text99", yc = "Text100";
};

class NaturalScreen : public forms::Screen {
public:
    const natural::State& State() const { return st_; }

protected:
    NaturalScreen(std::string name, std::string title, SectionBoxes boxes);

    // Declares the level table (Text1..Text30 bound to z1..z15 / t1..t15) and its row labels
    // (Label3..Label17, or fifteen labels from first_row_label on) on rows starting at y, with the
    // elevation boxes at x.
    void AddLevelTable(int x, int y, int row_step, int first_row_label = 3);

    // "(Y?)" (Command2_Click) for the section of the current record.
    void SectionClick();

    // Inicio: reads N, i, the levels, n and S0(i); counts the levels and builds the tables (Qful).
    // Returns false when the screen's own check stops "(Y?)".
    virtual bool Inicio();
    // The two halves of Inicio, for screens that check their data in between.
    void ReadSection();
    void BuildTables();
    // N from Text61 and i from Text62.
    virtual void ReadSectionNumbers();
    // The section numbered N (or above) has been computed: the profile button takes over.
    virtual void LastSection() {}
    // Writes the results of the section just computed.
    virtual void Resultados();

    natural::State st_;
    SectionBoxes boxes_;

private:
    void Qdesbord();
};

}  // namespace cauce::screens
