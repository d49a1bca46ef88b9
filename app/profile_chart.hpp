// The longitudinal profile of a reach after "Perfiles": bed, water surface and critical-depth line
// against chainage, with each section's profile type (M1, M2, S1, S2) over its point.
#pragma once

#include <QChartView>
#include <QString>
#include <vector>

#include "forms/screen.hpp"

class QGraphicsSimpleTextItem;

namespace cauce::app {

struct ProfilePoint {
    int section = 0;
    double chainage = 0;  // m
    double bed = 0;       // bed elevation, m
    double water = 0;     // water-surface elevation of the profile, m
    double critical = 0;  // elevation of the critical depth, m
    QString type;         // "M1", "M2", "S1", "S2"
};

// The profile the screen's state holds after its profile run, sections 1..N in chainage order; empty
// before the run, on screens without a profile, or when fewer than two sections can be drawn.
std::vector<ProfilePoint> ProfileOf(const forms::Screen& screen);

class ProfileChart : public QChartView {
    Q_OBJECT
  public:
    explicit ProfileChart(QWidget* parent = nullptr);

    void Show(const std::vector<ProfilePoint>& points);
    const std::vector<ProfilePoint>& Points() const { return points_; }
    // A plot out of date (a datum changed after the profile was run) is drawn faded.
    void SetStale(bool stale);
    bool IsStale() const { return stale_; }
    // The texts over the water-surface points, in section order ("3 M1").
    QStringList TypeLabels() const;

  private:
    void PlaceLabels();

    std::vector<ProfilePoint> points_;
    bool stale_ = false;
    std::vector<QGraphicsSimpleTextItem*> labels_;
};

}  // namespace cauce::app
