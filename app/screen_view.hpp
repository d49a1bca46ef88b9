// The view of one screen model: a text box, label, button, picture box or navigator per declared
// control, placed where the screen's reference layout (1000 x 720) puts it and scaled with the
// window, keeping its proportions. The view keeps no state of its own: typing goes to the model's
// Type, a click to its Click, and after each the view is refreshed from the model.
#pragma once

#include <QWidget>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/box_meaning.hpp"
#include "app/fault_wording.hpp"
#include "app/table_clipboard.hpp"
#include "forms/screen.hpp"

class QLabel;
class QLineEdit;
class QPushButton;

namespace cauce::app {

class FigureWidget;
class Navigator;
class Prompter;

enum class Move { First, Previous, Next, Last };

class ScreenView : public QWidget {
    Q_OBJECT
  public:
    static constexpr int kWidth = 1000, kHeight = 720;  // the reference layout

    ScreenView(forms::Screen& model, Prompter& prompter, QWidget* parent = nullptr);

    forms::Screen& Model() const { return model_; }
    void Refresh();

    // The widgets by control name (nullptr when absent or of another kind).
    QWidget* ControlWidget(std::string_view name) const;
    QLineEdit* Box(std::string_view name) const;
    QLabel* Caption(std::string_view name) const;
    QPushButton* Button(std::string_view name) const;
    FigureWidget* Picture(std::string_view name) const;
    Navigator* DataNavigator() const { return navigator_; }
    // Focusable widgets in tab order.
    std::vector<QWidget*> TabChain() const;

    // What the widgets do, also used by the window's menus.
    void Press(const std::string& name);
    void MoveRecord(Move move);

    // Tables of boxes and the clipboard; the box names a cell of the table to act on.
    const std::vector<BoxTable>& Tables() const { return tables_; }
    const BoxTable* TableOf(std::string_view box) const;
    std::string FocusedBox() const;  // "" when the focus is not in a text box of this view
    // The box of a table that last had the focus ("" when none): what the table menus act on.
    const std::string& LastTableBox() const { return last_table_box_; }
    bool CopyTable(std::string_view box);
    bool PasteTable(std::string_view box, const QString& text);

    double Scale() const;

    // What a box means to the user (its caption, unit, whether it holds a number).
    BoxMeaning MeaningOfBox(std::string_view box) const;
    // Results out of date: a control a click wrote, shown dimmed since an input changed after it.
    bool Stale(std::string_view control) const { return stale_.count(std::string(control)) > 0; }
    bool AnyStale() const { return !stale_.empty(); }
    // A datum was edited after the last click on `button` (in any record).
    bool StaleFrom(std::string_view button) const;
    // The button whose click last wrote the control ("" when the user or the workbook did).
    std::string OwnerOf(std::string_view control) const;
    // Boxes outlined because a click was refused on them or a section table is wrong there.
    const std::set<std::string, std::less<>>& Outlined() const { return outlined_; }
    // Before a click: the boxes it would read only in part, and "Perfiles" with sections missing.
    // Returns the message that refuses the click, "" when it may run.
    QString CheckBeforeClick(const std::string& name);
    // "Calcular el tramo" on a fresh screen: "(Y?)" on each record of the plan, then the depth typed
    // and "Perfiles". The faults and the sections that stopped, in one message ("" when none).
    QString RunReach(const std::vector<int>& records, const std::string& depth);
    // A text from the clipboard with its decimal commas made points (asking when ambiguous).
    QString ConvertPasted(const QString& text);

  signals:
    void pressed(const QString& name);  // after a click ran and the view was refreshed
    void recordMoved();
    void exitRequested();  // the model's "Salir"
    void note(const QString& text);
    void staleChanged();  // results became out of date, or up to date again

  protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  public:
    QSize sizeHint() const override { return {kWidth, kHeight}; }
    QSize minimumSizeHint() const override { return {kWidth / 3, kHeight / 3}; }

  private:
    void Build();
    void PlaceWidgets();
    void Typed(const std::string& name, const QString& text);
    void MarkReading(QLineEdit* box);
    void FitLabel(QLabel* label) const;
    void TableMenu(QLineEdit* box, const std::string& name, const QPoint& at);
    void AfterClick(const std::string& button,
                    const std::map<std::string, unsigned long, std::less<>>& before);
    void MarkTableError();
    void Decorate(const forms::Control& c, QWidget* w);
    void PlaceUnit(QLineEdit* box);
    QString DisplayText(const forms::Control& c) const;
    std::vector<Suspect> Suspects(const std::string& caption) const;

    forms::Screen& model_;
    Prompter& prompter_;
    std::map<std::string, QWidget*, std::less<>> widgets_;
    std::map<std::string, std::size_t, std::less<>> table_of_;
    std::vector<BoxTable> tables_;
    Navigator* navigator_ = nullptr;
    std::string last_table_box_;
    std::string closing_button_;  // the button whose click closed the model
    bool refreshing_ = false;

    std::map<std::string, std::string, std::less<>> owner_;  // control -> button whose click wrote it
    std::set<std::string, std::less<>> stale_;
    std::set<std::string, std::less<>> outlined_;
    std::set<int> sections_pressed_;
    std::set<std::string, std::less<>> clicked_;       // buttons whose click ran
    std::set<std::string, std::less<>> edited_after_;  // ... and a datum was edited since
    std::map<std::string, QLabel*, std::less<>> units_;
    std::set<std::pair<std::string, int>>
        formula_ok_;  // formula boxes the user chose to overwrite, by record
};

}  // namespace cauce::app
