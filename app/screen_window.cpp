#include "app/screen_window.hpp"

#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>

#include "app/decimal_input.hpp"
#include "app/desktop.hpp"
#include "app/dialogs.hpp"
#include "app/file_actions.hpp"
#include "app/help_actions.hpp"
#include "app/profile_chart.hpp"
#include "app/save_refusal.hpp"
#include "app/screen_view.hpp"
#include "app/standard_profile.hpp"
#include "app/survey_dialog.hpp"
#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"
#include "screens/reach_run.hpp"
#include "screens/registry.hpp"

namespace cauce::app {

namespace {
QString Q(const std::string& s) {
    return QString::fromStdString(s);
}
}  // namespace

ScreenWindow::ScreenWindow(std::unique_ptr<forms::Screen> model, Desktop& desktop, Prompter& prompter)
    : model_(std::move(model)), desktop_(&desktop), prompter_(prompter) {
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(Q(model_->Name()));
    setWindowTitle(Q(model_->Title()));

    view_ = new ScreenView(*model_, prompter_, this);
    chart_ = new ProfileChart(this);
    chart_->hide();
    profile_tabs_ = new ProfileTabs(chart_, this);
    profile_tabs_->hide();
    splitter_ = new QSplitter(Qt::Horizontal, this);
    splitter_->addWidget(view_);
    splitter_->addWidget(profile_tabs_);
    splitter_->setStretchFactor(0, 3);
    splitter_->setStretchFactor(1, 2);
    splitter_->setChildrenCollapsible(false);
    setCentralWidget(splitter_);
    status_ = new QLabel(this);
    statusBar()->addWidget(status_, 1);
    BuildMenus();
    BuildComputeMenu();

    ConnectView();

    // The reference layout at its own size, or smaller on a small screen.
    double width = ScreenView::kWidth, height = ScreenView::kHeight;
    const QRect avail = Available();
    const double fit = std::min({1.0, avail.width() * 0.92 / width, avail.height() * 0.85 / height});
    width *= fit;
    height *= fit;
    resize(static_cast<int>(width),
           static_cast<int>(height) + menuBar()->sizeHint().height() + statusBar()->sizeHint().height());
    Update();
}

void ScreenWindow::ConnectView() {
    connect(view_, &ScreenView::pressed, this, [this](const QString& name) {
        // The plot belongs to the click that changed it.
        const auto points = ProfileOf(*model_);
        if (!points.empty() && (chart_owner_.isEmpty() || points.size() != chart_->Points().size() ||
                                !std::equal(points.begin(), points.end(), chart_->Points().begin(),
                                            [](const ProfilePoint& a, const ProfilePoint& b) {
                                                return a.water == b.water && a.type == b.type;
                                            })))
            chart_owner_ = name;
        Update();
    });
    connect(view_, &ScreenView::recordMoved, this, [this] { Update(); });
    connect(view_, &ScreenView::staleChanged, this, [this] { Update(); });
    connect(view_, &ScreenView::exitRequested, this, [this] {
        if (desktop_) desktop_->Exit();
    });
    connect(view_, &ScreenView::note, this,
            [this](const QString& text) { statusBar()->showMessage(text, 10000); });
}

QRect ScreenWindow::Available() const {
    const QScreen* s = screen() ? screen() : QGuiApplication::primaryScreen();
    return s ? s->availableGeometry() : QRect(0, 0, 1366, 768);
}

void ScreenWindow::FitTo(const QRect& available) {
    if (isMaximized() || isFullScreen()) return;
    // The frame the window system adds around the window.
    const int frame_w = std::max(0, frameGeometry().width() - geometry().width());
    const int frame_h = std::max(0, frameGeometry().height() - geometry().height());
    const int w = std::min(width(), available.width() - frame_w);
    const int h = std::min(height(), available.height() - frame_h);
    if (w != width() || h != height()) resize(w, h);
    QPoint at = pos();
    at.setX(std::clamp(at.x(), available.left(),
                       std::max(available.left(), available.right() - w - frame_w + 1)));
    at.setY(
        std::clamp(at.y(), available.top(), std::max(available.top(), available.bottom() - h - frame_h + 1)));
    if (at != pos()) move(at);
}

ScreenWindow::~ScreenWindow() {
    if (desktop_) desktop_->Forget(this);
}

void ScreenWindow::BuildMenus() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&Archivo"));
    QAction* open = file->addAction(QStringLiteral("&Abrir libro..."), this, [this] { ChooseWorkbook(); });
    open->setShortcut(QKeySequence::Open);
    open->setEnabled(model_->HasData());
    QAction* save = file->addAction(QStringLiteral("&Guardar el registro"), this, [this] {
        std::string note;
        SaveSettling(*model_, prompter_, this, [&] { note = model_->SavePending(); });
        view_->Refresh();
        Update();
        if (!note.empty()) statusBar()->showMessage(Q(note), 10000);
    });
    save->setShortcut(QKeySequence::Save);
    save->setEnabled(model_->HasData());
    file->addSeparator();
    QAction* close_window = file->addAction(QStringLiteral("&Cerrar la ventana"), this, [this] { close(); });
    close_window->setShortcut(QKeySequence::Close);
    files_ = new FileActions(*this, *model_, *view_, prompter_,
                             [this](const QString& path) { return OpenWorkbook(path); });
    files_->AddTo(*file, close_window);
    file->addAction(QStringLiteral("&Salir"), this,
                    [this] {
                        if (desktop_) desktop_->Exit();
                    })
        ->setShortcut(QKeySequence::Quit);

    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edición"));
    QAction* copy = edit->addAction(QStringLiteral("&Copiar la tabla"), this, [this] { CopyTable(); });
    copy->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    QAction* paste = edit->addAction(QStringLiteral("&Pegar en la tabla"), this, [this] { PasteTable(); });
    paste->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V));
    copy->setEnabled(!view_->Tables().empty());
    paste->setEnabled(!view_->Tables().empty());
    edit->addAction(QStringLiteral("Sección desde puntos &topográficos..."), this,
                    [this] {
                        if (ShowSurveyDialog(*model_, this)) view_->Refresh();
                    })
        ->setEnabled(HasLevelTable(*model_));

    QMenu* screens = menuBar()->addMenu(QStringLiteral("&Pantallas"));
    for (std::string_view name : screens::ScreenNames()) {
        const auto sample = screens::MakeScreen(name);
        const QString text = QString::fromUtf8(name.data(), static_cast<int>(name.size())) +
                             QStringLiteral(": ") + Q(sample ? sample->Title() : std::string());
        const std::string key(name);
        QAction* a = screens->addAction(text, this, [this, key] {
            if (desktop_) desktop_->Open(key);
        });
        a->setObjectName(Q(key));
    }

    AddHelpActions(*menuBar()->addMenu(QStringLiteral("Ay&uda")), this);
}

