// mirellon-side-by-side [--zoom N] [--split | --removed | --framed] OUTPUT X Y WIDTH HEIGHT PICTURE
// PICTURE...: the same cutting of several pictures next to each other, magnified. With a mode, two pictures,
// an original and its result: one cutting, half of the one and half of the other; a third panel with what was
// taken away; one cutting whose inner part only, in an inverted frame, is the result.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "imageio/load_image.h"
#include "imageio/save_image.h"

namespace {

using mirellon::picture::CBxPicBufAPI;
using mirellon::picture::PicBuf;
using mirellon::picture::Row;

constexpr int kGap = 8;  // pixels, white
constexpr int kJpegQuality = 88;
constexpr int kLargestCutting = 10000;
constexpr int kLargestZoom = 8;
constexpr int kLine = 2;       // of the split and the frame, in pixels of the sheet
constexpr int kNoiseGain = 4;  // as the program's own view shows removed noise

enum class Mode { kPlain, kSplit, kRemoved, kFramed };

struct Order {
  int zoom = 1;
  Mode mode = Mode::kPlain;
  std::string output;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  std::vector<std::string> pictures;
};

bool Complain(const std::string& about, const std::string& cause) {
  std::fprintf(stderr, "mirellon-side-by-side: '%s': %s\n", about.c_str(), cause.c_str());
  return true;
}

bool ReadNumber(const std::string& text, int least, int most, int& value) {
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value);
  return error != std::errc() || stopped != end || value < least || value > most;
}

// Takes the options off the arguments. True = wrong usage.
bool ReadOptions(std::vector<std::string>& arguments, Order& order) {
  while (!arguments.empty() && arguments.front().rfind("--", 0) == 0) {
    const std::string option = arguments.front();
    arguments.erase(arguments.begin());
    if (option == "--zoom") {
      if (arguments.empty() || ReadNumber(arguments.front(), 1, kLargestZoom, order.zoom)) return true;
      arguments.erase(arguments.begin());
    } else if (option == "--split") {
      order.mode = Mode::kSplit;
    } else if (option == "--removed") {
      order.mode = Mode::kRemoved;
    } else if (option == "--framed") {
      order.mode = Mode::kFramed;
    } else {
      return true;
    }
  }
  return false;
}

bool ReadOrder(std::vector<std::string> arguments, Order& order) {
  if (ReadOptions(arguments, order) || arguments.size() < 7) return true;
  order.output = arguments[0];
  order.pictures.assign(arguments.begin() + 5, arguments.end());
  return ReadNumber(arguments[1], 0, kLargestCutting * 10, order.x) ||
         ReadNumber(arguments[2], 0, kLargestCutting * 10, order.y) ||
         ReadNumber(arguments[3], 1, kLargestCutting, order.width) ||
         ReadNumber(arguments[4], 1, kLargestCutting, order.height) ||
         (order.mode != Mode::kPlain && order.pictures.size() != 2);
}

// The cutting of one picture in its own size. True = failed.
bool Cut(const Order& order, const std::string& name, PicBuf& cutting) {
  std::filesystem::path path = name;
  mirellon::imageio::LoadReport report;
  mirellon::imageio::Document document;
  if (mirellon::imageio::LoadImageFile(document, path, /*quiet=*/true, &report)) {
    return Complain(name, report.cause);
  }
  PicBuf& picture = document.source;
  if (CBxPicBufAPI::ConvertBpcComp(picture, 8, 3) == 0 || cutting.empty()) {
    return Complain(name, "not enough memory");
  }
  if (order.x + order.width > picture->width || order.y + order.height > picture->height) {
    return Complain(name, "the cutting lies outside the picture");
  }
  CBxPicBufAPI::CopyRect(cutting, picture, {0, 0}, {order.x, order.y}, {order.width, order.height});
  return false;
}

PicBuf Removed(const PicBuf& original, const PicBuf& result) {
  PicBuf removed(original->width, original->height, 3, 8);
  for (int y = 0; !removed.empty() && y < original->height; ++y) {
    const std::uint8_t* before = Row<std::uint8_t>(original, y);
    const std::uint8_t* after = Row<std::uint8_t>(result, y);
    std::uint8_t* to = Row<std::uint8_t>(removed, y);
    for (int i = 0; i < 3 * original->width; ++i) {
      to[i] = static_cast<std::uint8_t>(std::clamp(128 + kNoiseGain * (before[i] - after[i]), 0, 255));
    }
  }
  return removed;
}

// Columns and rows of a cutting, as they are, half open.
struct Part {
  int left;
  int top;
  int right;
  int bottom;
};

