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
    AddHeader("FLUJO UNIFORME EN CAUCES NATURALES", kPressForStream, false);
    const DataColumn data{300, 110, 415};
    AddFlowData(data, 114, "Si");
    AddFloodZone(data, 206, 220);

    // Results of the section, not bound: they are recomputed from the record's data. Label33..Label39
    // beside Text99..Text105.
    const char* const results[] = {"Yn m",         "Yc m",        "Q lleno m3/s", "Área m2",
                                   "Ancho sup. m", "V media m/s", "Froude"};
    for (int r = 0; r < 7; ++r)
        AddDataRow(data, 306 + 28 * r, forms::LabelName(33 + r), results[r], forms::TextName(99 + r));

    AddButtons(530, 114);
    Add({"Label31", Kind::Label, "", "", {530, 206, 300, 44}, true});
    Add({"Picture1", Kind::PictureBox, "", "", {530, 270, 220, 150}});
    Add({"Data1", Kind::Data, "Flujo uniforme", "", {10, 510, 480, 30}});
    Set("Picture1", Figure("Cauces1.wmf"));
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
