// The calculation report of a reach, written with Qt's PDF writer: the reach run as "cauce perfil" runs
// it, then, on A4 pages, the data of each section, its results, the profile table, the profile plot and
// the cross-sections, drawn by the desktop's own figure code (SketchOf, PaintSketch, ProfileChart).
#include <QApplication>
#include <QDate>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <iostream>
#include <optional>

#include "app/profile_chart.hpp"
#include "app/section_sketch.hpp"
#include "cli/args.hpp"
#include "cli/graphics.hpp"
#include "cli/offscreen.hpp"
#include "cli/progress.hpp"

namespace cauce::cli {

using namespace reach;

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

constexpr int kDpi = 300;
constexpr double kMm = kDpi / 25.4;  // device units per millimetre

const QColor kRule(120, 120, 120);

// The report's font, without shaping: Latin text needs none, and shaping joins "fi" and "fl" into
// ligature glyphs that text extraction and search in the PDF read as other characters.
QFont Font(double points, bool bold = false) {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSizeF(points);
    f.setBold(bold);
    f.setStyleStrategy(QFont::PreferNoShaping);
    return f;
}
const QColor kHeaderFill(226, 232, 240);
const QColor kStripe(246, 248, 251);

// Lays text, tables and figures down the pages, breaking pages as they fill.
class Pages {
public:
    Pages(QPdfWriter& writer, QPainter& p, QString footer) : writer_(writer), p_(p), footer_(std::move(footer)) {
        const QRect r = writer.pageLayout().paintRectPixels(kDpi);
        area_ = QRectF(0, 0, r.width(), r.height());
        y_ = area_.top();
        Footer();
    }

    double Width() const { return area_.width(); }

    void NewPage() {
        writer_.newPage();
        ++page_;
        y_ = area_.top();
        Footer();
    }

    // Makes room for h device units, on a new page when this one has not.
    void Need(double h) {
        if (y_ + h > Bottom() && y_ > area_.top()) NewPage();
    }

    void Skip(double mm) { y_ += mm * kMm; }

