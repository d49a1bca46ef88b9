// The questions and messages the desktop puts to the user, behind one interface so that the tests
// answer them without a modal dialog blocking the run.
#pragma once

#include <QString>

class QWidget;

namespace cauce::app {

class Prompter {
  public:
    virtual ~Prompter() = default;
    // A fault of a click, a record move or a workbook: the Spanish message, one button.
    virtual void Fault(QWidget* parent, const QString& message) = 0;
    // Something the user should know that is not a fault (how a workbook was saved).
    virtual void Note(QWidget* parent, const QString& message) = 0;
    // A yes/no question; true for yes.
    virtual bool Ask(QWidget* parent, const QString& question) = 0;
    // The workbook to open, or "" when the user cancels.
    virtual QString WorkbookPath(QWidget* parent, const QString& start) = 0;
    // A line of text the user types in answer (a depth); "" when the user cancels.
    virtual QString Text(QWidget* parent, const QString& question, const QString& initial) = 0;
};

// The real dialogs: QMessageBox and QFileDialog.
class DialogPrompter : public Prompter {
  public:
    void Fault(QWidget* parent, const QString& message) override;
    void Note(QWidget* parent, const QString& message) override;
    bool Ask(QWidget* parent, const QString& question) override;
    QString WorkbookPath(QWidget* parent, const QString& start) override;
    QString Text(QWidget* parent, const QString& question, const QString& initial) override;
};

}  // namespace cauce::app
