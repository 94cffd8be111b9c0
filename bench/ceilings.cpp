// mirellon-ceilings: what this machine could do at most with the steps of the kernel, for every instruction
// set, and how near the kernel comes. Each step is measured alone, on rows that stay in the first-level
// cache, with its own loads and stores; the bound is their sum for one pixel and one pair of displacements (d
// and -d). A kernel that overlapped them perfectly could pass it.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <sstream>
#include <string>

#include "bench_pictures.h"
#include "engine/denoise_plane.h"
#include "engine/simd_target.h"
#include "engine/similarity_band.h"
#include "engine/similarity_kernel.h"
#include "hwy/aligned_allocator.h"
#include "kernel_steps.h"

namespace mirellon::bench {
namespace {

constexpr std::ptrdiff_t kBlocks = 256;  // 512 pixels: what the widest step touches stays under 32 KiB
constexpr int kKernelSide = 1000;

// The least time of one call in nanoseconds: what disturbs a run only makes it longer.
template <typename F>
double LeastNanoseconds(int calls, F call) {
  double least = 1e300;
  for (int trial = 0; trial < 25; ++trial) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i) call();
    const std::chrono::duration<double, std::nano> passed = std::chrono::steady_clock::now() - start;
    least = std::min(least, passed.count() / calls);
  }
  return least;
}

class Storage {
 public:
  Storage() : bytes_(hwy::AllocateAligned<std::uint8_t>(kSize)) {
    for (std::size_t i = 0; i < kSize; ++i) bytes_[i] = static_cast<std::uint8_t>(i * 37 % 61);
    auto* at = bytes_.get();
    const auto take = [&at](std::size_t size) {
      auto* const taken = at;
      at += (size + 127) / 64 * 64;
      return taken;
    };
    const auto row16 = [&] { return reinterpret_cast<std::uint16_t*>(take(2 * kBlocks)); };
    data_.blocks = kBlocks;
    data_.fusedProducts = engine::HasFusedProducts();
    data_.upper = take(2 * kBlocks);
    data_.lower = take(2 * kBlocks);
    data_.upper2 = take(2 * kBlocks) + 1;
    data_.lower2 = take(2 * kBlocks) + 1;
    data_.table = reinterpret_cast<std::uint16_t*>(take(2 * std::size_t{kTableEntries}));
    data_.sums = row16();
    data_.oldest = row16();
    data_.middle = row16();
    data_.newest = row16();
    data_.distances = row16();
    data_.weights = row16();
    data_.pairs = reinterpret_cast<std::uint32_t*>(take(4 * kBlocks * kPairs));
    data_.samples = reinterpret_cast<std::uint32_t*>(take(4 * std::size_t{4} * (kBlocks + 32)));
    data_.totals = reinterpret_cast<std::int32_t*>(take(4 * std::size_t{5} * kBlocks));
    for (std::ptrdiff_t b = 0; b < kBlocks; ++b) {
      data_.distances[b] = static_cast<std::uint16_t>(b * 29 % kTableEntries);
    }
  }

  [[nodiscard]] const StepData& data() const { return data_; }

 private:
  static constexpr std::size_t kSize = std::size_t{64} << 10U;
  hwy::AlignedFreeUniquePtr<std::uint8_t[]> bytes_;
  StepData data_;
};

// Nanoseconds for one pixel and one pair of displacements.
struct StepTimes {
  double differences;
  double boxes;
  double lookUp;
  double accumulate;

  [[nodiscard]] double Sum() const { return differences + boxes + lookUp + accumulate; }
};

