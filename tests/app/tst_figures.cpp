// The figures the screens name, drawn by the program, and the sections drawn to scale.
#include <QImage>
#include <QPainter>
#include <QScatterSeries>
#include <QtTest>

#include "app/figures.hpp"
#include "app/profile_chart.hpp"
#include "app/section_sketch.hpp"
#include "app/standard_profile.hpp"
#include "screens/profile_screen.hpp"
#include "screens/registry.hpp"
#include "support.hpp"

using namespace cauce::app;
namespace profile = cauce::screens::profile;

namespace {

QImage Draw(Figure f, QSize size = {200, 140}) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    PaintFigure(p, QRectF(QPointF(0, 0), size), f);
    return image;
}

QImage DrawSketch(const SectionSketch& k, QSize size) {
    // Drawn without its caption band mattering: the checks look at the section itself.
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    PaintSketch(p, QRectF(QPointF(0, 0), size), k);
    return image;
}

int Count(const QImage& image, QColor colour, int tolerance = 40) {
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::abs(c.red() - colour.red()) + std::abs(c.green() - colour.green()) +
                    std::abs(c.blue() - colour.blue()) <
                tolerance)
                ++n;
        }
    return n;
}

// The water colour as it comes out over white.
QColor WaterOnWhite() {
    return QColor(116, 176, 229);
}

const Figure kAll[] = {Figure::Cauces1, Figure::Cauces,   Figure::Cauces2, Figure::Summer, Figure::Ctrape1,
                       Figure::Ctrian1, Figure::Crectg1,  Figure::Ctrapez, Figure::Ctrian, Figure::Crectg,
                       Figure::Circulo, Figure::Circulo2, Figure::Circulo3};

}  // namespace

