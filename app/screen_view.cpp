#include "app/screen_view.hpp"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>
#include <cmath>

#include "app/decimal_input.hpp"
#include "app/dialogs.hpp"
#include "app/figure_widget.hpp"
#include "app/navigator.hpp"
#include "app/partial_number.hpp"
#include "app/save_refusal.hpp"
#include "app/section_sketch.hpp"
#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"
#include "screens/natural_screen.hpp"
#include "screens/reach_run.hpp"
#include "screens/registry.hpp"

namespace cauce::app {

namespace {

using forms::Kind;

QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

// A button caption with its '&' shown, not taken as a shortcut mark.
QString ButtonText(const std::string& s) {
    return Q(s).replace('&', QStringLiteral("&&"));
}

constexpr double kFontPixels = 12.5;  // at the reference size
const char* const kPartialProperty = "lecturaParcial";
const char* const kOutlineStyle = "QLineEdit { border: 2px solid #c0392b; }";
const QColor kStaleText(150, 150, 150);

// Captions of the buttons the desktop treats apart: the one that ends the program is never refused,
// the profile run is checked for sections not yet computed.
const std::string kSalir = "Salir";
const std::string kSectionButton = "(Y?)";
const std::string kProfileButton = "Perfiles";

const screens::NaturalScreen* Natural(const forms::Screen& s) {
    return dynamic_cast<const screens::NaturalScreen*>(&s);
}

}  // namespace

ScreenView::ScreenView(forms::Screen& model, Prompter& prompter, QWidget* parent)
    : QWidget(parent), model_(model), prompter_(prompter) {
    setObjectName(Q(model_.Name()));
    Build();
    Refresh();
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now && now->parentWidget() == this && TableOf(now->objectName().toStdString()))
            last_table_box_ = now->objectName().toStdString();
    });
}

void ScreenView::Build() {
    tables_ = FindTables(model_);
    for (std::size_t t = 0; t < tables_.size(); ++t)
        for (const auto& row : tables_[t].cells)
            for (const auto& name : row) table_of_[name] = t;

    QWidget* previous = nullptr;
    auto chain = [&previous](QWidget* w) {
        if (previous) QWidget::setTabOrder(previous, w);
        previous = w;
    };
    for (const auto& c : model_.Controls()) {
        QWidget* w = nullptr;
        const std::string name = c.name;
        switch (c.kind) {
            case Kind::TextBox: {
                auto* box = new QLineEdit(this);
                connect(box, &QLineEdit::textEdited, this,
                        [this, name](const QString& text) { Typed(name, text); });
                box->installEventFilter(this);
                if (table_of_.count(name)) {
                    box->setContextMenuPolicy(Qt::CustomContextMenu);
                    connect(box, &QLineEdit::customContextMenuRequested, this,
                            [this, box, name](const QPoint& at) { TableMenu(box, name, at); });
                }
                chain(box);
                auto* unit = new QLabel(box);
                unit->setObjectName(Q(name) + QStringLiteral("_unidad"));
                unit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
                unit->setAttribute(Qt::WA_TransparentForMouseEvents);
                QPalette up = unit->palette();
                up.setColor(QPalette::WindowText, QColor(110, 110, 110));
                unit->setPalette(up);
                unit->setAccessibleName(QString());
                units_[name] = unit;
                w = box;
                break;
            }
            case Kind::Label: {
                auto* label = new QLabel(this);
                label->setTextFormat(Qt::PlainText);
                label->setWordWrap(c.multiline);
                label->setAlignment(c.multiline ? Qt::AlignLeft | Qt::AlignTop
                                                : Qt::AlignLeft | Qt::AlignVCenter);
                w = label;
                break;
            }
            case Kind::CommandButton: {
                auto* button = new QPushButton(this);
                button->setAutoDefault(false);
                connect(button, &QPushButton::clicked, this, [this, name] { Press(name); });
                chain(button);
                w = button;
                break;
            }
            case Kind::PictureBox:
                w = new FigureWidget(this);
                break;
            case Kind::Data: {
                navigator_ = new Navigator(this);
                connect(navigator_, &Navigator::firstRequested, this, [this] { MoveRecord(Move::First); });
                connect(navigator_, &Navigator::previousRequested, this,
                        [this] { MoveRecord(Move::Previous); });
                connect(navigator_, &Navigator::nextRequested, this, [this] { MoveRecord(Move::Next); });
                connect(navigator_, &Navigator::lastRequested, this, [this] { MoveRecord(Move::Last); });
                for (QWidget* b :
                     {navigator_->First(), navigator_->Previous(), navigator_->Next(), navigator_->Last()})
                    chain(b);
                w = navigator_;
                break;
            }
        }
        w->setObjectName(Q(name));
        widgets_[name] = w;
    }
}

