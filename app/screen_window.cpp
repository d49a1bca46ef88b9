#include "app/screen_window.hpp"

#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>

#include "app/desktop.hpp"
#include "app/dialogs.hpp"
#include "app/file_actions.hpp"
#include "app/help_actions.hpp"
#include "app/profile_chart.hpp"
#include "app/screen_view.hpp"
#include "app/survey_dialog.hpp"
#include "hydraulics/fault.hpp"
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
    splitter_ = new QSplitter(Qt::Horizontal, this);
    splitter_->addWidget(view_);
    splitter_->addWidget(chart_);
    splitter_->setStretchFactor(0, 3);
    splitter_->setStretchFactor(1, 2);
    splitter_->setChildrenCollapsible(false);
    setCentralWidget(splitter_);
    status_ = new QLabel(this);
    statusBar()->addWidget(status_, 1);
    BuildMenus();

    connect(view_, &ScreenView::pressed, this, [this] { Update(); });
    connect(view_, &ScreenView::recordMoved, this, [this] { Update(); });
    connect(view_, &ScreenView::exitRequested, this, [this] {
        if (desktop_) desktop_->Exit();
    });
    connect(view_, &ScreenView::note, this,
            [this](const QString& text) { statusBar()->showMessage(text, 10000); });

    // The reference layout at its own size, or smaller on a small screen.
    double width = ScreenView::kWidth, height = ScreenView::kHeight;
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect avail = screen->availableGeometry();
        const double fit = std::min({1.0, avail.width() * 0.92 / width, avail.height() * 0.85 / height});
        width *= fit;
        height *= fit;
    }
    resize(static_cast<int>(width),
           static_cast<int>(height) + menuBar()->sizeHint().height() + statusBar()->sizeHint().height());
    Update();
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
        try {
            const std::string note = model_->SavePending();
            if (!note.empty()) statusBar()->showMessage(Q(note), 10000);
        } catch (const Fault& f) {
            prompter_.Fault(this, Q(f.what()));
        }
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

void ScreenWindow::Update() {
    const auto points = ProfileOf(*model_);
    if (!points.empty()) {
        chart_->Show(points);
        if (chart_->isHidden()) {
            // The plot goes beside the screen, which keeps its size.
            const int screen_width = view_->width();
            chart_->show();
            if (!isMaximized() && !isFullScreen()) resize(width() + screen_width * 3 / 5, height());
            splitter_->setSizes({screen_width, screen_width * 3 / 5});
        }
    } else if (!chart_->isHidden()) {
        chart_->hide();
    }
    QString status;
    if (model_->HasData()) {
        status = model_->Source()
                     ? QStringLiteral("Libro: %1 · hoja %2")
                           .arg(QDir::toNativeSeparators(Q(model_->WorkbookPath())), Q(model_->Sheet()))
                     : QStringLiteral("Sin libro: Archivo > Abrir libro...");
    }
    status_->setText(status);
}

bool ScreenWindow::OpenWorkbook(const QString& path) {
    try {
        model_->OpenWorkbook(path.toStdString());
    } catch (const Fault& f) {
        prompter_.Fault(this, Q(f.what()));
        view_->Refresh();
        Update();
        return false;
    }
    view_->Refresh();
    Update();
    FileActions::Remember(path);
    return true;
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
        const std::string note = model_->SavePending();
        if (!note.empty()) prompter_.Note(this, Q(note));
    } catch (const std::exception& e) {
        return prompter_.Ask(
            this,
            QStringLiteral("No se pudieron guardar los cambios del registro:\n%1\n\n¿Cerrar sin guardarlos?")
                .arg(Q(e.what())));
    }
    return true;
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
