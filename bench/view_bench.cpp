// A frame of the view: a photograph of 50 megapixels, drawn into a window of 2560 x 1440 pixels while it is
// dragged.

#include <benchmark/benchmark.h>

#include "bench_pictures.h"
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

}  // namespace
}  // namespace mirellon