// --- Cálculo: the whole reach, and the screen as it opens ---------------------------------------

void ScreenWindow::BuildComputeMenu() {
    auto* menu = new QMenu(QStringLiteral("&Cálculo"), this);
    menu->setObjectName(QStringLiteral("menuCalculo"));
    QAction* reach = menu->addAction(QStringLiteral("Calcular el &tramo"), this, [this] { ComputeReach(); });
    reach->setObjectName(QStringLiteral("calcularTramo"));
    reach->setShortcut(QKeySequence(Qt::Key_F5));
    reach->setEnabled(screens::ReachControlsOf(*model_) != nullptr);
    QAction* reset =
        menu->addAction(QStringLiteral("&Reiniciar la pantalla"), this, [this] { ResetScreen(); });
    reset->setObjectName(QStringLiteral("reiniciarPantalla"));
    reset->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    // Between Edición and Pantallas.
    QAction* before = nullptr;
    for (QAction* a : menuBar()->actions())
        if (a->text() == QStringLiteral("&Pantallas")) before = a;
    menuBar()->insertMenu(before, menu);
}

std::unique_ptr<forms::Screen> ScreenWindow::FreshModel() {
    // Pending edits go to the workbook first: the fresh screen reads the records from it.
    if (!SaveBeforeClosing()) return nullptr;
    auto fresh = screens::MakeScreen(model_->Name());
    const std::string path = model_->Source() ? model_->WorkbookPath() : std::string();
    const int record = model_->Record();
    try {
        if (!path.empty()) {
            fresh->OpenWorkbook(path);
            if (record >= 1 && record <= fresh->RecordCount()) fresh->MoveTo(record);
        }
    } catch (const Fault& f) {
        prompter_.Fault(this, Q(f.what()));
        return nullptr;
    }
    return fresh;
}

