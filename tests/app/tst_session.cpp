// A working session in the desktop: decimal commas typed and pasted, numbers read only in part
// refused, results dimmed once their data change, "Calcular el tramo" and "Reiniciar la pantalla",
// the message of a profile run too early, units and accessible names,
// and the window kept within the screen.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include "app/decimal_input.hpp"
#include "app/desktop.hpp"
#include "app/navigator.hpp"
#include "app/profile_chart.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "forms/format.hpp"
#include "screens/registry.hpp"
#include "support.hpp"

#ifdef CAUCE_WITH_WORKBOOK
#include "workbook/data_folder.hpp"
#include "workbook/install.hpp"
#endif

using namespace cauce;
using namespace cauce::apptest;

namespace {

// Every record's "(Y?)" by hand, in the sheet's order, then "Perfiles" from 1.5 m.
void ComputeByHand(app::ScreenView* view) {
    for (int k = 0; k < view->Model().RecordCount(); ++k) {
        if (k) QTest::mouseClick(view->DataNavigator()->Next(), Qt::LeftButton);
        Press(view, "Command2");
    }
    Type(view, "Text98", "1.5");
    Press(view, "Command1");
}

QAction* Action(QMainWindow* w, const char* name) {
    return w->findChild<QAction*>(QString::fromLatin1(name));
}

#ifdef CAUCE_WITH_WORKBOOK
void ReachEqualsTheCommandLine(const QString& screen, const char* sheet, const char* depth_option,
                               const QString& depth) {
    const std::string book = workbook::DefaultWorkbook(screen.toStdString());
    QProcess cli;
    cli.start(QStringLiteral(CAUCE_BIN),
              {"perfil", Q(book), "--hoja", sheet, depth_option, depth, "--formato", "csv"});
    QVERIFY(cli.waitForFinished(60000));
    QCOMPARE(cli.exitCode(), 0);
    QStringList lines = QString::fromUtf8(cli.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    const QStringList header = lines.takeFirst().split(',');
    const int za = header.indexOf("z_agua_m"), v = header.indexOf("v_media_ms"),
              tipo = header.indexOf("tipo"), ysoc = header.indexOf("ysoc_m");

    RecordingPrompter prompter;
    prompter.text = depth;
    app::Desktop desktop(prompter, [&](std::string_view) { return book; });
    app::ScreenWindow* w = desktop.Open(screen.toStdString());
    w->ComputeReach();
    QVERIFY2(prompter.faults.isEmpty(), qPrintable(prompter.faults.join('\n')));
    const bool form3 = screen == "Form3";
    const auto& points = w->Chart()->Points();  // the plot follows the table, on every profile screen
    int rows = 0;
    for (const QString& line : lines) {
        const QStringList f = line.split(',');
        if (f.size() <= za || f[za].isEmpty()) continue;
        ++rows;
        const int j = rows;
        auto box = [&](int n) { return w->View()->Box("Text" + std::to_string(n))->text(); };
        QCOMPARE(box(form3 ? 75 + j : 62 + j), f[za]);
        QCOMPARE(box(form3 ? 90 + j : 77 + j), f[v]);
        QVERIFY(points.size() >= std::size_t(j));
        QCOMPARE(Q(forms::Format(points[std::size_t(j - 1)].water, "0.00")), f[za]);
        if (form3) {
            if (!f[ysoc].isEmpty()) QCOMPARE(box(105 + j), f[ysoc]);
        } else {
            QCOMPARE(box(30 + 2 * j), f[tipo]);
        }
    }
    QVERIFY(rows >= 5);
    desktop.Exit();
}
#endif

}  // namespace

class Session : public OnRiosTest {
    Q_OBJECT
  private slots:

