#include "app/survey_dialog.hpp"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <charconv>
#include <cmath>

#include "forms/survey_points.hpp"
#include "hydraulics/checked_math.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::app {

namespace {

QString Q(const std::string& s) {
    return QString::fromStdString(s);
}

// The boxes of level j (1..15) of the natural-section screens' level table.

// A level's number as a person types it: at most three decimals, no trailing zeros.
std::string Typed(double v) {
    return survey::NumberWords(v);
}

QString Percent(double fraction) {
    return QString::number(std::round(fraction * 1000) / 10, 'f', 1) + " %";
}

}  // namespace

bool HasLevelTable(const forms::Screen& screen) {
    for (int j = 1; j <= survey::kMaxLevels; ++j) {
        const forms::Control* z = screen.Find(screens::section::LevelElevation(j));
        const forms::Control* t = screen.Find(screens::section::LevelWidth(j));
        if (!z || !t || z->column != "z" + std::to_string(j) || t->column != "t" + std::to_string(j))
            return false;
    }
    return true;
}

void TypeLevels(forms::Screen& screen, const std::vector<survey::Level>& levels) {
    for (int j = 1; j <= survey::kMaxLevels; ++j) {
        const auto k = static_cast<std::size_t>(j - 1);
        screen.Type(screens::section::LevelElevation(j), k < levels.size() ? Typed(levels[k].z) : "");
        screen.Type(screens::section::LevelWidth(j), k < levels.size() ? Typed(levels[k].t) : "");
    }
}

// The survey and its stack of levels, one over the other, to scale (heights exaggerated, and said so,
// when the section is wide and shallow).
class SurveyFigure : public QWidget {
  public:
    explicit SurveyFigure(QWidget* parent) : QWidget(parent) { setMinimumSize(360, 240); }
    void Show(std::vector<survey::Point> ground, std::optional<survey::Section> section) {
        ground_ = std::move(ground);
        section_ = std::move(section);
        update();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.fillRect(rect(), Qt::white);
        if (ground_.size() < 2) return;
        double x0 = ground_.front().x, x1 = x0, z0 = ground_.front().z, z1 = z0;
        for (const auto& q : ground_) {
            x0 = std::min(x0, q.x), x1 = std::max(x1, q.x), z0 = std::min(z0, q.z), z1 = std::max(z1, q.z);
        }
        if (x1 <= x0 || z1 <= z0) return;
        const QRectF box = QRectF(rect()).adjusted(16, 28, -16, -16);
        const double sx = box.width() / (x1 - x0);
        double exaggeration = 1;
        if ((z1 - z0) * sx < box.height() / 3)
            exaggeration = std::min(10.0, std::floor(box.height() / 3 / ((z1 - z0) * sx)));
        const double sz = std::min(sx * exaggeration, box.height() / (z1 - z0));
        auto at = [&](double x, double z) {
            return QPointF(box.left() + (x - x0) * sx, box.bottom() - (z - z0) * sz);
        };

        if (section_ && section_->levels.size() >= 2) {
            // The stack is symmetric: centred on the middle of the survey's water surface at the top.
            const double top = section_->top;
            double left = x1, right = x0;
            for (std::size_t i = 0; i + 1 < ground_.size(); ++i) {
                const auto &a = ground_[i], &b = ground_[i + 1];
                if ((a.z < top) != (b.z < top) || a.z < top) {
                    const double xa = a.z == b.z ? a.x : a.x + (b.x - a.x) * (top - a.z) / (b.z - a.z);
                    for (double x : {a.z < top ? a.x : xa, b.z < top ? b.x : xa}) {
                        left = std::min(left, x), right = std::max(right, x);
                    }
                }
            }
            const double mid = (left + right) / 2;
            QPolygonF stack;
            for (const auto& l : section_->levels) stack.prepend(at(mid - l.t / 2, l.z));
            for (const auto& l : section_->levels) stack.append(at(mid + l.t / 2, l.z));
            p.setPen(QPen(QColor(30, 90, 200), 2));
            p.setBrush(QColor(120, 170, 240, 90));
            p.drawPolygon(stack);
        }
        QPolygonF line;
        for (const auto& q : ground_) line << at(q.x, q.z);
        p.setPen(QPen(QColor(120, 80, 30), 2));
        p.setBrush(Qt::NoBrush);
        p.drawPolyline(line);
        p.setBrush(QColor(120, 80, 30));
        for (const QPointF& q : line) p.drawEllipse(q, 2.5, 2.5);

        p.setPen(Qt::black);
        QString caption = QStringLiteral("Marrón: levantamiento · azul: sección por niveles");
        if (exaggeration > 1) caption += QStringLiteral(" · alturas ×%1").arg(exaggeration);
        p.drawText(QRectF(rect()).adjusted(8, 4, -8, 0), Qt::AlignLeft | Qt::AlignTop, caption);
    }

