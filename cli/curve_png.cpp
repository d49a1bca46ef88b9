// The rating curve drawn with Qt Charts on the offscreen platform and saved as a PNG.
#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QCoreApplication>
#include <QImage>
#include <QLineSeries>
#include <QPainter>
#include <QScatterSeries>
#include <QValueAxis>
#include <algorithm>

#include "app/drawing.hpp"
#include "cli/graphics.hpp"
#include "cli/offscreen.hpp"

namespace cauce::cli {

namespace {

constexpr int kWidth = 1000, kHeight = 680;

QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

}  // namespace

bool CanDraw() {
    return true;
}

std::string CannotDraw() {
    return "";
}

std::string WriteCurvePng(const CurvePlot& plot, const std::string& path) {
    const auto application = StartOffscreen();
    auto* chart = new QChart;
    chart->setTitle(QStringLiteral("<b>%1</b><br>%2")
                        .arg(Q(plot.title).toHtmlEscaped(), Q(plot.subtitle).toHtmlEscaped()));
    chart->legend()->setAlignment(Qt::AlignBottom);

    auto* curve = new QLineSeries;
    curve->setName(QStringLiteral("Profundidad normal Yn"));
    curve->setPen(QPen(app::drawing::kSurface, 2.2));
    auto* dots = new QScatterSeries;
    dots->setName(QStringLiteral("Caudales calculados"));
    dots->setMarkerSize(6);
    dots->setColor(app::drawing::kSurface);
    dots->setBorderColor(app::drawing::kSurface);
    double qmin = std::min(plot.q_from, plot.points.front().q), qmax = std::max(plot.q_to, qmin), ymax = 0;
    for (const auto& p : plot.points) {
        curve->append(p.q, p.yn);
        dots->append(p.q, p.yn);
        qmin = std::min(qmin, p.q);
        qmax = std::max(qmax, p.q);
        ymax = std::max(ymax, p.yn);
    }
    chart->addSeries(curve);
    if (plot.points.size() <= 60) chart->addSeries(dots);

    // Reference discharges inside the range: a dashed vertical line each.
    const QColor mark_colors[] = {app::drawing::kCritical, QColor(90, 90, 90)};
    std::size_t shown = 0;
    for (const auto& [name, q] : plot.marks) {
        if (q < qmin || q > qmax) continue;
        auto* line = new QLineSeries;
        line->setName(QStringLiteral("%1 = %2 m3/s").arg(Q(name)).arg(q, 0, 'f', 2));
        line->setPen(QPen(mark_colors[shown++ % 2], 1.5, Qt::DashLine));
        line->append(q, 0);
        line->append(q, ymax * 1.08);
        chart->addSeries(line);
    }

    auto* x = new QValueAxis;
    x->setTitleText(QStringLiteral("Caudal Q (m3/s)"));
    x->setRange(qmin, qmax > qmin ? qmax : qmin + 1);
    x->applyNiceNumbers();
    auto* y = new QValueAxis;
    y->setTitleText(QStringLiteral("Profundidad normal Yn (m)"));
    y->setRange(0, ymax > 0 ? ymax * 1.08 : 1);
    y->applyNiceNumbers();
    y->setLabelFormat(QStringLiteral("%.2f"));
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);
    for (QAbstractSeries* s : chart->series()) {
        s->attachAxis(x);
        s->attachAxis(y);
    }

    QChartView view(chart);
    view.setRenderHint(QPainter::Antialiasing);
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.resize(kWidth, kHeight);
    view.show();
    QCoreApplication::processEvents();
    QImage image(kWidth, kHeight, QImage::Format_ARGB32);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        view.render(&painter);
    }
    return WriteAtomically(path, "la curva", [&](const QString& temporary) -> std::string {
        if (!image.save(temporary, "PNG")) return "no se pudo escribir la curva en \"" + path + "\"";
        return "";
    });
}

}  // namespace cauce::cli
