// Measures taken from rendered pixels.
#pragma once

#include <QColor>
#include <QImage>
#include <QStringList>
#include <vector>

namespace mirellon::test {

// The ratio of luminances as accessibility guidelines have it: 1 for equal colours, 21 for black and white.
[[nodiscard]] double Contrast(const QColor& a, const QColor& b);

[[nodiscard]] int DifferentPixels(const QImage& a, const QImage& b);

// Pixels that stand out against what they were before, by that contrast at least.
[[nodiscard]] int OutstandingPixels(const QImage& before, const QImage& after, double contrast);

// Of two pictures that differ by text alone, for each line of text: the contrast of its strongest pixel with
// what is behind it.
[[nodiscard]] std::vector<double> TextContrasts(const QImage& without, const QImage& with);

// Catches Qt's warnings for as long as it lives; one at a time.
class CaughtWarnings {
 public:
  CaughtWarnings();
  ~CaughtWarnings();
  CaughtWarnings(const CaughtWarnings&) = delete;
  CaughtWarnings& operator=(const CaughtWarnings&) = delete;

  [[nodiscard]] const QStringList& all() const;

 private:
  QtMessageHandler before_;
};

}  // namespace mirellon::test
