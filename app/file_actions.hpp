// What the Archivo menu of a screen window adds around the legacy screen: a new workbook, the recent
// workbooks, the records of a reach (add, delete, renumber), the report (PDF and printed), the project
// data it prints, and the export of a table as CSV. Each action has a form that takes its answers as
// arguments (what the tests call) and a menu form that asks for them with dialogs.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include "app/report/report.hpp"

class QMenu;
class QMainWindow;
class QPagedPaintDevice;

namespace cauce::forms {
class Screen;
}

namespace cauce::app {

class Prompter;
class ScreenView;

class FileActions : public QObject {
    Q_OBJECT
  public:
    // open binds the window's screen to a workbook (the window's OpenWorkbook).
    FileActions(QMainWindow& window, forms::Screen& model, ScreenView& view, Prompter& prompter,
                std::function<bool(const QString&)> open);

    // Adds the entries to the window's Archivo menu, before `before` (nullptr: at the end).
    void AddTo(QMenu& file, QAction* before);

    // Writes a new workbook of a reach at path and opens it. False (and a message) when it cannot.
    bool NewWorkbook(const QString& path);
    // Adds a record after the current one and shows it.
    bool AddRecord();
    // Deletes the current record after asking.
    bool DeleteRecord();
    // Numbers the sections of the reach by their order.
    bool Renumber();
    // The report of what the screen shows: the reach (Form2, Form3, Form4) or the case (Form1, Form5).
    bool WriteReport(const QString& path);
    bool Print(QPagedPaintDevice& device);
    // The project data: stored in the workbook; asked once when it has none.
    ProjectFields Project() const;
    bool SetProject(const ProjectFields& fields);
    // A table of the screen as CSV: table 0 is the level table, then the profile table when the
    // screen has one; separator ';' writes decimal commas. Rows left wholly empty are not written.
    QStringList TableNames() const;
    bool ExportTable(const QString& path, int table, char separator);

    // The workbooks opened lately, newest first (QSettings "recientes").
    static QStringList Recent();
    static void Remember(const QString& path);

  private:
    bool Reopen(int record);
    bool SaveFirst();
    bool HasReach() const;
    // The report of a reach (on a profile sheet) or of the case shown (given the workbook's file
    // name, "" without one); what went wrong, "" when it was written.
    std::string ReportTo(
        const std::function<std::string(const reach::ReachResult&, const ReachCapture&,
                                        const ProjectFields&)>& reach_report,
        const std::function<std::string(const QString& book, const ProjectFields&)>& case_report);
    bool Reported(const std::string& why);  // false, with why told, when the report failed
    bool AskProjectOnce();
    void Fail(const std::string& why);

    QMainWindow& window_;
    forms::Screen& model_;
    ScreenView& view_;
    Prompter& prompter_;
    std::function<bool(const QString&)> open_;
};

// The small dialog of the project data; false when cancelled.
bool AskProjectFields(QWidget* parent, ProjectFields& fields);

}  // namespace cauce::app