class Figures : public QObject {
    Q_OBJECT
  private slots:
    void namesAsTheScreensWriteThem_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("figure");
        QTest::newRow("profile screens") << "C:\\programas\\figuras\\Cauces1.wmf" << int(Figure::Cauces1);
        QTest::newRow("upper case") << "C:\\PROGRAMAS\\FIGURAS\\SUMMER.WMF" << int(Figure::Summer);
        QTest::newRow("Ctrian is not Ctrian1") << "Ctrian.wmf" << int(Figure::Ctrian);
        QTest::newRow("empty box") << "" << int(Figure::None);
        QTest::newRow("unknown") << "plano.wmf" << int(Figure::Unknown);
    }
    void namesAsTheScreensWriteThem() {
        QFETCH(QString, text);
        QFETCH(int, figure);
        QCOMPARE(int(FigureFromText(text.toStdString())), figure);
    }

    // Every figure draws something, and no two figures draw the same picture.
    void everyFigureIsItsOwnDrawing() {
        std::vector<QImage> images;
        for (Figure f : kAll) {
            const QImage image = Draw(f);
            QVERIFY2(Count(image, Qt::white, 6) < image.width() * image.height() * 9 / 10, FigureName(f));
            for (std::size_t k = 0; k < images.size(); ++k) QVERIFY2(images[k] != image, FigureName(f));
            images.push_back(image);
        }
        QCOMPARE(Count(Draw(Figure::None), Qt::white, 6), 200 * 140);
    }

    // A rectangular channel 2 m wide and 2 m deep, water at 0.81 m, critical depth at 0.47 m: in the
    // drawing the water stands at 0.81 / 2 of the wall and the red dashes at 0.47 / 2.
    void sectionToScale() {
        SectionSketch k;
        k.ground << QPointF(-1, 102) << QPointF(-1, 100) << QPointF(1, 100) << QPointF(1, 102);
        k.water = 100.81;
        k.critical = 100.47;
        const QSize size(300, 300);
        const QImage image = DrawSketch(k, size);
        // A square box and a square section: no exaggeration.
        QCOMPARE(VerticalExaggeration(QRectF(0, 0, 300, 300), k), 1.0);
        const int mid = size.width() / 2 + 20;
        int water_top = -1, water_bottom = -1;
        for (int y = 0; y < size.height(); ++y) {
            const QColor c = image.pixelColor(mid, y);
            if (std::abs(c.red() - WaterOnWhite().red()) + std::abs(c.blue() - WaterOnWhite().blue()) < 40) {
                if (water_top < 0) water_top = y;
                water_bottom = y;
            }
        }
        QVERIFY(water_top > 0);
        // The bank: the first row of earth just outside the left wall.
        int wall = 0;
        while (wall < size.width() && image.pixelColor(wall, size.height() / 2) != QColor(Qt::white)) ++wall;
        int bank = 0;
        while (bank < size.height() && image.pixelColor(wall - 3, bank) == QColor(Qt::white)) ++bank;
        const double depth_px = water_bottom - bank;
        QVERIFY(depth_px > 100);
        QVERIFY(std::abs((water_bottom - water_top) / depth_px - 0.81 / 2) < 0.03);
        // The dashed line: the row with most red in it (the "Yc" beside it has fewer per row).
        int red_row = -1, most = 0;
        for (int y = 0; y < size.height(); ++y) {
            int red = 0;
            for (int x = wall; x < size.width() - wall; ++x)
                if (image.pixelColor(x, y).red() > 170 && image.pixelColor(x, y).green() < 110) ++red;
            if (red > most) {
                most = red;
                red_row = y;
            }
        }
        QVERIFY(most > 40);
        QVERIFY(std::abs((water_bottom - red_row) / depth_px - 0.47 / 2) < 0.03);
    }

    // The sketch of Form2 after "(Y?)": the section of the current record, the water at the bed plus
    // the normal depth, the critical depth; before the click, the section without water.
    void form2SketchFollowsTheComputedSection() {
        auto screen = cauce::screens::MakeScreen("Form2");
        for (const auto& [box, text] : cauce::apptest::ReadmeRectangle()) screen->Type(box, text);
        auto before = SketchOf(*screen);
        QVERIFY(before.has_value());
        QVERIFY(!before->water.has_value());
        QCOMPARE(before->ground.size(), 4);
        QVERIFY(!screen->Click(profile::button::Section));
        const auto after = SketchOf(*screen);
        QVERIFY(after.has_value());
        QVERIFY(after->water.has_value());
        // Manning for a 2 m rectangle, n 0.015, S 0.001, Q 2: y (y / (1 + y))^(2/3) = 0.4743 gives
        // y = 0.810; critical depth (1 / 9.81)^(1/3) = 0.467.
        QVERIFY(std::abs(*after->water - 100.81) < 0.006);
        QVERIFY(std::abs(*after->critical - 100.467) < 0.006);
        QVERIFY(!after->flood);
        QVERIFY(after->caption.startsWith(QStringLiteral("Sección 1")));
        // Levels that do not rise: no drawing to scale.
        screen->Type(profile::LevelElevation(2), "99");
        const auto bad = SketchOf(*screen);
        QVERIFY(!bad.has_value());
    }

    // Overflowing into a flood zone 10 m wide: the outline spreads over the flood zone.
    void form2SketchOfTheFloodZone() {
        auto screen = cauce::screens::MakeScreen("Form2");
        // The README's rectangle, 2 m deep, carries about 6.4 m3/s full.
        for (const auto& [box, text] : cauce::apptest::ReadmeRectangle()) screen->Type(box, text);
        const std::pair<std::string, const char*> boxes[] = {{profile::box::Discharge, "8"},
                                                             {profile::box::FloodWidth, "10"},
                                                             {profile::box::FloodRoughness, "0.04"}};
        for (const auto& [box, text] : boxes) screen->Type(box, text);
        QVERIFY(!screen->Click(profile::button::Section));
        QCOMPARE(screen->Get(profile::label::Message).text, std::string("HAY DESBORDAMIENTO"));
        const auto k = SketchOf(*screen);
        QVERIFY(k.has_value());
        QVERIFY(k->flood);
        QVERIFY(*k->water > 102);
        double left = 0, right = 0;
        for (const QPointF& pt : k->ground) {
            left = std::min(left, pt.x());
            right = std::max(right, pt.x());
        }
        QVERIFY(left <= -5);
        QVERIFY(right >= 5);
    }

    // The standard step's water and energy lines over the screen's profile, and the jump marked where
    // the subcritical sequent depth stands over the bed of the computed section just below it.
    void profilePlotMarksTheStandardStepAndItsJump() {
        ProfileChart chart;
        chart.Show({{1, 0, 100, 101.2, 100.8, "S2"}, {2, 200, 98, 99.5, 98.6, "M1"}});
        cauce::standard_step::Result r;
        r.line = {{0, 100, 101.1, 101.5}, {100, 99, 99.6, 100.4}, {200, 98, 99.4, 99.5}};
        r.jump = cauce::standard_step::Jump{150, 0.5, 1.4};
        AddStandardLines(chart.chart(), r);
        QStringList names;
        QScatterSeries* jump = nullptr;
        for (QAbstractSeries* s : chart.chart()->series()) {
            names << s->name();
            if (s->name() == QStringLiteral("Resalto")) jump = qobject_cast<QScatterSeries*>(s);
        }
        QVERIFY(names.contains(QStringLiteral("Agua, paso estándar")));
        QVERIFY(names.contains(QStringLiteral("Energía, paso estándar")));
        QVERIFY(jump && jump->count() == 1);
        QCOMPARE(jump->at(0), QPointF(150, 98 + 1.4));
    }
};

QTEST_MAIN(Figures)
#include "tst_figures.moc"
