// Each screen rendered by the desktop view: typing and clicking through the model, messages, faults,
// figures, marked numbers, tables and the clipboard.
#include <QApplication>
#include <QClipboard>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QtTest>
#include <clocale>

#include "app/desktop.hpp"
#include "app/dialogs.hpp"
#include "app/figure_widget.hpp"
#include "app/navigator.hpp"
#include "app/partial_number.hpp"
#include "app/screen_view.hpp"
#include "screens/form1.hpp"
#include "screens/profile_screen.hpp"
#include "screens/registry.hpp"
#include "support.hpp"

using namespace cauce;
using namespace cauce::apptest;
using app::Figure;
namespace form1 = screens::form1;
namespace profile = screens::profile;

namespace {

void TypeRectangle(app::ScreenView& view) {
    for (const auto& [box, text] : ReadmeRectangle()) Type(view, box, Q(text));
}

struct Shown {
    std::unique_ptr<forms::Screen> model;
    std::unique_ptr<app::ScreenView> view;
};

Shown Show(const char* name, app::Prompter& prompter, QSize size = {1000, 720}) {
    Shown s;
    s.model = screens::MakeScreen(name);
    s.view = std::make_unique<app::ScreenView>(*s.model, prompter);
    s.view->resize(size);
    s.view->show();
    return s;
}

}  // namespace