    void separators_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("comma_decimal");  // -1 not said, 0 no, 1 yes
        QTest::addColumn<QString>("converted");
        QTest::addColumn<bool>("ambiguous");
        QTest::newRow("English thousands") << "1,234.5" << -1 << "1234.5" << false;
        QTest::newRow("lone comma, three digits") << "1,234" << -1 << "1,234" << true;
        QTest::newRow("said decimal") << "1,234" << 1 << "1.234" << false;
        QTest::newRow("said thousands") << "1,234" << 0 << "1234" << false;
        QTest::newRow("bad grouping") << "1.23,5" << -1 << "1.23,5" << false;
        QTest::newRow("words") << "2,5 m" << -1 << "2,5 m" << false;
    }
    void separators() {
        QFETCH(QString, text);
        QFETCH(int, comma_decimal);
        QFETCH(QString, converted);
        QFETCH(bool, ambiguous);
        const auto r = app::ConvertSeparators(
            text.toStdString(), comma_decimal < 0 ? std::nullopt : std::optional<bool>(comma_decimal == 1));
        QCOMPARE(Q(r.text), converted);
        QCOMPARE(r.ambiguous, ambiguous);
    }

    // A comma typed is a decimal point; pasted numbers lose their thousands separators; a lone
    // "1,234" asks; cells pasted into a table are converted too.
    void commaTypedAndPasted() {
        RecordingPrompter prompter;
        auto owned = screens::MakeScreen("Form2");
        app::ScreenView view(*owned, prompter);
        view.resize(1000, 720);
        view.show();
        Type(&view, "Text95", "2,5");
        QCOMPARE(owned->Get("Text95").text, std::string("2.5"));
        // The profile type is words: its comma stays.
        Type(&view, "Text32", "a,b");
        QCOMPARE(owned->Get("Text32").text, std::string("a,b"));

        auto paste = [&](const char* box, const QString& text) {
            QApplication::clipboard()->setText(text);
            QLineEdit* edit = view.Box(box);
            edit->setFocus();
            edit->selectAll();
            QTest::keySequence(edit, QKeySequence::Paste);
        };
        paste("Text95", QStringLiteral("1.234,5"));
        QCOMPARE(owned->Get("Text95").text, std::string("1234.5"));
        prompter.answer = true;
        paste("Text94", QStringLiteral("1,234"));
        QCOMPARE(prompter.questions.size(), 1);
        QVERIFY(prompter.questions[0].contains(QStringLiteral("1234")));
        QCOMPARE(owned->Get("Text94").text, std::string("1.234"));
        paste("Text1", QStringLiteral("100,5\t2,25\n101,75\t3\n"));
        QCOMPARE(owned->Get("Text1").text, std::string("100.5"));
        QCOMPARE(owned->Get("Text2").text, std::string("2.25"));
        QCOMPARE(owned->Get("Text3").text, std::string("101.75"));
    }

