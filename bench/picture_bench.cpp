// Operations on whole pictures.

#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "picture/colour_convert.h"
#include "picture/pic_buf.h"

namespace mirellon {
namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;

constexpr int kSide = 1000;

void CountPixels(benchmark::State& state) {
  state.counters["MP/s"] = benchmark::Counter(static_cast<double>(state.iterations()) * kSide * kSide / 1e6,
                                              benchmark::Counter::kIsRate);
}

// Argument: bits.
void ToYuv(benchmark::State& state) {
  PicBuf source = bench::NoisyPicture(kSide, kSide, 3, static_cast<int>(state.range(0)));
  PicBuf result(source, 3);
  for (auto _ : state) benchmark::DoNotOptimize(CBxPicBufAPI::ConvertRGBtoYUV(result, source));
  CountPixels(state);
}
BENCHMARK(ToYuv)->ArgName("bits")->Arg(8)->Arg(16)->Unit(benchmark::kMicrosecond);

void ToRgb(benchmark::State& state) {
  PicBuf source = bench::NoisyPicture(kSide, kSide, 3, static_cast<int>(state.range(0)));
  PicBuf result(source, 3);
  for (auto _ : state) benchmark::DoNotOptimize(CBxPicBufAPI::ConvertYUVtoRGB(result, source));
  CountPixels(state);
}
BENCHMARK(ToRgb)->ArgName("bits")->Arg(8)->Arg(16)->Unit(benchmark::kMicrosecond);

// To planes and back, as the engine does it.
void ByWayOfPlanes(benchmark::State& state) {
  PicBuf picture = bench::NoisyPicture(kSide, kSide, 3, 8);
  std::vector<std::uint8_t> y(kSide);
  std::vector<std::uint8_t> u(kSide);
  std::vector<std::uint8_t> v(kSide);
  for (auto _ : state) {
    for (int row = 0; row < kSide; ++row) {
      auto* const samples = picture::Row<std::uint8_t>(picture, row);
      picture::ConvertRowRGBtoPlanes(samples, y.data(), u.data(), v.data(), kSide);
      picture::ConvertRowPlanesToRGB(y.data(), u.data(), v.data(), samples, kSide);
    }
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
BENCHMARK(ByWayOfPlanes)->Unit(benchmark::kMicrosecond);

void ExtractAndInsert(benchmark::State& state) {
  PicBuf source = bench::NoisyPicture(kSide, kSide, 3, static_cast<int>(state.range(0)));
  PicBuf plane(source, 1);
  for (auto _ : state) {
    CBxPicBufAPI::ExtractComponent(plane, 1, source);
    CBxPicBufAPI::InsertComponent(source, 1, plane);
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
BENCHMARK(ExtractAndInsert)->ArgName("bits")->Arg(8)->Arg(16)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace mirellon