void ScreenView::Refresh() {
    refreshing_ = true;
    for (const auto& c : model_.Controls()) {
        QWidget* w = widgets_.at(c.name);
        const QString text = c.kind == Kind::TextBox ? DisplayText(c) : Q(c.text);
        switch (c.kind) {
            case Kind::TextBox: {
                auto* box = static_cast<QLineEdit*>(w);
                if (box->text() != text) {
                    box->setText(text);
                    box->setCursorPosition(0);
                }
                MarkReading(box);
                break;
            }
            case Kind::Label: {
                auto* label = static_cast<QLabel*>(w);
                if (label->text() != text) {
                    label->setText(text);
                    FitLabel(label);
                }
                break;
            }
            case Kind::CommandButton:
                static_cast<QPushButton*>(w)->setText(ButtonText(c.text));
                break;
            case Kind::PictureBox:
                static_cast<FigureWidget*>(w)->SetPicture(
                    c.text, c.name == screens::kSectionPicture ? SketchOf(model_) : std::nullopt);
                break;
            case Kind::Data:
                navigator_->Show(text, model_.Record(), model_.RecordCount(), model_.Source() != nullptr);
                break;
        }
        Decorate(c, w);
    }
    refreshing_ = false;
}

// Rows of a result table beyond the reach's sections show blank; the boxes keep what the screen wrote.
QString ScreenView::DisplayText(const forms::Control& c) const {
    if (const auto* natural = Natural(model_); natural && owner_.count(c.name)) {
        const int n = natural->State().N;
        if (const BoxTable* table = TableOf(c.name); table && n > 0 && table->Locate(c.name).first + 1 > n)
            return QString();
    }
    return Q(c.text);
}

BoxMeaning ScreenView::MeaningOfBox(std::string_view box) const {
    const forms::Control* c = model_.Find(box);
    return c ? MeaningOf(model_, *c, tables_) : BoxMeaning{std::string(box), "", true};
}

bool ScreenView::StaleFrom(std::string_view button) const {
    return edited_after_.count(std::string(button)) > 0;
}

std::string ScreenView::OwnerOf(std::string_view control) const {
    const auto it = owner_.find(control);
    return it == owner_.end() ? std::string() : it->second;
}

// What the desktop adds to a control: the words a screen reader says, the unit beside a number,
// the dimming of an out-of-date result and the outline of a refused box.
void ScreenView::Decorate(const forms::Control& c, QWidget* w) {
    const bool stale = stale_.count(c.name) > 0;
    QString description = Q(c.name);
    if (stale) description += QStringLiteral(" (desactualizado)");
    if (w->accessibleDescription() != description) w->setAccessibleDescription(description);
    switch (c.kind) {
        case Kind::TextBox: {
            auto* box = static_cast<QLineEdit*>(w);
            const BoxMeaning meaning = MeaningOf(model_, c, tables_);
            QString name = Q(meaning.caption);
            if (!meaning.unit.empty()) name += QStringLiteral(" (") + Q(meaning.unit) + QStringLiteral(")");
            if (box->accessibleName() != name) box->setAccessibleName(name);
            QLabel* unit = units_.at(c.name);
            if (unit->text() != Q(meaning.unit)) {
                unit->setText(Q(meaning.unit));
                PlaceUnit(box);
            }
            QPalette pal = box->palette();
            const QColor text_colour = stale ? kStaleText : QApplication::palette(box).color(QPalette::Text);
            if (pal.color(QPalette::Text) != text_colour) {
                pal.setColor(QPalette::Text, text_colour);
                box->setPalette(pal);
            }
            const QString style = outlined_.count(c.name) ? QString::fromLatin1(kOutlineStyle) : QString();
            if (box->styleSheet() != style) box->setStyleSheet(style);
            break;
        }
        case Kind::Label: {
            QPalette pal = w->palette();
            const QColor colour = stale ? kStaleText : QApplication::palette(w).color(QPalette::WindowText);
            if (pal.color(QPalette::WindowText) != colour) {
                pal.setColor(QPalette::WindowText, colour);
                w->setPalette(pal);
            }
            QFont f = w->font();
            if (f.italic() != stale) {
                f.setItalic(stale);
                w->setFont(f);
            }
            break;
        }
        case Kind::CommandButton: {
            const QString name = c.text.empty() ? QStringLiteral("(sin uso)") : Q(c.text);
            if (w->accessibleName() != name) w->setAccessibleName(name);
            break;
        }
        case Kind::PictureBox:
            if (w->accessibleName().isEmpty()) w->setAccessibleName(QStringLiteral("Figura"));
            break;
        case Kind::Data:
            break;
    }
}

