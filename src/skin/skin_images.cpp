#include "skin/skin_images.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "skin/drawing.h"

namespace mirellon::skin {

namespace {

constexpr qsizetype kMostKilobytes = 4096;
constexpr qreal kSmallestScale = 0.25;
constexpr qreal kLargestScale = 8;

// Scales differ by percents: thousandths tell them apart.
quint64 KeyOf(Part part, PartState state, qreal scale) {
  const auto thousandths = static_cast<quint64>(std::lround(scale * 1000));
  return thousandths << 16U | static_cast<quint64>(part) << 8U | static_cast<quint64>(state);
}

int Pixels(int units, qreal scale) {
  return static_cast<int>(std::lround(units * scale));
}

}  // namespace

SkinImages::SkinImages(const Scheme& scheme, QString folder)
    : scheme_(&SchemeOf(scheme.number)), folder_(std::move(folder)), cache_(kMostKilobytes) {}

void SkinImages::SetScheme(const Scheme& scheme) {
  scheme_ = &SchemeOf(scheme.number);
  cache_.clear();
}

SkinImage SkinImages::Find(Part part, PartState state, qreal scale) {
  scale = std::clamp(scale, kSmallestScale, kLargestScale);
  const quint64 key = KeyOf(part, state, scale);
  if (const SkinImage* known = cache_.object(key)) return *known;
  SkinImage image = Render(ImageName(part, state, scheme_->dark), part, scale);
  const qsizetype bytes = qsizetype{4} * image.pixmap.width() * image.pixmap.height();
  cache_.insert(key, new SkinImage(image), 1 + bytes / 1024);  // the cache's now
  return image;
}

SkinImage SkinImages::Render(const QString& name, Part part, qreal scale) {
  QFile file(folder_ + QLatin1Char('/') + name);
  if (!file.open(QIODevice::ReadOnly)) {
    WarnOnce(name, "is missing");
    return {};
  }
  const std::optional<QByteArray> svg = InColours(file.readAll(), *scheme_);
  if (!svg) {
    WarnOnce(name, "names an unknown colour");
    return {};
  }
  QSvgRenderer renderer(OnWholePixels(*svg, scale));
  const QSize units = renderer.defaultSize();
  if (!renderer.isValid() || units.isEmpty()) {
    WarnOnce(name, "cannot be read");
    return {};
  }
  SkinImage image;
  image.pixmap = QPixmap(Pixels(units.width(), scale), Pixels(units.height(), scale));
  image.pixmap.fill(Qt::transparent);
  QPainter painter(&image.pixmap);
  renderer.render(&painter);
  const QMargins slices = SlicesOf(part);
  image.slices = {Pixels(slices.left(), scale), Pixels(slices.top(), scale), Pixels(slices.right(), scale),
                  Pixels(slices.bottom(), scale)};
  return image;
}

void SkinImages::WarnOnce(const QString& name, const char* reason) {
  if (warned_.contains(name)) return;
  warned_.insert(name);
  qWarning("The skin's image %s %s; the control is drawn without it.", qUtf8Printable(name), reason);
}

}  // namespace mirellon::skin
