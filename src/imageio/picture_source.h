// A file of unknown origin on its way through the decoding library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <FreeImage.h>

#include "imageio/file_headers.h"
#include "imageio/library_support.h"
#include "imageio/load_image.h"

namespace mirellon::imageio {

struct StreamCloser {
  void operator()(std::FILE* stream) const { (void)std::fclose(stream); }
};
struct MemoryCloser {
  void operator()(FIMEMORY* memory) const { FreeImage_CloseMemory(memory); }
};

// The library never sees a file's name, nor the metadata of a JPEG or TIFF: its parsers of those do not
// survive every file. Functions of type bool return true when they failed or refused, and have reported it.
class PictureSource {
 public:
  PictureSource() = default;
  PictureSource(const PictureSource&) = delete;
  PictureSource& operator=(const PictureSource&) = delete;

  [[nodiscard]] bool Open(const std::filesystem::path& file, LoadReport& report);
  // By signature, else by name; afterwards the file is ready to be loaded.
  [[nodiscard]] bool FindFormat(const std::filesystem::path& file, LoadReport& report);
  // Too large by its header, in a format whose size the library cannot tell, or not cheaply.
  [[nodiscard]] bool RefuseBySize(LoadReport& report);

  // Null when the library gives up. `extraFlags` are added to the format's own. May throw std::bad_alloc.
  [[nodiscard]] Bitmap Load(int extraFlags);
  // Inverts 16-bit grey that counts from white to black; the library tells of 8-bit grey only.
  void TurnRound(FIBITMAP* bitmap);

  // Whether the file ends before its pixels do, in a format whose decoder does not say so.
  enum class Extent { kWhole, kShort, kHardlyAny };
  [[nodiscard]] Extent FindExtent();

  [[nodiscard]] bool HasReadError() const { return std::ferror(stream_.get()) != 0; }
  [[nodiscard]] FREE_IMAGE_FORMAT format() const { return format_; }

 private:
  static unsigned ReadHook(void* buffer, unsigned size, unsigned count, fi_handle handle);
  static unsigned WriteHook(void* buffer, unsigned size, unsigned count, fi_handle handle);
  static int SeekHook(fi_handle handle, long offset, int origin);
  static long TellHook(fi_handle handle);

  bool OpenJpeg(LoadReport& report);
  // The file's own bytes, fewer at its end.
  std::string ReadAt(std::uint64_t offset, std::size_t size);
  std::size_t ReadPatched(char* buffer, std::size_t size);

  std::unique_ptr<std::FILE, StreamCloser> stream_;
  std::uint64_t size_ = 0;
  FREE_IMAGE_FORMAT format_ = FIF_UNKNOWN;
  FreeImageIO hooks_{ReadHook, WriteHook, SeekHook, TellHook};
  std::vector<FilePatch> patches_;                  // what hides the metadata of a TIFF
  std::string jpeg_;                                // a JPEG's content without its metadata
  std::unique_ptr<FIMEMORY, MemoryCloser> memory_;  // over jpeg_
};

}  // namespace mirellon::imageio