void ScreenView::PlaceUnit(QLineEdit* box) {
    QLabel* unit = units_.at(box->objectName().toStdString());
    if (unit->text().isEmpty()) {
        unit->hide();
        box->setTextMargins(0, 0, 0, 0);
        return;
    }
    QFont f = font();
    f.setPixelSize(std::max(6, f.pixelSize() * 4 / 5));
    unit->setFont(f);
    const int w = QFontMetrics(f).horizontalAdvance(unit->text()) + 4;
    unit->setGeometry(box->width() - w - 2, 0, w, box->height());
    box->setTextMargins(0, 0, w, 0);
    unit->show();
}

void ScreenView::Typed(const std::string& name, const QString& text) {
    if (refreshing_) return;
    // A box fed by a formula of the workbook: typing replaces the formula, so the user is asked first
    // (once per record).
    if (const std::string formula = model_.FormulaOf(name);
        !formula.empty() && !formula_ok_.count({name, model_.Record()})) {
        if (!prompter_.Ask(window(),
                           QStringLiteral("La casilla toma su valor de la fórmula %1 del libro. ¿Reemplazar "
                                          "la fórmula por el valor que escribe?")
                               .arg(Q(formula)))) {
            Refresh();
            return;
        }
        formula_ok_.insert({name, model_.Record()});
    }
    model_.Type(name, text.toStdString());
    MarkReading(Box(name));
    // The box is the user's now; whatever a click computed before is out of date.
    owner_.erase(name);
    outlined_.erase(name);
    const std::size_t was = stale_.size();
    stale_.erase(name);
    // The depth the profile starts from is the profile's alone; any other datum may feed every result.
    const screens::ReachControls* reach = screens::ReachControlsOf(model_);
    const bool profile_depth = reach && name == reach->depth;
    for (const auto& [control, button] : owner_)
        if (!profile_depth || button == std::string(screens::section::button::Profiles))
            stale_.insert(control);
    for (const auto& button : clicked_)
        if (!profile_depth || button == std::string(screens::section::button::Profiles))
            edited_after_.insert(button);
    for (const auto& c : model_.Controls()) Decorate(c, widgets_.at(c.name));
    if (stale_.size() != was) emit staleChanged();
    // The picture follows the boxes it is drawn from.
    if (auto* picture = Picture(screens::kSectionPicture))
        picture->SetPicture(model_.Get(screens::kSectionPicture).text, SketchOf(model_));
}

void ScreenView::MarkReading(QLineEdit* box) {
    std::string tip = PartialTooltip(box->text().toStdString());
    const bool partial = !tip.empty();
    // A box fed by a formula shows it in italics, the formula in its tip.
    const std::string formula = model_.FormulaOf(box->objectName().toStdString());
    if (!formula.empty()) tip = "Fórmula del libro: " + formula + (tip.empty() ? "" : "\n" + tip);
    if (box->font().italic() != !formula.empty()) {
        QFont font = box->font();
        font.setItalic(!formula.empty());
        box->setFont(font);
    }
    if (box->property(kPartialProperty).toBool() == partial && box->toolTip() == Q(tip)) return;
    box->setProperty(kPartialProperty, partial);
    box->setToolTip(Q(tip));
    QPalette pal = box->palette();
    pal.setColor(QPalette::Base,
                 partial ? QColor(255, 236, 170) : QApplication::palette(box).color(QPalette::Base));
    box->setPalette(pal);
}

