#include "imageio/load_image.h"

#include <cmath>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "imageio/image_files.h"
#include "support/temporary_folder.h"
#include "support/test_pictures.h"

namespace mirellon::imageio {

namespace {

using test::ReadBytes;
using test::SaveBitmap;
using test::TemporaryFolder;
using test::WriteBytes;

struct Loaded {
  bool failed;
  LoadReport report;
  Document document;
};

Loaded Load(std::filesystem::path path) {
  Loaded loaded{};
  loaded.failed = LoadImageFile(loaded.document, path, true, &loaded.report);
  EXPECT_EQ(loaded.failed, loaded.document.source.empty());
  EXPECT_EQ(loaded.failed, loaded.report.status != LoadStatus::kLoaded);
  EXPECT_EQ(loaded.failed, !loaded.report.cause.empty());
  return loaded;
}

struct Refused {
  const char* what;
  FREE_IMAGE_FORMAT format;
  const char* name;
  Bitmap (*make)();
  int flags;
  const char* cause;  // a part of it
};

TEST(LoadImageTest, RefusesKindsThatAPictureCannotHold) {
  const std::vector<Refused> cases = {
      {"palette GIF", FIF_GIF, "p.gif", [] { return test::PaletteBitmap(9, 7); }, 0, "palette"},
      {"palette BMP", FIF_BMP, "p.bmp", [] { return test::PaletteBitmap(9, 7); }, 0, "palette"},
      {"palette PNG", FIF_PNG, "p.png", [] { return test::PaletteBitmap(9, 7); }, 0, "palette"},
      {"palette TIFF", FIF_TIFF, "p.tif", [] { return test::PaletteBitmap(9, 7); }, 0, "palette"},
      {"4 bits", FIF_PNG, "4.png", [] { return test::NoiseBitmap(FIT_BITMAP, 9, 7, 4); }, 0, "4 bits"},
      {"4 bit BMP", FIF_BMP, "4.bmp", [] { return test::PaletteBitmap(9, 7, 4); }, 0, "4 bits"},
      {"1 bit", FIF_PNG, "1.png", [] { return test::NoiseBitmap(FIT_BITMAP, 9, 7, 1); }, 0, "1 bit"},
      {"1 bit TIFF", FIF_TIFF, "1.tif", [] { return test::NoiseBitmap(FIT_BITMAP, 9, 7, 1); }, 0, "1 bit"},
      {"CMYK JPEG", FIF_JPEG, "c.jpg", [] { return test::CmykBitmap(9, 7); }, 0, "CMYK"},
      {"CMYK TIFF", FIF_TIFF, "c.tif", [] { return test::CmykBitmap(9, 7); }, TIFF_CMYK, "CMYK"},
      {"RGBA", FIF_PNG, "a.png", [] { return test::NoiseBitmap(FIT_BITMAP, 9, 7, 32); }, 0, "alpha"},
      {"RGBA BMP", FIF_BMP, "a.bmp", [] { return test::NoiseBitmap(FIT_BITMAP, 9, 7, 32); }, 0, "alpha"},
      {"deep RGBA", FIF_PNG, "A.png", [] { return test::NoiseBitmap(FIT_RGBA16, 9, 7, 64); }, 0, "alpha"},
      {"float", FIF_TIFF, "f.tif", [] { return test::NoiseBitmap(FIT_FLOAT, 9, 7, 32); }, 0, "floating"},
      {"float RGB", FIF_TIFF, "F.tif", [] { return test::NoiseBitmap(FIT_RGBF, 9, 7, 96); }, 0, "floating"},
      {"double", FIF_TIFF, "d.tif", [] { return test::NoiseBitmap(FIT_DOUBLE, 9, 7, 64); }, 0, "floating"},
      {"signed", FIF_TIFF, "s.tif", [] { return test::NoiseBitmap(FIT_INT16, 9, 7, 16); }, 0, "signed"},
  };
  const TemporaryFolder folder;
  for (const Refused& refused : cases) {
    SCOPED_TRACE(refused.what);
    ASSERT_TRUE(SaveBitmap(refused.format, refused.make(), folder / refused.name, refused.flags));
    const Loaded loaded = Load(folder / refused.name);
    EXPECT_EQ(loaded.report.status, LoadStatus::kUnsupportedKind);
    EXPECT_NE(loaded.report.cause.find(refused.cause), std::string::npos) << loaded.report.cause;
    EXPECT_EQ(loaded.report.format, FreeImage_GetFormatFromFIF(refused.format));
  }
}

TEST(LoadImageTest, TakesALinearGreyPaletteForGrey) {
  const TemporaryFolder folder;
  for (const auto& [format, name] : {std::pair{FIF_GIF, "g.gif"}, {FIF_BMP, "g.bmp"}, {FIF_PNG, "g.png"}}) {
    SCOPED_TRACE(name);
    const Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 9, 7, 8);
    ASSERT_TRUE(SaveBitmap(format, bitmap, folder / name));
    const Loaded loaded = Load(folder / name);
    ASSERT_FALSE(loaded.failed) << loaded.report.cause;
    EXPECT_EQ(loaded.document.source->components, 1);
    EXPECT_EQ(loaded.document.source->bitsPerComponent, 8);
    for (int x = 0; x < 9; ++x) {
      EXPECT_EQ(test::Sample(loaded.document.source, x, 0), FreeImage_GetScanLine(bitmap.get(), 6)[x]);
    }
  }
}

TEST(LoadImageTest, TurnsMinIsWhiteRound) {
  const TemporaryFolder folder;
  for (const int bits : {8, 16}) {
    SCOPED_TRACE(bits);
    const std::string samples =
        test::Little(10, bits / 8) + test::Little(200, bits / 8) + test::Little(0, bits / 8);
    WriteBytes(folder / "white.tif", test::GreyTiff(3, 1, bits, 0, samples));
    WriteBytes(folder / "black.tif", test::GreyTiff(3, 1, bits, 1, samples));
    const unsigned largest = bits == 8 ? 255 : 65535;
    const Loaded white = Load(folder / "white.tif");
    const Loaded black = Load(folder / "black.tif");
    ASSERT_FALSE(white.failed || black.failed) << white.report.cause << black.report.cause;
    for (int x = 0; x < 3; ++x) {
      EXPECT_EQ(test::Sample(white.document.source, x, 0),
                largest - test::Sample(black.document.source, x, 0));
    }
    EXPECT_EQ(test::Sample(black.document.source, 1, 0), 200U);
  }
}

TEST(LoadImageTest, PutsBlueFirstAtBothDepths) {
  const TemporaryFolder folder;
  Bitmap shallow(FreeImage_Allocate(2, 2, 24));
  RGBQUAD colour{30, 20, 10, 0};  // blue, green, red
  FreeImage_SetPixelColor(shallow.get(), 1, 1, &colour);
  Bitmap deep(FreeImage_AllocateT(FIT_RGB16, 2, 2));
  reinterpret_cast<FIRGB16*>(FreeImage_GetScanLine(deep.get(), 1))[1] = {1000, 2000, 3000};
  ASSERT_TRUE(SaveBitmap(FIF_PNG, shallow, folder / "8.png") &&
              SaveBitmap(FIF_TIFF, deep, folder / "16.tif"));
  for (const auto& [name, unit] : {std::pair{"8.png", 10U}, {"16.tif", 1000U}}) {
    const Loaded loaded = Load(folder / name);
    ASSERT_FALSE(loaded.failed);
    for (int c = 0; c < 3; ++c) {
      // Bitmap row 1 of 2 is the upper one.
      EXPECT_EQ(test::Sample(loaded.document.source, 1, 0, c), (3U - static_cast<unsigned>(c)) * unit)
          << name;
    }
  }
}

TEST(LoadImageTest, TellsWhatIsNoPictureFile) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "folder.jpg");
  ASSERT_EQ(mkfifo((folder / "pipe.jpg").c_str(), 0600), 0);
  WriteBytes(folder / "empty.jpg", "");
  WriteBytes(folder / "text.jpg", "There is no picture in here, only words.\n");
  WriteBytes(folder / "text.xyz", "There is no picture in here, only words.\n");
  std::filesystem::create_symlink("loop", folder / "loop");
  const std::vector<std::pair<std::filesystem::path, LoadStatus>> cases = {
      {folder / "nothing.jpg", LoadStatus::kMissing},
      {folder / "text.jpg" / "below", LoadStatus::kMissing},
      {folder / "folder.jpg", LoadStatus::kNotAFile},
      {folder / "pipe.jpg", LoadStatus::kNotAFile},
      {"/dev/null", LoadStatus::kNotAFile},
      {folder / "empty.jpg", LoadStatus::kEmpty},
      {folder / "text.jpg", LoadStatus::kDamaged},
      {folder / "text.xyz", LoadStatus::kUnknownFormat},
      {folder / std::string(300, 'n'), LoadStatus::kUnreadable},
      {folder / "loop", LoadStatus::kUnreadable},
  };
  for (const auto& [path, status] : cases) {
    const Loaded loaded = Load(path);
    EXPECT_EQ(loaded.report.status, status) << path << ": " << loaded.report.cause;
  }
  EXPECT_EQ(Load(folder / std::string(300, 'n')).report.cause, "File name too long");
}

