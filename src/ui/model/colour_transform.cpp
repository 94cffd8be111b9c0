#include "ui/model/colour_transform.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include <lcms2.h>

#include "picture/pic_buf.h"

namespace mirellon::ui {

namespace {

using picture::Row;

struct ProfileCloser {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;
using Transform = ColourTransform::Handle;

bool IsOfDevice(cmsHPROFILE profile) {
  const cmsProfileClassSignature kind = cmsGetDeviceClass(profile);
  return kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass ||
         kind == cmsSigColorSpaceClass;
}

// Null when it is damaged or not a device of that colour space.
Profile OpenProfile(const std::string& bytes, cmsColorSpaceSignature space) {
  if (bytes.empty()) return nullptr;
  Profile profile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
  if (profile == nullptr || cmsGetColorSpace(profile.get()) != space || !IsOfDevice(profile.get())) {
    return nullptr;
  }
  return profile;
}

Profile OpenScreen(const std::string& bytes) {
  Profile screen = OpenProfile(bytes, cmsSigRgbData);
  return screen != nullptr ? std::move(screen) : Profile(cmsCreate_sRGBProfile());
}

Transform MakeTransform(const Profile& from, cmsUInt32Number format, const Profile& to) {
  // Without its one-pixel cache, which threads must not share.
  constexpr cmsUInt32Number kFlags = cmsFLAGS_NOCACHE | cmsFLAGS_HIGHRESPRECALC;
  return {cmsCreateTransform(from.get(), format, to.get(), TYPE_BGR_8, INTENT_RELATIVE_COLORIMETRIC, kFlags),
          cmsDeleteTransform};
}

// Samples over the whole range of an 8-bit picture, in threes, and what they are shown as without a
// transform.
struct Grid {
  std::vector<std::uint8_t> samples;
  std::vector<std::uint8_t> plain;
};

Grid MakeGrid(int components) {
  constexpr int kStep = 15;  // divides 255
  Grid grid;
  if (components == 1) {
    for (int grey = 0; grey < 256; ++grey) {
      grid.samples.push_back(static_cast<std::uint8_t>(grey));
      grid.plain.insert(grid.plain.end(), 3, static_cast<std::uint8_t>(grey));
    }
    return grid;
  }
  for (int blue = 0; blue < 256; blue += kStep) {
    for (int green = 0; green < 256; green += kStep) {
      for (int red = 0; red < 256; red += kStep) {
        for (const int sample : {blue, green, red}) grid.samples.push_back(static_cast<std::uint8_t>(sample));
      }
    }
  }
  grid.plain = grid.samples;
  return grid;
}

bool ChangesNothing(const Transform& transform, int components) {
  const Grid grid = MakeGrid(components);
  std::vector<std::uint8_t> shown(grid.plain.size());
  cmsDoTransform(transform.get(), grid.samples.data(), shown.data(),
                 static_cast<cmsUInt32Number>(shown.size() / 3));
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (std::abs(shown[i] - grid.plain[i]) > 1) return false;
  }
  return true;
}

// ---- 16-bit colour ----
//
// The library's own way from 16 bits is a coarse table, which is off by several steps where colours leave the
// screen's range, and by more where a profile's samples are linear. Its way from 8 bits is exact. So samples
// go through their profile's curves first, into steps of 8 bits that are even to the eye.

constexpr double kEvenGamma = 2.2;

struct CurveFreer {
  void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};

std::vector<std::uint8_t> StepsOf(const cmsToneCurve* curve) {
  std::vector<std::uint8_t> steps(65536);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const double light = cmsEvalToneCurveFloat(curve, static_cast<float>(i) / 65535.0F);
    const double held = light > 0.0 ? std::min(light, 1.0) : 0.0;  // what is no number is none
    steps[i] = static_cast<std::uint8_t>(std::lround(255.0 * std::pow(held, 1.0 / kEvenGamma)));
  }
  return steps;
}

// The profile's colours with even curves, and the steps that lead there; null for a profile that is more than
// curves and a matrix.
Profile EvenProfile(const Profile& from, ColourTransform::Steps& steps) {
  if (cmsIsMatrixShaper(from.get()) == FALSE ||
      cmsIsCLUT(from.get(), INTENT_RELATIVE_COLORIMETRIC, LCMS_USED_AS_INPUT) != FALSE) {
    return nullptr;
  }
  Profile even(cmsCreateProfilePlaceholder(nullptr));
  const std::unique_ptr<cmsToneCurve, CurveFreer> curve(cmsBuildGamma(nullptr, kEvenGamma));
  if (even == nullptr || curve == nullptr) return nullptr;
  cmsSetProfileVersion(even.get(), 4.3);
  cmsSetDeviceClass(even.get(), cmsSigDisplayClass);
  cmsSetColorSpace(even.get(), cmsSigRgbData);
  cmsSetPCS(even.get(), cmsSigXYZData);
  struct Channel {
    cmsTagSignature colorant;
    cmsTagSignature curve;
  };
  constexpr Channel kBlueFirst[] = {{cmsSigBlueColorantTag, cmsSigBlueTRCTag},
                                    {cmsSigGreenColorantTag, cmsSigGreenTRCTag},
                                    {cmsSigRedColorantTag, cmsSigRedTRCTag}};
  for (std::size_t c = 0; c < steps.size(); ++c) {
    const auto* own = static_cast<const cmsToneCurve*>(cmsReadTag(from.get(), kBlueFirst[c].curve));
    const void* colorant = cmsReadTag(from.get(), kBlueFirst[c].colorant);
    if (own == nullptr || colorant == nullptr) return nullptr;
    if (cmsWriteTag(even.get(), kBlueFirst[c].colorant, colorant) == FALSE ||
        cmsWriteTag(even.get(), kBlueFirst[c].curve, curve.get()) == FALSE) {
      return nullptr;
    }
    steps[c] = StepsOf(own);
  }
  return even;
}

std::shared_ptr<const ColourTransform> DeepTransform(const Profile& from, int components, const Profile& to) {
  ColourTransform::Steps steps;
  const Profile even = components == 3 ? EvenProfile(from, steps) : nullptr;
  Transform transform = even != nullptr
                            ? MakeTransform(even, TYPE_BGR_8, to)
                            : MakeTransform(from, components == 1 ? TYPE_GRAY_16 : TYPE_BGR_16, to);
  if (transform == nullptr) return nullptr;
  if (even == nullptr) steps = {};
  return std::make_shared<ColourTransform>(std::move(transform), std::move(steps));
}

}  // namespace