void ScreenView::Press(const std::string& name) {
    const bool was_closed = model_.Closed();
    if (const QString refusal = CheckBeforeClick(name); !refusal.isEmpty()) {
        Refresh();
        prompter_.Fault(window(), refusal);
        return;
    }
    std::map<std::string, unsigned long, std::less<>> before;
    for (const auto& c : model_.Controls()) before[c.name] = c.writes;
    const std::string caption = model_.Find(name) ? model_.Get(name).text : std::string();
    std::optional<Fault> error;
    try {
        error = model_.Click(name);
    } catch (const std::exception& e) {
        // Not a fault of the arithmetic: still no crash, and the user is told.
        error = Fault(FaultCode::Internal, std::string("Error interno: ") + e.what());
    }
    if (caption == kSectionButton)
        if (const auto* natural = Natural(model_)) sections_pressed_.insert(natural->State().i);
    AfterClick(name, before);
    if (caption == kSectionButton) MarkTableError();
    Refresh();
    emit pressed(Q(name));
    if (error) prompter_.Fault(window(), Q(WordFault(*error, caption, Suspects(caption))));
    // The model stays closed once "Salir" ran; if the user kept the program open then (a save that
    // failed), only that button asks again.
    if (model_.Closed() && (!was_closed || name == closing_button_)) {
        closing_button_ = name;
        emit exitRequested();
    }
}

// The controls the click wrote are its results, up to date; a section table found wrong outlines
// its level and leaves the results computed from it dimmed.
void ScreenView::AfterClick(const std::string& button,
                            const std::map<std::string, unsigned long, std::less<>>& before) {
    const std::size_t was = stale_.size();
    clicked_.insert(button);
    edited_after_.erase(button);
    for (const auto& c : model_.Controls()) {
        const auto it = before.find(c.name);
        if (it == before.end() || it->second == c.writes) continue;
        if (c.kind != Kind::TextBox && !(c.kind == Kind::Label && IsMessageLabel(model_, c.name))) continue;
        stale_.erase(c.name);
        if (c.text.empty()) {
            owner_.erase(c.name);
        } else {
            owner_[c.name] = button;
        }
    }
    for (auto it = outlined_.begin(); it != outlined_.end();)
        it = owner_.count(*it) ? outlined_.erase(it) : std::next(it);
    if (stale_.size() != was) emit staleChanged();
}

// "Revise las cotas Zi" or the widths' message after "(Y?)": the level where the table stops rising
// (or narrows) is outlined, and the section's results, computed from that table, are out of date.
void ScreenView::MarkTableError() {
    const auto* natural = Natural(model_);
    if (!natural) return;
    const natural::State& st = natural->State();
    const int i = st.i;
    std::vector<std::string> boxes;
    try {
        if (i < 0 || i > 50) return;
        for (int j = 2; j <= st.npts(i) && boxes.empty(); ++j) {
            if (st.Yj(i, j) - st.Yj(i, j - 1) <= 0) {
                boxes = {screens::section::LevelElevation(j - 1), screens::section::LevelElevation(j)};
            } else if (st.m(i, j) < 0) {
                boxes = {screens::section::LevelWidth(j - 1), screens::section::LevelWidth(j)};
            }
        }
    } catch (const Fault&) {
        return;
    }
    if (boxes.empty()) return;
    for (const auto& b : boxes) outlined_.insert(b);
    // The results of the section are those of the click that just ran.
    for (const auto& [control, owner] : owner_)
        if (model_.Get(control).kind == Kind::TextBox && !TableOf(control)) stale_.insert(control);
}

// The data boxes a fault of the click on `caption` may come from: those blank or zero among the
// quantities divided by. The flood zone's are named only when nothing else is suspect, and the
// depth of the profile only for the profile run.
std::vector<Suspect> ScreenView::Suspects(const std::string& caption) const {
    std::vector<Suspect> main, flood;
    for (const auto& c : model_.Controls()) {
        if (c.kind != Kind::TextBox || owner_.count(c.name)) continue;
        const BoxMeaning m = MeaningOf(model_, c, tables_);
        if (!IsDivisor(m.caption)) continue;
        const bool depth = m.caption == "Yinicial" || m.caption == "Yfinal";
        if (depth && caption != kProfileButton) continue;
        double v = 0;
        try {
            v = forms::Val(c.text);
        } catch (const Fault&) {
            continue;
        }
        if (v > 0) continue;
        (m.caption.find("zona inundable") != std::string::npos ? flood : main).push_back({m.caption, c.text});
    }
    return main.empty() ? flood : main;
}

