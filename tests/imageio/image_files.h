// Image files of all kinds, made in the test that needs them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <FreeImage.h>

#include "base/window_services.h"
#include "imageio/library_support.h"
#include "picture/pic_buf.h"
#include "support/temporary_folder.h"
#include "support/test_pictures.h"

namespace mirellon::test {

// Saves and unloads nothing; false when the library refuses.
[[nodiscard]] bool SaveBitmap(FREE_IMAGE_FORMAT format, const imageio::Bitmap& bitmap,
                              const std::filesystem::path& file, int flags = 0);

// Without metadata. True = failed.
[[nodiscard]] bool WritePicture(const std::filesystem::path& file, const picture::SBxPicBuf& picture);
// Empty, and a failed test, when it cannot be loaded.
[[nodiscard]] picture::PicBuf ReadPicture(std::filesystem::path file);

// The bytes from `first` up to `last` with some of them changed.
[[nodiscard]] std::string Damaged(std::string bytes, std::size_t first, std::size_t last, Random& random);

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

// Answers every question alike, and remembers what was said: "text|caption" of messages, titles of questions.
class ScriptedOwner : public base::WindowServices {
 public:
  void ShowMessage(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) override {
    said.push_back(text + L"|" + caption + (kind == base::MessageKind::kPlain ? L"" : L"|not plain"));
  }
  std::optional<std::filesystem::path> AskOpenPath(const std::wstring& title) override {
    said.push_back(title);
    return answer;
  }
  std::optional<std::filesystem::path> AskSavePath(const std::wstring& title,
                                                   const std::filesystem::path& proposal) override {
    said.push_back(title + L"|" + proposal.wstring());
    return answer;
  }
  std::vector<std::wstring> said;
  std::optional<std::filesystem::path> answer;
};

}  // namespace mirellon::test
