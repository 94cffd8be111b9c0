#include "ui/model/colour_transform.h"

#include <array>
#include <cmath>

#include <lcms2.h>

#include "support/test_pictures.h"
#include "ui/model/display_picture.h"

namespace mirellon::ui {
namespace {

using picture::PicBuf;

std::string BytesOf(cmsHPROFILE profile) {
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  std::string bytes(size, '\0');
  EXPECT_NE(cmsSaveProfileToMem(profile, bytes.data(), &size), 0);
  cmsCloseProfile(profile);
  return bytes;
}

// A wider green than sRGB's; the rest is sRGB's but for the gamma.
std::string WideProfile(double gamma) {
  const cmsCIExyY white = {0.3127, 0.3290, 1.0};
  const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1.0}, {0.21, 0.71, 1.0}, {0.15, 0.06, 1.0}};
  cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
  cmsToneCurve* curves[] = {curve, curve, curve};
  std::string bytes = BytesOf(cmsCreateRGBProfile(&white, &primaries, curves));
  cmsFreeToneCurve(curve);
  return bytes;
}

std::string GreyProfile(double gamma) {
  cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
  std::string bytes = BytesOf(cmsCreateGrayProfile(cmsD50_xyY(), curve));
  cmsFreeToneCurve(curve);
  return bytes;
}

std::string SrgbProfile() {
  return BytesOf(cmsCreate_sRGBProfile());
}

double Encoded(double linear) {
  const double held = std::min(std::max(linear, 0.0), 1.0);
  return 255.0 * (held <= 0.0031308 ? 12.92 * held : 1.055 * std::pow(held, 1.0 / 2.4) - 0.055);
}

// What the wide profile's samples (0 to 1) are in sRGB, by the two spaces' published matrices to and from
// XYZ.
std::array<double, 3> WideInSrgb(double red, double green, double blue, double gamma) {
  const double r = std::pow(red, gamma);
  const double g = std::pow(green, gamma);
  const double b = std::pow(blue, gamma);
  const double x = 0.57667 * r + 0.18556 * g + 0.18823 * b;
  const double y = 0.29734 * r + 0.62736 * g + 0.07529 * b;
  const double z = 0.02703 * r + 0.07069 * g + 0.99134 * b;
  return {Encoded(0.05563 * x - 0.20398 * y + 1.05697 * z), Encoded(-0.96924 * x + 1.87597 * y + 0.04156 * z),
          Encoded(3.24045 * x - 1.53714 * y - 0.49853 * z)};  // blue first
}

// Single samples: linear ones of 8 bits are steep near black, and the library rounds them to its tables;
// those of 16 bits are rounded to 8 once more, which counts where a colour lies at the edge of the screen's
// range.
double Tolerance(int bits, double gamma) {
  if (bits == 8) return gamma == 1.0 ? 3.0 : 1.5;
  return 8.0;
}

PicBuf Shown(const PicBuf& picture, const std::string& profile, const ViewColours& colours = {}) {
  const ColourChoice choice =
      MakeColourTransform(profile, picture->components, picture->bitsPerComponent, colours);
  const SharedDisplay display = MakeDisplay(picture, {choice.transform, Orientation::kUpright});
  return test::CopyOf(display->level(0));
}

TEST(ColourTransformTest, ShowsColoursAsTheFormulasSay) {
  for (const int bits : {8, 16}) {
    for (const double gamma : {2.2, 1.0}) {
      const double top = bits == 8 ? 255.0 : 65535.0;
      const PicBuf picture = test::RandomPicture(60, 50, 3, bits, 8);
      const PicBuf shown = Shown(picture, WideProfile(gamma));
      double sum = 0.0;
      for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 60; ++x) {
          const std::array<double, 3> wanted =
              WideInSrgb(test::Sample(picture, x, y, 2) / top, test::Sample(picture, x, y, 1) / top,
                         test::Sample(picture, x, y, 0) / top, gamma);
          for (int c = 0; c < 3; ++c) {
            sum += std::abs(test::Sample(shown, x, y, c) - wanted[static_cast<std::size_t>(c)]);
            ASSERT_NEAR(test::Sample(shown, x, y, c), wanted[static_cast<std::size_t>(c)],
                        Tolerance(bits, gamma))
                << bits << " bits, gamma " << gamma << ", at " << x << ", " << y << ", " << c;
          }
        }
      }
      EXPECT_LT(sum / (60 * 50 * 3), 0.5) << bits << " bits, gamma " << gamma;
    }
  }
}

