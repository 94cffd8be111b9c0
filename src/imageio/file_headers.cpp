#include "imageio/file_headers.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace mirellon::imageio {

namespace {

std::uint32_t Byte(std::string_view text, std::size_t at) {
  return static_cast<std::uint8_t>(text[at]);
}
std::uint32_t Little16(std::string_view text, std::size_t at) {
  return Byte(text, at) | (Byte(text, at + 1) << 8U);
}
std::uint32_t Little32(std::string_view text, std::size_t at) {
  return Little16(text, at) | (Little16(text, at + 2) << 16U);
}
std::uint32_t Big16(std::string_view text, std::size_t at) {
  return (Byte(text, at) << 8U) | Byte(text, at + 1);
}

// Bytes of a colour table by the flags that announce it.
std::size_t GifTableSize(std::uint32_t flags) {
  return (flags & 0x80U) != 0 ? std::size_t{3} << ((flags & 7U) + 1) : 0;
}

// Past an extension: its two-byte head, then blocks with a length each, ended by an empty one.
std::size_t SkipGifExtension(std::string_view head, std::size_t at) {
  at += 2;
  while (at < head.size() && Byte(head, at) != 0) at += 1 + Byte(head, at);
  return at + 1;
}

constexpr std::uint32_t kStartOfScan = 0xDA;

// Markers that stand alone, without a length.
bool IsBareMarker(std::uint32_t marker) {
  return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

bool IsJpegMetadata(std::uint32_t marker, std::string_view segment) {
  if (marker == 0xE0) return segment.substr(4, 4) != "JFIF";
  if (marker == 0xEE) return segment.substr(4, 5) != "Adobe";
  return marker == 0xFE || (marker >= 0xE1 && marker <= 0xEF);
}

}  // namespace

std::optional<HeaderSize> ReadGifSize(std::string_view head) {
  if (head.size() < 13 || (head.substr(0, 6) != "GIF87a" && head.substr(0, 6) != "GIF89a")) return {};
  HeaderSize size{Little16(head, 6), Little16(head, 8)};
  std::size_t at = 13 + GifTableSize(Byte(head, 10));
  while (at < head.size() && head[at] == '!') at = SkipGifExtension(head, at);
  if (at + 10 <= head.size() && head[at] == ',') {
    size.width = std::max(size.width, Little16(head, at + 5));
    size.height = std::max(size.height, Little16(head, at + 7));
  }
  return size;
}

std::optional<std::uint64_t> NeededBmpSize(std::string_view head) {
  if (head.size() < 54 || head.substr(0, 2) != "BM" || Little32(head, 14) < 40) return {};
  constexpr std::uint32_t kPlain = 0;
  if (Little32(head, 30) != kPlain) return {};
  const auto width = static_cast<std::int32_t>(Little32(head, 18));
  const auto signedHeight = static_cast<std::int32_t>(Little32(head, 22));  // below 0: top row first
  if (width < 1) return {};
  const auto height = static_cast<std::uint64_t>(std::abs(static_cast<std::int64_t>(signedHeight)));
  const std::uint64_t rowBits = static_cast<std::uint64_t>(width) * Little16(head, 28);
  return Little32(head, 10) + (rowBits + 31) / 32 * 4 * height;
}

std::string WithoutJpegMetadata(std::string_view file) {
  std::string kept;
  kept.reserve(file.size());
  std::size_t at = 0;
  while (at < file.size()) {
    // As the decoder does: whatever stands before the next marker is passed over, but not hidden from it.
    const std::size_t marker = file.find('\xFF', at);
    const std::size_t code = file.find_first_not_of('\xFF', marker);
    if (marker == std::string_view::npos || code == std::string_view::npos) break;
    kept.append(file.substr(at, code - at));
    at = code + 1;
    const std::uint32_t value = Byte(file, code);
    if (value == 0 || IsBareMarker(value)) {
      kept.push_back(file[code]);
      continue;
    }
    const std::size_t length = at + 2 <= file.size() ? Big16(file, at) : 0;
    if (value == kStartOfScan || length < 2) {
      at = code;
      break;
    }
    const std::string_view segment = file.substr(code - 1, 2 + length);
    at += length;
    if (IsJpegMetadata(value, segment)) {
      kept.resize(kept.size() - (code - marker));  // with the fill bytes that announced it
    } else {
      kept.append(segment.substr(1));
    }
  }
  if (at < file.size()) kept.append(file.substr(at));
  return kept;
}

}  // namespace mirellon::imageio
