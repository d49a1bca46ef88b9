// Screenshots of the desktop: Form2 after every section of a reach and its profile have been
// computed, and Form1 after a channel overflowing into its flood zone. With CAUCE_CAPTURAS set to a
// folder the pictures are written there (docs/form2.png, docs/form1.png come from this run).
#include <QImage>
#include <QToolButton>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include "app/desktop.hpp"
#include "app/figure_widget.hpp"
#include "app/navigator.hpp"
#include "app/profile_chart.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "support.hpp"

using namespace cauce;
using namespace cauce::apptest;

namespace {

// A picture is not blank when it has a fair number of colours.
int Colours(const QImage& image) {
    QSet<QRgb> seen;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3) seen.insert(image.pixel(x, y));
    return seen.size();
}

void Save(const QImage& image, const QString& name) {
    const QByteArray dir = qgetenv("CAUCE_CAPTURAS");
    if (dir.isEmpty()) return;
    QVERIFY(image.save(QString::fromLocal8Bit(dir) + '/' + name));
}

void Type(app::ScreenView* view, const char* box, const QString& text) {
    QLineEdit* edit = view->Box(box);
    edit->selectAll();
    QTest::keyClicks(edit, text);
}

}  // namespace

class Capturas : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() {
        app::LoadSpanishTranslation();
        InstallMemoryBooks();
    }

    void form2AfterTheProfile() {
        // Six sections, mild - steep - mild, 60 m apart (tests/guiones/form2_perfil_mixto.guion).
        const double beds[] = {102.5812, 102.5212, 101.3212, 100.1212, 100.0612, 100.0012};
        const double slopes[] = {0.001, 0.001, 0.02, 0.02, 0.001, 0.001};
        std::vector<std::map<std::string, std::string>> rows;
        for (int k = 0; k < 6; ++k) {
            auto row = SectionRow(k + 1, 6, {{beds[k], 3.0}, {beds[k] + 1.0, 5.0}, {beds[k] + 3.0, 9.0}}, 0.015, slopes[k], 6.0);
            row["Ancho Zi"] = "30";
            row["Rugosidad Zi"] = "0.04";
            for (int j = 1; j <= 6; ++j) row["Abscisa" + std::to_string(j)] = std::to_string(60 * (j - 1));
            rows.push_back(row);
        }
        Books()["tramo.xlsx"] = MakeSheet(Form2Columns(), rows);
        RecordingPrompter prompter;
        app::Desktop desktop(prompter, [](std::string_view) { return std::string("tramo.xlsx"); });
        app::ScreenWindow* w = desktop.Open("Form2");
        QVERIFY(w);
        QVERIFY(QTest::qWaitForWindowExposed(w));
        app::ScreenView* view = w->View();
        for (int k = 0; k < 6; ++k) {
            if (k) QTest::mouseClick(view->DataNavigator()->Next(), Qt::LeftButton);
            QTest::mouseClick(view->Button("Command2"), Qt::LeftButton);
        }
        Type(view, "Text98", "0.9");
        QTest::mouseClick(view->Button("Command1"), Qt::LeftButton);
        QVERIFY2(prompter.faults.isEmpty(), qPrintable(prompter.faults.join('\n')));
        QVERIFY(w->Chart()->isVisible());
        QTest::qWait(50);
        const QImage shot = w->grab().toImage();
        QVERIFY(Colours(shot) > 40);
        Save(shot, "form2.png");
        desktop.Exit();
    }

    void form1Overflowing() {
        RecordingPrompter prompter;
        app::Desktop desktop(prompter, [](std::string_view) { return std::string(); });
        app::ScreenWindow* w = desktop.Open("Form1");
        QVERIFY(w);
        QVERIFY(QTest::qWaitForWindowExposed(w));
        app::ScreenView* view = w->View();
        QTest::mouseClick(view->Button("Command1"), Qt::LeftButton);
        const char* boxes[] = {"Text1", "Text2", "Text3", "Text4", "Text5", "Text6", "Text7", "Text8"};
        const char* values[] = {"0.02", "0.001", "2", "1", "1", "20", "0.04", "15"};
        for (int k = 0; k < 8; ++k) Type(view, boxes[k], values[k]);
        QTest::mouseClick(view->Button("Command4"), Qt::LeftButton);
        QVERIFY2(prompter.faults.isEmpty(), qPrintable(prompter.faults.join('\n')));
        QVERIFY(view->Picture("Picture1")->Sketch().has_value());
        QTest::qWait(50);
        const QImage shot = w->grab().toImage();
        QVERIFY(Colours(shot) > 40);
        Save(shot, "form1.png");
        desktop.Exit();
    }
};

QTEST_MAIN(Capturas)
#include "tst_capturas.moc"
