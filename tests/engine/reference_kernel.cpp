#include "engine/reference_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "support/test_pictures.h"

namespace mirellon::test {

namespace {

using picture::PicBuf;
using picture::SBxPicBuf;

// Numbers by row and column.
struct Plane {
  int rows;
  int columns;
  std::vector<std::vector<double>> at;

  Plane(int r, int c) : rows(r), columns(c), at(r, std::vector<double>(c, 0.0)) {}
  template <typename F>
  Plane(int r, int c, F numberAt) : Plane(r, c) {
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) at[row][column] = numberAt(row, column);
    }
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
  return {picture.height + 2 * border, picture.width + 2 * border, [&](int row, int column) {
            return Sample(picture, MirrorIndex(column - border, picture.width),
                          MirrorIndex(row - border, picture.height));
          }};
}

Plane DifferencePlane(const Plane& work, int dy, int dx) {
  return {work.rows, work.columns, [&](int row, int column) {
            const int y = row + dy;
            const int x = column + dx;
            if (y < 0 || y >= work.rows || x < 0 || x >= work.columns) return work.at[row][column];
            return std::abs(work.at[row][column] - work.at[y][x]);
          }};
}

Plane HalfSizeSum(const Plane& whole) {
  Plane half(whole.rows / 2, whole.columns / 2);
  for (int row = 0; row < whole.rows; ++row) {
    for (int column = 0; column < whole.columns; ++column) {
      half.at[row / 2][column / 2] += whole.at[row][column];
    }
  }
  return half;
}

Plane BoxSum(const Plane& half) {
  return {half.rows, half.columns, [&](int i, int j) {
            double sum = 0.0;
            if (i < 1 || i > half.rows - 2 || j < 1 || j > half.columns - 2) return sum;
            for (int a = -1; a <= 1; ++a) {
              for (int b = -1; b <= 1; ++b) sum += half.at[i + a][j + b];
            }
            return sum;
          }};
}

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
  // Weights, each computed when it is first asked for.
  std::vector<std::vector<double>> known(256, std::vector<double>(9216, -1));
  const auto weightOf = [&](int v, double distance) {
    const int s = static_cast<int>(distance);
    if (known[v][s] < 0) known[v][s] = ReferenceWeight(v, s, dynamicity, std::pow(strength, 3.5));
    return known[v][s];
  };
  Plane weightSum(source.height, source.width);
  Plane valueSum(source.height, source.width);
  for (int k = 0; k <= side * side / 2; ++k) {
    const int dy = k / side - half;
    const int dx = k % side - half;
    const Plane box = BoxSum(HalfSizeSum(DifferencePlane(bytes, dy, dx)));
    for (int y = 0; y < source.height; ++y) {
      for (int x = 0; x < source.width; ++x) {
        const int blockRow = border + y / 2 * 2;  // the block's top left position
        const int blockColumn = border + x / 2 * 2;
        const int v = static_cast<int>(bytes.at[blockRow][blockColumn]);
        const double forward = weightOf(v, box.at[blockRow / 2][blockColumn / 2]);
        const int row = border + y;
        const int column = border + x;
        weightSum.at[y][x] += forward;
        valueSum.at[y][x] += samples.at[row + dy][column + dx] * forward;
        if (dy == 0 && dx == 0) continue;
        const double backward = weightOf(v, box.at[(blockRow - dy) / 2][(blockColumn - dx) / 2]);
        weightSum.at[y][x] += backward;
        valueSum.at[y][x] += samples.at[row - dy][column - dx] * backward;
      }
    }
  }
  const double largest = source.bitsPerComponent == 8 ? 255.0 : 65535.0;
  return MadeOf(source.width, source.height, 1, source.bitsPerComponent, [&](int x, int y, int) {
    const double mean = std::trunc(valueSum.at[y][x] / weightSum.at[y][x] + 0.5);
    return static_cast<unsigned>(std::min(mean, largest));
  });
}

PicBuf ReferencePlane(const SBxPicBuf& source, double strength, int quality, double dynamics) {
  const int bits = source.bitsPerComponent;
  const int width = source.width + source.width % 2;
  const int height = source.height + source.height % 2;
  const PicBuf padded = MadeOf(width, height, 1, bits, [&](int x, int y, int) {
    return x < source.width && y < source.height ? Sample(source, x, y) : 0;
  });
  const PicBuf guide = MadeOf(width, height, 1, 8, [&](int x, int y, int) {
    return bits == 8 ? Sample(padded, x, y) : Sample(padded, x, y) >> 8U;
  });
  const PicBuf filtered = ReferenceKernel(padded, guide, strength, quality, 2.0 * dynamics);
  return MadeOf(source.width, source.height, 1, bits,
                [&](int x, int y, int) { return Sample(filtered, x, y); });
}

}  // namespace mirellon::test
