#include <cstddef>
#include <cstdint>

#include <FreeImage.h>

#include "imageio/load_image.h"
#include "imageio/picture_kind.h"
#include "picture/pic_buf.h"

namespace mirellon::imageio {

namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;

// Only the report's status and cause; the format stays what it was.
void Report(LoadReport* report, LoadStatus status, const std::string& cause) {
  if (report == nullptr) return;
  report->status = status;
  report->cause = cause;
}

// Deep colour comes red first.
bool SwapRedAndBlue(PicBuf& picture) {
  PicBuf first(picture, 1);
  PicBuf last(picture, 1);
  if (first.empty() || last.empty()) return true;
  CBxPicBufAPI::ExtractComponent(first, 0, picture);
  CBxPicBufAPI::ExtractComponent(last, 2, picture);
  CBxPicBufAPI::InsertComponent(picture, 2, first);
  CBxPicBufAPI::InsertComponent(picture, 0, last);
  return false;
}

}  // namespace

PicBuf ConvertBitmap(FIBITMAP* bitmap, LoadReport* report) {
  if (bitmap == nullptr) {
    Report(report, LoadStatus::kDamaged, "no bitmap");
    return {};
  }
  if (const std::string refusal = KindRefusal(bitmap); !refusal.empty()) {
    Report(report, LoadStatus::kUnsupportedKind, refusal);
    return {};
  }
  if (const std::string refusal = SizeRefusal(bitmap); !refusal.empty()) {
    Report(report, LoadStatus::kTooLarge, refusal);
    return {};
  }
  if (FreeImage_GetColorType(bitmap) == FIC_MINISWHITE) FreeImage_Invert(bitmap);

  const PictureKind kind = KindOf(bitmap);
  PicBuf picture(static_cast<int>(FreeImage_GetWidth(bitmap)), static_cast<int>(FreeImage_GetHeight(bitmap)),
                 kind.components, kind.bits);
  if (!picture.empty()) {
    FreeImage_ConvertToRawBits(picture->samples, bitmap, picture->rowStride, FreeImage_GetBPP(bitmap),
                               FreeImage_GetRedMask(bitmap), FreeImage_GetGreenMask(bitmap),
                               FreeImage_GetBlueMask(bitmap), TRUE);
  }
  if (picture.empty() || (kind.components == 3 && kind.bits == 16 && SwapRedAndBlue(picture))) {
    Report(report, LoadStatus::kOutOfMemory, "not enough memory for the picture");
    return {};
  }
  Report(report, LoadStatus::kLoaded, {});
  return picture;
}

}  // namespace mirellon::imageio
