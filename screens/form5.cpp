// Form5 ("Flujo uniforme"): the natural channel in uniform flow. The level table, roughness, slope,
// discharge and flood-zone boxes are those of Form2 under the same names, and "(Y?)" is the same
// computation of one section with the same messages; there is no reach and no profile run.
//
// Results of "(Y?)": normal and critical depth, bank-full discharge, and the flow at the normal
// depth: area, top width, mean velocity and Froude number.
// - In the banks they are those of the depth at which the 1 mm march first carried Q (Yn is reported
//   one step above it): the wetted area and top width of the channel, V = Q / A and
//   Fr = V / sqrt(9.81 A / T).
// - Over the banks they describe the whole wetted section, channel and flood zone together: area
//   Am + Af, top width B + 2 hz, mean velocity Q / A and the Froude number of that mean flow with the
//   hydraulic depth A / T. This is the figure an engineer checks against 1 for the whole cross-section;
//   the critical depth shown is the one found with the flood zone flowing.
// The bank-full discharge needs no discharge: it is shown even when Q is left at 0.
#include "screens/form5.hpp"

#include "forms/format.hpp"
#include "forms/val.hpp"
#include "hydraulics/froude.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::screens {

namespace {

using forms::Format;
using forms::Kind;

class Form5 : public NaturalScreen {
  public:
    Form5();

  private:
    void ReadSectionNumbers() override;
    bool Inicio() override;
    void Resultados() override;
};

Form5::Form5()
    : NaturalScreen("Form5", "Cauce - Flujo uniforme en cauces naturales", section::stream_box::kAll) {
    BindSheet("Zorvena");
    // Reference layout 1000 x 720. Declaration order is the tab order.
    Add({"Label25",
         Kind::Label,
         "FLUJO UNIFORME EN CAUCES NATURALES" + std::string(98, ' ') +
             "Oprima (Y?) para calcular la Profundidad Normal y las características hidráulicas del cauce.",
         "",
         {10, 5, 600, 48},
         true});
    Add({"Label28", Kind::Label, "Seccion No.", "", {10, 60, 90, 22}});
    Add({"Text62", Kind::TextBox, "", "SecId", {100, 60, 50, 22}});
    Add({"Label24", Kind::Label, " Z fondo m", "", {38, 90, 72, 22}});
    Add({"Label19", Kind::Label, " Ancho m", "", {114, 90, 72, 22}});
    AddLevelTable(38, 114, 26);

    Add({"Label20", Kind::Label, "Rugosidad", "", {300, 114, 110, 22}});
    Add({"Text93", Kind::TextBox, "", "Rugosidad", {415, 114, 80, 22}});
    Add({"Label21", Kind::Label, "Pendiente", "", {300, 142, 110, 22}});
    Add({"Text94", Kind::TextBox, "", "Si", {415, 142, 80, 22}});
    Add({"Label23", Kind::Label, "Caudal", "", {300, 170, 110, 22}});
    Add({"Text95", Kind::TextBox, "", "Caudal", {415, 170, 80, 22}});
    Add({"Label26", Kind::Label, "ZONA INUNDABLE:", "", {300, 206, 220, 22}});
    Add({"Label29", Kind::Label, "Ancho:", "", {300, 234, 110, 22}});
    Add({"Text96", Kind::TextBox, "", "Ancho Zi", {415, 234, 80, 22}});
    Add({"Label30", Kind::Label, "Rugosidad", "", {300, 262, 110, 22}});
    Add({"Text97", Kind::TextBox, "", "Rugosidad Zi", {415, 262, 80, 22}});

    // Results of the section, not bound: they are recomputed from the record's data.
    Add({"Label33", Kind::Label, "Yn m", "", {300, 306, 110, 22}});
    Add({"Text99", Kind::TextBox, "", "", {415, 306, 80, 22}});
    Add({"Label34", Kind::Label, "Yc m", "", {300, 334, 110, 22}});
    Add({"Text100", Kind::TextBox, "", "", {415, 334, 80, 22}});
    Add({"Label35", Kind::Label, "Q lleno m3/s", "", {300, 362, 110, 22}});
    Add({"Text101", Kind::TextBox, "", "", {415, 362, 80, 22}});
    Add({"Label36", Kind::Label, "Área m2", "", {300, 390, 110, 22}});
    Add({"Text102", Kind::TextBox, "", "", {415, 390, 80, 22}});
    Add({"Label37", Kind::Label, "Ancho sup. m", "", {300, 418, 110, 22}});
    Add({"Text103", Kind::TextBox, "", "", {415, 418, 80, 22}});
    Add({"Label38", Kind::Label, "V media m/s", "", {300, 446, 110, 22}});
    Add({"Text104", Kind::TextBox, "", "", {415, 446, 80, 22}});
    Add({"Label39", Kind::Label, "Froude", "", {300, 474, 110, 22}});
    Add({"Text105", Kind::TextBox, "", "", {415, 474, 80, 22}});

    Add({"Command2", Kind::CommandButton, "(Y?)", "", {530, 114, 110, 34}});
    Add({"Command3", Kind::CommandButton, "Salir", "", {530, 158, 110, 34}});
    Add({"Label31", Kind::Label, "", "", {530, 206, 300, 44}, true});
    Add({"Picture1", Kind::PictureBox, "", "", {530, 270, 220, 150}});
    Add({"Data1", Kind::Data, "Flujo uniforme", "", {10, 510, 480, 30}});

    OnClick(section::button::Section, [this] { SectionClick(); });
    OnClick(section::button::Exit, [this] { Close(); });
    Set("Picture1", kFigCauces1);
}

// One section, no reach: the section number of the record indexes the arrays; N plays no part.
void Form5::ReadSectionNumbers() {
    st_.i = forms::CInt(ValOf("Text62"));
}

bool Form5::Inicio() {
    NaturalScreen::Inicio();
    Set("Text101", Format(st_.Qlleno(st_.i), "0.00"));
    return true;
}

void Form5::Resultados() {
    NaturalScreen::Resultados();
    const int i = st_.i;
    Set("Text102", Format(st_.A(i), "0.00"));
    Set("Text103", Format(st_.Tw(i), "0.00"));
    Set("Text104", Format(st_.V(i), "0.00"));
    Set("Text105", Format(Froude(st_.V(i), st_.A(i), st_.Tw(i)), "0.00"));
}

}  // namespace

std::unique_ptr<forms::Screen> MakeForm5() {
    return std::make_unique<Form5>();
}

}  // namespace cauce::screens
