#include "imageio/image_files.h"

#include "imageio/load_image.h"
#include "imageio/save_image.h"

namespace mirellon::test {

using imageio::Bitmap;

bool SaveBitmap(FREE_IMAGE_FORMAT format, const Bitmap& bitmap, const std::filesystem::path& file,
                int flags) {
  return bitmap != nullptr && FreeImage_Save(format, bitmap.get(), file.c_str(), flags) != FALSE;
}

bool WritePicture(const std::filesystem::path& file, const picture::SBxPicBuf& picture) {
  return imageio::WriteImageFile(picture, file, {}, 90, {.metadata = false});
}

picture::PicBuf ReadPicture(std::filesystem::path file) {
  imageio::Document document;
  imageio::LoadReport report;
  EXPECT_FALSE(imageio::LoadImageFile(document, file, true, &report)) << file << report.cause;
  return std::move(document.source);
}

std::string Damaged(std::string bytes, std::size_t first, std::size_t last, Random& random) {
  for (int i = 0; i < 6; ++i) {
    bytes[first + static_cast<std::size_t>(random.Below(static_cast<int>(last - first)))] =
        static_cast<char>(random.Below(256));
  }
  return bytes;
}

Bitmap NoiseBitmap(FREE_IMAGE_TYPE type, int width, int height, int bitsPerPixel) {
  Bitmap bitmap(FreeImage_AllocateT(type, width, height, bitsPerPixel));
  Random random(7);
  const unsigned size = FreeImage_GetPitch(bitmap.get()) * FreeImage_GetHeight(bitmap.get());
  BYTE* bits = FreeImage_GetBits(bitmap.get());
  // Below 128 in every byte: no float among them is a NaN or infinite.
  for (unsigned i = 0; i < size; ++i) bits[i] = static_cast<BYTE>(random.Below(64));
  return bitmap;
}

Bitmap PaletteBitmap(int width, int height, int bitsPerPixel) {
  Bitmap bitmap = NoiseBitmap(FIT_BITMAP, width, height, bitsPerPixel);
  RGBQUAD* palette = FreeImage_GetPalette(bitmap.get());
  for (int i = 0; i < 1 << bitsPerPixel; ++i) {
    palette[i] = {static_cast<BYTE>(i), static_cast<BYTE>(255 - i), static_cast<BYTE>(i * 7), 0};
  }
  return bitmap;
}

Bitmap CmykBitmap(int width, int height) {
  Bitmap bitmap = NoiseBitmap(FIT_BITMAP, width, height, 32);
  FreeImage_GetICCProfile(bitmap.get())->flags |= FIICC_COLOR_IS_CMYK;
  return bitmap;
}

std::string Little(std::uint32_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text.push_back(static_cast<char>((value >> (8 * i)) & 0xFFU));
  return text;
}

std::string Big(std::uint32_t value, int bytes) {
  const std::string text = Little(value, bytes);
  return {text.rbegin(), text.rend()};
}

std::string GreyTiff(std::uint32_t width, std::uint32_t height, int bits, int photometric,
                     const std::string& samples) {
  constexpr std::uint32_t kLong = 4;
  const auto entry = [](std::uint32_t tag, std::uint32_t value) {
    return Little(tag, 2) + Little(kLong, 2) + Little(1, 4) + Little(value, 4);
  };
  const auto size = static_cast<std::uint32_t>(samples.size());
  const std::string entries = entry(256, width) + entry(257, height) +
                              entry(258, static_cast<std::uint32_t>(bits)) + entry(259, 1) +
                              entry(262, static_cast<std::uint32_t>(photometric)) + entry(273, 8) +
                              entry(277, 1) + entry(278, height) + entry(279, size);
  return "II" + Little(42, 2) + Little(8 + size, 4) + samples + Little(9, 2) + entries + Little(0, 4);
}

std::string ForgedPng(std::uint32_t width, std::uint32_t height) {
  std::string head = "IHDR" + Big(width, 4) + Big(height, 4) + std::string("\x08\x02\x00\x00\x00", 5);
  const DWORD crc =
      FreeImage_ZLibCRC32(0, reinterpret_cast<BYTE*>(head.data()), static_cast<DWORD>(head.size()));
  return std::string("\x89PNG\r\n\x1A\n", 8) + Big(13, 4) + head + Big(crc, 4) + Big(0, 4) + "IDAT" +
         Big(0x35AF061E, 4);
}

std::string ForgedBmp(std::uint32_t width, std::uint32_t height) {
  return "BM" + Little(54, 4) + Little(0, 4) + Little(54, 4) + Little(40, 4) + Little(width, 4) +
         Little(height, 4) + Little(1, 2) + Little(24, 2) + std::string(24, '\0');
}

std::string ForgedGif(unsigned screenSide, unsigned frameSide) {
  return "GIF89a" + Little(screenSide, 2) + Little(screenSide, 2) + std::string("\x80\x00\x00", 3) +
         std::string(6, '\0') + std::string("!\xFE\x03---\x00", 7) + "," + Little(0, 4) +
         Little(frameSide, 2) + Little(frameSide, 2) + std::string("\x00\x02\x02\x44\x01\x00;", 7);
}

std::string ForgedJpeg(unsigned width, unsigned height) {
  return "\xFF\xD8\xFF\xC0" + Big(17, 2) + "\x08" + Big(height, 2) + Big(width, 2) +
         std::string("\x03\x01\x22\x00\x02\x11\x00\x03\x11\x00", 10) + "\xFF\xDA" + Big(12, 2) +
         std::string("\x03\x01\x00\x02\x11\x03\x11\x00\x3F\x00", 10);
}

}  // namespace mirellon::test