TEST(ColourTransformTest, ShowsGreyByGreyProfiles) {
  for (const int bits : {8, 16}) {
    const unsigned scale = bits == 8 ? 1 : 257;
    const PicBuf ramp =
        test::MadeOf(256, 1, 1, bits, [&](int x, int, int) { return static_cast<unsigned>(x) * scale; });
    const PicBuf shown = Shown(ramp, GreyProfile(1.8));
    for (int x = 0; x < 256; ++x) {
      for (int c = 0; c < 3; ++c) {
        ASSERT_NEAR(test::Sample(shown, x, 0, c), Encoded(std::pow(x / 255.0, 1.8)), 1.5)
            << bits << ", " << x;
      }
    }
  }
}

TEST(ColourTransformTest, LeavesSamplesAloneUnlessThereIsSomethingToDo) {
  const std::string wide = WideProfile(2.2);
  std::string cutOff = wide.substr(0, wide.size() / 2);
  std::string forged = wide;
  forged.replace(16, 4, "CMYK");
  struct Case {
    const char* what;
    std::string profile;
    int components;
    ViewColours colours;
    ProfileUse use;
  };
  const Case cases[] = {
      {"none", "", 3, {}, ProfileUse::kNone},
      {"switched off", wide, 3, {false, {}}, ProfileUse::kNone},
      {"sRGB", SrgbProfile(), 3, {}, ProfileUse::kSame},
      {"the screen's own", wide, 3, {true, wide}, ProfileUse::kSame},
      {"cut off", cutOff, 3, {}, ProfileUse::kUnusable},
      {"no profile at all", std::string(4000, 'x'), 3, {}, ProfileUse::kUnusable},
      {"of another space", forged, 3, {}, ProfileUse::kUnusable},
      {"grey for colour", GreyProfile(1.8), 3, {}, ProfileUse::kUnusable},
      {"colour for grey", wide, 1, {}, ProfileUse::kUnusable},
      {"no device", BytesOf(cmsCreateLab4Profile(nullptr)), 3, {}, ProfileUse::kUnusable},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const ColourChoice choice = MakeColourTransform(c.profile, c.components, 8, c.colours);
    EXPECT_EQ(static_cast<int>(choice.use), static_cast<int>(c.use));
    EXPECT_EQ(choice.transform, nullptr);
  }
  const PicBuf picture = test::RandomPicture(300, 200, 3, 8, 2);
  EXPECT_TRUE(test::SamePicture(Shown(picture, {}), picture));
  EXPECT_FALSE(test::SamePicture(Shown(picture, wide), picture));
  EXPECT_TRUE(test::SamePicture(Shown(picture, wide, {true, "rubbish"}), Shown(picture, wide)))
      << "a screen that says nothing sensible is taken for sRGB";
  const PicBuf green = test::MadeOf(1, 1, 3, 8, [](int, int, int c) { return c == 1 ? 255U : 0U; });
  EXPECT_NEAR(test::Sample(Shown(green, SrgbProfile(), {true, wide}), 0, 0, 2), 144, 2)
      << "sRGB's green takes some red on a wide screen";
}

TEST(ColourTransformTest, SurvivesDamagedProfiles) {
  const std::string wide = WideProfile(2.2);
  test::Random random(3);
  for (int i = 0; i < 300; ++i) {
    std::string damaged = wide;
    for (int k = 0; k < 6; ++k) {
      damaged[static_cast<std::size_t>(random.Below(static_cast<int>(damaged.size())))] =
          static_cast<char>(random.Below(256));
    }
    EXPECT_EQ(Shown(test::RandomPicture(20, 10, 3, 8, 1), damaged)->width, 20);
  }
}

}  // namespace
}  // namespace mirellon::ui
