// The filter on the graphics card: its passes one by one, a tile's way up and down, planes and photographs.
//
// The counter "memory" of a pass is what it moves if every texel it reads comes from memory once for each
// place that it is read at, neighbours of one place from a cache: the traffic that a card's bandwidth bounds.

#include <cstdio>
#include <functional>
#include <iostream>
#include <string>

#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "engine/gpu_card.h"
#include "engine/simd_target.h"
#include "engine/similarity_kernel.h"
#include "engine/whole_picture.h"
#include "gpu/gpu_filter.h"
#include "gpu/passes.h"

namespace mirellon {
namespace {

using gpu::GpuFilter;
using gpu::Passes;
using picture::PicBuf;

constexpr int kSide = 1000;  // a tile
constexpr gpu::Displacement kMove = {-3, -2};
constexpr gpu::WeightSettings kSettings = {3162.0, 3162.0, 0.0};

void Count(benchmark::State& state, double pixels, double bytesAPixel) {
  const double all = pixels * static_cast<double>(state.iterations());
  state.counters["MP/s"] = benchmark::Counter(all / 1e6, benchmark::Counter::kIsRate);
  if (bytesAPixel <= 0.0) return;
  state.counters["bytes/pixel"] = bytesAPixel;
  state.counters["memory"] =
      benchmark::Counter(all * bytesAPixel, benchmark::Counter::kIsRate, benchmark::Counter::kIs1000);
}

// A tile on the card, for as long as the object lives.
class TileOnCard {
 public:
  TileOnCard(GpuFilter& filter, int channels)
      : job_(filter),
        geometry_{kSide, kSide, engine::CardMargin(kSide, kSide, 1), channels},
        source_(bench::NoisyPicture(geometry_.PaddedWidth(), geometry_.PaddedHeight(), channels, 8)),
        failed_(job_.failed() ||
                filter.Upload(source_, source_, kSide, kSide, channels, geometry_.margin, channels, 8)) {}

  [[nodiscard]] bool failed() const { return failed_; }
  [[nodiscard]] const gpu::TileGeometry& geometry() const { return geometry_; }
  [[nodiscard]] const PicBuf& source() const { return source_; }

