#include "imageio/load_image.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "imageio/image_files.h"

namespace mirellon::imageio {

struct Loaded {
  LoadReport report;
  Document document;
};

Loaded Load(std::filesystem::path path) {
  Loaded loaded{};
  const bool failed = LoadImageFile(loaded.document, path, true, &loaded.report);
  EXPECT_EQ(failed, loaded.document.source.empty());
  EXPECT_EQ(failed, loaded.report.status != LoadStatus::kLoaded);
  EXPECT_EQ(failed, !loaded.report.cause.empty());
  return loaded;
}

TEST(LoadImageTest, RefusesKindsThatAPictureCannotHold) {
  const struct {
    const char* name;
    char make;  // of Noise, a Palette, CMYK
    FREE_IMAGE_TYPE type;
    int bits;
    const char* cause;  // a part of it
  } cases[] = {{"p.gif", 'P', FIT_BITMAP, 8, "palette"}, {"p.bmp", 'P', FIT_BITMAP, 8, "palette"},
               {"p.png", 'P', FIT_BITMAP, 8, "palette"}, {"p.tif", 'P', FIT_BITMAP, 8, "palette"},
               {"4.png", 'N', FIT_BITMAP, 4, "4 bits"},  {"4.bmp", 'P', FIT_BITMAP, 4, "4 bits"},
               {"1.png", 'N', FIT_BITMAP, 1, "1 bit"},   {"1.tif", 'N', FIT_BITMAP, 1, "1 bit"},
               {"c.jpg", 'C', FIT_BITMAP, 32, "CMYK"},   {"c.tif", 'C', FIT_BITMAP, 32, "CMYK"},
               {"a.png", 'N', FIT_BITMAP, 32, "alpha"},  {"a.bmp", 'N', FIT_BITMAP, 32, "alpha"},
               {"A.png", 'N', FIT_RGBA16, 64, "alpha"},  {"f.tif", 'N', FIT_FLOAT, 32, "floating"},
               {"F.tif", 'N', FIT_RGBF, 96, "floating"}, {"d.tif", 'N', FIT_DOUBLE, 64, "floating"},
               {"s.tif", 'N', FIT_INT16, 16, "signed"}};
  const test::TemporaryFolder folder;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const FREE_IMAGE_FORMAT format = FreeImage_GetFIFFromFilename(c.name);
    const Bitmap bitmap = c.make == 'P'   ? test::PaletteBitmap(9, 7, c.bits)
                          : c.make == 'C' ? test::CmykBitmap(9, 7)
                                          : test::NoiseBitmap(c.type, 9, 7, c.bits);
    ASSERT_TRUE(test::SaveBitmap(format, bitmap, folder / c.name, c.make == 'C' ? TIFF_CMYK : 0));
    const Loaded loaded = Load(folder / c.name);
    EXPECT_EQ(loaded.report.status, LoadStatus::kUnsupportedKind);
    EXPECT_NE(loaded.report.cause.find(c.cause), std::string::npos) << loaded.report.cause;
    EXPECT_EQ(loaded.report.format, FreeImage_GetFormatFromFIF(format));
  }
}

TEST(LoadImageTest, TakesALinearGreyPaletteForGrey) {
  const test::TemporaryFolder folder;
  const Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 9, 7, 8);
  for (const auto& [format, name] : {std::pair{FIF_GIF, "g.gif"}, {FIF_BMP, "g.bmp"}, {FIF_PNG, "g.png"}}) {
    ASSERT_TRUE(test::SaveBitmap(format, bitmap, folder / name));
    const Loaded loaded = Load(folder / name);
    ASSERT_EQ(loaded.report.cause, "") << name;
    EXPECT_TRUE(test::SamePicture(loaded.document.source, ConvertBitmap(bitmap.get())));
  }
}

TEST(LoadImageTest, TurnsMinIsWhiteRound) {
  const test::TemporaryFolder folder;
  for (const int bits : {8, 16}) {
    for (const int photometric : {0, 1}) {
      test::WriteBytes(folder / "g.tif", test::GreyTiff(1, 1, bits, photometric, test::Little(10, bits / 8)));
      const Loaded loaded = Load(folder / "g.tif");
      ASSERT_EQ(loaded.report.cause, "");
      const unsigned white = bits == 8 ? 255 : 65535;
      EXPECT_EQ(test::Sample(loaded.document.source, 0, 0), photometric == 1 ? 10 : white - 10) << bits;
    }
  }
}

