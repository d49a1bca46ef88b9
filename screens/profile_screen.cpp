#include "screens/profile_screen.hpp"

#include "forms/format.hpp"
#include "hydraulics/profiles/profile.hpp"

namespace cauce::screens {

using forms::Kind;

namespace {
// A control's or column's name: prefix and number ("Text12", "V3").
std::string Numbered(std::string prefix, int n) {
    prefix += std::to_string(n);
    return prefix;
}
std::string T(int n) {
    return Numbered("Text", n);
}
}  // namespace

ProfileScreen::ProfileScreen(const ProfileScreenConfig& cfg)
    : NaturalScreen(cfg.name, cfg.title, section::stream_box::kAll) {
    BindSheet(cfg.sheet);
    // Reference layout 1000 x 720. Declaration order is the tab order.
    AddHeader(cfg.instruction, cfg.instruction_tail, true);
    const DataColumn data{500, 110, 615};
    AddFlowData(data, 170, cfg.slope_column);
    AddFloodZone(data, 258, 300);
    AddDataRow(data, 352, "Label33", "Yn final", profile::box::NormalDepth);
    AddDataRow(data, 380, "Label34", "Yc final", profile::box::CriticalDepth);
    AddDataRow(data, 408, "Label32", "", profile::box::StartDepth);
    AddButtons(720, 170, [this] { Command1Click(); });
    Add({"Label31", Kind::Label, "", "", {500, 440, 490, 44}, true});

    // Profile table: chainage, type, water-surface elevation, velocity of sections 1..15.
    Add({"Label18", Kind::Label, " Abscisa m", "", {200, 90, 72, 22}});
    Add({"Label2", Kind::Label, "Perfil Tipo", "", {276, 90, 60, 22}});
    Add({"Label27", Kind::Label, " Z agua m", "", {340, 90, 72, 22}});
    Add({"Label1", Kind::Label, "V media m/s", "", {416, 90, 80, 22}});
    for (int j = 1; j <= 15; ++j) {
        const int y = 114 + (j - 1) * 26;
        // Rows 8 and 9 both show "Abscisa9"; no box is bound to "Abscisa8".
        const int abscisa = j == 8 ? 9 : j;
        Add({T(29 + 2 * j), Kind::TextBox, "", Numbered("Abscisa", abscisa), {200, y, 72, 22}});
        Add({T(30 + 2 * j), Kind::TextBox, "", Numbered("Tipo", j), {276, y, 60, 22}});
        Add({T(62 + j), Kind::TextBox, "", Numbered("Za", j), {340, y, 72, 22}});
        Add({T(77 + j), Kind::TextBox, "", Numbered("V", j), {416, y, 72, 22}});
    }
    Add({"Picture1", Kind::PictureBox, "", "", {620, 5, 220, 150}});
    Add({"Picture2", Kind::PictureBox, "", "", {850, 5, 140, 150}});
    Add({"Data1", Kind::Data, cfg.caption, "", {10, 510, 480, 30}});
    FormLoad();
}

void ProfileScreen::FormLoad() {
    Set("Picture1", Figure("Cauces1.wmf"));
    Set("Picture2", Figure("SUMMER.wmf"));
    Set("Command1", "");  // inert until the last section has been computed
}

// "Perfiles": the depth at the last section, the chainages of the fifteen rows, the run, the table.
void ProfileScreen::Command1Click() {
    if (!ReadStartDepth(profile::kReach, "inicial")) return;
    for (int j = 1; j <= profiles::kTableRows; ++j) st_.X(j) = ValOf(T(29 + 2 * j));  // Text31, Text33, ...
    profiles::ProfileRun(st_);
    Tabla(profile::kReach);
}

std::unique_ptr<forms::Screen> MakeForm2() {
    return std::make_unique<ProfileScreen>(
        ProfileScreenConfig{"Form2", "Cauce - Perfiles en cauces naturales", "FLUJO EN CAUCES NATURALES",
                            kPressForStream, "Persecc", "Perfiles en cauces", "Si"});
}

std::unique_ptr<forms::Screen> MakeForm4() {
    return std::make_unique<ProfileScreen>(ProfileScreenConfig{
        "Form4", "Cauce - Perfiles en canales prismáticos",
        "PERFILES LONGITUDINALES EN ZORVENA PRISMATICOS DE SECCION TRAPEZOIDAL, RECTANGULAR O TRIANGULAR.",
        "Oprima (Y?) para calcular la Profundidad Normal y las características hidráulicas del canal.",
        "Percanal", "Perfiles de zorvena", "So"});
}

}  // namespace cauce::screens
