// Form3 ("Rio Negro"): profiles in a natural reach with the general scour of each section.
//
// "(Y?)" is that of Form2 under Form3's own box names, with two differences in Inicio: it reads the
// section's own chainage (Text131) into X(i), and a roughness of 0 stops it with "Falta la Rugosidad".
// "Perfiles" runs the profile march of Form2 with Form3's differences (profiles::RunPolicy): the reach
// lengths come from the X(i) of each section; each section gets its area, mean velocity and friction
// slope at the depth the march gave it, before its classification; an area of 0 ends the run with no
// table; the stepping routines do not store the velocity; and, with a grain size above 0, Socavacion
// after the classification, at that same depth and friction slope. The table shows the scour, the
// water-surface elevation and the mean velocity of sections 1..15.
#include "screens/form3.hpp"

#include "forms/format.hpp"
#include "hydraulics/profiles/profile.hpp"
#include "hydraulics/scour/scour.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::screens {

namespace {

using forms::Format;
using forms::Kind;

inline constexpr const char* kFaltaRugosidad = "Falta la Rugosidad";
inline constexpr const char* kSinArea =
    "El área de flujo es nula con el tirante del perfil: el cálculo se detiene sin tabla (revise Y final)";

std::string T(int n) {
    return "Text" + std::to_string(n);
}

class Form3 : public NaturalScreen {
  public:
    Form3();

