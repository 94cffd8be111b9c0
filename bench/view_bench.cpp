// A frame of the view: a photograph of 50 megapixels, drawn into a window of 2560 x 1440 pixels while it is
// dragged.

#include <string>

#include <benchmark/benchmark.h>
#include <lcms2.h>

#include "bench_pictures.h"
#include "ui/model/colour_transform.h"
#include "ui/model/view_renderer.h"

namespace mirellon {
namespace {

constexpr int kWidth = 8660;
constexpr int kHeight = 5774;
constexpr int kViewWidth = 2560;
constexpr int kViewHeight = 1440;

ui::SharedDisplay Photograph() {
  static const ui::SharedDisplay kDisplay = ui::MakeDisplay(bench::NoisyPicture(kWidth, kHeight, 3, 8));
  return kDisplay;
}

ui::ViewGeometry Geometry(int percent) {
  ui::ViewGeometry geometry;
  geometry.SetViewSize(kViewWidth, kViewHeight);
  geometry.SetPictureSize(kWidth, kHeight);
  geometry.Fit(ui::ViewGeometry::FitLimit::kFree);
  if (percent != 0) geometry.SetZoom(percent / 100.0);
  return geometry;
}

// Argument: percent, 0 for the whole photograph. As the program chooses level and interpolation.
void Frame(benchmark::State& state) {
  ui::ViewRenderer renderer;
  renderer.SetPicture(ui::kDrawOriginal, Photograph());
  renderer.SetPicture(ui::kDrawResult, Photograph());
  ui::ViewGeometry geometry = Geometry(static_cast<int>(state.range(0)));
  int step = 1;
  for (auto _ : state) {
    geometry.Drag(0, 0, step, step);
    step = -step;
    benchmark::DoNotOptimize(renderer.RenderView(geometry, ui::kDrawResult));
  }
}
BENCHMARK(Frame)
    ->ArgName("percent")
    ->Arg(0)
    ->Arg(25)
    ->Arg(50)
    ->Arg(66)
    ->Arg(100)
    ->Arg(150)
    ->Arg(200)
    ->Arg(400)
    ->Unit(benchmark::kMillisecond);

// Percent, and interpolation: 0 nearest, 1 bilinear, 2 bicubic, on the photograph's own samples.
void FrameByInterpolation(benchmark::State& state) {
  picture::PicBuf buffer(kViewWidth, kViewHeight, 3, 8);
  ui::ViewGeometry geometry = Geometry(static_cast<int>(state.range(0)));
  const picture::SBxPicBuf& samples = Photograph()->level(0);
  const auto draw = [&](const picture::CBxPicMap& map) {
    using picture::CBxPicBufAPI;
    if (state.range(1) == 0) return CBxPicBufAPI::TransformConstantFast(buffer, samples, map);
    if (state.range(1) == 1) return CBxPicBufAPI::TransformBilinearFast(buffer, samples, map);
    return CBxPicBufAPI::TransformBicubicFast(buffer, samples, map);
  };
  int step = 1;
  for (auto _ : state) {
    geometry.Drag(0, 0, step, step);
    step = -step;
    draw(geometry.Map());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(FrameByInterpolation)
    ->ArgNames({"percent", "interpolation"})
    ->ArgsProduct({{0, 50, 100, 200}, {0, 1, 2}})
    ->Unit(benchmark::kMillisecond);

// ---- What a frame is drawn from ----

std::string WideProfile() {
  const cmsCIExyY white = {0.3127, 0.3290, 1.0};
  const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1.0}, {0.21, 0.71, 1.0}, {0.15, 0.06, 1.0}};
  cmsToneCurve* curve = cmsBuildGamma(nullptr, 2.2);
  cmsToneCurve* curves[] = {curve, curve, curve};
  cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
  cmsFreeToneCurve(curve);
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  std::string bytes(size, '\0');
  cmsSaveProfileToMem(profile, bytes.data(), &size);
  cmsCloseProfile(profile);
  return bytes;
}

// Bits; with a colour profile; turned by a quarter. Processor time of all threads.
void DisplayCopies(benchmark::State& state) {
  const int bits = static_cast<int>(state.range(0));
  const picture::PicBuf photograph = bench::NoisyPicture(kWidth, kHeight, 3, bits);
  ui::DisplayLook look;
  if (state.range(1) != 0) look.colours = ui::MakeColourTransform(WideProfile(), 3, bits, {}).transform;
  if (state.range(2) != 0) look.orientation = ui::Orientation::kQuarterLeft;
  for (auto _ : state) benchmark::DoNotOptimize(ui::MakeDisplay(photograph, look));
}
BENCHMARK(DisplayCopies)
    ->ArgNames({"bits", "profile", "turned"})
    ->ArgsProduct({{8, 16}, {0, 1}, {0, 1}})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace mirellon
