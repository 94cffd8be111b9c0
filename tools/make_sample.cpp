// mirellon-make-sample CLEAN NOISY [WIDTH]: the sample photograph, without noise and as a camera would take
// it. The same bytes of pixels on every machine.
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

#include "imageio/save_image.h"
#include "picture/pic_buf.h"
#include "sample_scene.h"
#include "sample_sensor.h"

namespace {

using mirellon::picture::PicBuf;
using mirellon::tools::Light;

constexpr int kUsualWidth = 3000;
constexpr int kLargestWidth = 9000;
constexpr std::uint64_t kSeed = 20240229;
constexpr int kJpegQuality = 97;

void Store(PicBuf& picture, int x, int y, const Light& light) {
  std::uint8_t* pixel = mirellon::picture::Row<std::uint8_t>(picture, y) + static_cast<std::ptrdiff_t>(3) * x;
  pixel[0] = mirellon::tools::Develop(light.blue);
  pixel[1] = mirellon::tools::Develop(light.green);
  pixel[2] = mirellon::tools::Develop(light.red);
}

void DrawRow(PicBuf& clean, PicBuf& noisy, int y) {
  const int width = clean->width;
  const double pixel = 3.0 / width;
  const auto pitch = static_cast<std::uint64_t>(std::max(width, kUsualWidth));  // every pixel its own noise
  const mirellon::tools::Sensor sensor;
  for (int x = 0; x < width; ++x) {
    const Light light = mirellon::tools::SceneLight((x + 0.5) * pixel, (y + 0.5) * pixel, pixel);
    const auto number = static_cast<std::uint64_t>(y) * pitch + static_cast<std::uint64_t>(x);
    Store(clean, x, y, light);
    Store(noisy, x, y, Expose(light, sensor, number, kSeed));
  }
}

void Draw(PicBuf& clean, PicBuf& noisy) {
  const int threads = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
  std::vector<std::jthread> workers;
  workers.reserve(static_cast<std::size_t>(threads));
  for (int first = 0; first < threads; ++first) {
    workers.emplace_back([&clean, &noisy, first, threads] {
      for (int y = first; y < clean->height; y += threads) DrawRow(clean, noisy, y);
    });
  }
}

bool Write(const PicBuf& picture, const char* name) {
  mirellon::imageio::SaveReport report;
  mirellon::imageio::SaveOptions options;
  options.metadata = false;
  const bool failed = mirellon::imageio::WriteImageFile(picture, name, {}, kJpegQuality, options, &report);
  if (failed) std::fprintf(stderr, "mirellon-make-sample: '%s': %s\n", name, report.cause.c_str());
  return failed;
}

}  // namespace

int main(int argc, char** argv) {
  int width = kUsualWidth;
  bool wrong = argc < 3 || argc > 4;
  if (argc == 4) {
    const char* end = argv[3] + std::strlen(argv[3]);
    const auto [stopped, error] = std::from_chars(argv[3], end, width);
    wrong = error != std::errc() || stopped != end || width < 3 || width > kLargestWidth;
  }
  if (wrong) {
    std::fprintf(stderr, "usage: mirellon-make-sample CLEAN NOISY [WIDTH]   (3 to %d, default %d)\n",
                 kLargestWidth, kUsualWidth);
    return 2;
  }
  PicBuf clean(width, width * 2 / 3, 3, 8);
  PicBuf noisy(width, width * 2 / 3, 3, 8);
  if (clean.empty() || noisy.empty()) {
    std::fprintf(stderr, "mirellon-make-sample: not enough memory\n");
    return 1;
  }
  Draw(clean, noisy);
  return Write(clean, argv[1]) || Write(noisy, argv[2]) ? 1 : 0;
}
