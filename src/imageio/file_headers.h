// What must be known of a file's own structure before the decoding library sees it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirellon::imageio {

struct HeaderSize {
  std::uint32_t width;
  std::uint32_t height;
};

// The larger of a GIF's screen and its first frame, side by side; nothing when the head is no GIF's. The
// library cannot read a GIF's size without its pixels.
[[nodiscard]] std::optional<HeaderSize> ReadGifSize(std::string_view head);

// Size and components by a JPEG's frame header; nothing when there is none. The library cannot be asked for
// them without decoding a good part of the file.
struct JpegFrame {
  HeaderSize size;
  unsigned components;
};
[[nodiscard]] std::optional<JpegFrame> ReadJpegFrame(std::string_view file);

// How many bytes a BMP file of plain pixels must have, by its header; nothing when it cannot be told
// (compressed, or no BMP). The library takes a shorter one without a word.
[[nodiscard]] std::optional<std::uint64_t> NeededBmpSize(std::string_view head);

// A JPEG file's content without its application and comment segments (EXIF, XMP, ICC, thumbnails ...), except
// the two that tell how to decode it; those after the first scan become empty comments. The library's parser
// of the others does not survive damaged ones.
[[nodiscard]] std::string WithoutJpegMetadata(std::string_view file);

// Whether a TIFF's first picture counts its grey from white to black, which the library does not tell at 16
// bits. `read` gives that many bytes at an offset, or fewer at the file's end.
using ReadAt = std::function<std::string(std::uint64_t offset, std::size_t size)>;
[[nodiscard]] bool IsMinIsWhiteTiff(const ReadAt& read);

// Whether a TIFF begins with a whole grey or RGB picture, unlike the sensor files of cameras that share its
// form. The library takes every grey one that names its maker for one of those.
[[nodiscard]] bool HoldsOrdinaryTiff(const ReadAt& read);

// Bytes that are to be read in place of a file's own.
struct FilePatch {
  std::uint64_t offset;
  std::string bytes;
};
// What hides a TIFF's metadata from the library, which reads freed memory where both EXIF and a profile are
// there.
[[nodiscard]] std::vector<FilePatch> TiffWithoutMetadata(const ReadAt& read);

}  // namespace mirellon::imageio