  private:
    std::vector<survey::Point> ground_;
    std::optional<survey::Section> section_;
};

SurveyDialog::SurveyDialog(forms::Screen& screen, QWidget* parent) : QDialog(parent), screen_(screen) {
    setWindowTitle(QStringLiteral("Sección desde puntos topográficos"));
    setObjectName(QStringLiteral("SurveyDialog"));

    points_ = new QTableWidget(60, 2, this);
    points_->setObjectName(QStringLiteral("puntos"));
    points_->setHorizontalHeaderLabels({QStringLiteral("Abscisa (m)"), QStringLiteral("Cota (m)")});
    points_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    points_->setAccessibleName(QStringLiteral("Puntos topográficos: abscisa y cota, de izquierda a derecha"));
    auto* paste = new QPushButton(QStringLiteral("&Pegar"), this);
    auto* clear = new QPushButton(QStringLiteral("&Borrar los puntos"), this);
    count_ = new QSpinBox(this);
    count_->setRange(2, survey::kMaxLevels);
    count_->setValue(survey::kMaxLevels);
    count_->setAccessibleName(QStringLiteral("Número máximo de niveles"));

    levels_ = new QTableWidget(0, 2, this);
    levels_->setObjectName(QStringLiteral("niveles"));
    levels_->setHorizontalHeaderLabels({QStringLiteral("z (m)"), QStringLiteral("t (m)")});
    levels_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    levels_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    figure_ = new SurveyFigure(this);
    figures_ = new QLabel(this);
    figures_->setWordWrap(true);
    problem_ = new QLabel(this);
    problem_->setWordWrap(true);
    problem_->setStyleSheet(QStringLiteral("color: #b00000"));

    auto* buttons = new QDialogButtonBox(this);
    apply_ = buttons->addButton(QStringLiteral("&Aplicar"), QDialogButtonBox::AcceptRole);
    apply_->setToolTip(QStringLiteral("Escribe los niveles en z1..z15 y t1..t15 del registro actual"));
    buttons->addButton(QStringLiteral("&Cancelar"), QDialogButtonBox::RejectRole);

    auto* left = new QVBoxLayout;
    left->addWidget(new QLabel(QStringLiteral("Puntos del terreno, de izquierda a derecha:"), this));
    left->addWidget(points_, 1);
    auto* row = new QHBoxLayout;
    row->addWidget(paste);
    row->addWidget(clear);
    left->addLayout(row);
    auto* count_row = new QHBoxLayout;
    count_row->addWidget(new QLabel(QStringLiteral("Niveles (máximo):"), this));
    count_row->addWidget(count_);
    left->addLayout(count_row);
    auto* right = new QVBoxLayout;
    right->addWidget(figure_, 3);
    auto* results = new QHBoxLayout;
    results->addWidget(levels_, 1);
    auto* notes = new QVBoxLayout;
    notes->addWidget(figures_);
    notes->addWidget(problem_);
    notes->addStretch(1);
    results->addLayout(notes, 2);
    right->addLayout(results, 2);
    auto* top = new QHBoxLayout;
    top->addLayout(left, 2);
    top->addLayout(right, 5);
    auto* all = new QVBoxLayout(this);
    all->addLayout(top, 1);
    all->addWidget(buttons);
    resize(980, 620);

    connect(points_, &QTableWidget::cellChanged, this, [this](int row) {
        if (filling_) return;
        if (row == points_->rowCount() - 1) points_->insertRow(points_->rowCount());  // room to type on
        Recompute();
    });
    connect(count_, &QSpinBox::valueChanged, this, [this] { Recompute(); });
    connect(paste, &QPushButton::clicked, this, [this] { PasteText(QGuiApplication::clipboard()->text()); });
    connect(clear, &QPushButton::clicked, this, [this] {
        filling_ = true;
        points_->clearContents();
        filling_ = false;
        Recompute();
    });
    connect(apply_, &QPushButton::clicked, this, [this] { ApplyLevels(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    Recompute();
}

QString SurveyDialog::Problem() const {
    return problem_->text();
}
QString SurveyDialog::Figures() const {
    return figures_->text();
}

void SurveyDialog::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Paste)) {
        PasteText(QGuiApplication::clipboard()->text());
        return;
    }
    QDialog::keyPressEvent(event);
}