TEST(LoadImageTest, TellsOfAFileWithoutPermission) {
  if (geteuid() == 0) GTEST_SKIP() << "the super-user may read everything";
  const TemporaryFolder folder;
  WriteBytes(folder / "secret.png", "x");
  ASSERT_EQ(chmod((folder / "secret.png").c_str(), 0), 0);
  const Loaded loaded = Load(folder / "secret.png");
  EXPECT_EQ(loaded.report.status, LoadStatus::kUnreadable);
  EXPECT_EQ(loaded.report.cause, "Permission denied");
}

TEST(LoadImageTest, GoesBySignatureThenByName) {
  const TemporaryFolder folder;
  const Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 9, 7, 24);
  ASSERT_TRUE(SaveBitmap(FIF_PNG, bitmap, folder / "png.jpg") && SaveBitmap(FIF_BMP, bitmap, folder / "bmp"));
  EXPECT_EQ(Load(folder / "png.jpg").report.format, "PNG");
  EXPECT_EQ(Load(folder / "bmp").report.format, "BMP");

  // Without a signature the name decides, and the decoder takes it from there.
  WriteBytes(folder / "unknown.png", std::string("?").append(ReadBytes(folder / "bmp")));
  const Loaded byName = Load(folder / "unknown.png");
  EXPECT_EQ(byName.report.format, "PNG");
  EXPECT_EQ(byName.report.status, LoadStatus::kDamaged);
}

