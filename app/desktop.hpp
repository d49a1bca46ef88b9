// The desktop application: its screen windows, the screen menu, and ending the program.
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace cauce::app {

class Prompter;
class ScreenWindow;

class Desktop : public QObject {
    Q_OBJECT
  public:
    // default_workbook names the workbook a screen opens with ("" for none).
    using WorkbookChooser = std::function<std::string(std::string_view screen)>;
    Desktop(Prompter& prompter, WorkbookChooser default_workbook);
    ~Desktop() override;

    // Opens a fresh window of the screen, bound to its default workbook; nullptr for an unknown name.
    ScreenWindow* Open(std::string_view screen);
    const std::vector<ScreenWindow*>& Windows() const { return windows_; }

    // "Salir": saves every window's pending edits, closes them all and ends the event loop.
    // False when a window stays open (its save failed and the user chose not to lose the edits).
    bool Exit();

    // After a window acted: every other window shows what it saved in a workbook they share.
    void Resync(ScreenWindow* from);

  private:
    friend class ScreenWindow;
    void Forget(ScreenWindow* window);

    Prompter& prompter_;
    WorkbookChooser default_workbook_;
    std::vector<ScreenWindow*> windows_;
    bool exiting_ = false;
};

// Loads Qt's own Spanish texts (Aceptar, Cancelar, Sí) into the application; false when not installed.
bool LoadSpanishTranslation();

}  // namespace cauce::app
