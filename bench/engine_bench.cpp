// The engine's stages, each on its own, and a whole photograph.

#include <cmath>
#include <cstdio>
#include <string>

#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "engine/chroma_large.h"
#include "engine/denoise_plane.h"
#include "engine/detail_pyramid.h"
#include "engine/mirror_border.h"
#include "engine/noise_estimate.h"
#include "engine/point_artefacts.h"
#include "engine/simd_target.h"
#include "engine/similarity_kernel.h"
#include "engine/whole_picture.h"

namespace mirellon {
namespace {

using picture::PicBuf;

constexpr int kSide = 1000;  // a tile

void CountPixels(benchmark::State& state, double pixels) {
  state.counters["MP/s"] =
      benchmark::Counter(pixels * static_cast<double>(state.iterations()) / 1e6, benchmark::Counter::kIsRate);
}

// Arguments: quality, bits, threads, dynamics in hundredths, strength.
void KernelPlane(benchmark::State& state) {
  const auto quality = static_cast<std::uint32_t>(state.range(0));
  PicBuf source = bench::NoisyPicture(kSide, kSide, 1, static_cast<int>(state.range(1)));
  PicBuf result(kSide, kSide, 1, static_cast<int>(state.range(1)));
  engine::EngineContext context;
  engine::PlaneSettings settings;
  settings.quality = quality;
  settings.threads = static_cast<std::uint32_t>(state.range(2));
  settings.dynamics = static_cast<double>(state.range(3)) / 100.0;
  settings.strength = static_cast<double>(state.range(4));
  for (auto _ : state) benchmark::DoNotOptimize(engine::DenoisePlane(context, result, source, settings));
  const double pixels = 1.0 * kSide * kSide;
  CountPixels(state, pixels);
  // Time for one pixel and one pair of displacements, and its inverse.
  const double work = pixels * engine::DisplacementCount(quality) * static_cast<double>(state.iterations());
  state.counters["pixel_displacements/s"] = benchmark::Counter(work, benchmark::Counter::kIsRate);
  state.counters["ns/pixel/displacement"] =
      benchmark::Counter(work / 1e9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.SetLabel(engine::SimdTargetName());
}
BENCHMARK(KernelPlane)
    ->ArgNames({"quality", "bits", "threads", "dynamics%", "strength"})
    ->Args({1, 8, 1, 0, 10})
    ->Args({2, 8, 1, 0, 10})
    ->Args({3, 8, 1, 0, 10})
    ->Args({3, 8, 2, 0, 10})
    ->Args({1, 16, 1, 0, 10})
    ->Args({2, 16, 1, 0, 10})
    ->Args({3, 16, 1, 0, 10})
    ->Args({3, 8, 1, 30, 10})
    ->Args({3, 8, 1, 0, 50})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Arguments: dynamics in hundredths, strength.
void BuildWeightTables(benchmark::State& state) {
  const double dynamicity = static_cast<double>(state.range(0)) / 50.0;
  const double strength = static_cast<double>(state.range(1));
  const double variance = strength * strength * strength * std::sqrt(strength);
  for (auto _ : state) benchmark::DoNotOptimize(engine::WeightTables(dynamicity, variance));
}
BENCHMARK(BuildWeightTables)
    ->ArgNames({"dynamics%", "strength"})
    ->Args({0, 10})
    ->Args({30, 10})
    ->Args({30, 50})
    ->Unit(benchmark::kMicrosecond);

void NoiseEstimate(benchmark::State& state) {
  const PicBuf source = bench::NoisyPicture(kSide, kSide, 1, 8);
  for (auto _ : state) benchmark::DoNotOptimize(engine::EstimateNoiseLevel(source));
  CountPixels(state, 1.0 * kSide * kSide);
}
BENCHMARK(NoiseEstimate)->Unit(benchmark::kMicrosecond);

// Arguments: mode, bits.
void PointArtefacts(benchmark::State& state) {
  const PicBuf source = bench::NoisyPicture(kSide, kSide, 1, static_cast<int>(state.range(1)));
  PicBuf result = bench::NoisyPicture(kSide, kSide, 1, static_cast<int>(state.range(1)));
  for (auto _ : state) engine::RemovePointArtefacts(result, source, static_cast<int>(state.range(0)));
  CountPixels(state, 1.0 * kSide * kSide);
}
BENCHMARK(PointArtefacts)
    ->ArgNames({"mode", "bits"})
    ->ArgsProduct({{1, 2}, {8, 16}})
    ->Unit(benchmark::kMillisecond);

// Arguments: bits, threads. Three components.
void Sharpening(benchmark::State& state) {
  const PicBuf original = bench::NoisyPicture(kSide, kSide, 3, static_cast<int>(state.range(0)));
  PicBuf picture;
  for (auto _ : state) {
    state.PauseTiming();
    picture::CBxPicBufAPI::Copy(picture, original);
    state.ResumeTiming();
    const auto threads = static_cast<std::uint32_t>(state.range(1));
    benchmark::DoNotOptimize(engine::SharpenPicture(picture, 1.4, 1.2, 0.9, threads));
  }
  CountPixels(state, 1.0 * kSide * kSide);
}
BENCHMARK(Sharpening)
    ->ArgNames({"bits", "threads"})
    ->Args({8, 1})
    ->Args({8, 2})
    ->Args({16, 1})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// One step from a level to the next coarser one. Argument: bits; 32 means floats, as above the first level.
void PyramidReduce(benchmark::State& state) {
  const auto bits = static_cast<int>(state.range(0));
  const PicBuf samples = bench::NoisyPicture(kSide, kSide, 1, bits == 32 ? 8 : bits);
  engine::FloatPlane floats;
  engine::FloatPlane coarse;
  if (floats.Allocate(kSide, kSide) || coarse.Allocate(kSide / 2, kSide / 2)) return;
  for (auto _ : state) {
    if (bits == 32) {
      engine::Reduce5x5(floats, coarse);
    } else {
      engine::Reduce5x5(engine::SampleLevel{&samples.record(), 0}, coarse);
    }
    benchmark::ClobberMemory();
  }
  CountPixels(state, 1.0 * kSide * kSide);
}
BENCHMARK(PyramidReduce)->ArgName("bits")->Arg(8)->Arg(16)->Arg(32)->Unit(benchmark::kMicrosecond);

// The large-scale pass on one plane of a tile, its filter at the lowest quality. Argument: bits.
void ChromaLarge(benchmark::State& state) {
  PicBuf plane = bench::NoisyPicture(kSide, kSide, 1, static_cast<int>(state.range(0)));
  engine::EngineContext context;
  engine::PlaneSettings settings;
  settings.quality = 1;
  for (auto _ : state) benchmark::DoNotOptimize(engine::DenoiseChromaLarge(context, plane, settings));
  CountPixels(state, 1.0 * kSide * kSide);
}
BENCHMARK(ChromaLarge)->ArgName("bits")->Arg(8)->Arg(16)->Unit(benchmark::kMicrosecond);

// The filter's border around a tile. Argument: bits.
void MirrorBorder(benchmark::State& state) {
  constexpr int kBorder = 38;
  constexpr int kOuter = kSide + 2 * kBorder;
  PicBuf plane = bench::NoisyPicture(kOuter, kOuter, 1, static_cast<int>(state.range(0)));
  for (auto _ : state) {
    state.range(0) == 8 ? engine::MirrorBorder8(plane, kBorder) : engine::MirrorBorder16(plane, kBorder);
    benchmark::ClobberMemory();
  }
  CountPixels(state, 1.0 * kSide * kSide);
}
BENCHMARK(MirrorBorder)->ArgName("bits")->Arg(8)->Arg(16)->Unit(benchmark::kMicrosecond);

// What a preview costs while the sliders move: denoised and sharpened, the weight tables at hand.
void Preview(benchmark::State& state) {
  constexpr int kPreviewSide = 400;
  PicBuf source = bench::NoisyPicture(kPreviewSide, kPreviewSide, 3, 8);
  PicBuf result;
  engine::EngineContext context;
  context.processorCount = static_cast<std::uint32_t>(state.range(0));
  engine::DenoiseRequest request;
  request.source = &source.record();
  request.destination = &result.record();
  request.quality = 3;
  for (auto _ : state) {
    benchmark::DoNotOptimize(engine::DenoiseWholePicture(context, request, false));
    benchmark::DoNotOptimize(engine::SharpenPicture(result, 1.4, 1.2, 0.9, context.processorCount));
  }
}
BENCHMARK(Preview)->ArgName("threads")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

// Arguments: width, height, quality, bits. Colour, large-scale pass on, all processors.
void WholePhotograph(benchmark::State& state) {
  PicBuf source = bench::NoisyPicture(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), 3,
                                      static_cast<int>(state.range(3)));
  PicBuf result;
  engine::EngineContext context;
  context.processorCount = engine::CountProcessors();
  engine::DenoiseRequest request;
  request.source = &source.record();
  request.destination = &result.record();
  request.quality = static_cast<std::uint32_t>(state.range(2));
  for (auto _ : state) benchmark::DoNotOptimize(engine::DenoiseWholePicture(context, request, false));
  CountPixels(state, static_cast<double>(state.range(0)) * static_cast<double>(state.range(1)));
  state.SetLabel(engine::SimdTargetName() + ", " + std::to_string(context.processorCount) + " threads");
}
BENCHMARK(WholePhotograph)
    ->ArgNames({"width", "height", "quality", "bits"})
    ->Args({4000, 3000, 1, 8})
    ->Args({4000, 3000, 2, 8})
    ->Args({4000, 3000, 2, 16})
    ->Args({4000, 3000, 3, 8})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace mirellon

int main(int argc, char** argv) {
  if (mirellon::engine::ForceSimdTargetFromEnvironment()) {
    fprintf(stderr, "MIRELLON_SIMD names no target of this machine: %s\n",
            mirellon::engine::SupportedSimdTargets().c_str());
    return 2;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::AddCustomContext("simd", mirellon::engine::SimdTargetName());
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
