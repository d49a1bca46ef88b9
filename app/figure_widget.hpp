// A picture box: the figure the screen names, or the section drawn to scale when its numbers are known.
#pragma once

#include <QFrame>
#include <optional>
#include <string>

#include "app/figures.hpp"
#include "app/section_sketch.hpp"

namespace cauce::app {

class FigureWidget : public QFrame {
    Q_OBJECT
  public:
    explicit FigureWidget(QWidget* parent = nullptr);

    void SetPicture(const std::string& picture_text, std::optional<SectionSketch> sketch);
    Figure CurrentFigure() const { return figure_; }
    const std::string& PictureText() const { return text_; }
    const std::optional<SectionSketch>& Sketch() const { return sketch_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    std::string text_;
    Figure figure_ = Figure::None;
    std::optional<SectionSketch> sketch_;
};

}  // namespace cauce::app