    double Text(const QString& text, double points, bool bold = false, const QColor& color = Qt::black) {
        p_.setFont(Font(points, bold));
        const QRectF box(area_.left(), y_, area_.width(), area_.height());
        const QRectF used = p_.boundingRect(box, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
        Need(used.height());
        p_.setPen(color);
        p_.drawText(QRectF(area_.left(), y_, area_.width(), used.height() + 2), Qt::TextWordWrap | Qt::AlignLeft, text);
        y_ += used.height();
        return used.height();
    }

    void Heading(const QString& text) {
        Need(20 * kMm);  // a heading is never left alone at the foot of a page
        Skip(4);
        Text(text, 12.5, true, QColor(18, 60, 120));
        p_.setPen(QPen(QColor(18, 60, 120), 0.3 * kMm));
        p_.drawLine(QPointF(area_.left(), y_ + 0.8 * kMm), QPointF(area_.right(), y_ + 0.8 * kMm));
        Skip(3);
    }

    // A table: columns share the width in the proportions given; numbers are right-aligned. The
    // heading row is repeated on every page the table reaches.
    void Table(const std::vector<QString>& head, const std::vector<std::vector<QString>>& rows,
               const std::vector<double>& weights) {
        const QFont f = Font(8), bold = Font(8, true);
        const double row_h = QFontMetricsF(f, &writer_).height() * 1.45;
        double total = 0;
        for (const double w : weights) total += w;
        std::vector<double> x{area_.left()};
        for (const double w : weights) x.push_back(x.back() + area_.width() * w / total);
        std::vector<bool> numeric(head.size(), true);
        for (std::size_t c = 0; c < head.size(); ++c) {
            bool any = false;
            for (const auto& r : rows) {
                if (r[c].isEmpty()) continue;
                any = true;
                if (!ParseNumber(r[c].toStdString())) numeric[c] = false;
            }
            numeric[c] = numeric[c] && any;
        }
        auto line = [&](const std::vector<QString>& cells, bool header, bool stripe) {
            const QRectF band(area_.left(), y_, area_.width(), row_h);
            if (header) p_.fillRect(band, kHeaderFill);
            if (stripe) p_.fillRect(band, kStripe);
            p_.setFont(header ? bold : f);
            p_.setPen(Qt::black);
            for (std::size_t c = 0; c < cells.size() && c + 1 < x.size(); ++c) {
                const QRectF cell(x[c] + 1.2 * kMm, y_, x[c + 1] - x[c] - 2.4 * kMm, row_h);
                const auto align = (numeric[c] ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
                p_.drawText(cell, align, QFontMetricsF(p_.font(), &writer_).elidedText(cells[c], Qt::ElideRight, cell.width()));
            }
            p_.setPen(QPen(kRule, header ? 0.25 * kMm : 0.1 * kMm));
            p_.drawLine(QPointF(area_.left(), y_ + row_h), QPointF(area_.right(), y_ + row_h));
            y_ += row_h;
        };
        Need(row_h * std::min<std::size_t>(rows.size() + 1, 4));
        line(head, true, false);
        for (std::size_t r = 0; r < rows.size(); ++r) {
            if (y_ + row_h > Bottom()) {
                NewPage();
                line(head, true, false);
            }
            line(rows[r], false, r % 2 == 1);
        }
        Skip(2);
    }

    // A block of the given height in device units: its rectangle, on a new page when needed.
    QRectF Block(double h) {
        Need(h);
        const QRectF r(area_.left(), y_, area_.width(), h);
        y_ += h;
        return r;
    }

    int Page() const { return page_; }

private:
    double Bottom() const { return area_.bottom() - 9 * kMm; }

    void Footer() {
        p_.setFont(Font(7.5));
        const QRectF r(area_.left(), area_.bottom() - 5 * kMm, area_.width(), 5 * kMm);
        p_.setPen(QPen(kRule, 0.1 * kMm));
        p_.drawLine(r.topLeft(), r.topRight());
        p_.setPen(QColor(90, 90, 90));
        p_.drawText(r, Qt::AlignLeft | Qt::AlignBottom, footer_);
        p_.drawText(r, Qt::AlignRight | Qt::AlignBottom, QStringLiteral("Página %1").arg(page_));
    }

    QPdfWriter& writer_;
    QPainter& p_;
    QString footer_;
    QRectF area_;
    double y_ = 0;
    int page_ = 1;
};

struct Captured {
    std::vector<std::optional<app::SectionSketch>> sketches;  // one per computed section, in order
    std::vector<app::ProfilePoint> profile;
};

void InputSection(Pages& pages, const ReachResult& r) {
    pages.Heading(QStringLiteral("1. Datos de entrada"));
    pages.Text(QStringLiteral("Datos de cada registro tal como los muestra la pantalla %1. La rugosidad n es la de "
                              "Manning; S0 es la pendiente del fondo; la zona inundable se da por su ancho total B y "
                              "su rugosidad.")
                   .arg(Q(r.kind->form)),
               8.5);
    pages.Skip(2);
    std::vector<QString> head{QStringLiteral("Sección"), QStringLiteral("Registro"), QStringLiteral("Z fondo m"),
                              QStringLiteral("Niveles"),  QStringLiteral("n"),        QStringLiteral("S0"),
                              QStringLiteral("Q m3/s"),   QStringLiteral("B zona m"), QStringLiteral("n zona")};
    std::vector<double> weights{1, 1.1, 1.3, 1, 1, 1.1, 1.1, 1.2, 1};
    if (r.kind->scour) {
        head.insert(head.end(), {QStringLiteral("Abscisa m"), QStringLiteral("D mm")});
        weights.insert(weights.end(), {1.2, 0.9});
    }
    std::vector<std::vector<QString>> rows;
    for (const auto& s : r.sections) {
        const SectionInput& in = s.input;
        std::vector<QString> row{QString::number(s.section), QString::number(s.record),
                                 in.levels.empty() ? QString() : Q(in.levels.front().first),
                                 QString::number(in.levels.size()), Q(in.roughness), Q(in.slope), Q(in.discharge),
                                 Q(in.flood_width), Q(in.flood_roughness)};
        if (r.kind->scour) row.insert(row.end(), {Q(in.chainage), Q(in.grain_size)});
        rows.push_back(row);
    }
    pages.Table(head, rows, weights);
    pages.Text(QStringLiteral("Los niveles de cada sección (cota Z y ancho T) se listan junto a su dibujo, en el "
                              "apartado 5."),
               8);
}

void ResultSection(Pages& pages, const ReachResult& r) {
    pages.Heading(QStringLiteral("2. Resultados por sección"));
    pages.Text(QStringLiteral("Profundidad normal Yn y crítica Yc de cada sección (\"(Y?)\"), caudal a banca llena y "
                              "si el caudal desborda hacia la zona inundable."),
               8.5);
    pages.Skip(2);
    std::vector<std::vector<QString>> rows;
    for (const auto& s : r.sections) {
        QString notice = Q(s.notice);
        if (!s.error.empty()) notice = Q(s.error) + (notice.isEmpty() ? QString() : QStringLiteral("; ") + notice);
        rows.push_back({QString::number(s.section), Q(s.yn), Q(s.yc), Q(s.qlleno),
                        s.overflow ? QStringLiteral("sí") : QStringLiteral("no"), notice});
    }
    pages.Table({QStringLiteral("Sección"), QStringLiteral("Yn m"), QStringLiteral("Yc m"), QStringLiteral("Q lleno m3/s"),
                 QStringLiteral("Desborda"), QStringLiteral("Avisos")},
                rows, {1, 1, 1, 1.4, 1, 4});
}

void ProfileSection(Pages& pages, const ReachResult& r) {
    pages.Heading(QStringLiteral("3. Perfil de la superficie del agua"));
    pages.Text(QStringLiteral("\"Perfiles\" con %1 = %2 m en la sección %3, calculado desde la última sección hacia "
                              "aguas arriba. Tipo de perfil: M1, M2 (pendiente suave), S1, S2 (pendiente fuerte).")
                   .arg(Q(r.kind->depth_name), Q(r.depth))
                   .arg(r.n_sections),
               8.5);
    pages.Skip(2);
    std::vector<QString> head{QStringLiteral("Sección"), QStringLiteral("Abscisa m"), QStringLiteral("Tipo"),
                              QStringLiteral("Z agua m"), QStringLiteral("V media m/s")};
    if (r.scour) head.push_back(QStringLiteral("Ysoc m"));
    std::vector<std::vector<QString>> rows;
    for (const auto& p : r.profile) {
        std::vector<QString> row{QString::number(p.section), Q(p.chainage), Q(p.type), Q(p.zw), Q(p.v)};
        if (r.scour) row.push_back(Q(p.ysoc));
        rows.push_back(row);
    }
    pages.Table(head, rows, std::vector<double>(head.size(), 1.0));
}

void PlotSection(Pages& pages, QPainter& p, const Captured& c) {
    pages.Heading(QStringLiteral("4. Perfil longitudinal"));
    if (c.profile.empty()) {
        pages.Text(QStringLiteral("El tramo tiene menos de dos secciones dibujables: no hay perfil que dibujar."), 9);
        return;
    }
    app::ProfileChart chart;
    chart.setAttribute(Qt::WA_DontShowOnScreen);
    chart.resize(900, 460);
    chart.show();
    chart.Show(c.profile);
    QCoreApplication::processEvents();
    const QRectF box = pages.Block(pages.Width() * 460 / 900);
    p.save();
    chart.render(&p, box, chart.viewport()->rect());
    p.restore();
    pages.Skip(2);
    pages.Text(QStringLiteral("Fondo, superficie del agua y profundidad crítica contra la abscisa; sobre cada punto, "
                              "la sección y su tipo de perfil."),
               8);
}

void SketchSection(Pages& pages, QPainter& p, const ReachResult& r, const Captured& c) {
    pages.Heading(QStringLiteral("5. Secciones transversales"));
    pages.Text(QStringLiteral("Cada sección con el agua a su profundidad normal; la profundidad crítica, a trazos. "
                              "Las secciones anchas y poco profundas se dibujan con las alturas exageradas, como se "
                              "indica en cada una."),
               8.5);
    pages.Skip(2);
    const double h = 52 * kMm;
    for (std::size_t k = 0; k < r.sections.size(); ++k) {
        const SectionResult& s = r.sections[k];
        const QRectF block = pages.Block(h + 4 * kMm);
        const QRectF figure(block.left(), block.top(), block.width() * 0.62, h);
        p.save();
        p.setPen(QPen(kRule, 0.15 * kMm));
        p.setBrush(Qt::NoBrush);
        p.drawRect(figure);
        if (k < c.sketches.size() && c.sketches[k]) {
            p.setFont(Font(9));
            app::PaintSketch(p, figure.adjusted(1, 1, -1, -1), *c.sketches[k]);
        } else {
            p.drawText(figure, Qt::AlignCenter, QStringLiteral("Sección %1: sin dibujo").arg(s.section));
        }
        p.restore();

        // Beside the drawing: the levels and the section's results.
        const QFont f = Font(7.5), bold = Font(7.5, true);
        const double line = QFontMetricsF(f, p.device()).height() * 1.25;
        double y = block.top();
        const double x = figure.right() + 5 * kMm, w = block.right() - x;
        auto put = [&](const QString& text, bool strong = false) {
            p.setFont(strong ? bold : f);
            p.setPen(Qt::black);
            p.drawText(QRectF(x, y, w, line), Qt::AlignLeft | Qt::AlignVCenter, text);
            y += line;
        };
        put(QStringLiteral("Sección %1 (registro %2)").arg(s.section).arg(s.record), true);
        put(QStringLiteral("Yn %1 m   Yc %2 m").arg(Q(s.yn.empty() ? "-" : s.yn), Q(s.yc.empty() ? "-" : s.yc)));
        put(QStringLiteral("Q %1 m3/s   Q lleno %2 m3/s").arg(Q(s.input.discharge), Q(s.qlleno)));
        // The levels in three right-aligned columns.
        const double c1 = w * 0.2, c2 = w * 0.5, c3 = w * 0.8;
        auto columns = [&](const QString& a, const QString& b, const QString& c, bool strong) {
            p.setFont(strong ? bold : f);
            p.setPen(Qt::black);
            p.drawText(QRectF(x, y, c1, line), Qt::AlignRight | Qt::AlignVCenter, a);
            p.drawText(QRectF(x, y, c2, line), Qt::AlignRight | Qt::AlignVCenter, b);
            p.drawText(QRectF(x, y, c3, line), Qt::AlignRight | Qt::AlignVCenter, c);
            y += line;
        };
        columns(QStringLiteral("Nivel"), QStringLiteral("Z m"), QStringLiteral("T m"), true);
        const int max_rows = static_cast<int>((block.bottom() - y) / line);
        const int levels = static_cast<int>(s.input.levels.size());
        for (int j = 0; j < levels && j < max_rows; ++j) {
            const auto& [z, t] = s.input.levels[static_cast<std::size_t>(j)];
            columns(QString::number(j + 1), Q(z), Q(t), false);
        }
    }
}

std::string Compose(const QString& file, const ReachResult& r, const Captured& c) {
    QPdfWriter writer(file);
    writer.setResolution(kDpi);
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(18, 16, 16, 14),
                                     QPageLayout::Millimeter));
    writer.setTitle(QStringLiteral("Informe de cálculo: %1").arg(Q(r.path)));
    writer.setCreator(QStringLiteral("Cauce"));
    QPainter p;
    if (!p.begin(&writer)) return "no se pudo crear el archivo PDF";
    p.setRenderHint(QPainter::Antialiasing);
    const QString book = QFileInfo(Q(r.file.empty() ? r.path : r.file)).fileName();
    Pages pages(writer, p, QStringLiteral("Cauce · informe de cálculo · %1").arg(book));

