// The images that controls are drawn from, in one scheme's colours.
#pragma once

#include <QCache>
#include <QMargins>
#include <QPixmap>
#include <QSet>
#include <QString>

#include "skin/schemes.h"
#include "skin/skin_parts.h"

namespace mirellon::skin {

// In device pixels, all of it; the pixmap's own ratio is 1.
struct SkinImage {
  QPixmap pixmap;
  QMargins slices;

  [[nodiscard]] bool missing() const { return pixmap.isNull(); }
};

// Reads drawings from a folder (of resources or of files), colours them, renders them at the size that a
// scale asks for and keeps the latest, up to a few megabytes. For the window's thread only.
class SkinImages {
 public:
  explicit SkinImages(const Scheme& scheme, QString folder = QStringLiteral(":/skin"));

  // Forgets every rendering of another scheme.
  void SetScheme(const Scheme& scheme);
  [[nodiscard]] const Scheme& scheme() const { return *scheme_; }

  // The image at a scale of device pixels per unit. Where the file is not there or cannot be drawn, the image
  // is missing, and a warning says so, once for each file.
  [[nodiscard]] SkinImage Find(Part part, PartState state, qreal scale);

  // Kilobytes that are kept.
  [[nodiscard]] qsizetype kept() const { return cache_.totalCost(); }

 private:
  [[nodiscard]] SkinImage Render(const QString& name, Part part, qreal scale);
  void WarnOnce(const QString& name, const char* reason);

  const Scheme* scheme_;  // one of the three, which stay
  QString folder_;
  QCache<quint64, SkinImage> cache_;
  QSet<QString> warned_;
};

}  // namespace mirellon::skin