void ScreenWindow::ReplaceModel(std::unique_ptr<forms::Screen> fresh) {
    auto* view = new ScreenView(*fresh, prompter_, this);
    ScreenView* old = view_;
    splitter_->replaceWidget(splitter_->indexOf(old), view);
    view_ = view;
    delete old;  // before its model
    model_ = std::move(fresh);
    chart_owner_.clear();
    ConnectView();
    emit viewReplaced();
    Update();
}

void ScreenWindow::ResetScreen() {
    auto fresh = FreshModel();
    if (!fresh) return;
    ReplaceModel(std::move(fresh));
    statusBar()->showMessage(QStringLiteral("Pantalla reiniciada: como al abrirla, en el mismo registro."),
                             5000);
}

void ScreenWindow::ComputeReach() {
    const screens::ReachControls* controls = screens::ReachControlsOf(*model_);
    if (!controls) return;
    if (!model_->Source()) {
        prompter_.Note(this,
                       QStringLiteral("Para calcular el tramo, abra su libro: Archivo > Abrir libro..."));
        return;
    }
    const bool final_depth = model_->Name() == "Form3";
    const QString depth_name = final_depth ? QStringLiteral("Y final") : QStringLiteral("Y inicial");
    QString depth = Q(model_->Get(controls->depth).text).trimmed();
    for (;;) {
        if (depth.isEmpty() || forms::Val(depth.toStdString()) == 0) {
            depth =
                prompter_
                    .Text(
                        this,
                        QStringLiteral("Profundidad %1 en la última sección del tramo (m):").arg(depth_name),
                        QString())
                    .trimmed();
            if (depth.isEmpty()) return;
        }
        depth = view_->ConvertPasted(depth);
        const auto read = ReadInPart(depth.toStdString());
        if (!read && forms::Val(depth.toStdString()) > 0) break;
        prompter_.Fault(this,
                        QStringLiteral("\u00ab%1\u00bb no es una profundidad: escriba un número mayor que "
                                       "cero, en metros.")
                            .arg(depth));
        depth.clear();
    }
    auto fresh = FreshModel();
    if (!fresh) return;
    const screens::ReachPlan plan = screens::PlanReach(*fresh->Source());
    if (!plan.error.empty()) {
        prompter_.Fault(this, Q(plan.error));
        return;
    }
    ReplaceModel(std::move(fresh));
    QString problems = view_->RunReach(plan.records, depth.toStdString());
    for (const auto& n : plan.notices)
        problems += (problems.isEmpty() ? QString() : QStringLiteral("\n")) + Q(n);
    Update();
    if (!problems.isEmpty()) prompter_.Fault(this, problems);
    statusBar()->showMessage(QStringLiteral("Tramo calculado: %1 secciones y el perfil con %2 = %3 m.")
                                 .arg(plan.records.size())
                                 .arg(depth_name, depth),
                             10000);
}

