// Desktop windows sharing one real workbook (the merges themselves: sharing_test.cpp): a cell changed
// in two windows is settled by the user's choice; a box fed by a formula is marked and asks before its
// formula is replaced (the replacement itself: read_write_test.cpp, shared_workbook_test.py).
#include <QAbstractButton>
#include <QLineEdit>
#include <QToolButton>
#include <QtTest>
#include <cstdlib>
#include <filesystem>

#include "app/desktop.hpp"
#include "app/navigator.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "screens/profile_screen.hpp"
#include "support.hpp"
#include "workbook/install.hpp"
#include "workbook/records.hpp"
#include "workbook/workbook.hpp"

using namespace cauce;
using namespace cauce::apptest;
namespace profile = cauce::screens::profile;
namespace fs = std::filesystem;

namespace {

std::string CellOf(const fs::path& file, const std::string& sheet, int record, const std::string& column) {
    return workbook::SheetRecords(workbook::Workbook::Open(file), sheet).Get(record, column);
}

}  // namespace

class SharedWorkbook : public QObject {
    Q_OBJECT
    fs::path dir_, file_;

  private slots:
    void init() {
        dir_ = fs::temp_directory_path() /
               ("cauce-shared-workbook-" + std::to_string(QCoreApplication::applicationPid()));
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        file_ = dir_ / "Rios.xlsx";
        fs::copy_file(fs::path(CAUCE_EXAMPLES_DIR) / "Rios.xlsx", file_);
        workbook::Install();
    }
    void cleanup() { fs::remove_all(dir_); }

    void conflictBetweenWindowsIsTheUsersChoice() {
        RecordingPrompter prompter;
        {
            app::Desktop desktop(prompter, [&](std::string_view) { return file_.string(); });
            app::ScreenWindow* form2 = desktop.Open("Form2");
            app::ScreenWindow* other = desktop.Open("Form2");
            auto next = [](app::ScreenWindow* w) {
                QTest::mouseClick(w->View()->DataNavigator()->Next(), Qt::LeftButton);
            };

            // One cell changed in two windows: the second save asks; "keep mine" wins, both move on.
            Type(other->View(), profile::box::Discharge, "42");
            Type(form2->View(), profile::box::Discharge, "43");
            next(form2);
            prompter.answer = true;
            next(other);
            QCOMPARE(prompter.questions.size(), 1);
            QVERIFY(prompter.questions[0].contains(QStringLiteral(
                "registro 1, columna \"Caudal\": otra ventana guardó 43 y en esta se escribió 42")));
            QCOMPARE(other->View()->DataNavigator()->Position(), QStringLiteral("Registro 2 de 12"));
            QCOMPARE(CellOf(file_, "Persecc", 1, "Caudal"), std::string("42"));

            QVERIFY(prompter.faults.isEmpty());
            QVERIFY(fs::exists(dir_ / ".~lock.Rios.xlsx#"));
            QVERIFY(desktop.Exit());
        }
        // Closed windows go when the event loop deletes them: the last one takes the lock with it.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!fs::exists(dir_ / ".~lock.Rios.xlsx#"));
    }

    void formulaBoxIsMarkedAndAsksBeforeItsFormulaIsReplaced() {
        // Record 3's discharge becomes a formula over record 1's, written by another program.
        const fs::path workbooks =
            fs::path(CAUCE_EXAMPLES_DIR) / ".." / "tests" / "workbook" / "workbooks.py";
        const std::string put = "/usr/bin/python3 '" + workbooks.string() + "' poner '" + file_.string() +
                                "' Persecc 3 Caudal '\"=K2\"'";
        QCOMPARE(std::system(put.c_str()), 0);
        RecordingPrompter prompter;
        app::Desktop desktop(prompter, [&](std::string_view) { return file_.string(); });
        app::ScreenWindow* w = desktop.Open("Form2");
        auto* nav = w->View()->DataNavigator();
        QTest::mouseClick(nav->Next(), Qt::LeftButton);
        QTest::mouseClick(nav->Next(), Qt::LeftButton);
        QLineEdit* box = w->View()->Box(profile::box::Discharge);
        QVERIFY(box->font().italic());
        QVERIFY(box->toolTip().contains(QStringLiteral("=K2")));
        QVERIFY(!w->View()->Box(profile::box::Roughness)->font().italic());

        const QString shown = box->text();
        prompter.answer = false;
        Type(w->View(), profile::box::Discharge, "50");
        QVERIFY(!prompter.questions.isEmpty());
        QVERIFY(prompter.questions[0].contains(QStringLiteral("fórmula =K2")));
        QCOMPARE(box->text(), shown);
        QTest::mouseClick(nav->Previous(), Qt::LeftButton);
        QCOMPARE(CellOf(file_, "Persecc", 3, "Caudal"),
                 shown.toStdString());  // the formula's value, untouched
        QVERIFY(prompter.faults.isEmpty());
        desktop.Exit();
    }
};

QTEST_MAIN(SharedWorkbook)
#include "tst_shared_workbook.moc"
