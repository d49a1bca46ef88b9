#include "app/section_sketch.hpp"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <vector>

#include "app/drawing.hpp"
#include "app/figures.hpp"
#include "forms/format.hpp"
#include "forms/val.hpp"
#include "screens/form1.hpp"
#include "screens/natural_screen.hpp"
#include "screens/registry.hpp"

namespace cauce::app {

namespace {

namespace d = drawing;
namespace form1 = screens::form1;

// The number a box holds as the screens read it; nothing when it is not a finite number.
std::optional<double> BoxValue(const forms::Screen& screen, std::string_view name) {
    const forms::Control* c = screen.Find(name);
    if (!c) return std::nullopt;
    try {
        const double v = forms::Val(c->text);
        if (std::isfinite(v)) return v;
    } catch (const Fault&) {
    }
    return std::nullopt;
}

std::optional<double> BoundValue(const forms::Screen& screen, std::string_view column) {
    for (const auto& c : screen.Controls())
        if (c.kind == forms::Kind::TextBox && c.column == column) return BoxValue(screen, c.name);
    return std::nullopt;
}

QString Metres(double v) {
    return QString::fromStdString(forms::Format(v, "0.00")) + " m";
}

struct Level {
    double z, t;
};

// The level table as shown: levels up to the first zero elevation. Empty when the
// elevations do not rise or a width is negative: such a table draws nothing.
std::vector<Level> ShownLevels(const forms::Screen& screen) {
    std::vector<Level> levels;
    for (int j = 1; j <= 15; ++j) {
        const auto z = BoxValue(screen, screens::section::LevelElevation(j));
        const auto t = BoxValue(screen, screens::section::LevelWidth(j));
        if (!z || !t) return {};
        if (*z == 0) break;
        if (*t < 0 || (!levels.empty() && *z <= levels.back().z)) return {};
        levels.push_back({*z, *t});
    }
    if (levels.size() < 2) return {};
    return levels;
}

// Rises at 1:1 from (x, z) outwards (dir -1 left, +1 right) up to elevation top.
QPointF Wall(double x, double z, double top, int dir) {
    return QPointF(x + dir * (top - z), top);
}

std::optional<SectionSketch> NaturalSketch(const forms::Screen& screen, const screens::NaturalScreen& model) {
    const std::vector<Level> levels = ShownLevels(screen);
    if (levels.empty()) return std::nullopt;
    const natural::State& st = model.State();
    const auto number = BoxValue(screen, screens::section::box::SectionNumber);
    const int s = number && *number >= 1 && *number <= kMaxSection && *number == std::floor(*number)
                      ? static_cast<int>(*number)
                      : 0;

    // The section's results count only when the state holds this very table for it.
    bool computed =
        s > 0 && st.npts(s) == static_cast<int>(levels.size()) && st.Yn(s) > 0 && std::isfinite(st.Yn(s));
    for (std::size_t j = 0; computed && j < levels.size(); ++j)
        computed = st.Z(s, static_cast<int>(j) + 1) == levels[j].z &&
                   st.T(s, static_cast<int>(j) + 1) == levels[j].t;

    SectionSketch k;
    const double bed = levels.front().z, bank = levels.back().z, tn = levels.back().t;
    const bool overflow = computed && st.Yn(s) > st.Ylleno(s);
    QPolygonF inner;  // the levels, left bank to right bank
    for (auto it = levels.rbegin(); it != levels.rend(); ++it) inner << QPointF(-it->t / 2, it->z);
    for (const auto& l : levels) inner << QPointF(l.t / 2, l.z);

    if (overflow) {
        const double water = bed + st.Yn(s);
        const double top = water + std::max(0.3 * (water - bank), 0.08 * (water - bed));
        double b = s == st.i ? st.B : BoundValue(screen, "Ancho Zi").value_or(tn);
        if (!(b >= tn)) b = tn;
        QPolygonF g;
        g << Wall(-b / 2, bank, top, -1);
        if (b > tn) g << QPointF(-b / 2, bank);
        g << inner;
        if (b > tn) g << QPointF(b / 2, bank);
        g << Wall(b / 2, bank, top, 1);
        k.ground = g;
        k.flood = b > tn;
    } else {
        k.ground = inner;
    }
    QString caption = s > 0 ? QStringLiteral("Sección %1").arg(s) : QStringLiteral("Sección");
    if (computed) {
        k.water = bed + st.Yn(s);
        caption += QStringLiteral(" · Yn ") + Metres(st.Yn(s));
        if (st.Yc(s) > 0 && std::isfinite(st.Yc(s))) {
            k.critical = bed + st.Yc(s);
            caption += QStringLiteral(" · Yc ") + Metres(st.Yc(s));
        }
    }
    k.caption = caption;
    return k;
}

// The prismatic-channel screen: the section from its data boxes once a result has been written.
std::optional<SectionSketch> PrismaticSketch(const forms::Screen& screen, Figure figure) {
    const forms::Control* velocity = screen.Find(form1::box::Velocity);
    if (!velocity || velocity->text.empty()) return std::nullopt;
    const auto yn = BoxValue(screen, form1::box::NormalDepth);
    if (!yn || *yn <= 0) return std::nullopt;
    const auto yc = BoxValue(screen, form1::box::CriticalDepth);
    SectionSketch k;
    k.water = *yn;
    if (yc && *yc > 0) k.critical = *yc;
    const bool conduit =
        figure == Figure::Circulo || figure == Figure::Circulo2 || figure == Figure::Circulo3;
    if (conduit) {
        const auto dia = BoxValue(screen, form1::box::Diameter);
        if (!dia || *dia <= 0 || *yn > *dia) return std::nullopt;
        k.diameter = *dia;
        if (k.critical && *k.critical > *dia) k.critical.reset();
        k.caption = QStringLiteral("D ") + Metres(*dia) + QStringLiteral(" · Yn ") + Metres(*yn);
    } else {
        const double b = BoxValue(screen, form1::box::Base).value_or(-1),
                     z = BoxValue(screen, form1::box::SideSlope).value_or(-1);
        if (b < 0 || z < 0 || b + z <= 0) return std::nullopt;
        const double h = std::max(0.0, BoxValue(screen, form1::box::BankHeight).value_or(0));
        const bool flowing =
            figure == Figure::Ctrapez || figure == Figure::Ctrian || figure == Figure::Crectg;
        if (flowing && h > 0 && *yn > h) {
            const double tb = b + 2 * z * h;
            double bz = BoxValue(screen, form1::box::FloodWidth).value_or(tb);
            if (!(bz >= tb)) bz = tb;
            const double top = *yn + std::max(0.3 * (*yn - h), 0.08 * *yn);
            k.ground << Wall(-bz / 2, h, top, -1);
            if (bz > tb) k.ground << QPointF(-bz / 2, h);
            k.ground << QPointF(-tb / 2, h) << QPointF(-b / 2, 0) << QPointF(b / 2, 0) << QPointF(tb / 2, h);
            if (bz > tb) k.ground << QPointF(bz / 2, h);
            k.ground << Wall(bz / 2, h, top, 1);
            k.flood = bz > tb;
        } else {
            // Without banks (h = 0, "Sin límite") the walls are drawn a little above the water.
            const double top = h > 0 && h >= *yn ? h : 1.25 * std::max(*yn, k.critical.value_or(0));
            const double t = b + 2 * z * top;
            k.ground << QPointF(-t / 2, top) << QPointF(-b / 2, 0) << QPointF(b / 2, 0)
                     << QPointF(t / 2, top);
        }
        k.caption = QStringLiteral("Yn ") + Metres(*yn);
    }
    if (k.critical) k.caption += QStringLiteral(" · Yc ") + Metres(*k.critical);
    return k;
}

struct Frame {
    double xmin, xmax, zmin, zmax;  // metres
    double sx, sy, ox, oy;          // pixels per metre and the origin of xmin, zmax
    double X(double x) const { return ox + (x - xmin) * sx; }
    double Y(double z) const { return oy + (zmax - z) * sy; }
};

constexpr double kMaxExaggeration = 10;

// Fits the section into the drawing area below the caption: the same scale both ways when the
// section is not too flat, otherwise heights stretched by at most kMaxExaggeration.
Frame FitFrame(const QRectF& box, const SectionSketch& k) {
    Frame f{};
    if (k.Conduit()) {
        f.xmin = -k.diameter / 2;
        f.xmax = k.diameter / 2;
        f.zmin = 0;
        f.zmax = k.diameter;
    } else {
        f.xmin = f.xmax = k.ground.first().x();
        f.zmin = f.zmax = k.ground.first().y();
        for (const QPointF& pt : k.ground) {
            f.xmin = std::min(f.xmin, pt.x());
            f.xmax = std::max(f.xmax, pt.x());
            f.zmin = std::min(f.zmin, pt.y());
            f.zmax = std::max(f.zmax, pt.y());
        }
    }
    if (k.water) f.zmax = std::max(f.zmax, *k.water);
    if (k.critical) f.zmax = std::max(f.zmax, *k.critical);
    const double width = std::max(f.xmax - f.xmin, 1e-6), height = std::max(f.zmax - f.zmin, 1e-6);
    const double caption = box.height() * 0.16, earth = box.height() * 0.1;
    const double margin = box.width() * 0.05;
    const double avail_w = box.width() - 2 * margin, avail_h = box.height() - caption - earth;
    const double sx = avail_w / width, sy = avail_h / height;
    if (sy >= sx) {
        f.sx = sx;
        f.sy = std::min(sy, sx * kMaxExaggeration);
    } else {
        f.sx = f.sy = sy;
    }
    f.ox = box.left() + (box.width() - width * f.sx) / 2;
    f.oy = box.top() + caption + (avail_h - height * f.sy) / 2;
    return f;
}

}  // namespace

std::optional<SectionSketch> SketchOf(const forms::Screen& screen) {
    const forms::Control* picture = screen.Find(screens::kSectionPicture);
    if (!picture) return std::nullopt;
    const Figure figure = FigureFromText(picture->text);
    if (!IsSectionFigure(figure)) return std::nullopt;
    if (const auto* natural = dynamic_cast<const screens::NaturalScreen*>(&screen))
        return NaturalSketch(screen, *natural);
    if (screen.Name() == "Form1") return PrismaticSketch(screen, figure);
    return std::nullopt;
}

double VerticalExaggeration(const QRectF& box, const SectionSketch& sketch) {
    const Frame f = FitFrame(box, sketch);
    return f.sy / f.sx;
}

void PaintSketch(QPainter& p, const QRectF& box, const SectionSketch& k) {
    if (box.isEmpty() || (!k.Conduit() && k.ground.size() < 2)) return;
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setClipRect(box);
    const Frame f = FitFrame(box, k);
    const double unit = box.height() / 14;  // text and marks
    const double below = box.bottom() + 1;

    QPainterPath inside;  // where water can stand
    QPainterPath ground;
    if (k.Conduit()) {
        p.fillRect(box, d::kEarth);
        p.fillRect(box, QBrush(d::kEarthLine.lighter(130), Qt::BDiagPattern));
        const double r = k.diameter / 2;
        inside.addEllipse(QPointF(f.X(0), f.Y(r)), r * f.sx, r * f.sy);
        p.setPen(Qt::NoPen);
        p.setBrush(Qt::white);
        p.drawPath(inside);
    } else {
        QPolygonF outline;
        for (const QPointF& pt : k.ground) outline << QPointF(f.X(pt.x()), f.Y(pt.y()));
        QPainterPath all;
        all.addRect(
            QRectF(outline.first().x(), box.top(), outline.last().x() - outline.first().x(), box.height()));
        // The ground goes on level beyond the outermost points, to the edges of the picture.
        outline.prepend(QPointF(box.left() - 1, outline.first().y()));
        outline.append(QPointF(box.right() + 1, outline.last().y()));
        ground = d::GroundRegion(outline, below);
        d::Ground(p, outline, below, std::max(1.0, unit * 0.15));
        inside = all.subtracted(ground);
    }

    if (k.water) {
        const double y = f.Y(*k.water);
        QPainterPath below_surface;
        below_surface.addRect(QRectF(QPointF(box.left(), y), QPointF(box.right(), below)));
        const QPainterPath water = inside.intersected(below_surface);
        d::Water(p, water, y, std::max(1.0, unit * 0.12));
        const QRectF wr = water.boundingRect();
        if (!wr.isEmpty()) d::SurfaceMark(p, QPointF(wr.center().x() + wr.width() * 0.18, y), unit * 0.9);
    }
    if (k.Conduit()) {
        p.setPen(QPen(QColor(110, 110, 110), std::max(1.5, unit * 0.35)));
        p.setBrush(Qt::NoBrush);
        p.drawPath(inside);
    }
    if (k.critical) {
        const double y = f.Y(*k.critical);
        p.save();
        p.setClipPath(inside, Qt::IntersectClip);
        p.setPen(QPen(d::kCritical, std::max(1.0, unit * 0.14), Qt::DashLine));
        p.drawLine(QPointF(box.left(), y), QPointF(box.right(), y));
        p.restore();
        QPainterPath band;
        band.addRect(QRectF(box.left(), y - 0.5, box.width(), 1));
        const QRectF seen = band.intersected(inside).boundingRect();
        QFont font = p.font();
        font.setPixelSize(std::max(6, static_cast<int>(unit)));
        p.setFont(font);
        p.setPen(d::kCritical);
        if (!seen.isEmpty())
            p.drawText(QPointF(seen.left() + unit * 0.3, y - unit * 0.25), QStringLiteral("Yc"));
    }

    QFont font = p.font();
    font.setPixelSize(std::max(6, static_cast<int>(unit)));
    p.setFont(font);
    p.setPen(d::kInk);
    const QFontMetricsF fm(font);
    const QRectF caption_box(box.left() + unit * 0.4, box.top() + unit * 0.3, box.width() - unit * 0.8,
                             unit * 1.4);
    p.drawText(caption_box, Qt::AlignLeft | Qt::AlignTop,
               fm.elidedText(k.caption, Qt::ElideRight, caption_box.width()));
    // Heights stretched: said in the corner, over the ground.
    const double exaggeration = f.sy / f.sx;
    if (exaggeration > 1.05) {
        QFont small = font;
        small.setPixelSize(std::max(6, static_cast<int>(unit * 0.85)));
        p.setFont(small);
        const QString note = QStringLiteral("alturas ×%1").arg(exaggeration, 0, 'f', 1);
        const QFontMetricsF sm(small);
        QRectF r = sm.boundingRect(note).adjusted(-3, -1, 3, 1);
        r.moveBottomRight(box.bottomRight() - QPointF(unit * 0.3, unit * 0.2));
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(255, 255, 255, 210));
        p.drawRect(r);
        p.setPen(d::kInk);
        p.drawText(r, Qt::AlignCenter, note);
    }
    p.restore();
}

}  // namespace cauce::app
