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
    Add({"Label25",
         Kind::Label,
         cfg.instruction + std::string(98, ' ') + cfg.instruction_tail,
         "",
         {10, 5, 600, 48},
         true});
    Add({"Label28", Kind::Label, "Seccion No.", "", {10, 60, 90, 22}});
    Add({"Text62", Kind::TextBox, "", "SecId", {100, 60, 50, 22}});
    Add({"Label22", Kind::Label, "No. Secciones", "", {170, 60, 100, 22}});
    Add({"Text61", Kind::TextBox, "", "No# secciones", {270, 60, 50, 22}});
    Add({"Label24", Kind::Label, " Z fondo m", "", {38, 90, 72, 22}});
    Add({"Label19", Kind::Label, " Ancho m", "", {114, 90, 72, 22}});
    AddLevelTable(38, 114, 26);

    Add({"Label20", Kind::Label, "Rugosidad", "", {500, 170, 110, 22}});
    Add({"Text93", Kind::TextBox, "", "Rugosidad", {615, 170, 80, 22}});
    Add({"Label21", Kind::Label, "Pendiente", "", {500, 198, 110, 22}});
    Add({"Text94", Kind::TextBox, "", cfg.slope_column, {615, 198, 80, 22}});
    Add({"Label23", Kind::Label, "Caudal", "", {500, 226, 110, 22}});
    Add({"Text95", Kind::TextBox, "", "Caudal", {615, 226, 80, 22}});
    Add({"Label26", Kind::Label, "ZONA INUNDABLE:", "", {500, 258, 300, 22}});
    Add({"Label29", Kind::Label, "Ancho:", "", {500, 286, 110, 22}});
    Add({"Text96", Kind::TextBox, "", "Ancho Zi", {615, 286, 80, 22}});
    Add({"Label30", Kind::Label, "Rugosidad", "", {500, 314, 110, 22}});
    Add({"Text97", Kind::TextBox, "", "Rugosidad Zi", {615, 314, 80, 22}});
    Add({"Label33", Kind::Label, "Yn final", "", {500, 352, 110, 22}});
    Add({"Text99", Kind::TextBox, "", "", {615, 352, 80, 22}});
    Add({"Label34", Kind::Label, "Yc final", "", {500, 380, 110, 22}});
    Add({"Text100", Kind::TextBox, "", "", {615, 380, 80, 22}});
    Add({"Label32", Kind::Label, "", "", {500, 408, 110, 22}});
    Add({"Text98", Kind::TextBox, "", "", {615, 408, 80, 22}});
    Add({"Command2", Kind::CommandButton, "(Y?)", "", {720, 170, 110, 34}});
    Add({"Command1", Kind::CommandButton, "Perfiles", "", {720, 214, 110, 34}});
    Add({"Command3", Kind::CommandButton, "Salir", "", {720, 258, 110, 34}});
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

    OnClick(section::button::Section, [this] { SectionClick(); });
    OnClick(section::button::Profiles, [this] { Command1Click(); });
    OnClick(section::button::Exit, [this] { Close(); });
    FormLoad();
}

void ProfileScreen::FormLoad() {
    Set("Picture1", kFigCauces1);
    Set("Picture2", kFigSummer);
    Set("Command1", "");  // inert until the last section has been computed
}

void ProfileScreen::LastSection() {
    Set("Command2", "");
    Set("Command1", "Perfiles");
    Set("Picture1", kFigCauces1);
}

// "Perfiles": the depth at the last section, the chainages of the fifteen rows, the run, the table.
void ProfileScreen::Command1Click() {
    depth_asked_ = false;
    Set("Label32", "Yinicial");
    depth_asked_ = !profiles::SetStartDepth(st_, ValOf("Text98"));
    if (depth_asked_) {
        Set("Label32", "Incluya Y inicial");
        return;
    }
    for (int j = 1; j <= profiles::kTableRows; ++j) st_.X(j) = ValOf(T(29 + 2 * j));  // Text31, Text33, ...
    profiles::ProfileRun(st_);
    Tabla();
}

// Types into Text32..Text60 (even), water-surface elevations into Text63..Text77, velocities into
// Text78..Text92, for sections 1..15 whatever N is.
void ProfileScreen::Tabla() {
    const auto rows = profiles::Tabla(st_);
    auto row = [&rows](int j) -> const profiles::TableRow& { return rows[static_cast<std::size_t>(j - 1)]; };
    for (int j = 1; j <= profiles::kTableRows; ++j) Set(T(30 + 2 * j), row(j).tipo);
    for (int j = 1; j <= profiles::kTableRows; ++j) Set(T(62 + j), forms::Format(row(j).zw, "0.00"));
    for (int j = 1; j <= profiles::kTableRows; ++j) Set(T(77 + j), forms::Format(row(j).v, "0.00"));
}

std::unique_ptr<forms::Screen> MakeForm2() {
    return std::make_unique<ProfileScreen>(ProfileScreenConfig{
        "Form2", "Cauce - Perfiles en cauces naturales", "FLUJO EN CAUCES NATURALES",
        "Oprima (Y?) para calcular la Profundidad Normal y las características hidráulicas del cauce.",
        "Persecc", "Perfiles en cauces", "Si"});
}

std::unique_ptr<forms::Screen> MakeForm4() {
    return std::make_unique<ProfileScreen>(ProfileScreenConfig{
        "Form4", "Cauce - Perfiles en canales prismáticos",
        "PERFILES LONGITUDINALES EN ZORVENA PRISMATICOS DE SECCION TRAPEZOIDAL, RECTANGULAR O TRIANGULAR.",
        "Oprima (Y?) para calcular la Profundidad Normal y las características hidráulicas del canal.",
        "Percanal", "Perfiles de zorvena", "So"});
}

}  // namespace cauce::screens