QString ScreenView::CheckBeforeClick(const std::string& name) {
    const forms::Control* button = model_.Find(name);
    if (!button || button->text.empty() || button->text == kSalir) return QString();
    // Numbers read only in part are not computed with.
    QStringList lines;
    std::set<std::string, std::less<>> refused;
    for (const auto& c : model_.Controls()) {
        if (c.kind != Kind::TextBox || owner_.count(c.name)) continue;
        const BoxMeaning m = MeaningOf(model_, c, tables_);
        if (!m.numeric) continue;
        const auto read = ReadInPart(c.text);
        if (!read) continue;
        refused.insert(c.name);
        lines << QStringLiteral("• %1: \u00ab%2\u00bb se leería como %3.")
                     .arg(Q(m.caption), Q(c.text).trimmed(), Q(*read));
    }
    if (!refused.empty()) {
        outlined_.insert(refused.begin(), refused.end());
        return QStringLiteral(
                   "No se calculó con \u00ab%1\u00bb: %2 no se lee entera como un número.\n%3\n"
                   "Escriba solo el número, con punto o coma decimal, y vuelva a oprimir el botón.")
            .arg(ButtonText(button->text).replace(QStringLiteral("&&"), QStringLiteral("&")),
                 refused.size() == 1 ? QStringLiteral("una casilla")
                                     : QStringLiteral("%1 casillas").arg(refused.size()),
                 lines.join('\n'));
    }
    // The profile needs every section of the reach computed.
    if (button->text == kProfileButton)
        if (const auto* natural = Natural(model_)) {
            const int n = natural->State().N;
            QStringList missing;
            for (int k = 1; k < n && k <= 50; ++k)
                if (!sections_pressed_.count(k)) missing << QString::number(k);
            if (!missing.isEmpty())
                return QStringLiteral(
                           "\u00abPerfiles\u00bb necesita todas las secciones calculadas, y %1 de las %2 "
                           "no se calcularon con \u00ab(Y?)\u00bb: %3.\n"
                           "Use Cálculo > Calcular el tramo (F5): calcula cada sección y luego el perfil.")
                    .arg(missing.size())
                    .arg(n)
                    .arg(missing.join(QStringLiteral(", ")));
        }
    return QString();
}

QString ScreenView::RunReach(const std::vector<int>& records, const std::string& depth) {
    const screens::ReachControls* controls = screens::ReachControlsOf(model_);
    if (!controls) return QString();
    QStringList faults;
    std::map<std::string, unsigned long, std::less<>> before;
    const auto snapshot = [this, &before] {
        for (const auto& c : model_.Controls()) before[c.name] = c.writes;
    };
    const auto* natural = Natural(model_);
    screens::ReachPlan plan;
    plan.records = records;
    try {
        snapshot();
        screens::ComputeSections(model_, plan, [&](int record, const std::optional<Fault>& fault) {
            const int i = natural ? natural->State().i : 0;
            sections_pressed_.insert(i);
            AfterClick(std::string(screens::section::button::Section), before);
            MarkTableError();
            if (fault)
                faults << QStringLiteral("Sección %1 (registro %2): %3")
                              .arg(i)
                              .arg(record)
                              .arg(Q(WordFault(*fault, kSectionButton, Suspects(kSectionButton))));
            snapshot();
        });
        if (model_.Get(std::string(screens::section::button::Profiles)).text.empty()) {
            faults << QStringLiteral(
                "La última sección no se pudo calcular: \u00abPerfiles\u00bb no se activó.");
        } else if (const QString refusal = CheckBeforeClick(std::string(screens::section::button::Profiles));
                   !refusal.isEmpty()) {
            faults << refusal;
        } else {
            snapshot();
            const auto fault = screens::RunProfile(model_, depth);
            AfterClick(std::string(screens::section::button::Profiles), before);
            owner_.erase(controls->depth);  // typed for the user: still an input
            if (fault) faults << Q(WordFault(*fault, kProfileButton, Suspects(kProfileButton)));
        }
    } catch (const Fault& f) {
        faults << Q(f.what());
    }
    Refresh();
    emit pressed(Q(std::string(screens::section::button::Profiles)));
    return faults.join(QStringLiteral("\n\n"));
}

