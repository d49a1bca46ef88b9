// The standard-step profile on the desktop, beside the screen's own: its water and energy lines and
// the jump on the profile plot, and a tab with its table, the difference from the screen's levels,
// its notes and the warnings about the screen's profile.
#pragma once

#include <QTabWidget>
#include <optional>
#include <string>
#include <vector>

#include "forms/screen.hpp"
#include "hydraulics/standard_step/reach.hpp"

class QChart;
class QLabel;
class QTableWidget;

namespace cauce::app {

class ProfileChart;

// The standard-step profile of the reach a profile screen shows, once its profile has run, for the
// depth in its depth box; nothing on other screens or before the run.
struct StandardProfile {
    standard_step::Result result;
    std::vector<std::string> warnings;  // about the screen's own profile
};
std::optional<StandardProfile> StandardProfileOf(const forms::Screen& screen);

// Adds the standard-step water and energy lines and the jump to a plot ProfileChart::Show drew.
void AddStandardLines(QChart* chart, const standard_step::Result& result);

// The side of a screen window: the profile plot, and the standard-step table in a tab beside it.
class ProfileTabs : public QTabWidget {
    Q_OBJECT
  public:
    ProfileTabs(ProfileChart* chart, QWidget* parent = nullptr);
    // After the plot is drawn: the standard step's lines on it and its table, or its message.
    void Refresh(const forms::Screen& screen);
    QTableWidget* Table() const { return table_; }

  private:
    ProfileChart* chart_;
    QTableWidget* table_;
    QLabel* notes_;
};

}  // namespace cauce::app
