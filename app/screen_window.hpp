// The window of one screen: its view, the profile plot beside it once a profile has been run, and
// the menus (Archivo, Edición, Pantallas). The window owns its screen model: each window has its own
// state, nothing passes between screens.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <memory>

#include "forms/screen.hpp"

class QLabel;
class QSplitter;

namespace cauce::app {

class Desktop;
class FileActions;
class ProfileChart;
class Prompter;
class ScreenView;

class ScreenWindow : public QMainWindow {
    Q_OBJECT
  public:
    ScreenWindow(std::unique_ptr<forms::Screen> model, Desktop& desktop, Prompter& prompter);
    ~ScreenWindow() override;

    forms::Screen& Model() const { return *model_; }
    ScreenView* View() const { return view_; }
    ProfileChart* Chart() const { return chart_; }
    // Archivo's new workbook, records, report, project data and table export.
    FileActions* Files() const { return files_; }

    // Binds Data1 to the workbook at path; false (and a message) when it cannot be opened.
    bool OpenWorkbook(const QString& path);
    // "Abrir libro...": asks for a workbook and opens it.
    void ChooseWorkbook();
    // Saves the pending record edits; false when the save failed and the user chose to stay.
    bool SaveBeforeClosing();
    void CopyTable();
    void PasteTable();

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void BuildMenus();
    void Update();  // after a click or a record move: plot, status line

    std::unique_ptr<forms::Screen> model_;
    QPointer<Desktop> desktop_;  // the desktop may end before a closed window is deleted
    Prompter& prompter_;
    ScreenView* view_ = nullptr;
    ProfileChart* chart_ = nullptr;
    QSplitter* splitter_ = nullptr;
    QLabel* status_ = nullptr;
    FileActions* files_ = nullptr;
};

}  // namespace cauce::app
