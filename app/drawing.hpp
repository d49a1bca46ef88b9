// The look shared by the figures and the sections drawn to scale: earth, water, the water-surface
// mark, dimension lines. Coordinates are the painter's (y grows downwards).
#pragma once

#include <QColor>
#include <QPainterPath>
#include <QPointF>
#include <QPolygonF>
#include <QString>

class QPainter;

namespace cauce::app::drawing {

inline const QColor kEarth{205, 178, 134};
inline const QColor kEarthLine{110, 78, 42};
inline const QColor kWater{96, 166, 226, 190};
inline const QColor kSurface{18, 78, 160};
inline const QColor kCritical{200, 40, 40};
inline const QColor kInk{50, 50, 50};

// The ground as a closed region: the outline (left to right) closed down to depth `below`.
QPainterPath GroundRegion(const QPolygonF& outline, double below);

// Earth below the outline, hatched, with the outline drawn over it.
void Ground(QPainter& p, const QPolygonF& outline, double below, double line_width);

// Water filling, above the ground region and below the surface y, between x0 and x1.
QPainterPath WaterRegion(const QPainterPath& ground, double surface_y, double x0, double x1, double below);
void Water(QPainter& p, const QPainterPath& water, double surface_y, double line_width);

// The water-surface mark: an inverted triangle standing on the surface with two short lines below.
void SurfaceMark(QPainter& p, QPointF at, double size);

// A dimension line between a and b with arrows and its text beside the middle.
void Dimension(QPainter& p, QPointF a, QPointF b, const QString& text, double size);

}  // namespace cauce::app::drawing