StepTimes MeasureSteps() {
  const Storage storage;
  const StepData& data = storage.data();
  constexpr int kCalls = 1000;
  constexpr double kPixels = 4.0 * kBlocks;
  StepTimes times{};
  times.differences = LeastNanoseconds(kCalls, [&] { AbsoluteDifferences(data); }) / kPixels;
  times.lookUp = LeastNanoseconds(kCalls, [&] { LookUpFromMemory(data); }) / kPixels;
  if (LookUpFromRegisters(data)) {
    const double registers = LeastNanoseconds(kCalls, [&] { (void)LookUpFromRegisters(data); }) / kPixels;
    times.lookUp = std::min(times.lookUp, registers);
  }
  times.boxes = LeastNanoseconds(kCalls, [&] { BoxSums(data); }) / kPixels;
  // One call serves 2 kPairs displacements in one direction, so kPairs pairs of d and -d.
  times.accumulate = LeastNanoseconds(kCalls / 10, [&] { Accumulate(data); }) / kPixels / kPairs;
  return times;
}

double MeasureKernel() {
  picture::PicBuf source = NoisyPicture(kKernelSide, kKernelSide, 1, 8);
  picture::PicBuf result(source, 1);
  engine::EngineContext context;
  engine::PlaneSettings settings;
  settings.quality = 3;
  double least = 1e300;
  for (int trial = 0; trial < 3; ++trial) {
    // The processor's time: on a machine with other work the clock's says nothing of the kernel.
    const std::clock_t start = std::clock();
    if (engine::DenoisePlane(context, result, source, settings) != 0) return 0.0;
    least = std::min(least, 1e9 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
  }
  return least / kKernelSide / kKernelSide / (engine::DisplacementCount(3) - 1);
}

void PrintSteps(const std::string& target) {
  const StepTimes steps = MeasureSteps();
  const double kernel = MeasureKernel();
  std::printf("| %s | %.4f | %.4f | %.4f | %.4f | **%.4f** | %.4f | %.0f %% |\n", target.c_str(),
              steps.differences, steps.boxes, steps.lookUp, steps.accumulate, steps.Sum(), kernel,
              100.0 * steps.Sum() / kernel);
}

void PrintBandwidth(const std::string& target) {
  std::printf("| %s |", target.c_str());
  for (const std::size_t bytes : {std::size_t{16} << 10U, std::size_t{512} << 10U}) {
    const auto from = hwy::AllocateAligned<std::uint8_t>(bytes);
    const auto to = hwy::AllocateAligned<std::uint8_t>(bytes);
    StoreBytes(from.get(), bytes);
    StoreBytes(to.get(), bytes);
    const int calls = static_cast<int>((std::size_t{8} << 20U) / bytes);
    const auto size = static_cast<double>(bytes);
    std::uint64_t sum = 0;
    const double load = LeastNanoseconds(calls, [&] { sum += LoadBytes(from.get(), bytes); });
    const double store = LeastNanoseconds(calls, [&] { StoreBytes(to.get(), bytes); });
    const double copy = LeastNanoseconds(calls, [&] { CopyBytes(from.get(), to.get(), bytes / 2); });
    std::printf(" %.0f | %.0f | %.0f |%s", size / load, size / store, size / 2 / copy, sum == 1 ? " " : "");
  }
  std::printf("\n");
}

void ForEachTarget(void (*print)(const std::string& target)) {
  std::istringstream names(engine::SupportedSimdTargets());
  for (std::string name; names >> name;) {
    if (!engine::ForceSimdTarget(name)) print(name);
  }
}

}  // namespace
}  // namespace mirellon::bench

int main() {
  const std::string best = mirellon::engine::SimdTargetName();
  std::printf(
      "Nanoseconds for one pixel and one pair of displacements, one thread, superior quality, 8 bits:\n\n"
      "| target | differences | box sums | look-up | multiply-add | bound | kernel | share |\n"
      "|---|---|---|---|---|---|---|---|\n");
  mirellon::bench::ForEachTarget(mirellon::bench::PrintSteps);
  std::printf(
      "\nGigabytes a second, 16 KiB (first-level cache) and 512 KiB (second-level cache):\n\n"
      "| target | load | store | copy | load | store | copy |\n"
      "|---|---|---|---|---|---|---|\n");
  mirellon::bench::ForEachTarget(mirellon::bench::PrintBandwidth);
  return mirellon::engine::ForceSimdTarget(best) ? 1 : 0;
}
