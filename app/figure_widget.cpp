#include "app/figure_widget.hpp"

#include <QPainter>

namespace cauce::app {

FigureWidget::FigureWidget(QWidget* parent) : QFrame(parent) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, Qt::white);
    setPalette(pal);
}

void FigureWidget::SetPicture(const std::string& text, std::optional<SectionSketch> sketch) {
    const Figure figure = FigureFromText(text);
    const bool same_sketch =
        sketch.has_value() == sketch_.has_value() &&
        (!sketch || (sketch->ground == sketch_->ground && sketch->diameter == sketch_->diameter &&
                     sketch->water == sketch_->water && sketch->critical == sketch_->critical &&
                     sketch->caption == sketch_->caption));
    if (text == text_ && same_sketch) return;
    text_ = text;
    figure_ = figure;
    sketch_ = std::move(sketch);
    // The file name the screen asked for, as the legacy program knew it.
    const auto slash = text_.find_last_of("\\/");
    setToolTip(QString::fromStdString(slash == std::string::npos ? text_ : text_.substr(slash + 1)));
    update();
}

void FigureWidget::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter p(this);
    const QRectF area = contentsRect().adjusted(2, 2, -2, -2);
    if (sketch_)
        PaintSketch(p, area, *sketch_);
    else
        PaintFigure(p, area, figure_, text_);
}

}  // namespace cauce::app
