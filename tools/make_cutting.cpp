// mirellon-make-cutting OUTPUT X Y WIDTH HEIGHT ISO [FAULT]: a piece of the sample photograph alone, as a
// camera would take it at that ISO speed; 0: without noise. FAULT spoils it: "blotches", the large spots of
// colour that a camera's own noise reduction leaves, or "points", single dark and bright pixels.
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "imageio/save_image.h"
#include "picture/pic_buf.h"
#include "sample_scene.h"
#include "sample_sensor.h"
#include "texture.h"

namespace {

using mirellon::picture::PicBuf;
using mirellon::tools::Light;

constexpr int kSampleWidth = 3000;
constexpr int kSampleHeight = 2000;
constexpr int kHighestIso = 409600;
constexpr std::uint64_t kSeed = 20240229;

enum class Fault { kNone, kBlotches, kPoints };

struct Order {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  int iso = 0;
  Fault fault = Fault::kNone;
};

bool ReadNumber(const char* text, int least, int most, int& value) {
  const char* end = text + std::strlen(text);
  const auto [stopped, error] = std::from_chars(text, end, value);
  return error != std::errc() || stopped != end || value < least || value > most;
}

bool ReadFault(std::string_view text, Fault& fault) {
  if (text == "blotches") fault = Fault::kBlotches;
  if (text == "points") fault = Fault::kPoints;
  return fault == Fault::kNone;
}

// True = wrong usage.
bool ReadOrder(int argc, char** argv, Order& order) {
  return argc < 7 || argc > 8 || ReadNumber(argv[2], 0, kSampleWidth - 1, order.x) ||
         ReadNumber(argv[3], 0, kSampleHeight - 1, order.y) ||
         ReadNumber(argv[4], 1, kSampleWidth - order.x, order.width) ||
         ReadNumber(argv[5], 1, kSampleHeight - order.y, order.height) ||
         ReadNumber(argv[6], 0, kHighestIso, order.iso) || (argc == 8 && ReadFault(argv[7], order.fault));
}

// Spots about twenty pixels wide that shift the colour and leave the brightness.
Light WithBlotches(Light light, int x, int y) {
  constexpr double kSize = 20.0;
  constexpr double kShift = 0.7;
  light.red *= 1.0 + kShift * (mirellon::tools::ValueNoise(x / kSize, y / kSize, 71) - 0.5);
  light.blue *= 1.0 + kShift * (mirellon::tools::ValueNoise(x / kSize, y / kSize, 72) - 0.5);
  return light;
}

// One pixel in a hundred is stuck, dark or bright.
Light WithPoints(Light light, int x, int y) {
  constexpr double kShare = 0.01;
  const double chance = mirellon::tools::CellValue(x, y, 73);
  if (chance >= kShare) return light;
  return chance < kShare / 2 ? Light{0.0, 0.0, 0.0} : Light{1.0, 1.0, 1.0};
}

void Store(std::uint8_t* pixel, const Light& light) {
  pixel[0] = mirellon::tools::Develop(light.blue);
  pixel[1] = mirellon::tools::Develop(light.green);
  pixel[2] = mirellon::tools::Develop(light.red);
}

void Draw(PicBuf& picture, const Order& order) {
  constexpr double kPixel = 3.0 / kSampleWidth;
  const mirellon::tools::Sensor sensor =
      mirellon::tools::SensorAt(order.iso == 0 ? mirellon::tools::kSampleIso : order.iso);
  for (int row = 0; row < order.height; ++row) {
    std::uint8_t* pixel = mirellon::picture::Row<std::uint8_t>(picture, row);
    for (int column = 0; column < order.width; ++column, pixel += 3) {
      const int x = order.x + column;
      const int y = order.y + row;
      Light light = mirellon::tools::SceneLight((x + 0.5) * kPixel, (y + 0.5) * kPixel, kPixel);
      if (order.fault == Fault::kBlotches) light = WithBlotches(light, x, y);
      const auto number = static_cast<std::uint64_t>(y) * kSampleWidth + static_cast<std::uint64_t>(x);
      if (order.iso != 0) light = Expose(light, sensor, number, kSeed);
      if (order.fault == Fault::kPoints) light = WithPoints(light, x, y);
      Store(pixel, light);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  Order order;
  if (ReadOrder(argc, argv, order)) {
    std::fprintf(stderr, "usage: mirellon-make-cutting OUTPUT X Y WIDTH HEIGHT ISO [blotches|points]\n");
    return 2;
  }
  PicBuf picture(order.width, order.height, 3, 8);
  if (picture.empty()) {
    std::fprintf(stderr, "mirellon-make-cutting: not enough memory\n");
    return 1;
  }
  Draw(picture, order);
  mirellon::imageio::SaveReport report;
  mirellon::imageio::SaveOptions options;
  options.metadata = false;
  if (mirellon::imageio::WriteImageFile(picture, argv[1], {}, 100, options, &report)) {
    std::fprintf(stderr, "mirellon-make-cutting: '%s': %s\n", argv[1], report.cause.c_str());
    return 1;
  }
  return 0;
}
