#include "imageio/decode_file.h"

#include <new>
#include <string>
#include <utility>

#include <FreeImage.h>

#include "imageio/library_support.h"
#include "imageio/picture_kind.h"
#include "imageio/picture_source.h"

namespace mirellon::imageio {

namespace {

using picture::PicBuf;

bool Refuse(LoadReport& report, LoadStatus status, std::string cause) {
  report.status = status;
  report.cause = std::move(cause);
  return true;
}

// The library gave no header: finds out why. A size of nought is what it calls a lack of memory here.
bool ReportNoHeader(const PictureSource& source, const LibraryMessages& messages, LoadReport& report) {
  if (source.HasReadError()) return Refuse(report, LoadStatus::kUnreadable, "the file cannot be read");
  std::string cause = "damaged, or not a " + report.format + " picture at all";
  if (const std::string first = messages.First(); !first.empty()) cause += " (" + first + ")";
  return Refuse(report, LoadStatus::kDamaged, std::move(cause));
}

// The library gave no pixels: finds out why.
bool ReportFailure(const PictureSource& source, const LibraryMessages& messages, LoadReport& report) {
  if (messages.Contain("lack of memory") || messages.Contain("Memory allocation failed")) {
    return Refuse(report, LoadStatus::kOutOfMemory, "not enough memory for the picture");
  }
  return ReportNoHeader(source, messages, report);
}

// Judges the picture by its header alone. True = refused, and reported.
bool RefuseByHeader(PictureSource& source, LoadReport& report) {
  if (source.RefuseBySize(report)) return true;
  const bool asked = source.format() != FIF_JPEG && FreeImage_FIFSupportsNoPixels(source.format()) != FALSE;
  if (!asked) return false;
  const LibraryMessages messages;
  const Bitmap header = source.Load(FIF_LOAD_NOPIXELS);
  if (!header) return ReportNoHeader(source, messages, report);
  if (std::string refusal = SizeRefusal(header.get()); !refusal.empty()) {
    return Refuse(report, LoadStatus::kTooLarge, std::move(refusal));
  }
  if (source.FindExtent() == PictureSource::Extent::kHardlyAny) {
    return Refuse(report, LoadStatus::kDamaged,
                  "the file ends too early; hardly any of the picture is there");
  }
  std::string refusal = KindRefusal(header.get());
  return !refusal.empty() && Refuse(report, LoadStatus::kUnsupportedKind, std::move(refusal));
}

std::string WarningOf(PictureSource& source, const LibraryMessages& messages) {
  if (messages.Contain("Premature end") || source.FindExtent() == PictureSource::Extent::kShort) {
    return "the file ends too early; a part of the picture is missing";
  }
  const std::string first = messages.First();
  return source.format() == FIF_JPEG && !first.empty() ? "the file is damaged (" + first + ")" : "";
}

PicBuf Decode(const std::filesystem::path& file, LoadReport& report) {
  PictureSource source;
  if (source.Open(file, report) || source.FindFormat(file, report) || RefuseByHeader(source, report))
    return {};
  const LibraryMessages messages;
  const Bitmap bitmap = source.Load(0);
  if (!bitmap) {
    ReportFailure(source, messages, report);
    return {};
  }
  source.TurnRound(bitmap.get());
  PicBuf picture = ConvertBitmap(bitmap.get(), &report);
  if (!picture.empty()) report.warning = WarningOf(source, messages);
  return picture;
}

}  // namespace

PicBuf DecodeFile(const std::filesystem::path& file, LoadReport& report) {
  report = {};
  PrepareLibraries();
  try {
    return Decode(file, report);
  } catch (const std::bad_alloc&) {
    Refuse(report, LoadStatus::kOutOfMemory, "not enough memory for the file");
    return {};
  }
}

}  // namespace mirellon::imageio