    // A number read only in part (from a workbook) or not a number at all refuses the click: the box
    // is outlined, nothing is computed, and the message says what would have been read.
    void partialNumbersAreRefused() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        Books()["rios.xlsx"]->rows[0]["Caudal"] = "2,5x";
        Books()["rios.xlsx"]->rows[0]["z3"] = "abc";
        QTest::mouseClick(w->View()->DataNavigator()->Next(), Qt::LeftButton);
        QTest::mouseClick(w->View()->DataNavigator()->First(), Qt::LeftButton);
        app::ScreenView* view = w->View();
        Press(view, "Command2");
        QCOMPARE(prompter.faults.size(), 1);
        const QString& m = prompter.faults[0];
        QVERIFY2(m.contains(QStringLiteral("Caudal (m³/s)")) || m.contains(QStringLiteral("Caudal:")),
                 qPrintable(m));
        QVERIFY2(m.contains(QStringLiteral("«2,5x» se leería como 2.")), qPrintable(m));
        QVERIFY2(m.contains(QStringLiteral("Z fondo m, punto 3: «abc» se leería como 0.")), qPrintable(m));
        QVERIFY(view->Outlined().count("Text95") && view->Outlined().count("Text5"));
        QVERIFY(view->Box("Text99")->text().isEmpty());
        QCOMPARE(view->Button("Command2")->text(), QStringLiteral("(Y?)"));
        // Fixed, the click runs and the outline goes.
        Type(view, "Text95", "6");
        Type(view, "Text5", "");
        Press(view, "Command2");
        QCOMPARE(prompter.faults.size(), 1);
        QVERIFY(view->Outlined().empty());
        QVERIFY(!view->Box("Text99")->text().isEmpty());
        desktop.Exit();
    }

    // Results computed before an edit are drawn dimmed and described as out of date until their
    // own button computes again; the plot follows the profile table; another record's edit counts.
    void resultsDimAfterAnEdit() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        app::ScreenView* view = w->View();
        ComputeByHand(view);
        QVERIFY2(prompter.faults.isEmpty(), qPrintable(prompter.faults.join('\n')));
        QVERIFY(!view->AnyStale());
        QVERIFY(!w->Chart()->IsStale());
        Type(view, "Text98", "1.6");  // the profile's own datum: "(Y?)"'s results stay
        QVERIFY(view->Stale("Text63"));
        QVERIFY(!view->Stale("Text99"));
        Type(view, "Text95", "7");
        QVERIFY(view->Stale("Text99"));
        QVERIFY(view->Stale("Text63"));
        QVERIFY(w->Chart()->IsStale());
        QCOMPARE(view->Box("Text99")->accessibleDescription(), QStringLiteral("Text99 (desactualizado)"));
        QVERIFY(view->Box("Text99")->palette().color(QPalette::Text) !=
                view->Box("Text95")->palette().color(QPalette::Text));
        bool said = false;
        for (QLabel* l : w->statusBar()->findChildren<QLabel*>())
            said = said || l->text().contains(QStringLiteral("Resultados desactualizados"));
        QVERIFY(said);
        // Computed again, all is up to date; a change in another record dims the plot again.
        Action(w, "calcularTramo")->trigger();
        view = w->View();
        QVERIFY(!view->AnyStale());
        QVERIFY(!w->Chart()->IsStale());
        QTest::mouseClick(view->DataNavigator()->First(), Qt::LeftButton);
        QVERIFY(!w->Chart()->IsStale());  // moving alone changes no datum
        Type(view, "Text94", "0.002");
        QVERIFY(w->Chart()->IsStale());
        desktop.Exit();
    }

    // "Perfiles" before the other sections were computed says which, and does not run.
    void profileBeforeEverySection() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        app::ScreenView* view = w->View();
        QTest::mouseClick(view->DataNavigator()->Last(), Qt::LeftButton);
        Press(view, "Command2");
        Type(view, "Text98", "1.5");
        Press(view, "Command1");
        QCOMPARE(prompter.faults.size(), 1);
        QVERIFY2(prompter.faults[0].contains(QStringLiteral("2 de las 3 no se calcularon con «(Y?)»: 1, 2.")),
                 qPrintable(prompter.faults[0]));
        QVERIFY(view->Box("Text63")->text().isEmpty());
        // "Calcular el tramo" does it whole, from the depth in the box.
        Action(w, "calcularTramo")->trigger();
        QCOMPARE(prompter.faults.size(), 1);
        QVERIFY(!w->View()->Box("Text63")->text().isEmpty());
        QVERIFY(w->Chart()->isVisible());
        desktop.Exit();
    }

    // "Calcular el tramo" by F5 gives what the screen gives by hand; "Reiniciar la pantalla" brings
    // back the opening state on the same record; rows past the reach's sections show blank.
    void computeAndReset() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        ComputeByHand(w->View());
        QStringList by_hand;
        for (int j = 63; j <= 65; ++j)
            by_hand << w->View()->Box(("Text" + std::to_string(j)).c_str())->text();
        QCOMPARE(w->View()->Box("Text66")->text(), QString());  // row 4 of 3 sections
        QCOMPARE(w->Model().Get("Text66").text, std::string("0.00"));

        QAction* reset = Action(w, "reiniciarPantalla");
        reset->trigger();
        QCOMPARE(w->View()->Button("Command2")->text(), QStringLiteral("(Y?)"));
        QCOMPARE(w->View()->Button("Command1")->text(), QString());
        QCOMPARE(w->View()->DataNavigator()->Position(), QStringLiteral("Registro 3 de 3"));
        QVERIFY(w->View()->Box("Text99")->text().isEmpty());

        // The depth box is blank on a fresh screen: F5 asks for it.
        prompter.text = QStringLiteral("1,5");
        QAction* reach = Action(w, "calcularTramo");
        reach->trigger();
        QCOMPARE(prompter.questions.size(), 1);
        QVERIFY(prompter.questions[0].contains(QStringLiteral("Y inicial")));
        QStringList by_f5;
        for (int j = 63; j <= 65; ++j) by_f5 << w->View()->Box(("Text" + std::to_string(j)).c_str())->text();
        QCOMPARE(by_f5, by_hand);
        QVERIFY(prompter.faults.isEmpty());
        desktop.Exit();
    }

    // Names a screen reader says and units beside the numbers, on every screen and both Form1 layouts.
    void namesAndUnits() {
        const struct {
            const char *screen, *layout, *box, *name;  // layout: a button pressed first ("" none)
        } cases[] = {
            {"Form2", "", "Text97", "Rugosidad, zona inundable"},
            {"Form3", "", "Text122", "Para calcular Socavación: Dmm? (mm)"},
            {"Form1", "Command1", "Text4", "Talud (H:V)"},
            {"Form1", "Command2", "Text3", "Diametro (m)"},
        };
        RecordingPrompter prompter;
        for (const auto& c : cases) {
            auto model = screens::MakeScreen(c.screen);
            app::ScreenView view(*model, prompter);
            view.resize(1000, 720);
            view.show();
            if (*c.layout) Press(&view, c.layout);
            QLineEdit* edit = view.Box(c.box);
            const QString name = QString::fromUtf8(c.name);
            QCOMPARE(edit->accessibleName(), name);
            QCOMPARE(edit->accessibleDescription(), QString::fromUtf8(c.box));
            auto* unit = edit->findChild<QLabel*>();
            QVERIFY(unit);
            const QString expected = name.contains('(') ? name.section('(', -1).chopped(1) : QString();
            QCOMPARE(unit->text(), expected);
            QCOMPARE(unit->isVisible(), !expected.isEmpty());
        }
    }

    // At 1366x768 the window with its plot stays within the available area.
    void fitsTheScreen() {
        OnRios on;
        auto& [prompter, desktop, w] = on;
        w->resize(1300, 700);
        ComputeByHand(w->View());
        QVERIFY(w->Chart()->isVisible());
        const QRect small(0, 0, 1366, 728);
        w->FitTo(small);
        QVERIFY2(w->width() <= small.width() && w->height() <= small.height(),
                 qPrintable(QStringLiteral("%1x%2").arg(w->width()).arg(w->height())));
        QVERIFY(w->Chart()->width() > 100);
        QVERIFY(w->View()->width() > w->Chart()->width());
        const QRect avail = w->screen()->availableGeometry();
        QVERIFY(w->width() <= avail.width());
        desktop.Exit();
    }

#ifdef CAUCE_WITH_WORKBOOK
    // On the three bundled reaches, "Calcular el tramo" shows the command line's numbers.
    void reachEqualsTheCommandLine() {
        const struct {
            const char *screen, *sheet, *depth_option, *depth;
        } reaches[] = {{"Form2", "Persecc", "--y-inicial", "1.8"},
                       {"Form4", "Percanal", "--y-inicial", "1.2"},
                       {"Form3", "secciones ", "--y-final", "2.5"}};
        QTemporaryDir dir;
        qputenv("CAUCE_DATOS", dir.path().toLocal8Bit());
        workbook::Install();
        for (const auto& reach : reaches)
            ReachEqualsTheCommandLine(reach.screen, reach.sheet, reach.depth_option, reach.depth);
        InstallMemoryBooks();
    }
#endif
};

QTEST_MAIN(Session)
#include "tst_session.moc"
