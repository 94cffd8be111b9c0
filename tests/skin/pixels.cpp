#include "skin/pixels.h"

#include <algorithm>
#include <cmath>

namespace mirellon::test {

namespace {

double Linear(double share) {
  return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& colour) {
  return 0.2126 * Linear(colour.redF()) + 0.7152 * Linear(colour.greenF()) + 0.0722 * Linear(colour.blueF());
}

// A message handler is a plain function, so what it writes to lies outside.
QStringList& Caught() {
  static QStringList caught;
  return caught;
}

void Catch(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
  if (type == QtWarningMsg) Caught().append(message);
}

}  // namespace

double Contrast(const QColor& a, const QColor& b) {
  const double first = Luminance(a) + 0.05;
  const double second = Luminance(b) + 0.05;
  return std::max(first, second) / std::min(first, second);
}

int DifferentPixels(const QImage& a, const QImage& b) {
  if (a.size() != b.size()) return std::max(a.width() * a.height(), b.width() * b.height());
  int different = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x) different += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
  }
  return different;
}

int OutstandingPixels(const QImage& before, const QImage& after, double contrast) {
  int outstanding = 0;
  for (int y = 0; y < before.height(); ++y) {
    for (int x = 0; x < before.width(); ++x) {
      if (before.pixel(x, y) == after.pixel(x, y)) continue;
      outstanding += Contrast(before.pixelColor(x, y), after.pixelColor(x, y)) >= contrast ? 1 : 0;
    }
  }
  return outstanding;
}

std::vector<double> TextContrasts(const QImage& without, const QImage& with) {
  std::vector<double> lines;
  bool inLine = false;
  for (int y = 0; y < with.height(); ++y) {
    double strongest = 0;
    for (int x = 0; x < with.width(); ++x) {
      if (without.pixel(x, y) == with.pixel(x, y)) continue;
      strongest = std::max(strongest, Contrast(without.pixelColor(x, y), with.pixelColor(x, y)));
    }
    if (strongest > 0 && !inLine) lines.push_back(strongest);
    if (strongest > 0) lines.back() = std::max(lines.back(), strongest);
    inLine = strongest > 0;
  }
  return lines;
}

CaughtWarnings::CaughtWarnings() : before_(qInstallMessageHandler(Catch)) {
  Caught().clear();
}

CaughtWarnings::~CaughtWarnings() {
  qInstallMessageHandler(before_);
}

const QStringList& CaughtWarnings::all() const {
  return Caught();
}

}  // namespace mirellon::test
