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
    void Command1Click();  // "Perfiles"
};

Form3::Form3()
    : NaturalScreen("Form3", "Cauce - Perfiles y socavación en cauces naturales", form3::box::kAll) {
    BindSheet("secciones ");
    // Reference layout 1000 x 720. Declaration order is the tab order. Label5 is the final depth's
    // label here, so the level table's row numbers take Label40..Label54.
    AddHeader("PERFILES Y SOCAVACION EN CAUCES NATURALES", kPressForStream, true, 40);
    const DataColumn data{460, 120, 585};
    AddFlowData(data, 114, "Si");
    AddDataRow(data, 198, "Label18", " Abscisa m", form3::box::Chainage, "Abscisa");
    AddFloodZone(data, 232, 220);
    AddDataRow(data, 324, "Label33", "Yn final", form3::box::NormalDepth);
    AddDataRow(data, 352, "Label34", "Yc final", form3::box::CriticalDepth);
    AddDataRow(data, 380, "Label5", "", form3::box::FinalDepth);
    Add({"Label35", Kind::Label, "Para calcular Socavación: Dmm?", "", {460, 414, 120, 40}, true});
    Add({"Text122", Kind::TextBox, "", "Darrastre", {585, 420, 80, 22}});
    AddButtons(690, 114, [this] { Command1Click(); });
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

    // Form_Load: the profile button is inert until the last section has been computed.
    Set("Picture1", Figure("Cauces1.wmf"));
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

// "Perfiles": the grain size, then the final depth, the run with scour, the table.
void Form3::Command1Click() {
    depth_asked_ = false;
    if (Text("Label31") == kSinArea) Set("Label31", "");  // the message of a previous run only
    scour::Bed bed;
    bed.Dm = ValOf("Text122") / 1000;
    if (!ReadStartDepth(form3::kReach, "final")) return;
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
    Tabla(form3::kReach);
}

}  // namespace

std::unique_ptr<forms::Screen> MakeForm3() {
    return std::make_unique<Form3>();
}

}  // namespace cauce::screens