TEST(LoadImageTest, LoadsUnderAnyName) {
  const TemporaryFolder folder;
  const Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 9, 7, 24);
  ASSERT_TRUE(SaveBitmap(FIF_JPEG, bitmap, folder / "plain.jpg") &&
              SaveBitmap(FIF_TIFF, bitmap, folder / "plain.tif"));
  for (const std::string name :
       {"new\nline", "\xFF\xFE bytes", "-dash", "@list", "%d%f%s", "'\"$HOME`", "\xC3\xA9t\xC3\xA9"}) {
    for (const char* extension : {".jpg", ".tif"}) {
      const std::filesystem::path path = folder / (name + extension);
      std::filesystem::copy_file(folder / (std::string("plain") + extension), path);
      EXPECT_FALSE(Load(path).failed) << name;
    }
  }
}

TEST(LoadImageTest, RefusesForgedSizesAtOnce) {
  const TemporaryFolder folder;
  const std::string row(100, '\0');
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"f.png", test::ForgedPng(60000, 60000)},
      {"f.bmp", test::ForgedBmp(60000, 60000)},
      {"f.tif", test::GreyTiff(60000, 60000, 8, 1, row)},
      {"g.tif", test::GreyTiff(60000, 60000, 16, 1, row)},
      {"f.jpg", test::ForgedJpeg(60000, 60000)},
      {"f.gif", test::ForgedGif(60000, 60000)},
      {"g.gif", test::ForgedGif(10, 60000)},
      {"w.bmp", test::ForgedBmp(0x7FFFFFFF, 0x7FFFFFFF)},
  };
  rusage before{};
  getrusage(RUSAGE_SELF, &before);
  for (const auto& [name, bytes] : cases) {
    WriteBytes(folder / name, bytes);
    const Loaded loaded = Load(folder / name);
    EXPECT_TRUE(loaded.failed) << name;
    if (name != "w.bmp") {
      EXPECT_EQ(loaded.report.status, LoadStatus::kTooLarge) << name << ": " << loaded.report.cause;
      EXPECT_EQ(loaded.report.cause, "60000x60000 pixels are more than a picture can hold") << name;
    }
  }
  WriteBytes(folder / "mostly.bmp", test::ForgedBmp(20000, 30000) + row);
  EXPECT_EQ(Load(folder / "mostly.bmp").report.status, LoadStatus::kDamaged);
  rusage after{};
  getrusage(RUSAGE_SELF, &after);
  EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 200 * 1024) << "KiB more memory in use";
}

