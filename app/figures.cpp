#include "app/figures.hpp"

#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cctype>
#include <string>

#include "app/drawing.hpp"

namespace cauce::app {

namespace {

namespace d = drawing;

// Every figure is drawn on a 200 x 140 canvas, scaled into its box.
constexpr double kW = 200, kH = 140;
constexpr double kLine = 1.4, kText = 9;

struct Named {
    const char* name;
    Figure figure;
};
constexpr Named kNames[] = {
    {"Cauces1", Figure::Cauces1},   {"Cauces", Figure::Cauces},   {"Cauces2", Figure::Cauces2},
    {"SUMMER", Figure::Summer},     {"Ctrape1", Figure::Ctrape1}, {"Ctrian1", Figure::Ctrian1},
    {"Crectg1", Figure::Crectg1},   {"Ctrapez", Figure::Ctrapez}, {"Ctrian", Figure::Ctrian},
    {"Crectg", Figure::Crectg},     {"circulo", Figure::Circulo}, {"circulo2", Figure::Circulo2},
    {"circulo3", Figure::Circulo3},
};

bool SameLetters(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

void Label(QPainter& p, QPointF at, const QString& text, double size = kText) {
    QFont f = p.font();
    f.setPixelSize(qMax(1, qRound(size)));
    p.setFont(f);
    p.setPen(d::kInk);
    p.drawText(at, text);
}

// The outline carried on level to both edges of the canvas, so that no water shows beyond it.
QPolygonF ToEdges(QPolygonF outline) {
    outline.prepend(QPointF(-1, outline.first().y()));
    outline.append(QPointF(kW + 1, outline.last().y()));
    return outline;
}

// A natural section: the outline, the water up to surface_y, the mark and the depth.
void NaturalSection(QPainter& p, const QPolygonF& outline, double surface_y, double bed_x, double bed_y) {
    const QPolygonF ground = ToEdges(outline);
    const QPainterPath region = d::GroundRegion(ground, kH);
    d::Ground(p, ground, kH, kLine);
    d::Water(p, d::WaterRegion(region, surface_y, 0, kW, kH), surface_y, kLine * 0.8);
    d::SurfaceMark(p, QPointF(bed_x + 22, surface_y), 7);
    d::Dimension(p, QPointF(bed_x, bed_y), QPointF(bed_x, surface_y), "Yn", kText);
}

void Cauces1(QPainter& p) {
    QPolygonF g;
    g << QPointF(8, 28) << QPointF(30, 42) << QPointF(52, 66) << QPointF(74, 92) << QPointF(96, 110)
      << QPointF(118, 106) << QPointF(142, 84) << QPointF(164, 56) << QPointF(192, 34);
    NaturalSection(p, g, 74, 96, 110);
    d::Dimension(p, QPointF(30, 20), QPointF(164, 20), "Tn", kText);
}

void Cauces(QPainter& p) {
    QPolygonF g;
    g << QPointF(2, 14) << QPointF(14, 46) << QPointF(58, 46) << QPointF(70, 72) << QPointF(86, 98)
      << QPointF(100, 108) << QPointF(114, 100) << QPointF(130, 74) << QPointF(142, 46) << QPointF(186, 46)
      << QPointF(198, 14);
    NaturalSection(p, g, 34, 100, 108);
    d::Dimension(p, QPointF(14, 20), QPointF(186, 20), "B", kText);
    d::Dimension(p, QPointF(58, 54), QPointF(142, 54), "Tn", kText * 0.9);
    Label(p, QPointF(18, 60), "zona", kText * 0.8);
    Label(p, QPointF(18, 69), "inundable", kText * 0.8);
}

void Cauces2(QPainter& p) {
    QPolygonF g;
    g << QPointF(30, 14) << QPointF(58, 46) << QPointF(70, 72) << QPointF(86, 98) << QPointF(100, 108)
      << QPointF(114, 100) << QPointF(130, 74) << QPointF(142, 46) << QPointF(170, 14);
    NaturalSection(p, g, 34, 100, 108);
    d::Dimension(p, QPointF(58, 54), QPointF(142, 54), "B = Tn", kText * 0.9);
}

void Summer(QPainter& p) {
    QLinearGradient sky(0, 0, 0, kH);
    sky.setColorAt(0, QColor(120, 185, 240));
    sky.setColorAt(0.6, QColor(210, 235, 250));
    p.fillRect(QRectF(0, 0, kW, kH), sky);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 204, 51));
    p.drawEllipse(QPointF(160, 30), 14, 14);
    p.setPen(QPen(QColor(255, 204, 51), 2));
    for (int k = 0; k < 12; ++k) {
        p.save();
        p.translate(160, 30);
        p.rotate(30.0 * k);
        p.drawLine(QPointF(18, 0), QPointF(25, 0));
        p.restore();
    }
    p.setPen(Qt::NoPen);
    // A band of land: its skyline, filled down to the bottom of the picture.
    const auto land = [&p](QPainterPath skyline, const QColor& color) {
        skyline.lineTo(200, kH);
        skyline.lineTo(0, kH);
        p.setBrush(color);
        p.drawPath(skyline);
    };
    QPainterPath far_hills;
    far_hills.moveTo(0, 80);
    far_hills.cubicTo(40, 50, 70, 60, 100, 72);
    far_hills.cubicTo(130, 84, 170, 52, 200, 70);
    land(far_hills, QColor(120, 170, 90));
    QPainterPath meadow;
    meadow.moveTo(0, 100);
    meadow.cubicTo(60, 86, 140, 92, 200, 96);
    land(meadow, QColor(90, 150, 70));
    // The river winding from the hills towards the viewer.
    QPainterPath river;
    river.moveTo(96, 92);
    river.cubicTo(80, 104, 130, 112, 100, 124);
    river.cubicTo(80, 132, 90, 138, 70, kH);
    p.setPen(QPen(d::kWater.darker(110), 7, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    p.drawPath(river);
    p.setPen(QPen(QColor(230, 245, 255), 1.2));
    p.drawPath(river);
    // A tree.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(110, 75, 40));
    p.drawRect(QRectF(40, 96, 4, 16));
    p.setBrush(QColor(50, 110, 50));
    p.drawEllipse(QPointF(42, 90), 11, 13);
}

// Prismatic channels: bank level y 40, bed y 110, bottom half-width hb, top half-width ht.
struct Prism {
    double hb, ht;
};
Prism PrismOf(Figure f) {
    switch (f) {
        case Figure::Ctrian1:
        case Figure::Ctrian:
            return {0, 52};
        case Figure::Crectg1:
        case Figure::Crectg:
            return {40, 40};
        default:
            return {26, 58};
    }
}

void Channel(QPainter& p, Figure f, bool flood) {
    const Prism s = PrismOf(f);
    constexpr double cx = 100, bank = 44, bed = 112;
    QPolygonF g;
    if (flood)
        g << QPointF(2, 16) << QPointF(14, bank);
    else
        g << QPointF(2, bank);
    g << QPointF(cx - s.ht, bank) << QPointF(cx - s.hb, bed) << QPointF(cx + s.hb, bed)
      << QPointF(cx + s.ht, bank);
    if (flood)
        g << QPointF(186, bank) << QPointF(198, 16);
    else
        g << QPointF(198, bank);
    g = ToEdges(g);
    const double surface = flood ? 32 : 72;
    const QPainterPath region = d::GroundRegion(g, kH);
    d::Ground(p, g, kH, kLine);
    // Without a flood zone the water stays between the banks.
    const double x0 = flood ? 0 : cx - s.ht, x1 = flood ? kW : cx + s.ht;
    d::Water(p, d::WaterRegion(region, surface, x0, x1, kH), surface, kLine * 0.8);
    d::SurfaceMark(p, QPointF(cx + 14, surface), 7);
    d::Dimension(p, QPointF(cx - 8, bed), QPointF(cx - 8, surface), "Yn", kText);
    if (s.hb > 0) d::Dimension(p, QPointF(cx - s.hb, bed + 12), QPointF(cx + s.hb, bed + 12), "b", kText);
    d::Dimension(p, QPointF(cx + s.ht + 14, bed), QPointF(cx + s.ht + 14, bank), "h", kText);
    if (s.ht > s.hb) {
        // The side slope: 1 vertical for z horizontal.
        const double run = (s.ht - s.hb) * 0.35, rise = (bed - bank) * 0.35;
        const QPointF a(cx - s.ht + (s.ht - s.hb) * 0.3, bank + (bed - bank) * 0.3);
        p.setPen(QPen(d::kInk, 0.8));
        p.drawLine(a, QPointF(a.x() - run, a.y()));
        p.drawLine(QPointF(a.x() - run, a.y()), QPointF(a.x() - run, a.y() - rise));
        Label(p, QPointF(a.x() - run / 2 - 3, a.y() + 9), "z", kText * 0.9);
        Label(p, QPointF(a.x() - run - 8, a.y() - rise / 2 + 3), "1", kText * 0.9);
    }
    if (flood) {
        d::Dimension(p, QPointF(14, 8), QPointF(186, 8), "Ancho zona", kText * 0.9);
    } else {
        // The optional flood zone, dashed.
        p.setPen(QPen(d::kInk, 0.8, Qt::DashLine));
        p.drawLine(QPointF(6, bank - 16), QPointF(cx - s.ht - 6, bank - 16));
        p.drawLine(QPointF(cx + s.ht + 6, bank - 16), QPointF(194, bank - 16));
        Label(p, QPointF(8, bank - 20), "zona inundable", kText * 0.75);
    }
}

void Conduit(QPainter& p, double depth_fraction) {
    constexpr double cx = 100, cy = 70, r = 52;
    p.fillRect(QRectF(0, 0, kW, kH), d::kEarth);
    p.fillRect(QRectF(0, 0, kW, kH), QBrush(d::kEarthLine.lighter(130), Qt::BDiagPattern));
    QPainterPath pipe;
    pipe.addEllipse(QPointF(cx, cy), r, r);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawPath(pipe);
    const double surface = cy + r - 2 * r * depth_fraction;
    QPainterPath below;
    below.addRect(QRectF(cx - r, surface, 2 * r, 2 * r));
    d::Water(p, pipe.intersected(below), surface, kLine * 0.8);
    p.setPen(QPen(QColor(110, 110, 110), 4));
    p.setBrush(Qt::NoBrush);
    p.drawPath(pipe);
    d::SurfaceMark(p, QPointF(cx + 18, surface), 7);
    d::Dimension(p, QPointF(cx - 10, cy + r), QPointF(cx - 10, surface), "Yn", kText);
    d::Dimension(p, QPointF(cx + r + 16, cy + r), QPointF(cx + r + 16, cy - r), "D", kText);
}

void Unknown(QPainter& p, std::string_view text) {
    p.setPen(QPen(d::kInk, 0.8, Qt::DashLine));
    p.drawRect(QRectF(4, 4, kW - 8, kH - 8));
    Label(p, QPointF(10, kH / 2), QString::fromUtf8(text.data(), static_cast<int>(text.size())), kText);
}

}  // namespace

Figure FigureFromText(std::string_view text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    if (text.empty()) return Figure::None;
    const auto slash = text.find_last_of("\\/");
    std::string_view base = slash == std::string_view::npos ? text : text.substr(slash + 1);
    const auto dot = base.rfind('.');
    if (dot != std::string_view::npos) base = base.substr(0, dot);
    for (const auto& n : kNames)
        if (SameLetters(base, n.name)) return n.figure;
    return Figure::Unknown;
}

const char* FigureName(Figure figure) {
    for (const auto& n : kNames)
        if (n.figure == figure) return n.name;
    return "";
}

bool IsSectionFigure(Figure figure) {
    return figure != Figure::None && figure != Figure::Unknown && figure != Figure::Summer;
}

void PaintFigure(QPainter& p, const QRectF& box, Figure figure, std::string_view text) {
    if (figure == Figure::None || box.isEmpty()) return;
    p.save();
    const double s = std::min(box.width() / kW, box.height() / kH);
    p.translate(box.center().x() - s * kW / 2, box.center().y() - s * kH / 2);
    p.scale(s, s);
    p.setClipRect(QRectF(0, 0, kW, kH));
    p.setRenderHint(QPainter::Antialiasing);
    switch (figure) {
        case Figure::Cauces1:
            Cauces1(p);
            break;
        case Figure::Cauces:
            Cauces(p);
            break;
        case Figure::Cauces2:
            Cauces2(p);
            break;
        case Figure::Summer:
            Summer(p);
            break;
        case Figure::Ctrape1:
        case Figure::Ctrian1:
        case Figure::Crectg1:
            Channel(p, figure, false);
            break;
        case Figure::Ctrapez:
        case Figure::Ctrian:
        case Figure::Crectg:
            Channel(p, figure, true);
            break;
        case Figure::Circulo:
            Conduit(p, 0.22);
            break;
        case Figure::Circulo2:
            Conduit(p, 0.42);
            break;
        case Figure::Circulo3:
            Conduit(p, 0.72);
            break;
        case Figure::Unknown:
            Unknown(p, text);
            break;
        case Figure::None:
            break;
    }
    p.restore();
}

}  // namespace cauce::app