class Screens : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() {
        app::LoadSpanishTranslation();
        // Run under a Spanish locale, the C library must really write a decimal comma by now.
        if (qgetenv("LC_ALL").startsWith("es_ES"))
            QCOMPARE(QByteArray(std::localeconv()->decimal_point), QByteArray(","));
    }

    // Tab goes through the text boxes and buttons in the order the screen declares them.
    void tabFollowsTheDeclarationOrder() {
        RecordingPrompter prompter;
        auto s = Show("Form2", prompter);
        QVERIFY(QTest::qWaitForWindowActive(s.view.get()));
        const auto chain = s.view->TabChain();
        QVERIFY(chain.size() > 90);
        QCOMPARE(chain.front(), s.view->Box(profile::box::SectionNumber));
        chain.front()->setFocus();
        for (std::size_t k = 1; k < 12; ++k) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), chain[k]);
        }
    }

    // "(Y?)" on the README's section typed from the keyboard: the view shows the model's results and
    // its pictures follow (the numbers, the buttons swapped and the messages: tests/guiones/form2_*).
    void form2SectionFromTheKeyboard() {
        RecordingPrompter prompter;
        auto s = Show("Form2", prompter);
        TypeRectangle(*s.view);
        Press(*s.view, profile::button::Section);
        QVERIFY(prompter.faults.isEmpty());
        QCOMPARE(s.view->Box(profile::box::NormalDepth)->text(), QStringLiteral("0.81"));
        QCOMPARE(s.view->Button(profile::button::Profiles)->text(), QStringLiteral("Perfiles"));
        app::FigureWidget* picture = s.view->Picture(profile::picture::Section);
        QCOMPARE(picture->CurrentFigure(), Figure::Cauces1);
        QVERIFY(std::abs(*picture->Sketch()->water - 100.81) < 0.006);
    }

    // The real message box: warning text, Spanish button, and it does not end the program.
    void faultMessageBoxIsSpanish() {
        app::DialogPrompter prompter;
        auto s = Show("Form2", prompter);
        TypeRectangle(*s.view);
        Type(*s.view, profile::box::Roughness, "0");
        QString text, button;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            text = box->text();
            button = box->buttons().value(0)->text();
            box->accept();
        });
        Press(*s.view, profile::button::Section);
        QCOMPARE(text, QStringLiteral("El cálculo de \"(Y?)\" se detuvo: hubo que dividir entre cero.\n"
                                      "Revise la casilla \"Rugosidad\" (vale 0)."));
        QCOMPARE(button.remove('&'), QStringLiteral("Aceptar"));
        QVERIFY(s.view->isVisible());
    }

    // What the user reads: the font has the Spanish letters.
    void accentsHaveGlyphs() {
        RecordingPrompter prompter;
        auto s = Show("Form2", prompter);
        const QFontMetrics fm(s.view->Caption(profile::label::Instructions)->font());
        for (char32_t c : {U'á', U'é', U'í', U'ó', U'ú', U'ñ', U'Ñ', U'Á'}) QVERIFY(fm.inFontUcs4(c));
    }

    // What a box's text reads as in part (the refused click and its outline: tst_session.cpp).
    void partialReadings_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("marked");
        QTest::addColumn<QString>("read");
        QTest::newRow("two points") << "1.5.2" << true << "1.5";
        QTest::newRow("exponent without digits") << "1e" << true << "1";
        QTest::newRow("sign, blank, comma") << "- 2,5" << true << "- 2";
        QTest::newRow("hexadecimal with a bad digit") << "&H1G" << true << "&H1";
        QTest::newRow("blanks between digits") << "1 000" << false << "";
        QTest::newRow("legacy D exponent") << "2D2" << false << "";
        QTest::newRow("nothing numeric") << "Sin límite" << false << "";
    }
    void partialReadings() {
        QFETCH(QString, text);
        QFETCH(bool, marked);
        QFETCH(QString, read);
        const auto r = app::ReadsInPart(text.toStdString());
        QCOMPARE(r.has_value(), marked);
        if (r) QCOMPARE(Q(r->read), read);
    }

    // The two tables of Form2, found from the layout (their headings: tableCopyAndPaste).
    void tablesOfForm2() {
        auto screen = screens::MakeScreen("Form2");
        const auto tables = app::FindTables(*screen);
        QCOMPARE(tables.size(), std::size_t{2});
        QCOMPARE(tables[0].Rows(), 15);
        QCOMPARE(tables[1].cells[7],
                 (std::vector<std::string>{profile::TableChainage(8), profile::TableType(8),
                                           profile::TableWaterLevel(8), profile::TableVelocity(8)}));
    }

    // Copy gives tab-separated text a spreadsheet takes; pasting it back fills the boxes from the
    // box with the cursor, through the model.
    void tableCopyAndPaste() {
        RecordingPrompter prompter;
        auto s = Show("Form2", prompter);
        Type(*s.view, profile::LevelElevation(1), "100");
        Type(*s.view, profile::LevelWidth(1), "2");
        Type(*s.view, profile::LevelElevation(2), "102.5");
        QVERIFY(s.view->CopyTable(profile::LevelWidth(1)));
        const QString copied = QApplication::clipboard()->text();
        QVERIFY(copied.startsWith(QStringLiteral("Z fondo m\tAncho m\n100\t2\n102.5\t\n\t\n")));
        QCOMPARE(copied.count('\n'), 16);

        // From a spreadsheet: Windows line ends, the heading row, cells beyond the table.
        QApplication::clipboard()->setText(QStringLiteral("Z fondo m\tAncho m\r\n101\t3\t99\r\n103\t7\r\n"));
        QVERIFY(s.view->PasteTable(profile::LevelElevation(2), QApplication::clipboard()->text()));
        QCOMPARE(s.model->Get(profile::LevelElevation(2)).text, std::string("101"));
        QCOMPARE(s.model->Get(profile::LevelWidth(2)).text, std::string("3"));
        QCOMPARE(s.model->Get(profile::LevelElevation(3)).text, std::string("103"));
        QCOMPARE(s.model->Get(profile::LevelWidth(3)).text, std::string("7"));
        QCOMPARE(s.view->Box(profile::LevelElevation(3))->text(), QStringLiteral("103"));
        QCOMPARE(s.model->Get(profile::LevelElevation(1)).text, std::string("100"));

        // Ctrl+V of several cells in a box of a table pastes into the table, not into the one box.
        QApplication::clipboard()->setText(QStringLiteral("0\tM1\n60\tM2\n"));
        s.view->Box(profile::TableChainage(1))->setFocus();
        QTest::keySequence(s.view->Box(profile::TableChainage(1)), QKeySequence::Paste);
        QCOMPARE(s.model->Get(profile::TableChainage(1)).text, std::string("0"));
        QCOMPARE(s.model->Get(profile::TableType(1)).text, std::string("M1"));
        QCOMPARE(s.model->Get(profile::TableChainage(2)).text, std::string("60"));
        QCOMPARE(s.model->Get(profile::TableType(2)).text, std::string("M2"));
        // A single value pastes into the box as usual.
        QApplication::clipboard()->setText(QStringLiteral("0.02"));
        Type(*s.view, profile::box::Roughness, "");
        QTest::keySequence(s.view->Box(profile::box::Roughness), QKeySequence::Paste);
        QCOMPARE(s.model->Get(profile::box::Roughness).text, std::string("0.02"));
    }

    // Form1 through the view (captions, messages and picture names are checked by the form1_* scripts):
    // the view's figure and sketch follow the model. A 1 m pipe, n 0.013, S 0.001 and Q 0.5 flows at
    // y/D 0.593 (bisection of Manning's equation): above half, Circulo3.
    void form1FiguresFollowTheModel() {
        RecordingPrompter prompter;
        auto s = Show("Form1", prompter);
        Press(*s.view, form1::button::Circular);
        QCOMPARE(s.view->Picture(form1::picture::Section)->CurrentFigure(), Figure::Circulo);
        const std::pair<std::string, const char*> boxes[] = {{form1::box::Roughness, "0.013"},
                                                             {form1::box::Slope, "0.001"},
                                                             {form1::box::Diameter, "1"},
                                                             {form1::box::Discharge, "0.5"}};
        for (const auto& [box, text] : boxes) Type(*s.view, box, text);
        Press(*s.view, form1::button::ConduitNormalDepth);
        QVERIFY(prompter.faults.isEmpty());
        QCOMPARE(s.view->Box(form1::box::NormalDepth)->text(), QStringLiteral("0.59"));
        QCOMPARE(s.view->Picture(form1::picture::Section)->CurrentFigure(), Figure::Circulo3);
        QVERIFY(s.view->Picture(form1::picture::Section)->Sketch()->Conduit());
        // The trapezoidal family: no sketch until a depth is computed.
        Press(*s.view, form1::button::Trapezoidal);
        const std::pair<std::string, const char*> channel[] = {{form1::box::Roughness, ""},
                                                               {form1::box::Slope, "0.001"},
                                                               {form1::box::Base, "0"},
                                                               {form1::box::SideSlope, "1.5"},
                                                               {form1::box::Discharge, "1"}};
        for (const auto& [box, text] : channel) Type(*s.view, box, text);
        Press(*s.view, form1::button::NormalDepth);
        QCOMPARE(s.view->Picture(form1::picture::Section)->CurrentFigure(), Figure::Ctrian1);
        QVERIFY(!s.view->Picture(form1::picture::Section)->Sketch().has_value());
        Type(*s.view, form1::box::Roughness, "0.014");
        Press(*s.view, form1::button::NormalDepth);
        QVERIFY(prompter.faults.isEmpty());
        QVERIFY(s.view->Picture(form1::picture::Section)->Sketch().has_value());
    }
};

QTEST_MAIN(Screens)
#include "tst_screens.moc"
