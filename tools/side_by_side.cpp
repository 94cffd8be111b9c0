// mirellon-side-by-side LEFT RIGHT OUTPUT X Y WIDTH HEIGHT: the same cutting of two pictures, next to each
// other.
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string>

#include "imageio/load_image.h"
#include "imageio/save_image.h"

namespace {

using mirellon::imageio::Document;
using mirellon::picture::CBxPicBufAPI;
using mirellon::picture::PicBuf;

constexpr int kGap = 8;  // pixels, white
constexpr int kJpegQuality = 88;

struct Cutting {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

bool Complain(const char* about, const std::string& cause) {
  std::fprintf(stderr, "mirellon-side-by-side: '%s': %s\n", about, cause.c_str());
  return true;
}

bool ReadNumber(const char* text, int& value) {
  const char* end = text + std::strlen(text);
  const auto [stopped, error] = std::from_chars(text, end, value);
  return error != std::errc() || stopped != end;
}

// Puts the picture's cutting at column `left`. True = failed.
bool Place(PicBuf& sheet, int left, const char* name, const Cutting& cutting) {
  std::filesystem::path path = name;
  mirellon::imageio::LoadReport report;
  Document document;
  if (mirellon::imageio::LoadImageFile(document, path, /*quiet=*/true, &report)) {
    return Complain(name, report.cause);
  }
  PicBuf& picture = document.source;
  if (CBxPicBufAPI::ConvertBpcComp(picture, 8, 3) == 0) return Complain(name, "not enough memory");
  if (cutting.x + cutting.width > picture->width || cutting.y + cutting.height > picture->height) {
    return Complain(name, "the cutting lies outside the picture");
  }
  CBxPicBufAPI::CopyRect(sheet, picture, {left, 0}, {cutting.x, cutting.y}, {cutting.width, cutting.height});
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  Cutting cutting;
  if (argc != 8 || ReadNumber(argv[4], cutting.x) || ReadNumber(argv[5], cutting.y) ||
      ReadNumber(argv[6], cutting.width) || ReadNumber(argv[7], cutting.height) || cutting.x < 0 ||
      cutting.y < 0 || cutting.width < 1 || cutting.height < 1 || cutting.width > 10000 ||
      cutting.height > 10000 || cutting.x > 100000 || cutting.y > 100000) {
    std::fprintf(stderr, "usage: mirellon-side-by-side LEFT RIGHT OUTPUT X Y WIDTH HEIGHT\n");
    return 2;
  }
  PicBuf sheet(2 * cutting.width + kGap, cutting.height, 3, 8);
  if (sheet.empty()) return Complain(argv[3], "not enough memory") ? 1 : 0;
  CBxPicBufAPI::SetConst(sheet, {0, 0, sheet->width, sheet->height}, 255);
  if (Place(sheet, 0, argv[1], cutting) || Place(sheet, cutting.width + kGap, argv[2], cutting)) return 1;
  mirellon::imageio::SaveOptions options;
  options.metadata = false;
  mirellon::imageio::SaveReport report;
  if (mirellon::imageio::WriteImageFile(sheet, argv[3], {}, kJpegQuality, options, &report)) {
    return Complain(argv[3], report.cause) ? 1 : 0;
  }
  return 0;
}