// Every pixel of the part as a square of zoom × zoom pixels.
void Place(PicBuf& sheet, int left, const PicBuf& cutting, const Part& part, int zoom) {
  for (int y = part.top * zoom; y < part.bottom * zoom; ++y) {
    const std::uint8_t* from = Row<std::uint8_t>(cutting, y / zoom);
    std::uint8_t* to = Row<std::uint8_t>(sheet, y) + static_cast<std::ptrdiff_t>(3) * left;
    for (int x = part.left * zoom; x < part.right * zoom; ++x) {
      std::memcpy(to + static_cast<std::ptrdiff_t>(3) * x, from + static_cast<std::ptrdiff_t>(3) * (x / zoom),
                  3);
    }
  }
}

void Invert(PicBuf& sheet, const Part& part) {
  for (int y = part.top; y < part.bottom; ++y) {
    std::uint8_t* row = Row<std::uint8_t>(sheet, y);
    for (int i = 3 * part.left; i < 3 * part.right; ++i) row[i] = static_cast<std::uint8_t>(~row[i]);
  }
}

// In the colour of the program's own line.
void DrawLine(PicBuf& sheet, int column) {
  constexpr std::array<std::uint8_t, 3> kAccent{208, 134, 58};  // blue, green, red
  for (int y = 0; y < sheet->height; ++y) {
    std::uint8_t* row = Row<std::uint8_t>(sheet, y) + static_cast<std::ptrdiff_t>(3) * column;
    for (int i = 0; i < kLine; ++i) std::memcpy(row + static_cast<std::ptrdiff_t>(3) * i, kAccent.data(), 3);
  }
}

void Compose(const Order& order, const std::vector<PicBuf>& cuttings, PicBuf& sheet) {
  const int zoom = order.zoom;
  const Part whole{0, 0, order.width, order.height};
  CBxPicBufAPI::SetConst(sheet, {0, 0, sheet->width, sheet->height}, 255);
  if (order.mode == Mode::kSplit) {
    const int middle = order.width / 2;
    Place(sheet, 0, cuttings[0], whole, zoom);
    Place(sheet, 0, cuttings[1], {middle, 0, order.width, order.height}, zoom);
    DrawLine(sheet, middle * zoom - kLine / 2);
  } else if (order.mode == Mode::kFramed) {
    const Part inner{order.width / 4, order.height / 4, order.width * 3 / 4, order.height * 3 / 4};
    Place(sheet, 0, cuttings[0], whole, zoom);
    Place(sheet, 0, cuttings[1], inner, zoom);
    const Part frame{inner.left * zoom, inner.top * zoom, inner.right * zoom, inner.bottom * zoom};
    Invert(sheet, {frame.left, frame.top, frame.right, frame.top + kLine});
    Invert(sheet, {frame.left, frame.bottom - kLine, frame.right, frame.bottom});
    Invert(sheet, {frame.left, frame.top + kLine, frame.left + kLine, frame.bottom - kLine});
    Invert(sheet, {frame.right - kLine, frame.top + kLine, frame.right, frame.bottom - kLine});
  } else {
    int left = 0;
    for (const PicBuf& cutting : cuttings) {
      Place(sheet, left, cutting, whole, zoom);
      left += order.width * zoom + kGap;
    }
  }
}

// True = failed.
bool Make(const Order& order) {
  std::vector<PicBuf> cuttings;
  for (const std::string& name : order.pictures) {
    cuttings.emplace_back(order.width, order.height, 3, 8);
    if (Cut(order, name, cuttings.back())) return true;
  }
  if (order.mode == Mode::kRemoved) {
    cuttings[0] = Removed(cuttings[0], cuttings[1]);
    std::swap(cuttings[0], cuttings[1]);
  }
  const bool one = order.mode == Mode::kSplit || order.mode == Mode::kFramed;
  const int panels = one ? 1 : static_cast<int>(cuttings.size());
  PicBuf sheet(panels * (order.width * order.zoom + kGap) - kGap, order.height * order.zoom, 3, 8);
  if (sheet.empty() || cuttings.back().empty()) return Complain(order.output, "not enough memory");
  Compose(order, cuttings, sheet);
  mirellon::imageio::SaveOptions options;
  options.metadata = false;
  mirellon::imageio::SaveReport report;
  if (!mirellon::imageio::WriteImageFile(sheet, order.output, {}, kJpegQuality, options, &report))
    return false;
  return Complain(order.output, report.cause);
}

}  // namespace

int main(int argc, char** argv) {
  Order order;
  if (argc < 1 || ReadOrder({argv + 1, argv + argc}, order)) {
    std::fprintf(stderr,
                 "usage: mirellon-side-by-side [--zoom N] [--split | --removed | --framed] "
                 "OUTPUT X Y WIDTH HEIGHT PICTURE PICTURE...\n");
    return 2;
  }
  return Make(order) ? 1 : 0;
}
