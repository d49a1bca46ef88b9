#include "screens/natural_screen.hpp"

#include "forms/format.hpp"
#include "forms/val.hpp"

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
    Set("Picture1", kFigCauces1);
    st_.NormalInBank(i);
    st_.Qc = st_.Q(i);
    st_.Critica(i);
    Resultados();
}

void NaturalScreen::Qdesbord() {
    const int i = st_.i;
    Set("Label31", natural::kDesbordamiento);
    Set("Picture1", kFigCauces);
    st_.B = ValOf(boxes_.b);
    st_.nz = ValOf(boxes_.nz);
    if (st_.B < st_.BankWidth(i)) {
        Set("Label31", natural::kAnchoMenor);
        return;
    }
    st_.Qdesbord(i);
    if (st_.NoFloodZone(i)) Set("Picture1", kFigCauces2);
    st_.Qdesbord3(i);
}

void NaturalScreen::Resultados() {
    const int i = st_.i;
    st_.Resultados(i);
    Set(boxes_.yn, Format(st_.Yn(i), "0.00"));
    Set(boxes_.yc, Format(st_.Yc(i), "0.00"));
}

}  // namespace cauce::screens