TEST(LoadImageTest, TruncatedFilesFailOrWarn) {
  const TemporaryFolder folder;
  const Bitmap grey = test::NoiseBitmap(FIT_BITMAP, 64, 64, 8);
  const Bitmap colour = test::NoiseBitmap(FIT_BITMAP, 64, 64, 24);
  struct Case {
    FREE_IMAGE_FORMAT format;
    const Bitmap& bitmap;
    bool loads;
  };
  const std::vector<Case> cases = {{FIF_JPEG, colour, true},
                                   {FIF_BMP, colour, true},
                                   {FIF_PNG, colour, false},
                                   {FIF_TIFF, colour, false},
                                   {FIF_GIF, grey, false}};
  for (const Case& c : cases) {
    const std::string name = std::string("t.") + FreeImage_GetFormatFromFIF(c.format);
    SCOPED_TRACE(name);
    ASSERT_TRUE(SaveBitmap(c.format, c.bitmap, folder / name));
    EXPECT_EQ(Load(folder / name).report.warning, "");
    const std::string bytes = ReadBytes(folder / name);
    WriteBytes(folder / name, bytes.substr(0, bytes.size() * 6 / 10));
    const Loaded loaded = Load(folder / name);
    EXPECT_EQ(loaded.failed, !c.loads) << loaded.report.cause;
    if (c.loads) {
      EXPECT_EQ(loaded.report.warning, "the file ends too early; a part of the picture is missing");
    } else {
      EXPECT_EQ(loaded.report.status, LoadStatus::kDamaged);
    }
  }
}

TEST(LoadImageTest, ThreadsHearOnlyTheirOwnComplaints) {
  const TemporaryFolder folder;
  ASSERT_TRUE(SaveBitmap(FIF_JPEG, test::NoiseBitmap(FIT_BITMAP, 64, 64, 24), folder / "whole.jpg"));
  const std::string bytes = ReadBytes(folder / "whole.jpg");
  WriteBytes(folder / "cut.jpg", bytes.substr(0, bytes.size() / 2));
  std::vector<std::jthread> threads;
  threads.reserve(4);
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&folder, cut = thread % 2 == 1] {
      for (int i = 0; i < 25; ++i) {
        const Loaded loaded = Load(folder / (cut ? "cut.jpg" : "whole.jpg"));
        EXPECT_FALSE(loaded.failed);
        EXPECT_EQ(loaded.report.warning.empty(), !cut);
      }
    });
  }
}

