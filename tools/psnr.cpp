// mirellon-psnr A B: how alike two pictures of one shape are, in decibels, over all samples.
#include <cmath>
#include <cstdio>

#include "imageio/load_image.h"

namespace {

using mirellon::imageio::Document;
using mirellon::picture::Row;
using mirellon::picture::SBxPicBuf;

bool Load(Document& document, const char* name) {
  std::filesystem::path path = name;
  mirellon::imageio::LoadReport report;
  const bool failed = mirellon::imageio::LoadImageFile(document, path, /*quiet=*/true, &report);
  if (failed) std::fprintf(stderr, "mirellon-psnr: '%s': %s\n", name, report.cause.c_str());
  return failed;
}

template <typename T>
double MeanSquaredError(const SBxPicBuf& a, const SBxPicBuf& b) {
  const int samples = a.width * a.components;
  double sum = 0.0;
  for (int y = 0; y < a.height; ++y) {
    const T* first = Row<T>(a, y);
    const T* second = Row<T>(b, y);
    double row = 0.0;
    for (int i = 0; i < samples; ++i) {
      const double difference = static_cast<double>(first[i]) - static_cast<double>(second[i]);
      row += difference * difference;
    }
    sum += row;
  }
  return sum / samples / a.height;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: mirellon-psnr A B\n");
    return 2;
  }
  Document a;
  Document b;
  if (Load(a, argv[1]) || Load(b, argv[2])) return 1;
  const SBxPicBuf& first = a.source;
  const SBxPicBuf& second = b.source;
  if (first.width != second.width || first.height != second.height || first.components != second.components ||
      first.bitsPerComponent != second.bitsPerComponent) {
    std::fprintf(stderr, "mirellon-psnr: the pictures differ in size, components or depth\n");
    return 1;
  }
  const bool bytes = first.bitsPerComponent == 8;
  const double error =
      bytes ? MeanSquaredError<std::uint8_t>(first, second) : MeanSquaredError<std::uint16_t>(first, second);
  const double largest = bytes ? 255.0 : 65535.0;
  std::printf("%.2f\n", 10.0 * std::log10(largest * largest / error));  // "inf" for equal pictures
  return 0;
}
