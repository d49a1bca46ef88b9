#include "app/box_meaning.hpp"

#include <algorithm>
#include <cctype>

#include "screens/form1.hpp"
#include "screens/form3.hpp"
#include "screens/profile_screen.hpp"

namespace cauce::app {

namespace {

using forms::Control;
using forms::Kind;

std::string Trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return std::string(s);
}

bool IsWholeNumber(const std::string& s) {
    return !s.empty() && std::all_of(s.begin(), s.end(), [](unsigned char c) { return std::isdigit(c); });
}

int CentreY(const forms::Place& p) {
    return p.y + p.h / 2;
}

// On the same row: each one's vertical centre lies within the other.
bool SameRow(const forms::Place& a, const forms::Place& b) {
    const int ca = CentreY(a), cb = CentreY(b);
    return (ca >= b.y && ca <= b.y + b.h) || (cb >= a.y && cb <= a.y + a.h);
}

// Boxes whose caption is blank until a click writes it: the name a sighted user would give them.
struct BlankCaption {
    const char* screen;
    forms::ControlName box;
    const char* caption;
};
constexpr BlankCaption kBlankCaptions[] = {
    {"Form2", screens::profile::box::StartDepth, "Yinicial"},
    {"Form4", screens::profile::box::StartDepth, "Yinicial"},
    {"Form3", screens::form3::box::FinalDepth, "Yfinal"},
    {"Form1", screens::form1::box::BankfullDischarge, "Q lleno"},
};

// The screens' message lines, and the flood-zone heading that also shows the level table's errors.
constexpr forms::ControlName kMessageLabels[] = {
    screens::section::label::Message, screens::form1::label::Message, screens::section::label::FloodZone};

struct CaptionUnit {
    const char* caption;
    const char* unit;
};
// Captions as the screens write them (trimmed); a caption not listed has no unit.
constexpr CaptionUnit kUnits[] = {
    // data of a channel or section
    {"Pendiente", "m/m"},
    {"Base", "m"},
    {"Talud", "H:V"},
    {"Altura (opcional)", "m"},
    {"Ancho zona", "m"},
    {"Diametro", "m"},
    {"Caudal", "m³/s"},
    {"Caudal Q", "m³/s"},
    {"Ancho:", "m"},
    {"Para calcular Socavación: Dmm?", "mm"},
    {"Yinicial", "m"},
    {"Yfinal", "m"},
    {"Abscisa m", "m"},
    {"Z fondo m", "m"},
    {"Ancho m", "m"},
    // results
    {"Profundidad Yn", "m"},
    {"Área", "m²"},
    {"Ancho T", "m"},
    {"Velocidad Vn", "m/s"},
    {"Y critica Yc", "m"},
    {"V critica Vc", "m/s"},
    {"Q lleno", "m³/s"},
    {"Q Máximo", "m³/s"},
    {"Yn final", "m"},
    {"Yc final", "m"},
    {"Yn m", "m"},
    {"Yc m", "m"},
    {"Q lleno m3/s", "m³/s"},
    {"Área m2", "m²"},
    {"Ancho sup. m", "m"},
    {"V media m/s", "m/s"},
    {"Vmedia m/s", "m/s"},
    {"Z agua m", "m"},
    {"Zagua m", "m"},
    {"Ysoc m", "m"},
};

// Column headings over boxes of words.
constexpr const char* kWordColumns[] = {"Perfil Tipo"};

const Control* LabelLeftOf(const forms::Screen& screen, const Control& box, bool& adjacent) {
    const Control* best = nullptr;
    int best_right = -1;
    for (const auto& c : screen.Controls()) {
        if (c.kind != Kind::Label || !SameRow(c.place, box.place)) continue;
        const int right = c.place.x + c.place.w;
        if (right > box.place.x + 4 || right <= best_right) continue;
        best = &c;
        best_right = right;
    }
    adjacent = best != nullptr;
    if (best)
        for (const auto& c : screen.Controls())
            if (c.kind == Kind::TextBox && &c != &box && SameRow(c.place, box.place) &&
                c.place.x >= best_right - 4 && c.place.x < box.place.x)
                adjacent = false;
    return best;
}

// The label standing closest above a control, its centre over it, at most reach units above.
const Control* LabelAbove(const forms::Screen& screen, const forms::Place& p, int reach, bool headings_only) {
    const Control* best = nullptr;
    for (const auto& c : screen.Controls()) {
        if (c.kind != Kind::Label || c.multiline || Trim(c.text).empty()) continue;
        const int bottom = c.place.y + c.place.h;
        const bool over = headings_only ? (c.place.x <= p.x && c.place.x + c.place.w > p.x)
                                        : (c.place.x + c.place.w / 2 >= p.x &&
                                           c.place.x + c.place.w / 2 < p.x + p.w && c.place.w <= 2 * p.w);
        if (!over || bottom > p.y || bottom < p.y - reach) continue;
        if (headings_only) {
            // A heading of a group of fields is written in capitals ("ZONA INUNDABLE:").
            const std::string t = Trim(c.text.substr(0, c.text.find('(')));
            if (std::any_of(t.begin(), t.end(), [](unsigned char ch) { return std::islower(ch); })) continue;
        }
        if (!best || bottom > best->place.y + best->place.h) best = &c;
    }
    return best;
}

// "ZONA INUNDABLE:" read as "zona inundable".
std::string AsWords(std::string heading) {
    heading = Trim(heading.substr(0, heading.find('(')));
    while (!heading.empty() && (heading.back() == ':' || heading.back() == ' ')) heading.pop_back();
    for (char& ch : heading) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    return heading;
}

}  // namespace