class Owner : public base::WindowServices {
 public:
  void ShowMessage(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) override {
    EXPECT_EQ(kind, base::MessageKind::kPlain);
    messages.push_back(text + L"|" + caption);
  }
  std::optional<std::filesystem::path> AskOpenPath(const std::wstring& title) override {
    EXPECT_EQ(title, L"Open...");
    return answer;
  }
  std::optional<std::filesystem::path> AskSavePath(const std::wstring& /*title*/,
                                                   const std::filesystem::path& /*proposal*/) override {
    ADD_FAILURE();
    return {};
  }
  std::vector<std::wstring> messages;
  std::optional<std::filesystem::path> answer;
};

TEST(LoadImageTest, AsksWhenNoPathIsGivenAndKeepsTheDocumentOnFailure) {
  const TemporaryFolder folder;
  const std::filesystem::path good = folder / "good.png";
  const std::filesystem::path bad = folder / "bad.png";
  ASSERT_TRUE(SaveBitmap(FIF_PNG, test::NoiseBitmap(FIT_BITMAP, 9, 7, 24), good));
  ASSERT_TRUE(SaveBitmap(FIF_PNG, test::PaletteBitmap(9, 7), bad));
  Owner owner;
  Document document;
  document.owner = &owner;
  std::filesystem::path path;
  LoadReport report;
  EXPECT_TRUE(LoadImageFile(document, path, false, &report));
  EXPECT_EQ(report.status, LoadStatus::kCancelled);
  EXPECT_TRUE(owner.messages.empty());

  owner.answer = good;
  EXPECT_FALSE(LoadImageFile(document, path, false));
  EXPECT_EQ(path, good);
  EXPECT_EQ(document.currentPath, good);

  document.exif.make = L"kept";
  EXPECT_TRUE(LoadImageFile(document, path = bad, true));
  EXPECT_TRUE(owner.messages.empty());
  EXPECT_TRUE(LoadImageFile(document, path = bad, false));
  EXPECT_EQ(owner.messages, std::vector<std::wstring>{L"Image format not supported!|"});
  EXPECT_EQ(document.currentPath, good);
  EXPECT_EQ(document.exif.make, L"kept");
  EXPECT_EQ(document.source->width, 9);
}

class DamagedFileTest : public testing::TestWithParam<FREE_IMAGE_FORMAT> {};

// Damaged files are refused or loaded, never fatal.
TEST_P(DamagedFileTest, Survives) {
  const TemporaryFolder folder;
  test::Random random(11);
  const Bitmap bitmap = test::NoiseBitmap(FIT_BITMAP, 40, 30, GetParam() == FIF_GIF ? 8 : 24);
  std::string profile(200, 'p');
  if (GetParam() == FIF_TIFF) {
    FreeImage_CreateICCProfile(bitmap.get(), profile.data(), static_cast<long>(profile.size()));
  }
  ASSERT_TRUE(SaveBitmap(GetParam(), bitmap, folder / "m"));
  const std::string bytes = ReadBytes(folder / "m");
  for (int i = 0; i < 60; ++i) {
    std::string damaged = bytes;
    for (int flips = 0; flips < 6; ++flips) {
      const bool head = random.Below(2) == 0;
      const int place = random.Below(head ? 64 : static_cast<int>(bytes.size()));
      damaged[static_cast<std::size_t>(place)] = static_cast<char>(random.Below(256));
    }
    WriteBytes(folder / "m", damaged);
    Document document;
    std::filesystem::path path = folder / "m";
    const bool failed = LoadImageFile(document, path, true);
    EXPECT_EQ(failed, document.source.empty());
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, DamagedFileTest,
                         testing::Values(FIF_JPEG, FIF_PNG, FIF_TIFF, FIF_BMP, FIF_GIF),
                         [](const auto& format) {
                           return std::string(FreeImage_GetFormatFromFIF(format.param));
                         });

}  // namespace

}  // namespace mirellon::imageio
