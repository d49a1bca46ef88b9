// Edición > "Sección desde puntos topográficos...": survey points typed or pasted into a table, the
// stack of levels chosen for them drawn over the survey to scale, how far it strays, and "Aplicar",
// which types the levels into the level table of the screen's current record.
#pragma once

#include <QDialog>
#include <optional>
#include <vector>

#include "forms/screen.hpp"
#include "hydraulics/survey/survey.hpp"

class QLabel;
class QPushButton;
class QSpinBox;
class QTableWidget;

namespace cauce::app {

// Whether the screen has a level table (z1..z15, t1..t15) for the dialog to fill.
bool HasLevelTable(const forms::Screen& screen);

// Types the levels into the screen's level table, as a person would, clearing the rows beyond them;
// the record binding then saves them as any edit.
void TypeLevels(forms::Screen& screen, const std::vector<survey::Level>& levels);

class SurveyFigure;

class SurveyDialog : public QDialog {
    Q_OBJECT
  public:
    SurveyDialog(forms::Screen& screen, QWidget* parent = nullptr);

    QTableWidget* Points() const { return points_; }
    QSpinBox* LevelCount() const { return count_; }
    QPushButton* Apply() const { return apply_; }
    // The section of the points as they stand, or nothing (and the reason shown) when they are bad.
    const std::optional<survey::Section>& Result() const { return result_; }
    QString Problem() const;
    QString Figures() const;

    // Fills the table from pasted text (the clipboard's, or any), from its current row down.
    void PasteText(const QString& text);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void Recompute();
    void ApplyLevels();

    forms::Screen& screen_;
    QTableWidget* points_ = nullptr;
    QSpinBox* count_ = nullptr;
    QTableWidget* levels_ = nullptr;
    QLabel* figures_ = nullptr;
    QLabel* problem_ = nullptr;
    SurveyFigure* figure_ = nullptr;
    QPushButton* apply_ = nullptr;
    std::optional<survey::Section> result_;
    std::vector<survey::Point> ground_;
    bool filling_ = false;
};

// Opens the dialog for the screen; true when the levels were applied.
bool ShowSurveyDialog(forms::Screen& screen, QWidget* parent);

}  // namespace cauce::app