void SurveyDialog::PasteText(const QString& text) {
    std::vector<survey::Point> pts;
    try {
        pts = forms::ReadSurveyPoints(text.toStdString());
    } catch (const Fault& f) {
        problem_->setText(QStringLiteral("No se pegó nada. ") + Q(f.what()));
        return;
    }
    const int first = std::max(0, points_->currentRow());
    filling_ = true;
    if (points_->rowCount() < first + static_cast<int>(pts.size()) + 1)
        points_->setRowCount(first + static_cast<int>(pts.size()) + 1);
    for (std::size_t k = 0; k < pts.size(); ++k) {
        const int r = first + static_cast<int>(k);
        points_->setItem(r, 0, new QTableWidgetItem(Q(survey::NumberWords(pts[k].x))));
        points_->setItem(r, 1, new QTableWidgetItem(Q(survey::NumberWords(pts[k].z))));
    }
    filling_ = false;
    Recompute();
}

void SurveyDialog::Recompute() {
    // The table read as text, a row a line, so that a message names the row at fault.
    std::string text;
    for (int r = 0; r < points_->rowCount(); ++r) {
        for (int c = 0; c < 2; ++c) {
            const QTableWidgetItem* item = points_->item(r, c);
            if (c) text += '\t';
            if (item) text += item->text().trimmed().toStdString();
        }
        text += '\n';
    }
    result_.reset();
    ground_.clear();
    QString problem;
    try {
        ground_ = forms::ReadSurveyPoints(text, "Fila");
        if (!ground_.empty()) result_ = survey::SectionFromSurvey(ground_, count_->value());
    } catch (const Fault& f) {
        problem = Q(f.what());
    }
    levels_->setRowCount(0);
    QString figures;
    if (result_) {
        levels_->setRowCount(static_cast<int>(result_->levels.size()));
        for (std::size_t j = 0; j < result_->levels.size(); ++j) {
            levels_->setItem(static_cast<int>(j), 0, new QTableWidgetItem(Q(Typed(result_->levels[j].z))));
            levels_->setItem(static_cast<int>(j), 1, new QTableWidgetItem(Q(Typed(result_->levels[j].t))));
        }
        figures = QStringLiteral(
                      "%1 niveles de %2 cotas del levantamiento.\n"
                      "Diferencia máxima de área: %3\nDiferencia máxima de perímetro mojado: %4")
                      .arg(result_->levels.size())
                      .arg(result_->elevations)
                      .arg(Percent(result_->area_error), Percent(result_->perimeter_error));
        for (const auto& w : result_->warnings) figures += QStringLiteral("\n• ") + Q(w);
        for (const auto& l : result_->levels)
            if (l.z == 0) problem = QStringLiteral("No se puede aplicar: un nivel tiene la cota 0.");
    } else if (ground_.empty() && problem.isEmpty()) {
        problem =
            QStringLiteral("Escriba o pegue los puntos del terreno: abscisa y cota, de izquierda a derecha.");
    }
    figures_->setText(figures);
    problem_->setText(problem);
    figure_->Show(ground_, result_);
    apply_->setEnabled(result_ && problem.isEmpty() && HasLevelTable(screen_));
}

void SurveyDialog::ApplyLevels() {
    if (!result_ || !apply_->isEnabled()) return;
    TypeLevels(screen_, result_->levels);
    accept();
}

bool ShowSurveyDialog(forms::Screen& screen, QWidget* parent) {
    SurveyDialog dialog(screen, parent);
    return dialog.exec() == QDialog::Accepted;
}

}  // namespace cauce::app
