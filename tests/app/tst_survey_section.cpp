// Edición > "Sección desde puntos topográficos...": points pasted or typed, the levels and figures
// shown, a bad row named, and "Aplicar" typing the levels into the record's level table, which the
// record binding then saves as any edit.
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

#include "app/desktop.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "app/survey_dialog.hpp"
#include "screens/natural_screen.hpp"
#include "screens/registry.hpp"
#include "support.hpp"

using namespace cauce;
using namespace cauce::apptest;

namespace {

// A bar in mid-channel, pasted from a spreadsheet with decimal commas: its stack is known exactly.
const QString kIslote = QStringLiteral("Abscisa\tCota\n0\t105\n2\t100\n4\t103\n6\t100\n8,0\t105\n");

}  // namespace

class SurveySection : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { InstallMemoryBooks(); }

    // Pasted points give the levels and figures; a bad row is named and nothing can be applied;
    // fewer levels asked for change the stack.
    void pasteEditAndLevels() {
        auto screen = screens::MakeScreen("Form2");
        app::SurveyDialog d(*screen);
        QVERIFY(!d.Apply()->isEnabled());
        d.PasteText(kIslote);
        QVERIFY2(d.Problem().isEmpty(), qPrintable(d.Problem()));
        QVERIFY(d.Result());
        QCOMPARE(d.Result()->levels.size(), std::size_t{3});
        QCOMPARE(d.Result()->levels[1].t, 6.4);
        QVERIFY(d.Figures().contains(QStringLiteral("Diferencia máxima de área: 0.0 %")));
        QVERIFY(d.Figures().contains(QStringLiteral("2 tramos separados")));
        QVERIFY(d.Apply()->isEnabled());

        d.Points()->item(2, 1)->setText(QStringLiteral("cien"));  // the third row
        QCOMPARE(d.Problem(), QStringLiteral("Fila 3: «4\tcien» no son dos números (abscisa y cota)."));
        QVERIFY(!d.Apply()->isEnabled());
        d.Points()->item(2, 1)->setText(QStringLiteral("103"));
        QVERIFY(d.Apply()->isEnabled());

        d.LevelCount()->setValue(2);
        QCOMPARE(d.Result()->levels.size(), std::size_t{2});
    }

    // The menu entry of a screen with a level table; "Aplicar" types the levels into the record's
    // boxes (the rows beyond cleared) and moving to another record saves them.
    void applyFromTheMenuSavesTheRecord() {
        Books().clear();
        std::vector<std::map<std::string, std::string>> rows;
        for (int k = 1; k <= 2; ++k)
            rows.push_back(SectionRow(k, 2, {{90, 2}, {91, 3}, {92, 9}, {93, 12}}, 0.03, 0.001, 5));
        Books()["rios.xlsx"] = std::make_shared<MemorySheet>(MemorySheet{Form2Columns(), rows, 0, {}});
        OnRios on;
        auto& [prompter, desktop, w] = on;
        QAction* action =
            MenuAction(w, QStringLiteral("Edición"), QStringLiteral("Sección desde puntos topográficos..."));
        QVERIFY(action);
        QVERIFY(action->isEnabled());

        QTimer::singleShot(0, [] {
            auto* d = qobject_cast<app::SurveyDialog*>(QApplication::activeModalWidget());
            QVERIFY(d);
            d->PasteText(kIslote);
            QTest::mouseClick(d->Apply(), Qt::LeftButton);
        });
        action->trigger();
        const QStringList shown = {w->View()->Box(screens::section::LevelElevation(1))->text(),
                                   w->View()->Box(screens::section::LevelWidth(1))->text(),
                                   w->View()->Box(screens::section::LevelElevation(3))->text(),
                                   w->View()->Box(screens::section::LevelWidth(3))->text(),
                                   w->View()->Box(screens::section::LevelElevation(4))->text(),
                                   w->View()->Box(screens::section::LevelWidth(4))->text()};
        QCOMPARE(shown, (QStringList{"100", "0", "105", "8", "", ""}));
        w->View()->MoveRecord(app::Move::Next);
        const auto& saved = Books()["rios.xlsx"]->rows[0];
        QCOMPARE(saved.at("z2"), std::string("103"));
        QCOMPARE(saved.at("t2"), std::string("6.4"));
        QCOMPARE(saved.at("z4"), std::string(""));
        QCOMPARE(Books()["rios.xlsx"]->saves, 1);
        QVERIFY(prompter.faults.isEmpty());

        // Every natural-section screen has the level table; Form1 has none, and its entry is disabled.
        for (std::string_view name : screens::ScreenNames())
            QCOMPARE(app::HasLevelTable(*screens::MakeScreen(name)), name != "Form1");
        app::ScreenWindow* f1 = desktop.Open("Form1");
        QVERIFY(
            !MenuAction(f1, QStringLiteral("Edición"), QStringLiteral("Sección desde puntos topográficos..."))
                 ->isEnabled());
        desktop.Exit();
    }
};

QTEST_MAIN(SurveySection)
#include "tst_survey_section.moc"
