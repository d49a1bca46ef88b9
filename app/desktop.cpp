#include "app/desktop.hpp"

#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <algorithm>

#include "app/dialogs.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "hydraulics/checked_math.hpp"
#include "screens/registry.hpp"

namespace cauce::app {

Desktop::Desktop(Prompter& prompter, WorkbookChooser default_workbook)
    : prompter_(prompter), default_workbook_(std::move(default_workbook)) {}

Desktop::~Desktop() {
    // Windows still open belong to the application; they no longer report back here.
    for (ScreenWindow* w : std::vector<ScreenWindow*>(windows_)) delete w;
}

ScreenWindow* Desktop::Open(std::string_view name) {
    auto model = screens::MakeScreen(name);
    if (!model) return nullptr;
    const bool bound = model->HasData();
    auto* window = new ScreenWindow(std::move(model), *this, prompter_);
    windows_.push_back(window);
    window->show();
    if (bound && default_workbook_) {
        try {
            const std::string path = default_workbook_(name);
            if (!path.empty()) window->OpenWorkbook(QString::fromStdString(path));
        } catch (const Fault& f) {
            prompter_.Fault(window, QString::fromStdString(f.what()));
        }
    }
    return window;
}

bool Desktop::Exit() {
    if (exiting_) return false;
    exiting_ = true;
    for (ScreenWindow* w : std::vector<ScreenWindow*>(windows_)) {
        if (!w->close()) {
            exiting_ = false;
            return false;
        }
    }
    exiting_ = false;
    return true;
}

void Desktop::Resync(ScreenWindow* from) {
    for (ScreenWindow* w : windows_) {
        if (w == from) continue;
        bool changed = false;
        try {
            changed = w->Model().Resync();
        } catch (const Fault&) {
            // The window's own next move says what is wrong with its workbook.
        }
        if (changed) w->View()->Refresh();
    }
}

void Desktop::Forget(ScreenWindow* window) {
    windows_.erase(std::remove(windows_.begin(), windows_.end(), window), windows_.end());
}

bool LoadSpanishTranslation() {
    static QTranslator* translator = nullptr;
    if (translator) return true;
    auto* t = new QTranslator(qApp);
    if (!t->load(QStringLiteral("qtbase_es"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete t;
        return false;
    }
    QCoreApplication::installTranslator(t);
    translator = t;
    return true;
}

}  // namespace cauce::app
