#include "app/drawing.hpp"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QtMath>

namespace cauce::app::drawing {

QPainterPath GroundRegion(const QPolygonF& outline, double below) {
    QPainterPath path;
    if (outline.isEmpty()) return path;
    QPolygonF closed = outline;
    closed << QPointF(outline.last().x(), below) << QPointF(outline.first().x(), below);
    path.addPolygon(closed);
    path.closeSubpath();
    return path;
}

void Ground(QPainter& p, const QPolygonF& outline, double below, double line_width) {
    const QPainterPath region = GroundRegion(outline, below);
    p.save();
    p.setPen(Qt::NoPen);
    p.setBrush(kEarth);
    p.drawPath(region);
    p.setBrush(QBrush(kEarthLine.lighter(130), Qt::BDiagPattern));
    p.drawPath(region);
    p.setPen(QPen(kEarthLine, line_width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawPolyline(outline);
    p.restore();
}

QPainterPath WaterRegion(const QPainterPath& ground, double surface_y, double x0, double x1, double below) {
    QPainterPath body;
    body.addRect(QRectF(QPointF(x0, surface_y), QPointF(x1, below)));
    return body.subtracted(ground);
}

void Water(QPainter& p, const QPainterPath& water, double surface_y, double line_width) {
    if (water.isEmpty()) return;
    p.save();
    p.setPen(Qt::NoPen);
    p.setBrush(kWater);
    p.drawPath(water);
    // The surface: a line along the top of every pocket of water, clipped to the water itself.
    p.setClipPath(water);
    p.setPen(QPen(kSurface, 2 * line_width));
    const QRectF r = water.boundingRect();
    p.drawLine(QPointF(r.left(), surface_y), QPointF(r.right(), surface_y));
    p.restore();
}

void SurfaceMark(QPainter& p, QPointF at, double size) {
    p.save();
    p.setPen(QPen(kSurface, size * 0.12));
    p.setBrush(Qt::white);
    QPolygonF tri;
    tri << QPointF(at.x() - size * 0.5, at.y() - size * 0.8)
        << QPointF(at.x() + size * 0.5, at.y() - size * 0.8) << at;
    p.drawPolygon(tri);
    p.drawLine(QPointF(at.x() - size * 0.4, at.y() + size * 0.25),
               QPointF(at.x() + size * 0.4, at.y() + size * 0.25));
    p.drawLine(QPointF(at.x() - size * 0.22, at.y() + size * 0.5),
               QPointF(at.x() + size * 0.22, at.y() + size * 0.5));
    p.restore();
}

void Dimension(QPainter& p, QPointF a, QPointF b, const QString& text, double size) {
    p.save();
    p.setPen(QPen(kInk, size * 0.08));
    p.setBrush(kInk);
    p.drawLine(a, b);
    const double angle = qAtan2(b.y() - a.y(), b.x() - a.x());
    auto head = [&](QPointF tip, double dir) {
        const double s = size * 0.35;
        QPolygonF h;
        h << tip
          << QPointF(tip.x() - dir * s * qCos(angle) - s * 0.4 * qSin(angle),
                     tip.y() - dir * s * qSin(angle) + s * 0.4 * qCos(angle))
          << QPointF(tip.x() - dir * s * qCos(angle) + s * 0.4 * qSin(angle),
                     tip.y() - dir * s * qSin(angle) - s * 0.4 * qCos(angle));
        p.drawPolygon(h);
    };
    head(b, 1);
    head(a, -1);
    QFont f = p.font();
    f.setPixelSize(qMax(1, qRound(size)));
    p.setFont(f);
    const QPointF mid = (a + b) / 2;
    const QFontMetricsF fm(f);
    const bool vertical = qAbs(b.y() - a.y()) > qAbs(b.x() - a.x());
    const QRectF tr = fm.boundingRect(text);
    QPointF at = vertical ? QPointF(mid.x() + size * 0.3, mid.y() + tr.height() * 0.3)
                          : QPointF(mid.x() - tr.width() / 2, mid.y() - size * 0.25);
    p.drawText(at, text);
    p.restore();
}

}  // namespace cauce::app::drawing
