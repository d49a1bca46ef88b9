// Screenshots of the desktop: Form2 after every section of the bundled example reach and its profile
// have been computed, and Form1 after a channel overflowing into its flood zone. With CAUCE_SCREENSHOTS set
// to a folder the pictures are written there (docs/form2.png, docs/form1.png come from this run).
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

#include "app/desktop.hpp"
#include "app/figure_widget.hpp"
#include "app/navigator.hpp"
#include "app/profile_chart.hpp"
#include "app/screen_view.hpp"
#include "app/screen_window.hpp"
#include "forms/val.hpp"
#include "screens/form1.hpp"
#include "screens/form3.hpp"
#include "screens/profile_screen.hpp"
#include "screens/registry.hpp"
#include "support.hpp"
#ifdef CAUCE_WITH_WORKBOOK
#include "workbook/data_folder.hpp"
#include "workbook/install.hpp"
#endif

using namespace cauce;
using namespace cauce::apptest;
namespace form1 = cauce::screens::form1;
namespace form3 = cauce::screens::form3;
namespace profile = cauce::screens::profile;

namespace {

// A picture is not blank when it has a fair number of colours.
int Colours(const QImage& image) {
    QSet<QRgb> seen;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3) seen.insert(image.pixel(x, y));
    return seen.size();
}

void Save(const QImage& image, const QString& name) {
    const QByteArray dir = qgetenv("CAUCE_SCREENSHOTS");
    if (dir.isEmpty()) return;
    QVERIFY(image.save(QString::fromLocal8Bit(dir) + '/' + name));
}

}  // namespace

class Capturas : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() {
        app::LoadSpanishTranslation();
#ifdef CAUCE_WITH_WORKBOOK
        // The user's data folder is a scratch one: the bundled examples are copied there, as on a
        // first start.
        QVERIFY(dir_.isValid());
        qputenv("CAUCE_DATOS", dir_.path().toLocal8Bit());
        workbook::Install();
        rios_ = QString::fromStdString(workbook::DefaultWorkbook("Form2"));
        QVERIFY(QFile::exists(rios_));
#endif
    }

    // The example reach of the bundled workbook: every section's "(Y?)", then "Perfiles" from a depth
    // half a metre above the normal depth of the last section (a backwater).
    void form2AfterTheProfile() {
#ifndef CAUCE_WITH_WORKBOOK
        QSKIP("built without workbooks");
#else
        RecordingPrompter prompter;
        app::Desktop desktop(prompter, [this](std::string_view) { return rios_.toStdString(); });
        app::ScreenWindow* w = desktop.Open("Form2");
        QVERIFY(w);
        QVERIFY(QTest::qWaitForWindowExposed(w));
        app::ScreenView* view = w->View();
        const int count = w->Model().RecordCount();
        QVERIFY(count >= 2);
        for (int k = 0; k < count; ++k) {
            if (k) QTest::mouseClick(view->DataNavigator()->Next(), Qt::LeftButton);
            QTest::mouseClick(view->Button(profile::button::Section), Qt::LeftButton);
        }
        QCOMPARE(view->Button(profile::button::Profiles)->text(), QStringLiteral("Perfiles"));
        const double start = forms::Val(view->Box(profile::box::NormalDepth)->text().toStdString()) + 0.5;
        Type(view, profile::box::StartDepth, QString::number(start, 'f', 2));
        QTest::mouseClick(view->Button(profile::button::Profiles), Qt::LeftButton);
        QVERIFY2(prompter.faults.isEmpty(), qPrintable(prompter.faults.join('\n')));
        QVERIFY(w->Chart()->isVisible());
        QCOMPARE(int(w->Chart()->Points().size()), count);
        QTest::qWait(50);
        const QImage shot = w->grab().toImage();
        QVERIFY(Colours(shot) > 40);
        Save(shot, "form2.png");
        desktop.Exit();
#endif
    }

    void form1Overflowing() {
        RecordingPrompter prompter;
        app::Desktop desktop(prompter, [this](std::string_view) { return rios_.toStdString(); });
        app::ScreenWindow* w = desktop.Open("Form1");
        QVERIFY(w);
        QVERIFY(QTest::qWaitForWindowExposed(w));
        app::ScreenView* view = w->View();
        QTest::mouseClick(view->Button(form1::button::Trapezoidal), Qt::LeftButton);
        const std::pair<std::string, const char*> boxes[] = {{form1::box::Roughness, "0.02"},
                                                             {form1::box::Slope, "0.001"},
                                                             {form1::box::Base, "2"},
                                                             {form1::box::SideSlope, "1"},
                                                             {form1::box::BankHeight, "1"},
                                                             {form1::box::FloodWidth, "20"},
                                                             {form1::box::FloodRoughness, "0.04"},
                                                             {form1::box::Discharge, "15"}};
        for (const auto& [box, text] : boxes) Type(view, box, text);
        QTest::mouseClick(view->Button(form1::button::NormalDepth), Qt::LeftButton);
        QVERIFY2(prompter.faults.isEmpty(), qPrintable(prompter.faults.join('\n')));
        QVERIFY(view->Picture(form1::picture::Section)->Sketch().has_value());
        QTest::qWait(50);
        const QImage shot = w->grab().toImage();
        QVERIFY(Colours(shot) > 40);
        Save(shot, "form1.png");
        desktop.Exit();
    }

    // Every screen as it opens on its example workbook.
    void everyScreenOpens_data() {
        QTest::addColumn<QString>("screen");
        for (std::string_view name : screens::ScreenNames())
            QTest::newRow(std::string(name).c_str()) << QString::fromUtf8(name.data(), int(name.size()));
    }
    void everyScreenOpens() {
        QFETCH(QString, screen);
        RecordingPrompter prompter;
        app::Desktop desktop(prompter, [](std::string_view s) {
#ifdef CAUCE_WITH_WORKBOOK
            return workbook::DefaultWorkbook(s);
#else
            (void)s;
            return std::string();
#endif
        });
        app::ScreenWindow* w = desktop.Open(screen.toStdString());
        QVERIFY(w);
        QVERIFY(QTest::qWaitForWindowExposed(w));
        QVERIFY2(prompter.faults.isEmpty(), qPrintable(prompter.faults.join('\n')));
        const QImage shot = w->grab().toImage();
        QVERIFY(Colours(shot) > 20);
        Save(shot, QStringLiteral("pantalla_%1.png").arg(screen));
        desktop.Exit();
    }

  private:
    QTemporaryDir dir_;
    QString rios_;  // the user's Rios workbook, from the bundled example (empty without workbooks)
};

QTEST_MAIN(Capturas)
#include "tst_capturas.moc"