void ScreenWindow::Update() {
    const auto points = ProfileOf(*model_);
    if (!points.empty()) {
        chart_->Show(points);
        profile_tabs_->Refresh(*model_);
        if (chart_->isHidden()) {
            // The plot goes beside the screen, which keeps its size when the screen has room; the
            // window never grows past the available area, and then the two share it.
            const int screen_width = view_->width();
            chart_->show();
            profile_tabs_->show();
            if (!isMaximized() && !isFullScreen()) resize(width() + screen_width * 3 / 5, height());
            FitTo(Available());
            const int total = splitter_->width();
            splitter_->setSizes({total * 5 / 8, total * 3 / 8});
        }
    } else if (!chart_->isHidden()) {
        chart_->hide();
        profile_tabs_->hide();
    }
    chart_->SetStale(!chart_owner_.isEmpty() && view_->StaleFrom(chart_owner_.toStdString()));
    // Other windows on the same workbook show what this one saved.
    if (desktop_) desktop_->Resync(this);
    QString status;
    if (model_->HasData()) {
        status = model_->Source()
                     ? QStringLiteral("Libro: %1 · hoja %2")
                           .arg(QDir::toNativeSeparators(Q(model_->WorkbookPath())), Q(model_->Sheet()))
                     : QStringLiteral("Sin libro: Archivo > Abrir libro...");
    }
    if (view_->AnyStale())
        status = QStringLiteral(
                     "Resultados desactualizados (en gris): cambió un dato después de calcularlos. "
                     "Vuelva a calcular (F5 calcula el tramo).") +
                 (status.isEmpty() ? QString() : QStringLiteral(" · ") + status);
    status_->setText(status);
}

bool ScreenWindow::OpenWorkbook(const QString& path) {
    // The record left is saved first; a refused save is settled by the user before the workbook
    // changes, so that opening never gets stuck on it.
    const bool opened =
        SaveSettling(*model_, prompter_, this, [&] { model_->OpenWorkbook(path.toStdString()); });
    view_->Refresh();
    Update();
    if (opened && !model_->Source()->ReadOnly().empty())
        prompter_.Note(this, Q(model_->Source()->ReadOnly()));
    if (opened) FileActions::Remember(path);
    return opened;
}

void ScreenWindow::ChooseWorkbook() {
    if (!model_->HasData()) return;
    const QString current = Q(model_->WorkbookPath());
    const QString start = current.isEmpty() ? QDir::homePath() : QFileInfo(current).absolutePath();
    const QString path = prompter_.WorkbookPath(this, start);
    if (!path.isEmpty()) OpenWorkbook(path);
}

bool ScreenWindow::SaveBeforeClosing() {
    try {
        std::string note;
        try {
            note = model_->SavePending();
        } catch (const forms::SaveRefused&) {
            // The user settles it (keep mine / take the file's, or discard); only what stays unsaved
            // asks about closing.
            if (!SaveSettling(*model_, prompter_, this, [&] { note = model_->SavePending(); })) throw;
        }
        if (!note.empty()) prompter_.Note(this, Q(note));
    } catch (const std::exception& e) {
        return prompter_.Ask(
            this,
            QStringLiteral("No se pudieron guardar los cambios del registro:\n%1\n\n¿Cerrar sin guardarlos?")
                .arg(Q(e.what())));
    }
    return true;
}

void ScreenWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    // Coming back to the window: what another program saved meanwhile is read and shown.
    if (event->type() != QEvent::ActivationChange || !isActiveWindow()) return;
    try {
        if (model_->Resync()) view_->Refresh();
    } catch (const Fault&) {
        // The next record move or save says what is wrong with the workbook.
    }
}

void ScreenWindow::closeEvent(QCloseEvent* event) {
    if (!SaveBeforeClosing()) {
        event->ignore();
        return;
    }
    if (desktop_) desktop_->Forget(this);
    event->accept();
}

void ScreenWindow::CopyTable() {
    const std::string box = view_->LastTableBox();
    if (box.empty() || !view_->CopyTable(box)) {
        prompter_.Note(this, QStringLiteral("Ponga el cursor en una casilla de la tabla que quiere copiar."));
        return;
    }
    statusBar()->showMessage(QStringLiteral("Tabla copiada: se puede pegar en una hoja de cálculo."), 5000);
}

void ScreenWindow::PasteTable() {
    const std::string box = view_->LastTableBox();
    if (box.empty()) {
        prompter_.Note(
            this, QStringLiteral("Ponga el cursor en la casilla de la tabla desde la que quiere pegar."));
        return;
    }
    view_->PasteTable(box, QGuiApplication::clipboard()->text());
}

}  // namespace cauce::app