TEST(LoadImageTest, PutsBlueFirstAtBothDepths) {
  const test::TemporaryFolder folder;
  Bitmap shallow(FreeImage_Allocate(2, 2, 24));
  RGBQUAD colour{30, 20, 10, 0};  // blue, green, red
  FreeImage_SetPixelColor(shallow.get(), 1, 1, &colour);
  Bitmap deep(FreeImage_AllocateT(FIT_RGB16, 2, 2));
  reinterpret_cast<FIRGB16*>(FreeImage_GetScanLine(deep.get(), 1))[1] = {1000, 2000, 3000};
  ASSERT_TRUE(test::SaveBitmap(FIF_PNG, shallow, folder / "8.png") &&
              test::SaveBitmap(FIF_TIFF, deep, folder / "16.tif"));
  for (const auto& [name, unit] : {std::pair{"8.png", 10U}, {"16.tif", 1000U}}) {
    const Loaded loaded = Load(folder / name);
    ASSERT_EQ(loaded.report.cause, "");
    for (unsigned c = 0; c < 3; ++c) {
      // Bitmap row 1 of 2 is the upper one.
      EXPECT_EQ(test::Sample(loaded.document.source, 1, 0, static_cast<int>(c)), (3 - c) * unit) << name;
    }
  }
}

TEST(LoadImageTest, TellsWhatIsNoPictureFile) {
  const test::TemporaryFolder folder;
  std::filesystem::create_directory(folder / "folder.jpg");
  ASSERT_EQ(mkfifo((folder / "pipe.jpg").c_str(), 0600), 0);
  test::WriteBytes(folder / "empty.jpg", "");
  test::WriteBytes(folder / "text.jpg", "There is no picture in here, only words.\n");
  test::WriteBytes(folder / "text.xyz", "There is no picture in here, only words.\n");
  test::WriteBytes(folder / "secret.png", "x");
  ASSERT_EQ(chmod((folder / "secret.png").c_str(), 0), 0);
  std::filesystem::create_symlink("loop", folder / "loop");
  using enum LoadStatus;
  std::vector<std::pair<std::string, LoadStatus>> cases = {
      {"nothing.jpg", kMissing},    {"text.jpg/below", kMissing},
      {"folder.jpg", kNotAFile},    {"pipe.jpg", kNotAFile},
      {"empty.jpg", kEmpty},        {"text.jpg", kDamaged},
      {"text.xyz", kUnknownFormat}, {std::string(300, 'n'), kUnreadable},
      {"loop", kUnreadable}};
  // The super-user may read everything.
  if (geteuid() != 0) cases.emplace_back("secret.png", kUnreadable);
  for (const auto& [name, status] : cases) {
    const Loaded loaded = Load(folder / name);
    EXPECT_EQ(loaded.report.status, status) << name << ": " << loaded.report.cause;
  }
  EXPECT_EQ(Load("/dev/null").report.status, kNotAFile);
  EXPECT_EQ(Load(folder / std::string(300, 'n')).report.cause, "File name too long");
}

TEST(LoadImageTest, GoesBySignatureThenByName) {
  const test::TemporaryFolder folder;
  const Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 9, 7, 24);
  ASSERT_TRUE(test::SaveBitmap(FIF_PNG, bitmap, folder / "png.jpg"));
  EXPECT_EQ(Load(folder / "png.jpg").report.format, "PNG");
  // Without a signature the name decides, and the decoder takes it from there.
  test::WriteBytes(folder / "unknown.png", "no signature");
  const Loaded byName = Load(folder / "unknown.png");
  EXPECT_EQ(byName.report.format, "PNG");
  EXPECT_EQ(byName.report.status, LoadStatus::kDamaged);
}

TEST(LoadImageTest, RefusesForgedSizesAtOnce) {
  const test::TemporaryFolder folder;
  const std::string row(100, '\0');
  const std::vector<std::pair<std::string, LoadStatus>> cases = {
      {test::ForgedPng(60000, 60000), LoadStatus::kTooLarge},
      {test::ForgedBmp(60000, 60000), LoadStatus::kTooLarge},
      {test::GreyTiff(60000, 60000, 8, 1, row), LoadStatus::kTooLarge},
      {test::ForgedBmp(0, 72), LoadStatus::kDamaged},
      {test::ForgedJpeg(60000, 60000), LoadStatus::kTooLarge},
      {test::ForgedGif(60000, 60000), LoadStatus::kTooLarge},
      {test::ForgedGif(10, 60000), LoadStatus::kTooLarge},
      {test::ForgedBmp(0x7FFFFFFF, 0x7FFFFFFF), LoadStatus::kTooLarge},
      {test::ForgedBmp(20000, 30000) + row, LoadStatus::kDamaged}};
  rusage before{};
  getrusage(RUSAGE_SELF, &before);
  for (const auto& [bytes, status] : cases) {
    test::WriteBytes(folder / "forged", bytes);
    const LoadReport report = Load(folder / "forged").report;
    EXPECT_EQ(report.status, status) << report.format << ": " << report.cause;
    const bool told = report.cause.ends_with(" pixels are more than a picture can hold");
    EXPECT_EQ(told, status == LoadStatus::kTooLarge) << report.cause;
  }
  rusage after{};
  getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 200 * 1024) << "KiB more memory in use";
}