    pages.Text(QStringLiteral("Informe de cálculo hidráulico"), 20, true, QColor(18, 60, 120));
    pages.Skip(1);
    pages.Text(QStringLiteral("Perfil de la superficie del agua en flujo gradualmente variado: %1").arg(Q(r.kind->title)),
               11);
    pages.Skip(4);
    pages.Text(QStringLiteral("Libro: %1").arg(Q(r.file.empty() ? r.path : r.file)), 9);
    pages.Text(QStringLiteral("Hoja: \"%1\" (pantalla %2)").arg(Q(r.kind->sheet), Q(r.kind->form)), 9);
    pages.Text(QStringLiteral("%1 en la sección %2: %3 m").arg(Q(r.kind->depth_name)).arg(r.n_sections).arg(Q(r.depth)), 9);
    pages.Text(QStringLiteral("Número de secciones: %1").arg(r.n_sections), 9);
    pages.Text(QStringLiteral("Fecha: %1").arg(QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd"))), 9);
    pages.Skip(2);
    pages.Text(QStringLiteral("Unidades métricas (m, m2, m3/s, m/s); n de Manning; g = 9.81 m/s2. Los números son los "
                              "que muestran las pantallas del programa con sus formatos (\"0.00\", \"0.000\")."),
               8.5, false, QColor(70, 70, 70));

    InputSection(pages, r);
    ResultSection(pages, r);
    ProfileSection(pages, r);
    if (!r.notices.empty()) {
        pages.Heading(QStringLiteral("Avisos"));
        for (const auto& n : r.notices) pages.Text(QStringLiteral("• ") + Q(n), 8.5);
    }
    PlotSection(pages, p, c);
    SketchSection(pages, p, r, c);
    if (!p.end()) return "no se pudo terminar el archivo PDF";
    return "";
}

}  // namespace

int WriteReport(const std::string& book, const ReachOptions& options, const std::string& output) {
    const auto application = StartOffscreen();
    Progress progress("informe", 3);
    progress.Step(1, "cálculo del tramo");
    Captured captured;
    const ReachResult r = RunReach(book, options, [&](const forms::Screen& screen, const SectionResult* section) {
        if (section) {
            captured.sketches.push_back(app::SketchOf(screen));
        } else {
            captured.profile = app::ProfileOf(screen);
        }
    });
    if (!r.Ok()) {
        progress.Clear();
        std::cerr << "cauce informe: " << book << ": " << r.error << "\n";
        return kExitData;
    }
    progress.Step(2, "dibujos y tablas");
    const std::string why = WriteAtomically(output, "el informe", [&](const QString& temporary) {
        return Compose(temporary, r, captured);
    });
    progress.Clear();
    if (!why.empty()) {
        std::cerr << "cauce informe: " << why << "\n";
        return kExitData;
    }
    for (const auto& s : r.sections)
        if (s.faulty)
            std::cerr << "cauce informe: aviso: registro " << s.record << " (sección " << s.section
                      << "): " << (s.error.empty() ? s.notice : s.error) << "\n";
    std::cout << "Informe escrito en " << output << " (" << r.sections.size() << " secciones)\n";
    return kExitOk;
}

}  // namespace cauce::cli
