#include "skin/icon_engine.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>
#include <utility>

namespace mirellon::skin {

namespace {

class StrokeIconEngine : public QIconEngine {
 public:
  explicit StrokeIconEngine(QByteArray svg) : svg_(std::move(svg)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    QSvgRenderer renderer(Coloured(mode, state));
    renderer.render(painter, rect);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return picture;
  }

  [[nodiscard]] QIconEngine* clone() const override {
    return new StrokeIconEngine(svg_);  // QIcon takes it
  }

 private:
  [[nodiscard]] QByteArray Coloured(QIcon::Mode mode, QIcon::State state) const {
    const QPalette palette = QApplication::palette();
    const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    QPalette::ColorRole role = QPalette::ButtonText;
    if (mode == QIcon::Selected) {
      role = QPalette::HighlightedText;  // in a menu's chosen row
    } else if (state == QIcon::On && mode != QIcon::Disabled) {
      role = QPalette::Link;  // the accent as lines have it
    }
    const QColor colour = palette.color(group, role);
    QByteArray svg = svg_;
    return svg.replace("currentColor", colour.name().toLatin1());
  }

  QByteArray svg_;
};

}  // namespace

QIcon StrokeIcon(const QString& resource) {
  QFile file(resource);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QIcon(new StrokeIconEngine(file.readAll()));  // QIcon's now
}

}  // namespace mirellon::skin
