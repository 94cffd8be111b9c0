// Image files of all kinds, made in the test that needs them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include <FreeImage.h>

#include "imageio/library_support.h"

namespace mirellon::test {

void WriteBytes(const std::filesystem::path& file, const std::string& bytes);
[[nodiscard]] std::string ReadBytes(const std::filesystem::path& file);

// Saves and unloads nothing; false when the library refuses.
[[nodiscard]] bool SaveBitmap(FREE_IMAGE_FORMAT format, const imageio::Bitmap& bitmap,
                              const std::filesystem::path& file, int flags = 0);

// A bitmap of noise; a palette, where there is one, is a grey ramp.
[[nodiscard]] imageio::Bitmap NoiseBitmap(FREE_IMAGE_TYPE type, int width, int height, int bitsPerPixel);
// 8 bits with a colour palette, 32 bits marked as CMYK.
[[nodiscard]] imageio::Bitmap PaletteBitmap(int width, int height, int bitsPerPixel = 8);
[[nodiscard]] imageio::Bitmap CmykBitmap(int width, int height);

// A little-endian TIFF of one strip, 8 or 16 bits, grey. `photometric` 0 = minimum is white.
[[nodiscard]] std::string GreyTiff(std::uint32_t width, std::uint32_t height, int bits, int photometric,
                                   const std::string& samples);

// Files of little more than a header that claims that size.
[[nodiscard]] std::string ForgedPng(std::uint32_t width, std::uint32_t height);
[[nodiscard]] std::string ForgedBmp(std::uint32_t width, std::uint32_t height);
[[nodiscard]] std::string ForgedGif(unsigned screenSide, unsigned frameSide);
[[nodiscard]] std::string ForgedJpeg(unsigned width, unsigned height);

// Bytes of a number, least or most significant first.
[[nodiscard]] std::string Little(std::uint32_t value, int bytes);
[[nodiscard]] std::string Big(std::uint32_t value, int bytes);

}  // namespace mirellon::test
