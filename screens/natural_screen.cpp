#include "screens/natural_screen.hpp"

#include "forms/format.hpp"
#include "forms/val.hpp"
#include "hydraulics/profiles/profile.hpp"

namespace cauce::screens {

using forms::Format;
using forms::Kind;

namespace {
// A control's or column's name: prefix and number ("Text12", "z3").
std::string Numbered(std::string prefix, int n) {
    prefix += std::to_string(n);
    return prefix;
}
}  // namespace

NaturalScreen::NaturalScreen(std::string name, std::string title, SectionBoxes boxes)
    : Screen(std::move(name), std::move(title)), boxes_(std::move(boxes)) {}

void NaturalScreen::AddHeader(const std::string& heading, const std::string& press, bool with_count,
                              int first_row_label) {
    Add({"Label25", Kind::Label, heading + std::string(98, ' ') + press, "", {10, 5, 600, 48}, true});
    Add({"Label28", Kind::Label, "Seccion No.", "", {10, 60, 90, 22}});
    Add({"Text62", Kind::TextBox, "", "SecId", {100, 60, 50, 22}});
    if (with_count) {
        Add({"Label22", Kind::Label, "No. Secciones", "", {170, 60, 100, 22}});
        Add({"Text61", Kind::TextBox, "", "No# secciones", {270, 60, 50, 22}});
    }
    Add({"Label24", Kind::Label, " Z fondo m", "", {38, 90, 72, 22}});
    Add({"Label19", Kind::Label, " Ancho m", "", {114, 90, 72, 22}});
    AddLevelTable(38, 114, 26, first_row_label);
}

void NaturalScreen::AddLevelTable(int x, int y, int row_step, int first_row_label) {
    for (int j = 1; j <= 15; ++j) {
        const int row_y = y + (j - 1) * row_step;
        Add({Numbered("Label", first_row_label + j - 1),
             Kind::Label,
             std::to_string(j),
             "",
             {x - 30, row_y, 26, row_step - 4}});
        Add({Numbered("Text", 2 * j - 1), Kind::TextBox, "", Numbered("z", j), {x, row_y, 72, row_step - 4}});
        Add({Numbered("Text", 2 * j),
             Kind::TextBox,
             "",
             Numbered("t", j),
             {x + 76, row_y, 72, row_step - 4}});
    }
}

void NaturalScreen::AddDataRow(const DataColumn& column, int y, const std::string& label,
                               const std::string& caption, const std::string& box, const std::string& field) {
    Add({label, Kind::Label, caption, "", {column.x, y, column.label_width, 22}});
    Add({box, Kind::TextBox, "", field, {column.box_x, y, 80, 22}});
}

void NaturalScreen::AddFlowData(const DataColumn& column, int y, const std::string& slope_field) {
    AddDataRow(column, y, "Label20", "Rugosidad", boxes_.n, "Rugosidad");
    AddDataRow(column, y + 28, "Label21", "Pendiente", boxes_.s0, slope_field);
    AddDataRow(column, y + 56, "Label23", "Caudal", boxes_.q, "Caudal");
}

void NaturalScreen::AddFloodZone(const DataColumn& column, int y, int heading_width) {
    Add({"Label26", Kind::Label, "ZONA INUNDABLE:", "", {column.x, y, heading_width, 22}});
    AddDataRow(column, y + 28, "Label29", "Ancho:", boxes_.b, "Ancho Zi");
    AddDataRow(column, y + 56, "Label30", "Rugosidad", boxes_.nz, "Rugosidad Zi");
}

void NaturalScreen::AddButtons(int x, int y, std::function<void()> profiles) {
    Add({"Command2", Kind::CommandButton, "(Y?)", "", {x, y, 110, 34}});
    OnClick(section::button::Section, [this] { SectionClick(); });
    if (profiles) {
        y += 44;
        Add({"Command1", Kind::CommandButton, "Perfiles", "", {x, y, 110, 34}});
        OnClick(section::button::Profiles, std::move(profiles));
        has_profiles_ = true;
    }
    Add({"Command3", Kind::CommandButton, "Salir", "", {x, y + 44, 110, 34}});
    OnClick(section::button::Exit, [this] { Close(); });
}

void NaturalScreen::LastSection() {
    if (!has_profiles_) return;
    Set("Command2", "");
    Set("Command1", "Perfiles");
    Set("Picture1", Figure("Cauces1.wmf"));
}

bool NaturalScreen::ReadStartDepth(const ReachControls& reach, const std::string& word) {
    Set(reach.depth_label, "Y" + word);
    depth_asked_ = !profiles::SetStartDepth(st_, ValOf(reach.depth));
    if (!depth_asked_) return true;
    Set(reach.depth_label, "Incluya Y " + word);
    return false;
}

void NaturalScreen::Tabla(const ReachControls& reach) {
    const auto rows = profiles::Tabla(st_);
    const auto column = [&](std::string (*box)(int), auto text) {
        if (!box) return;
        for (int j = 1; j <= profiles::kTableRows; ++j)
            Set(box(j), text(rows[static_cast<std::size_t>(j - 1)]));
    };
    using profiles::TableRow;
    column(reach.type, [](const TableRow& r) { return r.tipo; });
    column(reach.scour, [](const TableRow& r) { return Format(r.ysoc, "0.00"); });
    column(reach.water_level, [](const TableRow& r) { return Format(r.zw, "0.00"); });
    column(reach.velocity, [](const TableRow& r) { return Format(r.v, "0.00"); });
}

bool NaturalScreen::Inicio() {
    ReadSection();
    BuildTables();
    return true;
}

void NaturalScreen::ReadSectionNumbers() {
    st_.N = forms::CInt(ValOf("Text61"));
    st_.i = forms::CInt(ValOf("Text62"));
}

void NaturalScreen::ReadSection() {
    ReadSectionNumbers();
    const int i = st_.i;
    for (int j = 1; j <= 15; ++j) {
        st_.Z(i, j) = ValOf("Text" + std::to_string(2 * j - 1));
        st_.T(i, j) = ValOf("Text" + std::to_string(2 * j));
        if (j == 2) {
            st_.n = ValOf(boxes_.n);
            st_.S0(i) = ValOf(boxes_.s0);
        }
    }
}

void NaturalScreen::BuildTables() {
    const int i = st_.i;
    st_.CountLevels(i);
    table_verdict_ = st_.Qful(i);
    switch (table_verdict_) {
        case natural::TableError::Cotas:
            Set("Label26", natural::kCotasError);
            break;
        case natural::TableError::Anchos:
            Set("Label26", natural::kAnchosError);
            break;
        case natural::TableError::None:
            break;
    }
}

void NaturalScreen::SectionClick() {
    table_verdict_ = natural::TableError::None;
    if (!Inicio()) return;
    const int i = st_.i;
    Set("Label31", "");
    st_.Q(i) = ValOf(boxes_.q);
    if (i >= st_.N) LastSection();
    if (st_.Q(i) == 0) return;
    if (st_.Q(i) > st_.Qlleno(i)) {
        Qdesbord();
        Resultados();
        return;
    }
    Set("Picture1", Figure("Cauces1.wmf"));
    st_.NormalInBank(i);
    st_.Qc = st_.Q(i);
    st_.Critica(i);
    Resultados();
}

void NaturalScreen::Qdesbord() {
    const int i = st_.i;
    Set("Label31", natural::kDesbordamiento);
    Set("Picture1", Figure("Cauces.wmf"));
    st_.B = ValOf(boxes_.b);
    st_.nz = ValOf(boxes_.nz);
    if (st_.B < st_.BankWidth(i)) {
        Set("Label31", natural::kAnchoMenor);
        return;
    }
    st_.Qdesbord(i);
    if (st_.NoFloodZone(i)) Set("Picture1", Figure("Cauces2.wmf"));
    st_.Qdesbord3(i);
}

void NaturalScreen::Resultados() {
    const int i = st_.i;
    st_.Resultados(i);
    Set(boxes_.yn, Format(st_.Yn(i), "0.00"));
    Set(boxes_.yc, Format(st_.Yc(i), "0.00"));
}

}  // namespace cauce::screens
