#include "imageio/file_headers.h"

#include <algorithm>
#include <array>
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

constexpr std::uint32_t kEndOfImage = 0xD9;
constexpr std::uint32_t kStartOfScan = 0xDA;

// Markers that stand alone, without a length.
bool IsBareMarker(std::uint32_t marker) {
  return marker == 0x00 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

// Those of all coding processes; the three left out are tables.
bool IsFrameMarker(std::uint32_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool IsJpegMetadata(std::uint32_t marker, std::string_view content) {
  if (marker == 0xE0) return content.substr(0, 4) != "JFIF";
  if (marker == 0xEE) return content.substr(0, 5) != "Adobe";
  return marker == 0xFE || (marker >= 0xE1 && marker <= 0xEF);
}

// One step through a JPEG.
struct JpegSegment {
  std::size_t start;         // of what comes before the marker
  std::size_t marker;        // of its first FF, fill bytes included
  std::size_t code;          // of its code
  std::size_t end;           // one past the segment
  std::uint32_t value;       // the code
  std::string_view content;  // after the length; empty for a bare marker
};

// The segment that follows `at`; nothing at the end, by rights or by damage. As the decoder does, whatever
// stands before a marker is passed over (a scan's data, in which only bare markers occur, too), and a length
// that is too small to count itself is taken for no content.
std::optional<JpegSegment> NextSegment(std::string_view file, std::size_t at) {
  const std::size_t marker = file.find('\xFF', at);
  const std::size_t code = file.find_first_not_of('\xFF', marker);
  if (marker == std::string_view::npos || code == std::string_view::npos) return {};
  const std::uint32_t value = Byte(file, code);
  if (IsBareMarker(value)) return JpegSegment{at, marker, code, code + 1, value, {}};
  if (value == kEndOfImage || code + 3 > file.size()) return {};
  const std::size_t length = std::max<std::size_t>(Big16(file, code + 1), 2);
  const std::size_t end = std::min(file.size(), code + 1 + length);
  return JpegSegment{at, marker, code, end, value, file.substr(code + 3, end - code - 3)};
}

// One entry of a TIFF's directory.
struct TiffEntry {
  std::uint64_t tag;
  std::uint64_t typeAt;  // where in the file its two-byte type stands
  std::uint64_t value;   // the first number, when it is stored in place as 16 or 32 bits
};

// The first directory of a TIFF, in its own byte order and, in the large form, with 64-bit offsets.
class TiffDirectory {
 public:
  explicit TiffDirectory(const ReadAt& read) {
    constexpr std::uint64_t kMostEntries = 4096;  // what the decoder takes
    const std::string head = read(0, 16);
    little_ = head.substr(0, 2) == "II";
    const std::uint64_t version = head.size() == 16 ? Number(head, 2, 2) : 0;
    if ((!little_ && head.substr(0, 2) != "MM") || (version != 42 && version != 43)) return;
    const bool large = version == 43;
    const std::size_t countSize = large ? 8 : 2;
    const std::size_t entrySize = large ? 20 : 12;
    const std::uint64_t start = large ? Number(head, 8, 8) : Number(head, 4, 4);
    const std::string count = read(start, countSize);
    if (count.size() < countSize) return;
    const std::uint64_t announced = std::min(Number(count, 0, countSize), kMostEntries);
    const std::string table = read(start + countSize, announced * entrySize);
    for (std::size_t at = 0; at + entrySize <= table.size(); at += entrySize) {
      constexpr std::uint64_t kLong = 4;
      const std::size_t valueSize = Number(table, at + 2, 2) == kLong ? 4 : 2;
      entries_.push_back({Number(table, at, 2), start + countSize + at + 2,
                          Number(table, at + (large ? 12 : 8), valueSize)});
    }
  }

  [[nodiscard]] const std::vector<TiffEntry>& entries() const { return entries_; }
  [[nodiscard]] std::optional<std::uint64_t> ValueOf(std::uint64_t tag) const {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [tag](const TiffEntry& entry) { return entry.tag == tag; });
    return found == entries_.end() ? std::nullopt : std::optional(found->value);
  }
  // A number as the file would hold it.
  [[nodiscard]] std::string Bytes16(std::uint32_t number) const {
    const char low = static_cast<char>(number & 0xFFU);
    const char high = static_cast<char>(number >> 8U);
    return little_ ? std::string{low, high} : std::string{high, low};
  }

 private:
  [[nodiscard]] std::uint64_t Number(std::string_view text, std::size_t at, std::size_t size) const {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
      number = (number << 8U) | Byte(text, little_ ? at + size - 1 - i : at + i);
    }
    return number;
  }

  bool little_ = false;
  std::vector<TiffEntry> entries_;
};

constexpr std::uint64_t kPhotometricTag = 262;

// Tags that lead to EXIF, GPS, sub-images, XMP, IPTC, Photoshop resources and the ICC profile.
bool IsTiffMetadata(std::uint64_t tag) {
  constexpr std::array<std::uint64_t, 7> kTags = {330, 700, 33723, 34377, 34665, 34675, 34853};
  return std::find(kTags.begin(), kTags.end(), tag) != kTags.end();
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

std::optional<JpegFrame> ReadJpegFrame(std::string_view file) {
  for (auto segment = NextSegment(file, 0); segment && segment->value != kStartOfScan;
       segment = NextSegment(file, segment->end)) {
    if (!IsFrameMarker(segment->value) || segment->content.size() < 6) continue;
    const std::string_view frame = segment->content;
    return JpegFrame{{Big16(frame, 3), Big16(frame, 1)}, Byte(frame, 5)};
  }
  return {};
}

std::string WithoutJpegMetadata(std::string_view file) {
  std::string kept;
  kept.reserve(file.size());
  std::size_t at = 0;
  bool scanned = false;
  while (const auto segment = NextSegment(file, at)) {
    at = segment->end;
    scanned |= segment->value == kStartOfScan;
    // Stray bytes before a marker stay: the decoder is to complain of them.
    const bool gone = IsJpegMetadata(segment->value, segment->content);
    kept.append(file.substr(segment->start, (gone ? segment->marker : at) - segment->start));
    // Between and within scans the decoder is to see that there was a marker: an empty comment.
    if (gone && scanned) kept.append("\xFF\xFE\0\2", 4);
  }
  return kept.append(file.substr(std::min(at, file.size())));
}

bool IsMinIsWhiteTiff(const ReadAt& read) {
  return TiffDirectory(read).ValueOf(kPhotometricTag) == 0;
}

bool HoldsOrdinaryTiff(const ReadAt& read) {
  constexpr std::uint64_t kSubfileTypeTag = 254;
  constexpr std::uint64_t kReduced = 1;
  constexpr std::uint64_t kRgb = 2;  // greys are 0 and 1
  const TiffDirectory directory(read);
  const auto photometric = directory.ValueOf(kPhotometricTag);
  return photometric && *photometric <= kRgb &&
         (directory.ValueOf(kSubfileTypeTag).value_or(0) & kReduced) == 0;
}

std::vector<FilePatch> TiffWithoutMetadata(const ReadAt& read) {
  // None of the tags may be of that type, so the decoder passes them over.
  constexpr std::uint32_t kFloat = 11;
  const TiffDirectory directory(read);
  std::vector<FilePatch> patches;
  for (const TiffEntry& entry : directory.entries()) {
    if (IsTiffMetadata(entry.tag)) patches.push_back({entry.typeAt, directory.Bytes16(kFloat)});
  }
  return patches;
}

}  // namespace mirellon::imageio