QString ScreenView::ConvertPasted(const QString& text) {
    QStringList lines = text.split('\n');
    std::optional<bool> comma_decimal;
    for (QString& line : lines) {
        QStringList cells = line.split('\t');
        for (QString& cell : cells) {
            const bool cr = cell.endsWith('\r');
            const std::string raw = (cr ? cell.chopped(1) : cell).toStdString();
            auto converted = ConvertSeparators(raw, comma_decimal);
            if (converted.ambiguous) {
                comma_decimal = prompter_.Ask(
                    window(),
                    QStringLiteral("En \u00ab%1\u00bb la coma puede separar los miles (%2) o los decimales "
                                   "(%3).\n¿La coma es el separador decimal?")
                        .arg(Q(raw).trimmed(), Q(ConvertSeparators(raw, false).text).trimmed(),
                             Q(ConvertSeparators(raw, true).text).trimmed()));
                converted = ConvertSeparators(raw, comma_decimal);
            }
            cell = Q(converted.text) + (cr ? QStringLiteral("\r") : QString());
        }
        line = cells.join('\t');
    }
    return lines.join('\n');
}

void ScreenView::MoveRecord(Move move) {
    std::map<std::string, std::string, std::less<>> shown;
    for (const auto& c : model_.Controls())
        if (c.kind == Kind::TextBox) shown[c.name] = c.text;
    const auto forget_refilled = [this, &shown] {
        for (const auto& c : model_.Controls())
            if (c.kind == Kind::TextBox && shown[c.name] != c.text) {
                owner_.erase(c.name);
                stale_.erase(c.name);
                outlined_.erase(c.name);
            }
    };
    // By Move, in its order.
    static constexpr void (forms::Screen::*kMoves[])() = {&forms::Screen::MoveFirst,
                                                          &forms::Screen::MovePrevious,
                                                          &forms::Screen::MoveNext, &forms::Screen::MoveLast};
    const bool moved =
        SaveSettling(model_, prompter_, window(), [&] { (model_.*kMoves[static_cast<int>(move)])(); });
    forget_refilled();
    Refresh();
    emit staleChanged();
    if (!moved) return;
    if (!model_.SaveNote().empty()) emit note(Q(model_.SaveNote()));
    emit recordMoved();
}

QWidget* ScreenView::ControlWidget(std::string_view name) const {
    const auto it = widgets_.find(name);
    return it == widgets_.end() ? nullptr : it->second;
}
QLineEdit* ScreenView::Box(std::string_view name) const {
    return qobject_cast<QLineEdit*>(ControlWidget(name));
}
QLabel* ScreenView::Caption(std::string_view name) const {
    return qobject_cast<QLabel*>(ControlWidget(name));
}
QPushButton* ScreenView::Button(std::string_view name) const {
    return qobject_cast<QPushButton*>(ControlWidget(name));
}
FigureWidget* ScreenView::Picture(std::string_view name) const {
    return qobject_cast<FigureWidget*>(ControlWidget(name));
}

std::vector<QWidget*> ScreenView::TabChain() const {
    std::vector<QWidget*> chain;
    for (const auto& c : model_.Controls()) {
        QWidget* w = widgets_.at(c.name);
        if (c.kind == Kind::TextBox || c.kind == Kind::CommandButton) chain.push_back(w);
        if (c.kind == Kind::Data)
            for (QWidget* b :
                 {navigator_->First(), navigator_->Previous(), navigator_->Next(), navigator_->Last()})
                chain.push_back(b);
    }
    return chain;
}

// --- tables and the clipboard -------------------------------------------------------------------

const BoxTable* ScreenView::TableOf(std::string_view box) const {
    const auto it = table_of_.find(box);
    return it == table_of_.end() ? nullptr : &tables_[it->second];
}

std::string ScreenView::FocusedBox() const {
    auto* box = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    return box && box->parentWidget() == this ? box->objectName().toStdString() : std::string();
}

bool ScreenView::CopyTable(std::string_view box) {
    const BoxTable* table = TableOf(box);
    if (!table) return false;
    QApplication::clipboard()->setText(Q(app::CopyTable(model_, *table)));
    return true;
}

