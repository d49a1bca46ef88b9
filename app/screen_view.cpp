#include "app/screen_view.hpp"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <cmath>

#include "app/dialogs.hpp"
#include "app/figure_widget.hpp"
#include "app/navigator.hpp"
#include "app/partial_number.hpp"
#include "app/section_sketch.hpp"
#include "hydraulics/fault.hpp"
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
        const QString text = Q(c.text);
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
    }
    refreshing_ = false;
}

void ScreenView::Typed(const std::string& name, const QString& text) {
    if (refreshing_) return;
    model_.Type(name, text.toStdString());
    MarkReading(Box(name));
    // The picture follows the boxes it is drawn from.
    if (auto* picture = Picture(screens::kSectionPicture))
        picture->SetPicture(model_.Get(screens::kSectionPicture).text, SketchOf(model_));
}

void ScreenView::MarkReading(QLineEdit* box) {
    const std::string tip = PartialTooltip(box->text().toStdString());
    const bool partial = !tip.empty();
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
    std::optional<std::string> error;
    try {
        error = model_.Click(name);
    } catch (const std::exception& e) {
        // Not a fault of the arithmetic: still no crash, and the user is told.
        error = std::string("Error interno: ") + e.what();
    }
    Refresh();
    emit pressed(Q(name));
    if (error) prompter_.Fault(window(), Q(*error));
    // The model stays closed once "Salir" ran; if the user kept the program open then (a save that
    // failed), only that button asks again.
    if (model_.Closed() && (!was_closed || name == closing_button_)) {
        closing_button_ = name;
        emit exitRequested();
    }
}

void ScreenView::MoveRecord(Move move) {
    try {
        switch (move) {
            case Move::First:
                model_.MoveFirst();
                break;
            case Move::Previous:
                model_.MovePrevious();
                break;
            case Move::Next:
                model_.MoveNext();
                break;
            case Move::Last:
                model_.MoveLast();
                break;
        }
    } catch (const Fault& f) {
        Refresh();
        prompter_.Fault(window(), Q(f.what()));
        return;
    }
    Refresh();
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
    app::PasteTable(model_, *table, row, column, text.toStdString());
    Refresh();
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
    // Pasting cells of a spreadsheet into a box of a table fills the table from that box on.
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Paste)) {
        const std::string name = watched->objectName().toStdString();
        QString text = QApplication::clipboard()->text();
        while (text.endsWith('\n') || text.endsWith('\r')) text.chop(1);
        if (TableOf(name) && (text.contains('\t') || text.contains('\n'))) return PasteTable(name, text);
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
