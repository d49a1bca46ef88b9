// The Archivo menu around the screens, on real workbooks in a temporary folder: a new workbook that
// every screen opens without a missing column, records added, deleted and renumbered, the report of
// a reach and of a case on screen, a table exported as CSV.
#include <QFile>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include "app/desktop.hpp"
#include "app/file_actions.hpp"
#include "app/help_actions.hpp"
#include "app/navigator.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "reach/run.hpp"
#include "screens/profile_screen.hpp"
#include "support.hpp"
#include "workbook/install.hpp"
#include "workbook/properties.hpp"

using namespace cauce;
using namespace cauce::apptest;
namespace profile = cauce::screens::profile;

namespace {

QByteArray Read(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Form2 on a new workbook, tramo.xlsx in a temporary folder.
struct OnNewBook {
    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("tramo.xlsx"));
    RecordingPrompter prompter;
    app::Desktop desktop{prompter, [](std::string_view) { return std::string(); }};
    app::ScreenWindow* w = desktop.Open("Form2");
    bool made = w->Files()->NewWorkbook(path);
};

}  // namespace

class FileMenu : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() {
        QStandardPaths::setTestModeEnabled(true);
        workbook::Install();
    }

    // A new workbook opens with one record (in every screen, and never over an existing file:
    // workbook_command_test.py); adding copies the reach-wide values and numbers the new section;
    // deleting asks first.
    void newWorkbookAndItsRecords() {
        OnNewBook on;
        auto& [dir, path, prompter, desktop, w, made] = on;
        QVERIFY(made);
        app::ScreenView* view = w->View();
        app::Navigator* nav = view->DataNavigator();
        QCOMPARE(nav->Position(), QStringLiteral("Registro 1 de 1"));
        QVERIFY(app::FileActions::Recent().contains(QFileInfo(path).absoluteFilePath()));
        QVERIFY(!nav->Delete()->isEnabled());
        Type(view, profile::box::Discharge, "38");      // discharge: the same along the reach
        Type(view, profile::box::Roughness, "0.035");   // roughness: the section's own
        Type(view, profile::LevelElevation(1), "120");  // a pending edit, saved before the record is added
        QTest::mouseClick(nav->Add(), Qt::LeftButton);
        QCOMPARE(nav->Position(), QStringLiteral("Registro 2 de 2"));
        QCOMPARE(view->Box(profile::box::Discharge)->text(), QStringLiteral("38"));
        QCOMPARE(view->Box(profile::box::SectionNumber)->text(), QStringLiteral("2"));
        QCOMPARE(view->Box(profile::box::Roughness)->text(), QString());
        QCOMPARE(view->Box(profile::LevelElevation(1))->text(), QString());
        QTest::mouseClick(nav->First(), Qt::LeftButton);
        QCOMPARE(view->Box(profile::LevelElevation(1))->text(), QStringLiteral("120"));

        prompter.answer = false;
        QVERIFY(!w->Files()->DeleteRecord());
        QCOMPARE(prompter.questions.size(), 1);
        QCOMPARE(w->Model().RecordCount(), 2);
        prompter.answer = true;
        QVERIFY(w->Files()->DeleteRecord());
        QCOMPARE(w->Model().RecordCount(), 1);
        QCOMPARE(view->Box(profile::box::SectionNumber)->text(),
                 QStringLiteral("2"));  // the one that followed
        QVERIFY(prompter.faults.isEmpty());
        QVERIFY(desktop.Exit());
    }

    // The report of a reach needs the depth typed; with it, a PDF whose project data come from the
    // workbook. Form1 gets the one-page report of its case. A table exported as CSV.
    void reportsAndExport() {
        QTemporaryDir dir;
        const QString book = dir.filePath(QStringLiteral("Rios.xlsx"));
        QVERIFY(QFile::copy(QStringLiteral(CAUCE_EXAMPLES_DIR "/Rios.xlsx"), book));
        RecordingPrompter prompter;
        app::Desktop desktop(
            prompter, [&](std::string_view s) { return s == "Form2" ? book.toStdString() : std::string(); });
        app::ScreenWindow* w = desktop.Open("Form2");
        const QString pdf = dir.filePath(QStringLiteral("informe.pdf"));
        QVERIFY(!w->Files()->WriteReport(pdf));
        QVERIFY(prompter.faults.back().contains(QStringLiteral("tirante")));
        QVERIFY(!QFile::exists(pdf));

        QVERIFY(w->Files()->SetProject({"Presa Norte", "", "Ana Pérez", ""}));
        QCOMPARE(workbook::ReadCustomProperties(book.toStdString()).at("Proyecto"),
                 std::string("Presa Norte"));
        Type(w->View(), profile::box::StartDepth, "1.8");
        QVERIFY(w->Files()->WriteReport(pdf));
        QVERIFY(Read(pdf).startsWith("%PDF"));

        app::ScreenWindow* f1 = desktop.Open("Form1");
        const QString one = dir.filePath(QStringLiteral("canal.pdf"));
        QVERIFY(f1->Files()->WriteReport(one));
        QVERIFY(Read(one).startsWith("%PDF"));
        QCOMPARE(prompter.faults.size(), 1);
        QVERIFY(app::GuideText().contains(QStringLiteral("Abscisa9")));  // the guide is built in

        // The level table as CSV: ";" with decimal commas, or "," with points; empty rows are left out.
        const QStringList names = w->Files()->TableNames();
        QVERIFY(names.contains(QStringLiteral("Tabla de niveles")));
        QVERIFY(names.contains(QStringLiteral("Tabla del perfil")));
        const int levels = static_cast<int>(names.indexOf(QStringLiteral("Tabla de niveles")));
        const QString semicolon = dir.filePath(QStringLiteral("niveles.csv"));
        const QString comma = dir.filePath(QStringLiteral("niveles-punto.csv"));
        QVERIFY(w->Files()->ExportTable(semicolon, levels, ';'));
        QVERIFY(w->Files()->ExportTable(comma, levels, ','));
        const QList<QByteArray> a = Read(semicolon).split('\n');
        const QList<QByteArray> b = Read(comma).split('\n');
        // Header, the six levels of section 1, and the empty line after the last line break.
        QCOMPARE(a.size(), 8);
        QCOMPARE(a[1].trimmed(), QByteArray("120;6,5"));
        QCOMPARE(b[2].trimmed(), QByteArray("120.4,10.5"));
        QVERIFY(!w->Files()->ExportTable(dir.filePath(QStringLiteral("no/existe.csv")), levels, ';'));
        QVERIFY(desktop.Exit());
    }
};

QTEST_MAIN(FileMenu)
#include "tst_file_menu.moc"