TEST(LoadImageTest, TruncatedFilesFailOrWarn) {
  const test::TemporaryFolder folder;
  for (const auto& [format, loads] :
       {std::pair{FIF_JPEG, true}, {FIF_BMP, true}, {FIF_PNG, false}, {FIF_TIFF, false}, {FIF_GIF, false}}) {
    SCOPED_TRACE(FreeImage_GetFormatFromFIF(format));
    const Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 64, 64, format == FIF_GIF ? 8 : 24);
    ASSERT_TRUE(test::SaveBitmap(format, bitmap, folder / "t"));
    EXPECT_EQ(Load(folder / "t").report.warning, "");
    const std::string bytes = test::ReadBytes(folder / "t");
    test::WriteBytes(folder / "t", bytes.substr(0, bytes.size() * 6 / 10));
    const LoadReport report = Load(folder / "t").report;
    EXPECT_EQ(report.status, loads ? LoadStatus::kLoaded : LoadStatus::kDamaged) << report.cause;
    EXPECT_EQ(report.warning, loads ? "the file ends too early; a part of the picture is missing" : "");
  }
}

TEST(LoadImageTest, ThreadsHearOnlyTheirOwnComplaints) {
  const test::TemporaryFolder folder;
  ASSERT_TRUE(test::SaveBitmap(FIF_JPEG, test::NoiseBitmap(FIT_BITMAP, 64, 64, 24), folder / "whole.jpg"));
  const std::string bytes = test::ReadBytes(folder / "whole.jpg");
  test::WriteBytes(folder / "cut.jpg", bytes.substr(0, bytes.size() / 2));
  const auto load = [&folder](const char* name, bool cut) {
    for (int i = 0; i < 25; ++i) EXPECT_EQ(Load(folder / name).report.warning.empty(), !cut);
  };
  const std::jthread whole(load, "whole.jpg", false);
  const std::jthread cut(load, "cut.jpg", true);
}

TEST(LoadImageTest, AsksWhenNoPathIsGivenAndKeepsTheDocumentOnFailure) {
  const test::TemporaryFolder folder;
  const std::filesystem::path good = folder / "good.png";
  const std::filesystem::path bad = folder / "bad.png";
  ASSERT_TRUE(test::SaveBitmap(FIF_PNG, test::NoiseBitmap(FIT_BITMAP, 9, 7, 24), good));
  ASSERT_TRUE(test::SaveBitmap(FIF_PNG, test::PaletteBitmap(9, 7), bad));
  test::ScriptedOwner owner;
  Document document;
  document.owner = &owner;
  std::filesystem::path path;
  LoadReport report;
  EXPECT_TRUE(LoadImageFile(document, path, false, &report));
  EXPECT_EQ(report.status, LoadStatus::kCancelled);
  owner.answer = good;
  EXPECT_FALSE(LoadImageFile(document, path, false));
  EXPECT_TRUE(path == good && document.currentPath == good);

  document.exif.make = L"kept";
  EXPECT_TRUE(LoadImageFile(document, path = bad, true));
  EXPECT_TRUE(LoadImageFile(document, path = bad, false));
  EXPECT_EQ(owner.said, (std::vector<std::wstring>{L"Open...", L"Open...", L"Image format not supported!|"}));
  EXPECT_EQ(document.currentPath, good);
  EXPECT_TRUE(document.exif.make == L"kept" && !document.source.empty());
}

// Damaged files are refused or loaded, never fatal.
TEST(LoadImageTest, SurvivesDamagedFiles) {
  const test::TemporaryFolder folder;
  test::Random random(11);
  std::string profile(200, 'p');
  for (const FREE_IMAGE_FORMAT format : {FIF_JPEG, FIF_PNG, FIF_TIFF, FIF_BMP, FIF_GIF}) {
    const Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 40, 30, format == FIF_GIF ? 8 : 24);
    if (format == FIF_TIFF) FreeImage_CreateICCProfile(bitmap.get(), profile.data(), 200);
    ASSERT_TRUE(test::SaveBitmap(format, bitmap, folder / "m"));
    const std::string bytes = test::ReadBytes(folder / "m");
    for (int i = 0; i < 60; ++i) {
      const std::size_t last = random.Below(2) == 0 ? 64 : bytes.size();
      test::WriteBytes(folder / "m", test::Damaged(bytes, 0, last, random));
      (void)Load(folder / "m");
    }
  }
}

}  // namespace mirellon::imageio