bool ScreenView::PasteTable(std::string_view box, const QString& text) {
    const BoxTable* table = TableOf(box);
    if (!table) return false;
    const auto [row, column] = table->Locate(box);
    const QString converted = ConvertPasted(text);
    std::map<std::string, std::string, std::less<>> shown;
    for (const auto& c : model_.Controls()) shown[c.name] = c.text;
    app::PasteTable(model_, *table, row, column, converted.toStdString());
    // Pasted cells are typed by the user: what was computed from the old ones is out of date.
    bool changed = false;
    for (const auto& c : model_.Controls())
        if (c.kind == Kind::TextBox && shown[c.name] != c.text) {
            owner_.erase(c.name);
            outlined_.erase(c.name);
            stale_.erase(c.name);
            changed = true;
        }
    if (changed) {
        for (const auto& [control, button] : owner_) stale_.insert(control);
        edited_after_.insert(clicked_.begin(), clicked_.end());
    }
    Refresh();
    if (changed) emit staleChanged();
    return true;
}

void ScreenView::TableMenu(QLineEdit* box, const std::string& name, const QPoint& at) {
    QMenu* menu = box->createStandardContextMenu();
    menu->addSeparator();
    menu->addAction(QStringLiteral("Copiar la tabla"), this, [this, name] { CopyTable(name); });
    menu->addAction(QStringLiteral("Pegar en la tabla desde aquí"), this,
                    [this, name] { PasteTable(name, QApplication::clipboard()->text()); });
    menu->exec(box->mapToGlobal(at));
    delete menu;
}

bool ScreenView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    auto* box = qobject_cast<QLineEdit*>(watched);
    const std::string name = watched->objectName().toStdString();
    if (!box || !model_.Find(name)) return QWidget::eventFilter(watched, event);
    const bool numeric = MeaningOfBox(name).numeric;
    // A comma typed into a number box is its decimal point, as the keypad's decimal key gives it.
    if (numeric && key->text() == QStringLiteral(",")) {
        QKeyEvent point(QEvent::KeyPress, Qt::Key_Period, key->modifiers(), QStringLiteral("."));
        QApplication::sendEvent(box, &point);
        return true;
    }
    if (key->matches(QKeySequence::Paste)) {
        QString text = QApplication::clipboard()->text();
        while (text.endsWith('\n') || text.endsWith('\r')) text.chop(1);
        // Pasting cells of a spreadsheet into a box of a table fills the table from that box on.
        if (TableOf(name) && (text.contains('\t') || text.contains('\n'))) return PasteTable(name, text);
        if (numeric && !text.contains('\n')) {
            box->insert(ConvertPasted(text.trimmed()));
            Typed(name, box->text());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

// --- layout -----------------------------------------------------------------------------------

double ScreenView::Scale() const {
    return std::min(width() / static_cast<double>(kWidth), height() / static_cast<double>(kHeight));
}

void ScreenView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    PlaceWidgets();
}

void ScreenView::PlaceWidgets() {
    const double s = Scale();
    if (s <= 0) return;
    QFont f = font();
    f.setPixelSize(std::max(7, static_cast<int>(std::lround(kFontPixels * s))));
    setFont(f);
    const double ox = (width() - kWidth * s) / 2;
    for (const auto& c : model_.Controls()) {
        const QRect r(
            static_cast<int>(std::lround(ox + c.place.x * s)), static_cast<int>(std::lround(c.place.y * s)),
            static_cast<int>(std::lround(c.place.w * s)), static_cast<int>(std::lround(c.place.h * s)));
        QWidget* w = widgets_.at(c.name);
        w->setGeometry(r);
        if (c.kind == Kind::Label) FitLabel(static_cast<QLabel*>(w));
        if (c.kind == Kind::TextBox) PlaceUnit(static_cast<QLineEdit*>(w));
    }
}

// A caption a little too long for its place is written a little smaller rather than cut off.
void ScreenView::FitLabel(QLabel* label) const {
    QFont f = font();
    const int base = f.pixelSize();
    const QString text = label->text();
    const QRect box = label->contentsRect();
    for (int size = base; size >= std::max(6, base * 3 / 4); --size) {
        f.setPixelSize(size);
        const QFontMetrics fm(f);
        const bool fits =
            label->wordWrap()
                ? fm.boundingRect(QRect(0, 0, box.width(), 1 << 20), Qt::TextWordWrap, text).height() <=
                      box.height()
                : fm.horizontalAdvance(text) <= box.width();
        if (fits) break;
    }
    label->setFont(f);
}

}  // namespace cauce::app
