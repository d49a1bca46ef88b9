// The desktop around the screens: the windows, the record navigator over a workbook, opening
// another workbook, the screen menu, "Salir" and closing with pending edits, the profile plot.
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>
#include <QtTest>

#include "app/desktop.hpp"
#include "app/navigator.hpp"
#include "app/profile_chart.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "app/standard_profile.hpp"
#include "forms/val.hpp"
#include "screens/form1.hpp"
#include "screens/profile_screen.hpp"
#include "support.hpp"

using namespace cauce;
using namespace cauce::apptest;
namespace form1 = cauce::screens::form1;
namespace profile = cauce::screens::profile;

namespace {

void Click(QAbstractButton* button) {
    QTest::mouseClick(button, Qt::LeftButton);
}

}  // namespace

class Windows : public OnRiosTest {
    Q_OBJECT
  private slots:

    // Form2 opens on its workbook's first record; the navigator moves through the records; an edit
    // is saved into the record it leaves.
    void navigatorMovesAndSaves() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        app::ScreenView* view = w->View();
        app::Navigator* nav = view->DataNavigator();
        QVERIFY(w->windowTitle().contains(QStringLiteral("cauces naturales")));
        QCOMPARE(nav->Caption(), QStringLiteral("Perfiles en cauces"));
        QCOMPARE(nav->Position(), QStringLiteral("Registro 1 de 3"));
        QVERIFY(!nav->First()->isEnabled() && !nav->Previous()->isEnabled());
        QCOMPARE(view->Box(profile::LevelElevation(1))->text(), QStringLiteral("100.06"));
        Click(nav->Next());
        QCOMPARE(nav->Position(), QStringLiteral("Registro 2 de 3"));
        QCOMPARE(view->Box(profile::box::SectionNumber)->text(), QStringLiteral("2"));
        Click(nav->Last());
        QCOMPARE(nav->Position(), QStringLiteral("Registro 3 de 3"));
        QVERIFY(!nav->Next()->isEnabled());
        QVERIFY(!nav->Last()->isEnabled());
        Type(view, profile::box::Discharge, "7.5");
        Click(nav->Previous());
        QCOMPARE(nav->Position(), QStringLiteral("Registro 2 de 3"));
        QCOMPARE(Books()["rios.xlsx"]->rows[2]["Caudal"], std::string("7.5"));
        QCOMPARE(Books()["rios.xlsx"]->saves, 1);
        Click(nav->First());
        QCOMPARE(nav->Position(), QStringLiteral("Registro 1 de 3"));
        QCOMPARE(Books()["rios.xlsx"]->saves, 1);  // nothing changed on record 2
        QVERIFY(prompter.faults.isEmpty());
        desktop.Exit();
    }

    // A save that fails on a move: the message, and the screen stays on its record.
    void failedSaveOnMoveIsReported() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        Books()["rios.xlsx"]->fail_save = "No se puede guardar el libro: el disco está lleno";
        Type(w->View(), profile::box::Discharge, "9");
        Click(w->View()->DataNavigator()->Next());
        QCOMPARE(prompter.faults,
                 QStringList{QStringLiteral("No se puede guardar el libro: el disco está lleno")});
        QCOMPARE(w->View()->DataNavigator()->Position(), QStringLiteral("Registro 1 de 3"));
        QCOMPARE(w->View()->Box(profile::box::Discharge)->text(), QStringLiteral("9"));
        // "Salir" asks whether to lose the edit; "No" keeps the window, and the screen goes on.
        prompter.answer = false;
        Click(w->View()->Button(profile::button::Exit));
        QCOMPARE(prompter.questions.size(), 1);
        QVERIFY(prompter.questions[0].contains(QStringLiteral("¿Cerrar sin guardarlos?")));
        QCOMPARE(desktop.Windows().size(), std::size_t{1});
        // "Salir" again, and this time the edit may go.
        prompter.answer = true;
        Click(w->View()->Button(profile::button::Exit));
        QCOMPARE(prompter.questions.size(), 2);
        QVERIFY(desktop.Windows().empty());
    }

    // "Abrir libro...": the workbook chosen; one that cannot be opened leaves the screen as it was.
    void openAnotherWorkbook() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        auto other = ThreeSectionReach();
        other->rows.resize(2);
        Books()["otro.xls"] = other;
        QAction* open = MenuAction(w, QStringLiteral("Archivo"), QStringLiteral("Abrir libro..."));
        QVERIFY(open);
        prompter.path = QStringLiteral("otro.xls");
        open->trigger();
        QCOMPARE(w->View()->DataNavigator()->Position(), QStringLiteral("Registro 1 de 2"));
        QCOMPARE(w->Model().WorkbookPath(), std::string("otro.xls"));
        prompter.path = QStringLiteral("no-existe.xlsx");
        open->trigger();
        QCOMPARE(prompter.faults,
                 QStringList{QStringLiteral("No se puede abrir el libro \"no-existe.xlsx\"")});
        QCOMPARE(w->Model().WorkbookPath(), std::string("otro.xls"));
        QCOMPARE(w->View()->DataNavigator()->Position(), QStringLiteral("Registro 1 de 2"));
        desktop.Exit();
    }

    // The screen menu opens any screen in a window of its own, with a fresh state each time.
    void screensMenuOpensFreshScreens() {
        RecordingPrompter prompter;
        app::Desktop desktop(prompter, [](std::string_view) { return std::string(); });
        app::ScreenWindow* first = desktop.Open("Form2");
        QCOMPARE(first->View()->DataNavigator()->Position(), QStringLiteral("Sin libro abierto"));
        Type(first->View(), profile::LevelElevation(1), "250");
        QAction* form1 = MenuAction(first, QStringLiteral("Pantallas"), QStringLiteral("Form1"));
        QAction* form2 = MenuAction(first, QStringLiteral("Pantallas"), QStringLiteral("Form2"));
        QVERIFY(form1 && form2);
        form1->trigger();
        form2->trigger();
        QCOMPARE(desktop.Windows().size(), std::size_t{3});
        QCOMPARE(desktop.Windows()[1]->Model().Name(), std::string("Form1"));
        app::ScreenWindow* second = desktop.Windows()[2];
        QCOMPARE(second->Model().Name(), std::string("Form2"));
        QCOMPARE(second->View()->Box(profile::LevelElevation(1))->text(), QString());
        QCOMPARE(first->View()->Box(profile::LevelElevation(1))->text(), QStringLiteral("250"));
        QVERIFY(desktop.Exit());
    }

    // "Salir" on any screen saves every window's pending edits and closes them all.
    void salirSavesAndEnds() {
        RecordingPrompter prompter;
        app::Desktop desktop(prompter, [](std::string_view) { return std::string("rios.xlsx"); });
        app::ScreenWindow* form2 = desktop.Open("Form2");
        app::ScreenWindow* form1 = desktop.Open("Form1");
        QVERIFY(form1);
        Type(form2->View(), profile::box::FloodWidth, "40");
        QPointer<app::ScreenWindow> alive = form2;
        Click(form1->View()->Button(form1::button::Exit));
        QVERIFY(desktop.Windows().empty());
        QCOMPARE(Books()["rios.xlsx"]->rows[0]["Ancho Zi"], std::string("40"));
        QCOMPARE(Books()["rios.xlsx"]->saves, 1);
        QTest::qWait(10);  // deferred deletion
        QVERIFY(alive.isNull());
    }

    // Closing one window saves its record too.
    void closingAWindowSaves() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        Type(w->View(), profile::box::FloodRoughness, "0.05");
        QVERIFY(w->close());
        QCOMPARE(Books()["rios.xlsx"]->rows[0]["Rugosidad Zi"], std::string("0.05"));
        QVERIFY(desktop.Windows().empty());
    }

    // After "Perfiles" the plot appears beside the table, with the bed, the critical depth and the
    // standard-step profile (its water levels against the table: tst_session reachEqualsTheCommandLine).
    void profilePlotAfterPerfiles() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        QVERIFY(QTest::qWaitForWindowExposed(w));
        app::ScreenView* view = w->View();
        for (int k = 0; k < 3; ++k) {
            if (k) Click(view->DataNavigator()->Next());
            Click(view->Button(profile::button::Section));
        }
        QVERIFY(w->Chart()->isHidden());
        const int narrow = w->width();
        Type(view, profile::box::StartDepth, "1.2");
        Click(view->Button(profile::button::Profiles));
        QVERIFY(prompter.faults.isEmpty());
        QVERIFY(w->Chart()->isVisible());
        QVERIFY(w->width() > narrow);
        const auto& points = w->Chart()->Points();
        QCOMPARE(points.size(), std::size_t{3});
        // The 3 m rectangle at 6 m3/s: critical depth (2^2 / 9.81)^(1/3) = 0.742 m above the bed.
        QVERIFY(std::abs(points[2].critical - points[2].bed - 0.742) < 0.005);

        // The standard-step profile beside the screen's: its lines on the plot and its table in the
        // tab beside it, from the depth typed at the last section (the bed there is 99.94 m).
        QTableWidget* table = w->Tabs()->Table();
        QCOMPARE(table->rowCount(), 3);
        QCOMPARE(table->item(2, 3)->text(), QStringLiteral("101.140"));
        QCOMPARE(table->item(2, 11)->text(), QStringLiteral("0.00"));
        for (int row = 0; row < 3; ++row) QCOMPARE(table->item(row, 8)->text(), QStringLiteral("subcrítico"));
        desktop.Exit();
    }
};

QTEST_MAIN(Windows)
#include "tst_windows.moc"
