#include "app/profile_chart.hpp"

#include <QAreaSeries>
#include <QChart>
#include <QGraphicsSimpleTextItem>
#include <QLineSeries>
#include <QValueAxis>
#include <algorithm>
#include <cmath>

#include "app/drawing.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::app {

std::vector<ProfilePoint> ProfileOf(const forms::Screen& screen) {
    const auto* natural = dynamic_cast<const screens::NaturalScreen*>(&screen);
    if (!natural) return {};
    const natural::State& st = natural->State();
    if (st.N < 2 || st.N > kMaxSection) return {};
    std::vector<ProfilePoint> points;
    bool run = false;
    for (int k = 1; k <= st.N; ++k) {
        if (!st.Tipo(k).empty()) run = true;
        // A section never computed has no bed to draw.
        if (st.npts(k) < 2) continue;
        const ProfilePoint p{
            k, st.X(k), st.Zbed(k), st.Za(k), st.Zbed(k) + st.Yc(k), QString::fromStdString(st.Tipo(k))};
        if (!std::isfinite(p.chainage) || !std::isfinite(p.bed) || !std::isfinite(p.water) ||
            !std::isfinite(p.critical))
            continue;
        points.push_back(p);
    }
    if (!run || points.size() < 2) return {};
    std::stable_sort(points.begin(), points.end(),
                     [](const ProfilePoint& a, const ProfilePoint& b) { return a.chainage < b.chainage; });
    return points;
}

ProfileChart::ProfileChart(QWidget* parent) : QChartView(parent) {
    setRenderHint(QPainter::Antialiasing);
    setMinimumSize(260, 200);
    chart()->setTitle(QStringLiteral("Perfil longitudinal"));
    chart()->legend()->setAlignment(Qt::AlignBottom);
    chart()->legend()->setShowToolTips(
        true);  // a narrow window shortens the names: hovering shows them whole
    connect(chart(), &QChart::plotAreaChanged, this, [this] { PlaceLabels(); });
}

void ProfileChart::Show(const std::vector<ProfilePoint>& points) {
    points_ = points;
    QChart* c = chart();
    c->removeAllSeries();
    for (QAbstractAxis* axis : c->axes()) {
        c->removeAxis(axis);
        delete axis;
    }
    for (auto* label : labels_) delete label;
    labels_.clear();
    if (points.empty()) return;

    auto* bed = new QLineSeries;
    bed->setName(QStringLiteral("Fondo"));
    auto* water = new QLineSeries;
    water->setName(QStringLiteral("Superficie del agua"));
    auto* critical = new QLineSeries;
    critical->setName(QStringLiteral("Profundidad crítica"));
    double lo = points.front().bed, hi = points.front().water;
    for (const auto& p : points) {
        bed->append(p.chainage, p.bed);
        water->append(p.chainage, p.water);
        critical->append(p.chainage, p.critical);
        lo = std::min({lo, p.bed, p.water, p.critical});
        hi = std::max({hi, p.bed, p.water, p.critical});
    }
    // The ground under the bed line, shaded as in the section drawings.
    auto* floor = new QLineSeries;
    const double margin = std::max((hi - lo) * 0.12, 0.05);
    for (const auto& p : points) floor->append(p.chainage, lo - margin);
    auto* ground = new QAreaSeries(bed, floor);
    ground->setName(QStringLiteral("Fondo"));
    ground->setColor(drawing::kEarth);
    ground->setBorderColor(drawing::kEarthLine);
    water->setPen(QPen(drawing::kSurface, 2));
    QPen dashed(drawing::kCritical, 1.5, Qt::DashLine);
    critical->setPen(dashed);
    c->addSeries(ground);
    c->addSeries(water);
    c->addSeries(critical);

    auto* x = new QValueAxis;
    x->setTitleText(QStringLiteral("Abscisa (m)"));
    x->setRange(points.front().chainage, points.back().chainage);
    x->setLabelFormat(QStringLiteral("%.0f"));
    auto* y = new QValueAxis;
    y->setTitleText(QStringLiteral("Cota (m)"));
    y->setRange(lo - margin, hi + margin * 1.5);
    y->setLabelFormat(QStringLiteral("%.2f"));
    // The reach end to end across; round heights up the side.
    x->setTickCount(6);
    y->applyNiceNumbers();
    // The ground reaches down to the foot of the plot.
    QList<QPointF> foot;
    for (const auto& p : points) foot.append(QPointF(p.chainage, y->min()));
    floor->replace(foot);
    c->addAxis(x, Qt::AlignBottom);
    c->addAxis(y, Qt::AlignLeft);
    for (QAbstractSeries* s : c->series()) {
        s->attachAxis(x);
        s->attachAxis(y);
    }
    for (const auto& p : points) {
        auto* label = new QGraphicsSimpleTextItem(QStringLiteral("%1 %2").arg(p.section).arg(p.type), c);
        label->setBrush(drawing::kSurface.darker(120));
        labels_.push_back(label);
    }
    PlaceLabels();
}

QStringList ProfileChart::TypeLabels() const {
    QStringList texts;
    for (const auto* label : labels_) texts << label->text();
    return texts;
}

void ProfileChart::PlaceLabels() {
    QChart* c = chart();
    if (c->series().size() < 2) return;
    QAbstractSeries* water = c->series().at(1);
    for (std::size_t k = 0; k < labels_.size() && k < points_.size(); ++k) {
        const QPointF at = c->mapToPosition(QPointF(points_[k].chainage, points_[k].water), water);
        const QRectF r = labels_[k]->boundingRect();
        // Alternate above and further above so that close sections do not overprint each other.
        const double lift = r.height() * (k % 2 == 0 ? 1.2 : 2.3);
        labels_[k]->setPos(at.x() - r.width() / 2, at.y() - lift);
    }
}

void ProfileChart::SetStale(bool stale) {
    if (stale == stale_) return;
    stale_ = stale;
    chart()->setOpacity(stale ? 0.35 : 1.0);
    setAccessibleDescription(stale ? QStringLiteral("Perfil longitudinal (desactualizado)")
                                   : QStringLiteral("Perfil longitudinal"));
}

}  // namespace cauce::app
