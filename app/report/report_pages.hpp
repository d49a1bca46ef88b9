// The pages of a report: text, headings and tables laid down A4 pages (PDF or printer), breaking
// pages as they fill, with a footer "Página X de Y" on each page. A heading is never left at the foot
// of a page: it moves to the next page together with the start of what follows it.
#pragma once

#include <QColor>
#include <QFont>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QRectF>
#include <QString>
#include <vector>

namespace cauce::app {

class ReportPages {
  public:
    // total_pages is the count of a first pass (0 when not known yet: the footer then says "Página X").
    ReportPages(QPagedPaintDevice& device, QPainter& p, QString footer, int total_pages);

    double Mm() const { return mm_; }  // device units per millimetre
    double Width() const { return area_.width(); }
    QPainter& Painter() { return p_; }
    int Page() const { return page_; }

    void NewPage();
    // Makes room for h device units, on a new page when this one has not.
    void Need(double h);
    void Skip(double mm) { y_ += mm * mm_; }
    double Text(const QString& text, double points, bool bold = false, const QColor& color = Qt::black);
    // A heading, kept on one page with at least `keep` device units of what follows it (a table's
    // header and first rows, a figure).
    void Heading(const QString& text, double keep = 0);
    // A table: columns share the width in the proportions given; numbers are right-aligned. The header
    // row is repeated on every page the table reaches.
    void Table(const std::vector<QString>& head, const std::vector<std::vector<QString>>& rows,
               const std::vector<double>& weights);
    // The height of a table's header and first rows: what a heading keeps with it.
    double TableStart(std::size_t rows) const;
    // A block of the given height in device units: its rectangle, on a new page when needed.
    QRectF Block(double h);

    static QFont Font(double points, bool bold = false);

  private:
    double Bottom() const { return area_.bottom() - 9 * mm_; }
    double RowHeight() const;
    void Footer();

    QPagedPaintDevice& device_;
    QPainter& p_;
    QString footer_;
    QRectF area_;
    double mm_ = 1, y_ = 0;
    int page_ = 1, total_ = 0;
};

}  // namespace cauce::app
