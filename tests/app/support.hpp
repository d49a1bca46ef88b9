// What the desktop tests share: an in-memory workbook behind Data1, and a prompter that records the
// messages instead of showing modal dialogs.
#pragma once

#include <QAction>
#include <QMainWindow>
#include <QObject>
#include <QString>
#include <QStringList>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/desktop.hpp"
#include "app/dialogs.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "forms/binding.hpp"

namespace cauce::apptest {

// Types text into a box as a person does (focus, select all, keys; Delete when the text is empty).
void Type(app::ScreenView& view, std::string_view box, const QString& text);
inline void Type(app::ScreenView* view, std::string_view box, const QString& text) {
    Type(*view, box, text);
}
// Clicks a screen's button.
void Press(app::ScreenView& view, std::string_view button);
inline void Press(app::ScreenView* view, std::string_view button) {
    Press(*view, button);
}
inline QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

// The entry of a menu of the window's bar, by its text without accelerator marks or its object name.
QAction* MenuAction(QMainWindow* w, const QString& menu, const QString& text);

// A sheet held in memory: a header row of columns and rows of texts.
struct MemorySheet {
    std::vector<std::string> columns;
    std::vector<std::map<std::string, std::string>> rows;
    int saves = 0;
    std::string fail_save;  // when set, Save throws a Fault with this message
};

// Workbooks by path; the opener of forms/ reads them from here. A path not listed cannot be opened.
std::map<std::string, std::shared_ptr<MemorySheet>>& Books();
void InstallMemoryBooks();

class RecordingPrompter : public app::Prompter {
  public:
    void Fault(QWidget*, const QString& message) override { faults << message; }
    void Note(QWidget*, const QString& message) override { notes << message; }
    bool Ask(QWidget*, const QString& question) override {
        questions << question;
        return answer;
    }
    QString WorkbookPath(QWidget*, const QString& start) override {
        starts << start;
        return path;
    }

    QString Text(QWidget*, const QString& question, const QString&) override {
        questions << question;
        return text;
    }

    QStringList faults, notes, questions, starts;
    bool answer = false;
    QString path;
    QString text;  // the answer to Text ("" cancels)
};

// The desktop over the in-memory "rios.xlsx", its messages recorded, with Form2 open.
struct OnRios {
    RecordingPrompter prompter;
    app::Desktop desktop{prompter, [](std::string_view) { return std::string("rios.xlsx"); }};
    app::ScreenWindow* w = desktop.Open("Form2");
};

// The level table, roughness, slope and discharge of one Form2 section, as a row of its sheet.
std::map<std::string, std::string> SectionRow(int number, int count,
                                              const std::vector<std::pair<double, double>>& levels, double n,
                                              double slope, double discharge);

// The README's section on Form2's boxes, in typing order: a rectangle 2 m wide and 2 m deep, n 0.015,
// S 0.001, Q 2 m3/s, the only section of its reach.
std::vector<std::pair<std::string, std::string>> ReadmeRectangle();

// The columns of the Form2 sheet.
std::vector<std::string> Form2Columns();

// Three sections of a rectangular channel 3 m wide falling 0.06 m in 60 m (S 0.001), 6 m3/s.
std::shared_ptr<MemorySheet> ThreeSectionReach();

// The in-memory workbooks: only "rios.xlsx", holding ThreeSectionReach.
void OnlyRios();

// A test class whose every test starts with only "rios.xlsx" in memory.
class OnRiosTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { InstallMemoryBooks(); }
    void init() { OnlyRios(); }
};

}  // namespace cauce::apptest
