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
class ProfileTabs;
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
    ProfileTabs* Tabs() const { return profile_tabs_; }
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

    // "Calcular el tramo" (F5): on a fresh screen, "(Y?)" on every record (section N last) and then
    // "Perfiles" with the depth of its box, asked for when the box is empty.
    void ComputeReach();
    // "Reiniciar la pantalla" (Ctrl+R): the screen as it opens, on the same workbook and record.
    void ResetScreen();
    // Keeps the window, and the plot beside the screen, within the available area.
    void FitTo(const QRect& available);

  signals:
    void viewReplaced();  // ResetScreen or ComputeReach gave the window a fresh screen and view

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void BuildMenus();
    void BuildComputeMenu();
    void ConnectView();
    // A fresh model of this screen on the workbook and record shown; nullptr (and a message) if not.
    std::unique_ptr<forms::Screen> FreshModel();
    void ReplaceModel(std::unique_ptr<forms::Screen> fresh);
    QRect Available() const;
    void Update();  // after a click or a record move: plot, status line

    std::unique_ptr<forms::Screen> model_;
    QPointer<Desktop> desktop_;  // the desktop may end before a closed window is deleted
    Prompter& prompter_;
    ScreenView* view_ = nullptr;
    ProfileChart* chart_ = nullptr;
    ProfileTabs* profile_tabs_ = nullptr;  // the plot and the standard-step table beside it
    QSplitter* splitter_ = nullptr;
    QLabel* status_ = nullptr;
    QString chart_owner_;  // the button whose click drew the plot
    FileActions* files_ = nullptr;
};

}  // namespace cauce::app
