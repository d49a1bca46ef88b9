#include "app/standard_profile.hpp"

#include <QAbstractAxis>
#include <QChart>
#include <QHeaderView>
#include <QLabel>
#include <QLineSeries>
#include <QScatterSeries>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>
#include <cmath>

#include "app/drawing.hpp"
#include "app/profile_chart.hpp"
#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"
#include "hydraulics/standard_step/warnings.hpp"
#include "screens/form3.hpp"
#include "screens/profile_screen.hpp"
#include "screens/standard_reach.hpp"

namespace cauce::app {

namespace {

QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

// The box holding the depth at the last section on each profile screen.
forms::ControlName DepthBox(const forms::Screen& screen) {
    return screen.Name() == "Form3" ? screens::form3::kReach.depth : screens::profile::kReach.depth;
}

QString Fixed(double v, int decimals) {
    return QString::number(v, 'f', decimals);
}
std::string FixedText(double v, int decimals) {
    return Fixed(v, decimals).toStdString();
}

}  // namespace

std::optional<StandardProfile> StandardProfileOf(const forms::Screen& screen) {
    if (ProfileOf(screen).empty() || !screen.Find(DepthBox(screen))) return std::nullopt;
    StandardProfile out;
    try {
        out.warnings = standard_step::LegacyWarnings(screens::LegacyRunOf(screen));
        const double depth = forms::Val(screen.Get(DepthBox(screen)).text);
        const auto reach = screens::StandardReachOf(screen, depth);
        if (reach.error.empty()) {
            out.result = standard_step::Solve(reach.input);
        } else {
            out.result.error = reach.error;
        }
    } catch (const Fault& f) {
        out.result = {};
        out.result.error = f.what();
    }
    return out;
}

void AddStandardLines(QChart* chart, const standard_step::Result& result) {
    if (!result.Ok() || result.line.empty() || chart->axes(Qt::Horizontal).isEmpty() ||
        chart->axes(Qt::Vertical).isEmpty())
        return;
    auto* water = new QLineSeries;
    water->setName(QStringLiteral("Agua, paso estándar"));
    water->setPen(QPen(drawing::kSurface.darker(150), 1.5, Qt::DashDotLine));
    auto* energy = new QLineSeries;
    energy->setName(QStringLiteral("Energía, paso estándar"));
    energy->setPen(QPen(QColor(200, 90, 30), 1.2, Qt::DotLine));
    auto* y = qobject_cast<QValueAxis*>(chart->axes(Qt::Vertical).front());
    double lo = y ? y->min() : 0, hi = y ? y->max() : 0;
    for (const auto& p : result.line) {
        water->append(p.chainage, p.z_water);
        energy->append(p.chainage, p.z_energy);
        hi = std::max(hi, p.z_energy);
    }
    chart->addSeries(water);
    chart->addSeries(energy);
    QList<QAbstractSeries*> added{water, energy};
    if (result.jump) {
        auto* jump = new QScatterSeries;
        jump->setName(QStringLiteral("Resalto"));
        jump->setMarkerShape(QScatterSeries::MarkerShapeTriangle);
        jump->setMarkerSize(11);
        jump->setColor(QColor(190, 30, 30));
        // The jump's place on the line: the bed there is read off the line's points.
        const auto& line = result.line;
        auto after =
            std::lower_bound(line.begin(), line.end(), result.jump->chainage,
                             [](const standard_step::ProfilePoint& p, double x) { return p.chainage < x; });
        if (after == line.end()) --after;
        jump->append(result.jump->chainage, after->z_bed + result.jump->y2);
        chart->addSeries(jump);
        added.push_back(jump);
    }
    for (QAbstractSeries* s : added) {
        s->attachAxis(chart->axes(Qt::Horizontal).front());
        s->attachAxis(chart->axes(Qt::Vertical).front());
    }
    if (y && hi > y->max()) y->setRange(lo, hi + (hi - lo) * 0.05);
}

ProfileTabs::ProfileTabs(ProfileChart* chart, QWidget* parent) : QTabWidget(parent), chart_(chart) {
    addTab(chart_, QStringLiteral("Perfil"));
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    table_ = new QTableWidget(page);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->verticalHeader()->hide();
    table_->setAccessibleName(QStringLiteral("Perfil por paso estándar"));
    notes_ = new QLabel(page);
    notes_->setWordWrap(true);
    notes_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(table_, 3);
    layout->addWidget(notes_, 1);
    addTab(page, QStringLiteral("Paso estándar"));
}

void ProfileTabs::Refresh(const forms::Screen& screen) {
    const auto profile = StandardProfileOf(screen);
    table_->clear();
    table_->setRowCount(0);
    if (!profile) {
        notes_->clear();
        return;
    }
    const auto& r = profile->result;
    AddStandardLines(chart_->chart(), r);
    QStringList head;
    for (const std::string& h : screens::StandardHeads()) head << Q(h);
    head << QStringLiteral("Z agua pantalla m") << QStringLiteral("Diferencia m");
    table_->setColumnCount(static_cast<int>(head.size()));
    table_->setHorizontalHeaderLabels(head);
    const auto legacy = ProfileOf(screen);
    table_->setRowCount(static_cast<int>(r.sections.size()));
    for (int row = 0; row < static_cast<int>(r.sections.size()); ++row) {
        const auto& s = r.sections[static_cast<std::size_t>(row)];
        QStringList cells;
        for (const std::string& c : screens::StandardCells(s, FixedText)) cells << Q(c);
        cells << QString() << QString();
        for (const auto& p : legacy) {
            if (p.section != s.number) continue;
            cells[10] = Fixed(p.water, 2);
            cells[11] = Fixed(s.z_water - p.water, 2);
        }
        for (int col = 0; col < cells.size(); ++col) {
            auto* item = new QTableWidgetItem(cells[col]);
            item->setTextAlignment(col == 8 ? Qt::AlignLeft | Qt::AlignVCenter
                                            : Qt::AlignRight | Qt::AlignVCenter);
            table_->setItem(row, col, item);
        }
    }
    table_->resizeColumnsToContents();
    QStringList lines;
    if (!r.Ok()) lines << QStringLiteral("El perfil por paso estándar no se calculó: ") + Q(r.error);
    if (r.jump)
        lines << QStringLiteral("Resalto hidráulico en la abscisa %1 m: de %2 m a %3 m.")
                     .arg(Fixed(r.jump->chainage, 2), Fixed(r.jump->y1, 2), Fixed(r.jump->y2, 2));
    for (const auto& n : r.notes) lines << Q(n);
    for (const auto& w : profile->warnings) lines << QStringLiteral("Aviso (perfil de la pantalla): ") + Q(w);
    notes_->setText(lines.join(QLatin1Char('\n')));
}

}  // namespace cauce::app
