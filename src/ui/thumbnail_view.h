// A small picture in a frame.
#pragma once

#include <QImage>
#include <QWidget>

namespace mirellon::ui {

// Shows the picture as large as it fits, never enlarged, in the middle; an empty frame without one. Never
// changes its size by what it shows.
class ThumbnailView : public QWidget {
  Q_OBJECT

 public:
  // The longer side that pictures should have to be sharp on any screen, in pixels.
  static constexpr int kPictureSide = 576;

  explicit ThumbnailView(QWidget* parent);

  // A null image empties the frame.
  void Show(const QImage& image);
  [[nodiscard]] const QImage& image() const { return image_; }

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage image_;
};

}  // namespace mirellon::ui
