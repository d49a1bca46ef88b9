#include "app/report/report_pages.hpp"

#include <QFontMetricsF>
#include <QPageLayout>
#include <algorithm>
#include <charconv>

namespace cauce::app {

namespace {

const QColor kRule(120, 120, 120);
const QColor kHeaderFill(226, 232, 240);
const QColor kStripe(246, 248, 251);
const QColor kHeadingColor(18, 60, 120);

// A cell that is a number, as the report writes them ("12.35", "-0.004", "1e-05").
bool Numeric(const QString& text) {
    const std::string s = text.trimmed().toStdString();
    if (s.empty()) return false;
    double v = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    return ec == std::errc() && end == s.data() + s.size();
}

}  // namespace

QFont ReportPages::Font(double points, bool bold) {
    // Without shaping: Latin text needs none, and shaping joins "fi" and "fl" into ligature glyphs
    // that text extraction and search in the PDF read as other characters.
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSizeF(points);
    f.setBold(bold);
    f.setStyleStrategy(QFont::PreferNoShaping);
    return f;
}

ReportPages::ReportPages(QPagedPaintDevice& device, QPainter& p, QString footer, int total_pages)
    : device_(device), p_(p), footer_(std::move(footer)), total_(total_pages) {
    const int dpi = device.logicalDpiY();
    mm_ = dpi / 25.4;
    const QRect r = device.pageLayout().paintRectPixels(dpi);
    area_ = QRectF(0, 0, r.width(), r.height());
    y_ = area_.top();
    Footer();
}

void ReportPages::NewPage() {
    device_.newPage();
    ++page_;
    y_ = area_.top();
    Footer();
}

void ReportPages::Need(double h) {
    if (y_ + h > Bottom() && y_ > area_.top()) NewPage();
}

double ReportPages::Text(const QString& text, double points, bool bold, const QColor& color) {
    p_.setFont(Font(points, bold));
    const QRectF box(area_.left(), y_, area_.width(), area_.height());
    const QRectF used = p_.boundingRect(box, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, text);
    Need(used.height());
    p_.setPen(color);
    p_.drawText(QRectF(area_.left(), y_, area_.width(), used.height() + 2), Qt::TextWordWrap | Qt::AlignLeft,
                text);
    y_ += used.height();
    return used.height();
}

void ReportPages::Heading(const QString& text, double keep) {
    const double own = QFontMetricsF(Font(12.5, true), &device_).height() + 8 * mm_;
    Need(own + std::max(keep, 12 * mm_));
    Skip(4);
    Text(text, 12.5, true, kHeadingColor);
    p_.setPen(QPen(kHeadingColor, 0.3 * mm_));
    p_.drawLine(QPointF(area_.left(), y_ + 0.8 * mm_), QPointF(area_.right(), y_ + 0.8 * mm_));
    Skip(3);
}

double ReportPages::RowHeight() const {
    return QFontMetricsF(Font(8), &device_).height() * 1.45;
}

double ReportPages::TableStart(std::size_t rows) const {
    return RowHeight() * static_cast<double>(std::min<std::size_t>(rows + 1, 4));
}

void ReportPages::Table(const std::vector<QString>& head, const std::vector<std::vector<QString>>& rows,
                        const std::vector<double>& weights) {
    const QFont f = Font(8), bold = Font(8, true);
    const double row_h = RowHeight();
    double total = 0;
    for (const double w : weights) total += w;
    std::vector<double> x{area_.left()};
    for (const double w : weights) x.push_back(x.back() + area_.width() * w / total);
    std::vector<bool> numeric(head.size(), true);
    for (std::size_t c = 0; c < head.size(); ++c) {
        bool any = false;
        for (const auto& r : rows) {
            if (c >= r.size() || r[c].isEmpty()) continue;
            any = true;
            if (!Numeric(r[c])) numeric[c] = false;
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
            const QRectF cell(x[c] + 1.2 * mm_, y_, x[c + 1] - x[c] - 2.4 * mm_, row_h);
            const auto align = (numeric[c] ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
            p_.drawText(
                cell, align,
                QFontMetricsF(p_.font(), &device_).elidedText(cells[c], Qt::ElideRight, cell.width()));
        }
        p_.setPen(QPen(kRule, header ? 0.25 * mm_ : 0.1 * mm_));
        p_.drawLine(QPointF(area_.left(), y_ + row_h), QPointF(area_.right(), y_ + row_h));
        y_ += row_h;
    };
    Need(TableStart(rows.size()));
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

QRectF ReportPages::Block(double h) {
    Need(h);
    const QRectF r(area_.left(), y_, area_.width(), h);
    y_ += h;
    return r;
}

void ReportPages::Footer() {
    p_.setFont(Font(7.5));
    const QRectF r(area_.left(), area_.bottom() - 5 * mm_, area_.width(), 5 * mm_);
    p_.setPen(QPen(kRule, 0.1 * mm_));
    p_.drawLine(r.topLeft(), r.topRight());
    p_.setPen(QColor(90, 90, 90));
    p_.drawText(r, Qt::AlignLeft | Qt::AlignBottom, footer_);
    const QString page = total_ > 0 ? QStringLiteral("Página %1 de %2").arg(page_).arg(total_)
                                    : QStringLiteral("Página %1").arg(page_);
    p_.drawText(r, Qt::AlignRight | Qt::AlignBottom, page);
}

}  // namespace cauce::app
