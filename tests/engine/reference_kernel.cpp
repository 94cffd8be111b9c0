#include "engine/reference_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "support/test_pictures.h"

namespace mirellon::test {

namespace {

using picture::PicBuf;
using picture::SBxPicBuf;

// A plane of any sample width, addressed by row and column.
struct Plane {
  int rows;
  int columns;
  std::vector<double> values;

  Plane(int r, int c)
      : rows(r), columns(c), values(static_cast<std::size_t>(r) * static_cast<std::size_t>(c), 0.0) {}
  double& At(int row, int column) { return values[Index(row, column)]; }
  [[nodiscard]] double At(int row, int column) const { return values[Index(row, column)]; }
  [[nodiscard]] bool Holds(int row, int column) const {
    return row >= 0 && row < rows && column >= 0 && column < columns;
  }

 private:
  [[nodiscard]] std::size_t Index(int row, int column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
           static_cast<std::size_t>(column);
  }
};

// Reflects again and again until the index falls inside.
int MirrorIndex(int i, int size) {
  while (i < 0 || i >= size) {
    if (size == 1) return 0;
    if (i < 0) i = -i;
    if (i >= size) i = 2 * (size - 1) - i;
  }
  return i;
}

Plane Bordered(const SBxPicBuf& picture, int border) {
  Plane work(picture.height + 2 * border, picture.width + 2 * border);
  for (int row = 0; row < work.rows; ++row) {
    for (int column = 0; column < work.columns; ++column) {
      work.At(row, column) = Sample(picture, MirrorIndex(column - border, picture.width),
                                    MirrorIndex(row - border, picture.height));
    }
  }
  return work;
}

Plane DifferencePlane(const Plane& work, int dy, int dx) {
  Plane difference = work;
  for (int row = 0; row < work.rows; ++row) {
    for (int column = 0; column < work.columns; ++column) {
      if (!work.Holds(row + dy, column + dx)) continue;
      difference.At(row, column) = std::abs(work.At(row, column) - work.At(row + dy, column + dx));
    }
  }
  return difference;
}

Plane HalfSizeSum(const Plane& difference) {
  Plane half(difference.rows / 2, difference.columns / 2);
  for (int i = 0; i < half.rows; ++i) {
    for (int j = 0; j < half.columns; ++j) {
      half.At(i, j) = difference.At(2 * i, 2 * j) + difference.At(2 * i, 2 * j + 1) +
                      difference.At(2 * i + 1, 2 * j) + difference.At(2 * i + 1, 2 * j + 1);
    }
  }
  return half;
}

Plane BoxSum(const Plane& half) {
  Plane box(half.rows, half.columns);
  for (int i = 1; i <= half.rows - 2; ++i) {
    for (int j = 1; j <= half.columns - 2; ++j) {
      for (int a = -1; a <= 1; ++a) {
        for (int b = -1; b <= 1; ++b) box.At(i, j) += half.At(i + a, j + b);
      }
    }
  }
  return box;
}

Plane FullSize(const Plane& half, int rows, int columns) {
  Plane full(rows, columns);
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) full.At(row, column) = half.At(row / 2, column / 2);
  }
  return full;
}

// Weights, each computed when it is first asked for.
class Tables {
 public:
  Tables(double dynamicity, double variance)
      : dynamicity_(dynamicity), variance_(variance), known_(256 * 9216, -1) {}

  double Weight(int v, int s) {
    double& weight = known_[static_cast<std::size_t>(v) * 9216 + static_cast<std::size_t>(s)];
    if (weight < 0) weight = ReferenceWeight(v, s, dynamicity_, variance_);
    return weight;
  }

 private:
  double dynamicity_;
  double variance_;
  std::vector<double> known_;
};

}  // namespace

unsigned ReferenceWeight(int v, int s, double dynamicity, double variance) {
  if (s == 0) return 10000;
  double divisor = variance;
  if (dynamicity > 0) divisor = (v * dynamicity * 0.00390625 + 1) * variance;
  if (dynamicity < 0) divisor = ((255 - v) * (-dynamicity) * 0.00390625 + 1) * variance;
  const double cube = static_cast<double>(s) * s * s;
  return static_cast<unsigned>(std::floor(std::exp(-cube / 300 / divisor) * 10000 + 0.5));
}

PicBuf ReferenceKernel(const SBxPicBuf& source, const SBxPicBuf& guide, double strength, int quality,
                       double dynamicity) {
  const int side = quality == 1 ? 7 : quality == 2 ? 13 : 21;
  const int half = side / 2;
  const int border =
      std::max(std::min(2 * (std::min(source.width, source.height) / 2) - 1, 71) / 2 + 3, half + 2);
  const Plane samples = Bordered(source, border);
  const Plane bytes = Bordered(guide, border);
  Tables tables(dynamicity, std::pow(strength, 3.5));
  Plane weightSum(source.height, source.width);
  Plane valueSum(source.height, source.width);
  for (int k = 0; k <= side * side / 2; ++k) {
    const int dy = k / side - half;
    const int dx = k % side - half;
    const Plane box =
        FullSize(BoxSum(HalfSizeSum(DifferencePlane(bytes, dy, dx))), bytes.rows, bytes.columns);
    for (int y = 0; y < source.height; ++y) {
      for (int x = 0; x < source.width; ++x) {
        const int blockRow = border + y / 2 * 2;  // the block's top left position
        const int blockColumn = border + x / 2 * 2;
        const int v = static_cast<int>(bytes.At(blockRow, blockColumn));
        const double forward = tables.Weight(v, static_cast<int>(box.At(blockRow, blockColumn)));
        const int row = border + y;
        const int column = border + x;
        if (dy == 0 && dx == 0) {
          weightSum.At(y, x) += forward;
          valueSum.At(y, x) += samples.At(row, column) * forward;
          continue;
        }
        const double backward = tables.Weight(v, static_cast<int>(box.At(blockRow - dy, blockColumn - dx)));
        weightSum.At(y, x) += forward + backward;
        valueSum.At(y, x) +=
            samples.At(row + dy, column + dx) * forward + samples.At(row - dy, column - dx) * backward;
      }
    }
  }
  PicBuf result(source.width, source.height, 1, source.bitsPerComponent);
  const double largest = source.bitsPerComponent == 8 ? 255.0 : 65535.0;
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) {
      const double mean = std::trunc(valueSum.At(y, x) / weightSum.At(y, x) + 0.5);
      SetSample(result, x, y, 0, static_cast<unsigned>(std::min(mean, largest)));
    }
  }
  return result;
}

PicBuf ReferencePlane(const SBxPicBuf& source, double strength, int quality, double dynamics) {
  PicBuf padded = ConstantPicture(source.width + source.width % 2, source.height + source.height % 2, 1,
                                  source.bitsPerComponent, 0);
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) SetSample(padded, x, y, 0, Sample(source, x, y));
  }
  PicBuf guide(padded->width, padded->height, 1, 8);
  for (int y = 0; y < padded->height; ++y) {
    for (int x = 0; x < padded->width; ++x) {
      const unsigned sample = Sample(padded, x, y);
      SetSample(guide, x, y, 0, padded->bitsPerComponent == 8 ? sample : sample >> 8U);
    }
  }
  const PicBuf filtered = ReferenceKernel(padded, guide, strength, quality, 2.0 * dynamics);
  PicBuf result(source.width, source.height, 1, source.bitsPerComponent);
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) SetSample(result, x, y, 0, Sample(filtered, x, y));
  }
  return result;
}

}  // namespace mirellon::test