std::string UnitOfCaption(std::string_view caption) {
    const std::string c = Trim(caption);
    for (const auto& u : kUnits)
        if (c == u.caption) return u.unit;
    return "";
}

bool IsMessageLabel(const forms::Screen& screen, std::string_view label) {
    (void)screen;
    return std::any_of(std::begin(kMessageLabels), std::end(kMessageLabels),
                       [label](forms::ControlName m) { return m == label; });
}

BoxMeaning MeaningOf(const forms::Screen& screen, const Control& box, const std::vector<BoxTable>& tables) {
    BoxMeaning m;
    bool adjacent = false;
    const Control* row_label = LabelLeftOf(screen, box, adjacent);
    const std::string row_caption = row_label ? Trim(row_label->text) : "";

    const BoxTable* table = nullptr;
    int row = -1, column = -1;
    for (const auto& t : tables) {
        std::tie(row, column) = t.Locate(box.name);
        if (row >= 0) {
            table = &t;
            break;
        }
    }
    const std::string heading = table ? table->headings[static_cast<std::size_t>(column)] : "";

    if (table && (row_caption.empty() || IsWholeNumber(row_caption))) {
        // A cell of the level table (rows numbered beside it: its points) or of the profile table
        // (one row per section).
        bool numbered = false;
        bool first_adjacent = false;
        if (const Control* first = screen.Find(table->cells[static_cast<std::size_t>(row)].front())) {
            const Control* l = LabelLeftOf(screen, *first, first_adjacent);
            numbered = l && first_adjacent && IsWholeNumber(Trim(l->text));
        }
        m.caption = (heading.empty() ? box.name : heading) + (numbered ? ", punto " : ", sección ") +
                    std::to_string(row + 1);
        m.unit = UnitOfCaption(heading);
        m.numeric =
            std::find(std::begin(kWordColumns), std::end(kWordColumns), heading) == std::end(kWordColumns);
        return m;
    }
    std::string caption = row_caption;
    if (caption.empty())
        for (const auto& b : kBlankCaptions)
            if (screen.Name() == b.screen && b.box == box.name) caption = b.caption;
    m.unit = UnitOfCaption(caption);
    if (row_label && !caption.empty()) {
        // A caption that appears twice ("Rugosidad" of the channel and of the flood zone) takes the
        // heading of its group; a box of a grid of results takes its column's heading.
        const bool twice =
            std::count_if(screen.Controls().begin(), screen.Controls().end(), [&](const Control& c) {
                return c.kind == Kind::Label && Trim(c.text) == caption;
            }) > 1;
        if (twice)
            if (const Control* group = LabelAbove(screen, row_label->place, 60, true))
                caption += ", " + AsWords(group->text);
        if (const Control* column_heading = LabelAbove(screen, box.place, 300, false))
            caption += ", " + Trim(column_heading->text);
    }
    m.caption = caption.empty() ? box.name : caption;
    return m;
}

}  // namespace cauce::app
