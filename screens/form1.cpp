#include "screens/form1.hpp"

#include <initializer_list>

#include "forms/format.hpp"

namespace cauce::screens {

using forms::Format;
using forms::Kind;
using prismatic::ConduitFigure;
using prismatic::FloodStatus;
using prismatic::SectionType;

namespace {

// Messages (Label21).
constexpr const char* kDefinaSeccion = "Por favor defina los valores de la Sección Transversal.";
constexpr const char* kFaltaRugosidad = "Falta la Rugosidad";
constexpr const char* kNoHayPendiente = "No hay pendiente. No hay Yn";
constexpr const char* kIncluyaZona =
    "Por favor incluya en las casillas correspondientes los valores de:  Ancho de zona inundable y "
    "Rugosidad.";
constexpr const char* kDesbordamiento = "HAY DESBORDAMIENTO";
constexpr const char* kFaltaPendiente = "Falta la pendiente";
constexpr const char* kFaltaDiametro = "Falta el diámetro";
constexpr const char* kFaltaCaudal = "Falta el caudal";
constexpr const char* kCaudalMayorQm =
    "El Caudal no puede ser mayor que Qm. Disminuya el Caudal y oprima Yn?";
constexpr const char* kFaltaProfundidad = " Falta la Profundidad Yn";
constexpr const char* kTuboLleno = "Tubo lleno";
constexpr const char* kYnMayorDiametro = "Yn debe ser menor que el diámetro. Disminuya el valor de Yn ";

// Texts written into result boxes.
constexpr const char* kSinLimite = "Sin límite";
constexpr const char* kYcSobreOrillas = "Yc > h ";
constexpr const char* kSubcritico = "Fr < 1";
constexpr const char* kSupercritico = "Fr > 1";

// Label17 wraps by runs of blanks inside one string: each run is wider than the label, so the text
// after it starts a new line.
std::string Lines(std::initializer_list<const char*> lines) {
    std::string out;
    for (const char* line : lines) {
        if (!out.empty()) out += std::string(98, ' ');
        out += line;
    }
    return out;
}

const std::string kSeleccione = "SELECCIONE EL TIPO DE CANAL";
const std::string kTrapezoidalLayout =
    Lines({"Entre los datos del CANAL PRINCIPAL y la ZONA INUNDABLE y oprima:", "Yn? para calcular Ynormal",
           "Q? para calcular el Caudal"});
const std::string kCircularLayout = Lines(
    {"Registre los datos del canal y luego:", "Yn? para calcular Ynormal, Q? para calcular el CAUDAL."});
const std::string kDadoCaudal =
    Lines({"Dado el Caudal calcule Ynormal:",
           "Incluya el valor del CAUDAL (m3/s ) en la casilla correspondiente y luego oprima Yn?"});
const std::string kDadoYnCanal =
    Lines({"DADO Yn CALCULE EL CAUDAL.",
           "Incluya el valor de la Profundidad Yn en la casilla correspondiente y luego oprima Q?"});
const std::string kDadoYnConducto =
    Lines({"Dado Ynormal calcule el caudal:",
           "Incluya el valor de Yn en la casilla correspondiente y luego oprima Q?"});

// The type button's caption and the figures of each shape, by SectionType (figures are loaded by
// bare file name from the working folder).
struct ShapeNames {
    const char* caption;
    const char* figure;
    const char* flood_figure;
};
constexpr ShapeNames kShapes[] = {
    {"TRAPEZOIDAL", "Ctrape1.wmf", "Ctrapez.wmf"},  // SectionType::Trapezoidal
    {"TRIANGULAR", "Ctrian1.wmf", "Ctrian.wmf"},    // SectionType::Triangular
    {"RECTANGULAR", "Crectg1.wmf", "Crectg.wmf"},   // SectionType::Rectangular
};
const ShapeNames& Shape(SectionType type) {
    return kShapes[static_cast<int>(type)];
}

// The conduit's figure by ConduitFigure: Low, Middle, High.
constexpr const char* kConduitFigures[] = {"circulo.wmf", "circulo2.wmf", "circulo3.wmf"};
const char* ConduitFigureName(ConduitFigure figure) {
    return kConduitFigures[static_cast<int>(figure)];
}

std::string T(int n) {
    return "Text" + std::to_string(n);
}
std::string L(int n) {
    return "Label" + std::to_string(n);
}

}  // namespace

// A refused workflow names what is missing in the message line.
bool Form1::Refused(bool refused, const char* message) {
    if (refused) Set("Label21", message);
    return refused;
}

Form1::Form1() : Screen("Form1", "Cauce - Flujo uniforme en canales y conductos") {
    BindSheet("Canales");
    DeclareControls();
    OnClick(form1::button::Trapezoidal, [this] { Command1Click(); });
    OnClick(form1::button::Circular, [this] { Command2Click(); });
    OnClick(form1::button::NormalDepth, [this] { Command4Click(); });
    OnClick(form1::button::Discharge, [this] { Command5Click(); });
    OnClick(form1::button::ConduitNormalDepth, [this] { Command6Click(); });
    OnClick(form1::button::ConduitDischarge, [this] { Command7Click(); });
    OnClick(form1::button::Exit, [this] { Close(); });
    FormLoad();
}

// Reference layout 1000 x 720; declaration order is the tab order. Left: the data of the main
// channel and of the flood zone. Right: the figure, then the results as a table whose columns are
// the whole channel ("Canal": Text8..Text11, Text24, Text26), the main channel (Text15..Text18,
// Text27) and the flood zone (Text19..Text23); the flood-zone computation writes the three headings.
//
// The boxes the flood-zone display leaves to us follow the table's rows: Text16 and Text20 are the
// main-channel and flood-zone flow areas Am and Af (row "Área"), Text23 the flood zone's Froude
// number Vf / sqrt(9.81 Af / Wf), its hydraulic depth being its area over its width. A flood zone as
// wide as the channel has no area: its velocity and Froude number read 0.00. Text24, the whole
// channel's cell of that row, is cleared with the results and not written by any computation.
void Form1::DeclareControls() {
    Add({"Label23", Kind::Label, "ZORVENA EN FLUJO UNIFORME", "", {20, 10, 600, 30}});
    Add({"Label17", Kind::Label, "", "", {20, 44, 600, 66}, true});
    Add({"Command1", Kind::CommandButton, "TRAPEZOIDAL", "", {640, 10, 165, 36}});
    Add({"Command2", Kind::CommandButton, "CIRCULAR", "", {815, 10, 165, 36}});

    // The data: LabelN beside TextN, bound to field.
    const int lx = 20, h = 22;
    const auto data_row = [&](int n, const char* caption, const char* field, int y) {
        Add({L(n), Kind::Label, caption, "", {lx, y, 165, h}});
        Add({T(n), Kind::TextBox, "", field, {190, y, 90, h}});
    };
    Add({"Label15", Kind::Label, "CANAL PRINCIPAL", "", {lx, 124, 300, h}});
    data_row(1, "Rugosidad", "Rugosidad", 150);
    data_row(2, "Pendiente", "Pendiente", 178);
    data_row(3, "Base", "Base", 206);
    data_row(4, "Talud", "Talud", 234);
    data_row(5, "Altura (opcional)", "", 262);
    Add({"Label16", Kind::Label, "ZONA INUNDABLE  (opcional)", "", {lx, 300, 300, h}});
    data_row(6, "Ancho zona", "", 326);
    data_row(7, "Rugosidad", "", 354);

    // The table: a row's caption, then its boxes in the columns from the first on.
    const int rx = 400, c1 = 565, c2 = 705, c3 = 845, cw = 130;
    const auto table_row = [&](int label, const char* caption, int y, std::initializer_list<int> boxes) {
        Add({L(label), Kind::Label, caption, "", {rx, y, 160, h}});
        int x = c1;
        for (const int box : boxes) {
            Add({T(box), Kind::TextBox, "", "", {x, y, cw, h}});
            x += c2 - c1;
        }
    };
    Add({"Label18", Kind::Label, "", "", {c1, 320, cw, h}});
    Add({"Label19", Kind::Label, "", "", {c2, 320, cw, h}});
    Add({"Label20", Kind::Label, "", "", {c3, 320, cw, h}});
    // The discharge and the depth are data or results by workflow: the first column of the table.
    table_row(8, "Caudal Q", 348, {8});
    table_row(9, "Profundidad Yn", 376, {9});

    // Yn? and Q ? of the trapezoidal family, then of the conduit: only one pair has captions.
    for (int c = 4; c <= 7; ++c)
        Add({"Command" + std::to_string(c), Kind::CommandButton, "", "", {lx + 85 * (c - 4), 400, 80, 34}});

    Add({"Text15", Kind::TextBox, "", "", {c2, 348, cw, h}});
    Add({"Text19", Kind::TextBox, "", "", {c3, 348, cw, h}});
    table_row(24, "Área", 404, {24, 16, 20});
    table_row(10, "Ancho T", 432, {10, 17, 21});
    table_row(11, "Velocidad Vn", 460, {11, 18, 22});
    table_row(22, "Froude", 488, {26, 27, 23});
    table_row(12, "Y critica Yc", 516, {12});
    table_row(13, "V critica Vc", 544, {13});
    table_row(14, "", 572, {14});

    Add({"Picture1", Kind::PictureBox, "", "", {640, 56, 340, 250}});
    Add({"Label21", Kind::Label, "", "", {lx, 612, 600, 46}, true});
    Add({"Data1", Kind::Data, "Canales", "", {lx, 670, 400, 30}});
    Add({"Command3", Kind::CommandButton, "Salir", "", {880, 666, 100, 34}});
}

// The screen opens asking for the family; "Yn?" and "Q ?" have no caption (and so do nothing)
// until a type button has set a layout.
void Form1::FormLoad() {
    Set("Label17", kSeleccione);
    Set("Label21", "");
    Set("Command1", "TRAPEZOIDAL");
    Set("Command2", "CIRCULAR");
    for (int c = 4; c <= 7; ++c) Set("Command" + std::to_string(c), "");
}

// Choosing a type clears the data boxes. Unlike the legacy screen, the cleared boxes are not taken
// as edits of the bound record: leaving the record afterwards does not blank its cells.
void Form1::Inicial1() {
    for (int t = 1; t <= 9; ++t) {
        Set(T(t), "");
        NotAnEdit(T(t));
    }
}

void Form1::Inicial2() {
    for (int t = 10; t <= 24; ++t) Set(T(t), "");
    Set("Text26", "");
    Set("Text27", "");
    for (int l = 18; l <= 21; ++l) Set(L(l), "");
}

void Form1::Command1Click() {
    Set("Command1", "TRAPEZOIDAL");
    Set("Command2", "Cr");
    Inicial1();
    Inicial2();
    Set("Picture1", Shape(SectionType::Trapezoidal).figure);
    Set("Label17", kTrapezoidalLayout);
    Set("Label3", "Base");
    Set("Label4", "Talud");
    Set("Label5", "Altura (opcional)");
    Set("Label6", "Ancho zona");
    Set("Label7", "Rugosidad");
    Set("Label14", "");
    Set("Label15", "CANAL PRINCIPAL");
    Set("Label16", "ZONA INUNDABLE  (opcional)");
    Set("Command4", "Yn?");
    Set("Command5", "Q ?");
    Set("Command6", "");
    Set("Command7", "");
}

void Form1::Command2Click() {
    Set("Command2", "CIRCULAR");
    Set("Command1", "Tp");
    Inicial1();
    Inicial2();
    Set("Picture1", ConduitFigureName(ConduitFigure::Low));
    Set("Label17", kCircularLayout);
    Set("Label3", "Diametro");
    for (int l : {4, 5, 6, 7, 14, 15, 16}) Set(L(l), "");
    Set("Command4", "");
    Set("Command5", "");
    Set("Command6", "Yn?");
    Set("Command7", "Q ?");
}

// --- trapezoidal family ---------------------------------------------------------------------------

void Form1::Datos() {
    st_.n = ValOf("Text1");
    st_.S = ValOf("Text2");
    st_.b = ValOf("Text3");
    st_.z = ValOf("Text4");
    st_.h = ValOf("Text5");
    st_.Bz = ValOf("Text6");
    st_.nz = ValOf("Text7");
    const SectionType type = st_.Datos();
    Set("Command1", Shape(type).caption);
    Set("Picture1", Shape(type).figure);
}

void Form1::Lleno() {
    Set("Label14", "Q lleno");
    st_.Lleno();
    Set("Text14", Format(st_.Qb, "0.000"));
}

void Form1::Critica() {
    st_.Critica();
    Set("Text12", Format(st_.Yc, "0.00"));
    Set("Text13", Format(st_.Vc, "0.00"));
}

// "Yn?": the normal depth for the discharge in Text8. The bank-full discharge comes before the
// checks of the roughness and the slope; without a bank height the flood zone never engages.
void Form1::Command4Click() {
    Inicial2();
    Datos();
    if (Refused(st_.b + st_.z == 0, kDefinaSeccion)) return;
    Set("Label17", kDadoCaudal);
    if (st_.h > 0) Lleno();
    st_.Q = ValOf("Text8");
    if (st_.h == 0) {
        Set("Text5", kSinLimite);
        st_.Qb = st_.Q + 1;
    }
    if (st_.Q == 0) return;
    Trapecio();
}

void Form1::Trapecio() {
    if (Refused(st_.n == 0, kFaltaRugosidad) || Refused(st_.S <= 0, kNoHayPendiente)) return;
    if (st_.Q > st_.Qb) {
        Qdesbord();
        return;
    }
    st_.Qc = st_.Q;
    Critica();
    st_.Normal();
    Set("Text9", Format(st_.Yn, "0.00"));
    Set("Text10", Format(st_.T, "0.00"));
    Set("Text26", Format(st_.F, "0.000"));
    Set("Text11", Format(st_.Vn, "0.00"));
    if (st_.h == 0) Set("Text14", "");
}

// "Q ?": the discharge for the depth in Text9; above the banks the flood zone carries its share.
void Form1::Command5Click() {
    Set("Label17", kDadoYnCanal);
    Inicial2();
    Datos();
    if (Refused(st_.b + st_.z == 0, kDefinaSeccion)) return;
    if (Refused(st_.n == 0, kFaltaRugosidad) || Refused(st_.S <= 0, kNoHayPendiente)) return;
    if (st_.h == 0) Set("Text5", kSinLimite);
    if (st_.h > 0) Lleno();
    st_.Yn = ValOf("Text9");
    if (st_.Yn == 0) return;
    if (st_.Yn <= st_.h || st_.h == 0) {
        st_.Normal2();
        Set("Text11", Format(st_.Vn, "0.00"));
        Set("Text10", Format(st_.T, "0.00"));
        Set("Text26", Format(st_.F, "0.000"));
        Set("Text8", Format(st_.Q, "0.000"));
        st_.Qc = st_.Q;
        Critica();
        return;
    }
    st_.d = st_.Yn - st_.h;
    if (Refused(st_.Bz == 0 || st_.nz == 0, kIncluyaZona)) return;
    st_.Qdesbord2();
    st_.Q = st_.Qt;
    Set("Text8", Format(st_.Q, "0.000"));
    Qdesbord3();
}

void Form1::Qdesbord() {
    if (Refused(st_.Qdesbord() == FloodStatus::MissingZone, kIncluyaZona)) return;
    Qdesbord3();
}

void Form1::Qdesbord3() {
    Set("Label18", "Canal");
    Set("Label19", "Canal principal");
    Set("Label20", "Planicie inundable");
    Set("Label21", kDesbordamiento);
    Set("Picture1", Shape(st_.Datos()).flood_figure);
    const bool critical_above_banks = st_.Qdesbord3();
    Set("Text9", Format(st_.Yn, "0.00"));
    Set("Text16", Format(st_.Am, "0.00"));
    Set("Text20", Format(st_.Af, "0.00"));
    Set("Text15", Format(st_.Qm, "0.000"));
    Set("Text19", Format(st_.Qrest, "0.000"));
    Set("Text6", Format(st_.Bz, "0.00"));
    Set("Text7", Format(st_.nz, "0.000"));
    Set("Text11", Format(st_.Vmean, "0.00"));
    Set("Text18", Format(st_.Vm, "0.00"));
    Set("Text22", Format(st_.Vf, "0.00"));
    Set("Text10", Format(st_.Tt, "0.00"));
    Set("Text17", Format(st_.Tm, "0.00"));
    Set("Text21", Format(st_.Wf, "0.00"));
    Set("Text27", Format(st_.Fm, "0.000"));
    Set("Text23", Format(st_.Ff, "0.00"));
    if (critical_above_banks) {
        Set("Text12", kYcSobreOrillas);
    } else {
        st_.Qc = st_.Q;
        Critica();
    }
    // With the critical depth above the banks, Yc is the one the screen last computed.
    Set("Text26", st_.Yc < st_.Yn ? kSubcritico : kSupercritico);
}

// --- circular conduit -----------------------------------------------------------------------------

// Only a zero slope is refused here: a negative one stops at the full-conduit discharge.
bool Form1::ConduitData() {
    st_.n = ValOf("Text1");
    if (Refused(st_.n == 0, kFaltaRugosidad)) return false;
    st_.S = ValOf("Text2");
    if (Refused(st_.S == 0, kFaltaPendiente)) return false;
    st_.D = ValOf("Text3");
    if (Refused(st_.D == 0, kFaltaDiametro)) return false;
    return true;
}

void Form1::Maximo() {
    st_.Maximo();
    Set("Label4", "Q lleno");
    Set("Label5", "Q Máximo");
    Set("Label14", "Q/Qlleno");
    Set("Label6", "Yn/D");
    Set("Label7", "Vn/Vlleno");
    Set("Text4", Format(st_.Qlleno, "0.000"));
    NotAnEdit("Text4");  // the conduit's full discharge is not the record's side slope
    Set("Text5", Format(st_.Qm, "0.000"));
}

void Form1::Final() {
    const ConduitFigure figure = st_.Final();
    Set("Text14", Format(st_.QQlleno, "0.00"));
    Set("Text9", Format(st_.Yn, "0.00"));
    Set("Picture1", ConduitFigureName(figure));
    Set("Text6", Format(st_.YnD, "0.00"));
    Set("Text7", Format(st_.VnVlleno, "0.00"));
    Set("Text11", Format(st_.Vn, "0.00"));
    Set("Text10", Format(st_.T, "0.00"));
    Set("Text26", Format(st_.F, "0.000"));
    st_.Criticac();
    Set("Text12", Format(st_.Yc, "0.00"));
    Set("Text13", Format(st_.Vc, "0.00"));
}

// The conduit flowing full. Its ratios to the full conduit (Text4, Text6, Text7, Text14 in this
// layout) say nothing new, so their captions and boxes are blanked; the Froude number, undefined
// without a free surface, shows the fixed value 0.
void Form1::Clleno() {
    st_.Clleno();
    Set("Text8", Format(st_.Q, "0.000"));
    Set("Text11", Format(st_.Vn, "0.00"));
    for (int l : {4, 6, 7, 14}) {
        Set(L(l), "");
        Set(T(l), "");
    }
    NotAnEdit("Text4");
    Set("Text26", Format(st_.F, "0.000"));
}

// "Yn?": the normal depth for the discharge in Text8, refused above the maximum discharge Qm.
void Form1::Command6Click() {
    if (!ConduitData()) return;
    Set("Label17", kDadoCaudal);
    st_.Q = ValOf("Text8");
    Maximo();
    if (st_.Q == 0) {
        Set("Label21", kFaltaCaudal);
    } else if (st_.Q > st_.Qm) {
        Set("Label21", kCaudalMayorQm);
    } else {
        Set("Label21", "");
        st_.Circular();
        Final();
    }
}

// "Q ?": the discharge at the depth in Text9; the message line is left as it was.
void Form1::Command7Click() {
    Set("Label17", kDadoYnConducto);
    if (!ConduitData()) return;
    st_.Yn = ValOf("Text9");
    if (Refused(st_.Yn == 0, kFaltaProfundidad)) return;
    if (st_.Yn == st_.D) {
        Set("Label21", kTuboLleno);
        Clleno();
    } else if (st_.Yn > st_.D) {
        Set("Label21", kYnMayorDiametro);
    } else {
        Maximo();
        st_.y = st_.Yn;
        st_.Q = st_.Geometria();
        Set("Text8", Format(st_.Q, "0.000"));
        Final();
    }
}

std::unique_ptr<forms::Screen> MakeForm1() {
    return std::make_unique<Form1>();
}

}  // namespace cauce::screens
