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

    // What a box's text reads as in part (the refused click and its outline: tst_session.cpp).
    void partialReadings_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("marked");
        QTest::addColumn<QString>("read");
        QTest::newRow("two points") << "1.5.2" << true << "1.5";
        QTest::newRow("sign, blank, comma") << "- 2,5" << true << "- 2";
        QTest::newRow("hexadecimal with a bad digit") << "&H1G" << true << "&H1";
        QTest::newRow("blanks between digits") << "1 000" << false << "";
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
    }
};

QTEST_MAIN(Screens)
#include "tst_screens.moc"