void ColourTransform::Convert(const picture::SBxPicBuf& source, picture::SBxPicBuf& target, int firstRow,
                              int rows) const {
  const auto width = static_cast<cmsUInt32Number>(source.width);
  std::vector<std::uint8_t> stepped(steps_[0].empty() ? 0 : std::size_t{width} * 3);
  for (int y = firstRow; y < firstRow + rows; ++y) {
    const std::uint8_t* from = Row<std::uint8_t>(source, y);
    if (!stepped.empty()) {
      const auto* deep = Row<std::uint16_t>(source, y);
      for (std::size_t i = 0; i < stepped.size(); i += 3) {
        for (std::size_t c = 0; c < 3; ++c) stepped[i + c] = steps_[c][deep[i + c]];
      }
      from = stepped.data();
    }
    cmsDoTransform(transform_.get(), from, Row<std::uint8_t>(target, y), width);
  }
}

ColourChoice MakeColourTransform(const std::string& profile, int components, int bits,
                                 const ViewColours& colours) {
  if (profile.empty() || !colours.managed) return {};
  const Profile from = OpenProfile(profile, components == 1 ? cmsSigGrayData : cmsSigRgbData);
  const Profile to = OpenScreen(colours.screen);
  if (from == nullptr || to == nullptr) return {ProfileUse::kUnusable, nullptr};
  Transform shallow = MakeTransform(from, components == 1 ? TYPE_GRAY_8 : TYPE_BGR_8, to);
  if (shallow == nullptr) return {ProfileUse::kUnusable, nullptr};
  if (ChangesNothing(shallow, components)) return {ProfileUse::kSame, nullptr};
  if (bits == 8) return {ProfileUse::kConverted, std::make_shared<ColourTransform>(std::move(shallow))};
  std::shared_ptr<const ColourTransform> deep = DeepTransform(from, components, to);
  if (deep == nullptr) return {ProfileUse::kUnusable, nullptr};
  return {ProfileUse::kConverted, std::move(deep)};
}

}  // namespace mirellon::ui
