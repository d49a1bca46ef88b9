// What the natural-section screens (Form2, Form3, Form4, Form5) share: the level table Text1..Text30,
// N in Text61, the section number in Text62, and the "(Y?)" computation of one section: Inicio, the
// bank-full discharge, the in-bank normal depth or the flood zone, the critical depth, Resultados.
// The boxes of roughness, slope, discharge, flood zone and results are named per screen.
#pragma once

#include <functional>
#include <string>

#include "forms/screen.hpp"
#include "hydraulics/natural/state.hpp"

namespace cauce::screens {

// The figures of the natural-section screens, by the path the screens load them from: the section in
// its banks (Cauces1.wmf), overflowing (Cauces.wmf), overflowing with no flood zone beside it
// (Cauces2.wmf), and the landscape of the profile screens (SUMMER.wmf).
inline std::string Figure(const char* file) {
    return std::string("C:\\programas\\figuras\\") + file;
}

// The second line of the instructions of the screens on natural channels.
inline constexpr const char* kPressForStream =
    "Oprima (Y?) para calcular la Profundidad Normal y las características hidráulicas del cauce.";

// The controls every natural-section screen has, by meaning.
namespace section {
using forms::ControlName;

// The level table: row j (1..15) of bed elevations and widths.
inline std::string LevelElevation(int j) {
    return forms::TextName(2 * j - 1);
}
inline std::string LevelWidth(int j) {
    return forms::TextName(2 * j);
}

namespace box {
inline constexpr ControlName SectionCount{"Text61"};  // N
inline constexpr ControlName SectionNumber{"Text62"};
}  // namespace box

namespace label {
inline constexpr ControlName Instructions{"Label25"};
inline constexpr ControlName FloodZone{"Label26"};  // "ZONA INUNDABLE:", or the level table's error
inline constexpr ControlName Message{"Label31"};
}  // namespace label

namespace button {
inline constexpr ControlName Profiles{"Command1"};  // "Perfiles" (not on Form5)
inline constexpr ControlName Section{"Command2"};   // "(Y?)"
inline constexpr ControlName Exit{"Command3"};
}  // namespace button

namespace picture {
inline constexpr ControlName Section{"Picture1"};
}  // namespace picture

// One section's data and results as Form2, Form4 and Form5 number them (Form3 numbers its own).
namespace stream_box {
using namespace box;
inline constexpr ControlName Roughness{"Text93"};
inline constexpr ControlName Slope{"Text94"};
inline constexpr ControlName Discharge{"Text95"};
inline constexpr ControlName FloodWidth{"Text96"};
inline constexpr ControlName FloodRoughness{"Text97"};
inline constexpr ControlName NormalDepth{"Text99"};
inline constexpr ControlName CriticalDepth{"Text100"};
}  // namespace stream_box
}  // namespace section

// The boxes that differ between the natural-section screens.
struct SectionBoxes {
    forms::ControlName n, s0, q, b, nz, yn, yc;
};

namespace section::stream_box {
inline constexpr SectionBoxes kAll{Roughness,      Slope,       Discharge,    FloodWidth,
                                   FloodRoughness, NormalDepth, CriticalDepth};
}  // namespace section::stream_box

// What the screens with a reach (Form2, Form3, Form4) name differently: the section's boxes, the depth
// at the last section with its label, and the table's columns (row j, 1..15; nullptr: no such column).
struct ReachControls {
    SectionBoxes section;
    forms::ControlName depth, depth_label;
    std::string (*type)(int);
    std::string (*water_level)(int);
    std::string (*velocity)(int);
    std::string (*scour)(int);
};

class NaturalScreen : public forms::Screen {
  public:
    const natural::State& State() const { return st_; }
    // What the last "(Y?)" found wrong in the section's level table (the message in Label26).
    natural::TableError TableVerdict() const { return table_verdict_; }
    // The last "Perfiles" stopped to ask for the depth at the last section ("Incluya Y inicial").
    bool DepthAsked() const { return depth_asked_; }

  protected:
    NaturalScreen(std::string name, std::string title, SectionBoxes boxes);

    // Declares the top of every natural-section screen: the instructions (Label25, two lines: the
    // screen's heading and what to press), the section number (Text62) and, on the screens with a
    // reach, N (Text61), then the level table with its headings.
    void AddHeader(const std::string& heading, const std::string& press, bool with_count,
                   int first_row_label = 3);

    // Declares the level table (Text1..Text30 bound to z1..z15 / t1..t15) and its row labels
    // (Label3..Label17, or fifteen labels from first_row_label on) on rows starting at y, with the
    // elevation boxes at x.
    void AddLevelTable(int x, int y, int row_step, int first_row_label = 3);

    // The column of the section's data: captions at x, label_width wide, and boxes at box_x.
    struct DataColumn {
        int x, label_width, box_x;
    };
    // A caption and its box on the row at y; the box is bound to field ("" for none).
    void AddDataRow(const DataColumn& column, int y, const std::string& label, const std::string& caption,
                    const std::string& box, const std::string& field = "");
    // Roughness, slope (bound to slope_field) and discharge on the rows from y on.
    void AddFlowData(const DataColumn& column, int y, const std::string& slope_field);
    // "ZONA INUNDABLE:" at y over its width and roughness.
    void AddFloodZone(const DataColumn& column, int y, int heading_width);
    // "(Y?)", on the screens with a reach "Perfiles" (inert until the last section has been
    // computed), and "Salir", one under the other from (x, y).
    void AddButtons(int x, int y, std::function<void()> profiles = nullptr);

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
    void LastSection();
    // The depth at the last section from the reach's depth box; false, with the label asking for it,
    // when there is none. word names it in the label: "final" or "inicial".
    bool ReadStartDepth(const ReachControls& reach, const std::string& word);
    // The profile table of sections 1..15 into the reach's columns, one column after the other.
    void Tabla(const ReachControls& reach);
    // Writes the results of the section just computed.
    virtual void Resultados();

    natural::State st_;
    SectionBoxes boxes_;
    natural::TableError table_verdict_ = natural::TableError::None;
    bool depth_asked_ = false;

  private:
    void Qdesbord();

    bool has_profiles_ = false;
};

}  // namespace cauce::screens