 private:
  GpuFilter::Job job_;
  gpu::TileGeometry geometry_;
  PicBuf source_;
  bool failed_;
};

struct Pass {
  const char* name;
  // Bytes a pixel of the tile with textures of one channel and of three, 4 bytes a channel.
  double bytesOne;
  double bytesThree;
  std::function<void(const Passes&, const gpu::TileGeometry&, std::size_t guide)> run;
};

const gpu::SumTextures kSums = gpu::SumTexturesOf(true);

// ---- What each reads and writes, places of reading before textures written ----
// Difference: guide here and there; cleared, then written. Half sums: differences; a quarter as many. Box
// sums: half sums; cleared, then written. Weights: box sums and source; weights. Centre: sum, weights, then
// sum, weights, source; both sums. Both ways: both sums, two weights, source there and back; both sums.
const Pass kPasses[] = {
    {"Finish", 0, 0, [](const Passes&, const gpu::TileGeometry&, std::size_t) {}},
    {"Difference", 8 + 8, 24 + 24,
     [](const Passes& p, const gpu::TileGeometry& g, std::size_t guide) { p.Difference(g, guide, kMove); }},
    {"HalfSum", 4 + 1, 12 + 3,
     [](const Passes& p, const gpu::TileGeometry& g, std::size_t) { p.HalfSum(g); }},
    {"BoxSum", 1 + 2, 3 + 6, [](const Passes& p, const gpu::TileGeometry& g, std::size_t) { p.BoxSum(g); }},
    {"Weights", 1 + 12 + 4, 3 + 12 + 12,
     [](const Passes& p, const gpu::TileGeometry& g, std::size_t) { p.Weights(g, kSettings); }},
    {"BothWays", 24 + 8 + 24 + 24, 24 + 24 + 24 + 24,
     [](const Passes& p, const gpu::TileGeometry& g, std::size_t) { p.AccumulateBothWays(g, kSums, kMove); }},
    {"Centre", 24 + 8 + 12 + 24, 24 + 24 + 12 + 24,
     [](const Passes& p, const gpu::TileGeometry& g, std::size_t) { p.AccumulateCentre(g, kSums); }},
    {"Divide", 24 + 12, 24 + 12,
     [](const Passes& p, const gpu::TileGeometry&, std::size_t) { p.Divide(kSums); }},
};

void RunPass(benchmark::State& state, GpuFilter& filter, const Pass& pass, int channels) {
  const TileOnCard tile(filter, channels);
  if (tile.failed()) return state.SkipWithError("the tile did not get onto the card");
  const Passes passes(filter.programs(), filter.textures());
  const std::size_t guide = channels == 1 ? gpu::kGuide : gpu::kSource;
  filter.RenderDisplacement(kMove.row, kMove.column, kSettings);  // so that every texture holds numbers
  for (auto _ : state) {
    pass.run(passes, tile.geometry(), guide);
    Passes::Finish();
  }
  Count(state, 1.0 * kSide * kSide, channels == 1 ? pass.bytesOne : pass.bytesThree);
}

void RunUpload(benchmark::State& state, GpuFilter& filter, int components, int bits) {
  const gpu::TileGeometry geometry = {kSide, kSide, engine::CardMargin(kSide, kSide, 1), components};
  const PicBuf source =
      bench::NoisyPicture(geometry.PaddedWidth(), geometry.PaddedHeight(), components, bits);
  PicBuf guide;
  picture::CBxPicBufAPI::Copy(guide, source);
  picture::CBxPicBufAPI::ConvertBpcComp(guide, 8, static_cast<unsigned>(components));
  const GpuFilter::Job job(filter);
  for (auto _ : state) {
    const PicBuf& measured = bits == 8 ? source : guide;
    if (filter.Upload(source, measured, kSide, kSide, components, geometry.margin, components, bits)) {
      return state.SkipWithError("the tile did not get onto the card");
    }
    Passes::Finish();
  }
  Count(state, 1.0 * kSide * kSide, 0);
}

void RunReadBack(benchmark::State& state, GpuFilter& filter, int components) {
  const TileOnCard tile(filter, components);
  if (tile.failed()) return state.SkipWithError("the tile did not get onto the card");
  filter.RenderDisplacement(0, 0, kSettings);
  PicBuf result(kSide, kSide, components, 8);
  for (auto _ : state) {
    if (filter.ReadBack(result)) return state.SkipWithError("the tile did not come back");
  }
  Count(state, 1.0 * kSide * kSide, 0);
}

enum class Backend { kProcessor, kCard, kFusion };

void RunPhotograph(benchmark::State& state, engine::CardFilter& card, Backend backend, int components,
                   std::uint32_t quality) {
  constexpr int kWidth = 2000;
  constexpr int kHeight = 1500;
  PicBuf source = bench::NoisyPicture(kWidth, kHeight, components, 8);
  PicBuf result;
  engine::EngineContext context;
  context.card = &card;
  context.processorCount = engine::CountProcessors();
  engine::DenoiseRequest request;
  request.source = &source.record();
  request.destination = &result.record();
  request.quality = quality;
  request.useGpu = backend != Backend::kProcessor;
  for (auto _ : state) {
    benchmark::DoNotOptimize(engine::DenoiseWholePicture(context, request, backend == Backend::kFusion));
    if (context.cardRun.fault != engine::CardFault::kNone) return state.SkipWithError("the card failed");
  }
  Count(state, 1.0 * kWidth * kHeight, 0);
}

template <typename Run>
void Register(const std::string& name, const Run& run) {
  benchmark::RegisterBenchmark(name.c_str(), run)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime()
      ->MeasureProcessCPUTime();
}

void RegisterAll(GpuFilter& filter, engine::CardFilter& card) {
  for (const int channels : {1, 3}) {
    const std::string of = channels == 1 ? "/grey" : "/colour";
    for (const Pass& pass : kPasses) {
      Register(std::string("Pass/") + pass.name + of, [&filter, &pass, channels](benchmark::State& state) {
        RunPass(state, filter, pass, channels);
      });
    }
    for (const int bits : {8, 16}) {
      Register(
          "Upload" + of + "/bits:" + std::to_string(bits),
          [&filter, channels, bits](benchmark::State& state) { RunUpload(state, filter, channels, bits); });
    }
    Register("ReadBack" + of,
             [&filter, channels](benchmark::State& state) { RunReadBack(state, filter, channels); });
    for (const std::uint32_t quality : {1U, 2U, 3U}) {
      for (const auto& [backend, name] : {std::pair{Backend::kProcessor, "/cpu"},
                                          {Backend::kCard, "/gpu"},
                                          {Backend::kFusion, "/fusion"}}) {
        Register("Photograph" + of + "/quality:" + std::to_string(quality) + name,
                 [&card, channels, quality, which = backend](benchmark::State& state) {
                   RunPhotograph(state, card, which, channels, quality);
                 });
      }
    }
  }
}

}  // namespace
}  // namespace mirellon

int main(int argc, char** argv) {
  using namespace mirellon;
  if (engine::ForceSimdTargetFromEnvironment()) return 2;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  GpuFilter filter(gpu::MakeGlContext(), nullptr, std::cerr, std::cerr);
  if (!filter.Initialise()) {
    fprintf(stderr, "the graphics card is not used: %s\n", filter.info().refusal.c_str());
    return 1;
  }
  engine::GpuCard card(filter);
  benchmark::AddCustomContext("renderer", filter.info().renderer);
  benchmark::AddCustomContext("one-channel format", filter.info().format);
  benchmark::AddCustomContext("simd", engine::SimdTargetName());
  RegisterAll(filter, card);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