  private:
    bool Inicio() override;
    void LastSection() override;
    void Command1Click();  // "Perfiles"
    void Tabla();
};

Form3::Form3()
    : NaturalScreen("Form3", "Cauce - Perfiles y socavación en cauces naturales", form3::box::kAll) {
    BindSheet("secciones ");
    // Reference layout 1000 x 720. Declaration order is the tab order.
    Add({"Label25",
         Kind::Label,
         "PERFILES Y SOCAVACION EN CAUCES NATURALES" + std::string(98, ' ') +
             "Oprima (Y?) para calcular la Profundidad Normal y las características hidráulicas del cauce.",
         "",
         {10, 5, 600, 48},
         true});
    Add({"Label28", Kind::Label, "Seccion No.", "", {10, 60, 90, 22}});
    Add({"Text62", Kind::TextBox, "", "SecId", {100, 60, 50, 22}});
    Add({"Label22", Kind::Label, "No. Secciones", "", {170, 60, 100, 22}});
    Add({"Text61", Kind::TextBox, "", "No# secciones", {270, 60, 50, 22}});
    Add({"Label24", Kind::Label, " Z fondo m", "", {38, 90, 72, 22}});
    Add({"Label19", Kind::Label, " Ancho m", "", {114, 90, 72, 22}});
    // Label5 is the final depth's label here, so the row numbers take Label40..Label54.
    AddLevelTable(38, 114, 26, 40);

    Add({"Label20", Kind::Label, "Rugosidad", "", {460, 114, 120, 22}});
    Add({"Text123", Kind::TextBox, "", "Rugosidad", {585, 114, 80, 22}});
    Add({"Label21", Kind::Label, "Pendiente", "", {460, 142, 120, 22}});
    Add({"Text124", Kind::TextBox, "", "Si", {585, 142, 80, 22}});
    Add({"Label23", Kind::Label, "Caudal", "", {460, 170, 120, 22}});
    Add({"Text125", Kind::TextBox, "", "Caudal", {585, 170, 80, 22}});
    Add({"Label18", Kind::Label, " Abscisa m", "", {460, 198, 120, 22}});
    Add({"Text131", Kind::TextBox, "", "Abscisa", {585, 198, 80, 22}});
    Add({"Label26", Kind::Label, "ZONA INUNDABLE:", "", {460, 232, 220, 22}});
    Add({"Label29", Kind::Label, "Ancho:", "", {460, 260, 120, 22}});
    Add({"Text126", Kind::TextBox, "", "Ancho Zi", {585, 260, 80, 22}});
    Add({"Label30", Kind::Label, "Rugosidad", "", {460, 288, 120, 22}});
    Add({"Text127", Kind::TextBox, "", "Rugosidad Zi", {585, 288, 80, 22}});
    Add({"Label33", Kind::Label, "Yn final", "", {460, 324, 120, 22}});
    Add({"Text129", Kind::TextBox, "", "", {585, 324, 80, 22}});
    Add({"Label34", Kind::Label, "Yc final", "", {460, 352, 120, 22}});
    Add({"Text130", Kind::TextBox, "", "", {585, 352, 80, 22}});
    Add({"Label5", Kind::Label, "", "", {460, 380, 120, 22}});
    Add({"Text128", Kind::TextBox, "", "", {585, 380, 80, 22}});
    Add({"Label35", Kind::Label, "Para calcular Socavación: Dmm?", "", {460, 414, 120, 40}, true});
    Add({"Text122", Kind::TextBox, "", "Darrastre", {585, 420, 80, 22}});
    Add({"Command2", Kind::CommandButton, "(Y?)", "", {690, 114, 110, 34}});
    Add({"Command1", Kind::CommandButton, "Perfiles", "", {690, 158, 110, 34}});
    Add({"Command3", Kind::CommandButton, "Salir", "", {690, 202, 110, 34}});
    Add({"Label31", Kind::Label, "", "", {460, 464, 530, 44}, true});

    // Table of sections 1..15, on the rows of the level table.
    Add({"Label27", Kind::Label, "Zagua m", "", {200, 90, 72, 22}});
    Add({"Label1", Kind::Label, "Vmedia m/s", "", {276, 90, 80, 22}});
    Add({"Label2", Kind::Label, "Ysoc m", "", {360, 90, 72, 22}});
    for (int j = 1; j <= profiles::kTableRows; ++j) {
        const int y = 114 + (j - 1) * 26;
        Add({T(75 + j), Kind::TextBox, "", "Za" + std::to_string(j), {200, y, 72, 22}});
        Add({T(90 + j), Kind::TextBox, "", "", {276, y, 72, 22}});
        Add({T(105 + j), Kind::TextBox, "", "Ys" + std::to_string(j), {360, y, 72, 22}});
    }
    Add({"Picture1", Kind::PictureBox, "", "", {690, 250, 220, 150}});
    Add({"Data1", Kind::Data, "Rio Negro", "", {10, 510, 440, 30}});

    OnClick(section::button::Section, [this] { SectionClick(); });
    OnClick(section::button::Profiles, [this] { Command1Click(); });
    OnClick(section::button::Exit, [this] { Close(); });
    // Form_Load: the profile button is inert until the last section has been computed.
    Set("Picture1", kFigCauces1);
    Set("Command1", "");
}

bool Form3::Inicio() {
    ReadSection();
    st_.X(st_.i) = ValOf("Text131");
    if (st_.n == 0) {
        Set("Label31", kFaltaRugosidad);
        return false;
    }
    BuildTables();
    return true;
}

void Form3::LastSection() {
    Set("Command2", "");
    Set("Command1", "Perfiles");
    Set("Picture1", kFigCauces1);
}

// "Perfiles": the grain size, then the final depth, the run with scour, the table.
void Form3::Command1Click() {
    depth_asked_ = false;
    if (Text("Label31") == kSinArea) Set("Label31", "");  // the message of a previous run only
    scour::Bed bed;
    bed.Dm = ValOf("Text122") / 1000;
    Set("Label5", "Yfinal");
    depth_asked_ = !profiles::SetStartDepth(st_, ValOf("Text128"));
    if (depth_asked_) {
        Set("Label5", "Incluya Y final");
        return;
    }
    bed.exponent = scour::GrainExponent(bed.Dm);

    profiles::RunPolicy policy;
    policy.lengths = profiles::Lengths::UpToN;
    policy.steps_store_velocity = false;
    policy.evaluate_at_march_depth = true;
    policy.friction_slope = [](const natural::State& st, int k) {
        return scour::FrictionSlope(st.n, st.V(k), st.A(k), st.P);
    };
    if (bed.Dm > 0) {
        // The depth at which the friction slope was computed: the march leaves Ysec(k) as it found it.
        policy.after_classification = [bed](natural::State& st, int k, double sf) {
            scour::Socavacion(st, k, st.Ysec(k), sf, bed);
        };
    }
    if (profiles::ProfileRun(st_, policy) == profiles::RunEnd::NoArea) {
        Set("Label31", kSinArea);
        return;
    }
    Tabla();
}

// Scour into Text106..Text120, water-surface elevations into Text76..Text90, velocities into
// Text91..Text105, in that order, for sections 1..15 whatever N is.
void Form3::Tabla() {
    const auto rows = profiles::Tabla(st_);
    auto row = [&rows](int j) -> const profiles::TableRow& { return rows[static_cast<std::size_t>(j - 1)]; };
    for (int j = 1; j <= profiles::kTableRows; ++j) Set(T(105 + j), Format(row(j).ysoc, "0.00"));
    for (int j = 1; j <= profiles::kTableRows; ++j) Set(T(75 + j), Format(row(j).zw, "0.00"));
    for (int j = 1; j <= profiles::kTableRows; ++j) Set(T(90 + j), Format(row(j).v, "0.00"));
}

}  // namespace

std::unique_ptr<forms::Screen> MakeForm3() {
    return std::make_unique<Form3>();
}

}  // namespace cauce::screens
