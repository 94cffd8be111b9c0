#include "engine/similarity_kernel.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <vector>

#include "engine/parallel_for.h"
#include "engine/parameters.h"
#include "engine/similarity_band.h"
#include "engine/work_picture.h"
#include "picture/pic_buf.h"

namespace mirellon::engine {

namespace {

using base::ProgressSink;
using picture::Row;
using picture::SBxPicBuf;

// What a thread needs for the band it works on.
class BandStorage {
 public:
  // Throws std::bad_alloc.
  BandStorage(const WorkPlanes& planes, const WeightTables& tables, int mostBlockRows) {
    const std::size_t stride = BlockStride(planes.width / 2);
    const auto rows = static_cast<std::size_t>(mostBlockRows);
    weightSum_.resize(rows * stride);
    highSum_.resize(rows * stride * 4);
    if (planes.low != nullptr) lowSum_.resize(rows * stride * 4);
    blockSums_.resize(stride);
    tripleSums_.resize(3 * std::size_t{kMostDisplacementsPerRow} * stride);
    distances_.resize(3 * stride);
    weights_.resize(2 * std::size_t{kMostPairs} * stride);
    samplePairs_.resize(4 * stride);
    band_.planes = &planes;
    band_.tables = &tables;
    band_.blockStride = stride;
    band_.weightSum = weightSum_.data();
    band_.highSum = highSum_.data();
    band_.lowSum = lowSum_.data();
    band_.blockSums = blockSums_.data();
    band_.tripleSums = tripleSums_.data();
    band_.distances = distances_.data();
    band_.weights = weights_.data();
    band_.samplePairs = samplePairs_.data();
  }

  [[nodiscard]] SimilarityBand Band(int firstBlockRow, int blockRows) const {
    SimilarityBand band = band_;
    band.firstBlockRow = firstBlockRow;
    band.blockRows = blockRows;
    return band;
  }

 private:
  std::vector<std::int32_t> weightSum_;
  std::vector<std::int32_t> highSum_;
  std::vector<std::int32_t> lowSum_;
  std::vector<std::uint16_t> blockSums_;
  std::vector<std::uint16_t> tripleSums_;
  std::vector<std::uint16_t> distances_;
  std::vector<std::uint32_t> weights_;
  std::vector<std::uint32_t> samplePairs_;
  SimilarityBand band_;
};

// How a plane is cut into bands: low enough that a band's accumulators stay in the cache, and as many as give
// every thread the same number.
struct BandPlan {
  int blockRows;  // of the plane
  int bands;

  [[nodiscard]] int First(int band) const {
    return static_cast<int>(static_cast<std::int64_t>(blockRows) * band / bands);
  }
  [[nodiscard]] int MostRows() const { return (blockRows + bands - 1) / bands; }
};

BandPlan PlanBands(const WorkPlanes& planes, std::uint32_t threads) {
  constexpr int kCacheBytes = 384 * 1024;
  // Per pixel column of a block row: two sums of 4 bytes and half a weight sum; at 16 bits two sums more.
  const int bytesPerRow = planes.width * (planes.low == nullptr ? 10 : 18);
  const int rowsInCache = std::clamp(kCacheBytes / bytesPerRow, 4, 64);
  const int blockRows = planes.height / 2;
  const int share = static_cast<int>(threads) * rowsInCache;
  const int rounds = (blockRows + share - 1) / share;
  return {blockRows, std::min(blockRows, rounds * static_cast<int>(threads))};
}

// Counts displacements over all bands and passes them on as the steps that the calling thread would have
// taken had the threads shared the displacements.
class KernelProgress {
 public:
  KernelProgress(ProgressSink* sink, int displacements, int bands, std::uint32_t threads)
      : sink_(sink),
        steps_((displacements + static_cast<int>(threads) - 1) / static_cast<int>(threads)),
        units_(static_cast<std::int64_t>(displacements) * bands) {}

  void Count(int displacements, bool onCaller) {
    const std::int64_t done = done_.fetch_add(displacements, std::memory_order_relaxed) + displacements;
    if (onCaller && sink_ != nullptr) AdvanceTo(done * steps_ / units_);
  }
  void Finish() {
    if (sink_ != nullptr) AdvanceTo(steps_);
  }

 private:
  void AdvanceTo(std::int64_t step) {
    for (; shown_ < step; ++shown_) sink_->Advance(1);
  }

  ProgressSink* sink_;
  std::int64_t steps_;
  std::int64_t units_;
  std::int64_t shown_ = 0;
  std::atomic<std::int64_t> done_{0};
};

// Row after row of the window's upper half, and the left half of its middle row.
void FilterBand(const EngineContext& context, const SimilarityBand& band, std::uint32_t quality,
                KernelProgress& progress, bool onCaller) {
  const int half = SearchWindow(quality) / 2;
  InitBand(band);  // the centre, which counts as one of the middle row's
  for (int dy = -half; dy <= 0; ++dy) {
    const DisplacementRow row{dy, -half, dy < 0 ? half : -1, half};
    AccumulateDisplacements(band, row);
    progress.Count(dy < 0 ? 2 * half + 1 : half + 1, onCaller);
    if (context.control.Aborted()) return;
  }
}

int RunKernel(EngineContext& context, const PlaneJob& job, std::uint32_t threads) {
  const auto tables = context.weightTables.Acquire(job.dynamicity, std::pow(job.strength, 3.5));
  if (tables == nullptr) return 1;
  WorkPicture work;
  if (work.Build(*job.source, *job.guide, SearchWindow(job.quality) / 2)) return 1;
  const std::uint32_t usedThreads = std::clamp<std::uint32_t>(threads, 1, kMostKernelThreads);
  const BandPlan plan = PlanBands(work.planes(), usedThreads);
  std::vector<BandStorage> storage;
  try {
    storage.reserve(usedThreads);
    for (std::uint32_t t = 0; t < usedThreads; ++t)
      storage.emplace_back(work.planes(), *tables, plan.MostRows());
  } catch (const std::bad_alloc&) {
    return 1;
  }
  KernelProgress progress(job.progressWindow, DisplacementCount(job.quality), plan.bands, usedThreads);
  const auto filter = [&](int index, std::uint32_t thread) {
    if (context.control.Aborted()) return;
    const int first = plan.First(index);
    const SimilarityBand band = storage[thread].Band(first, plan.First(index + 1) - first);
    FilterBand(context, band, job.quality, progress, thread == 0);
    if (context.control.Aborted()) return;
    SBxPicBuf& destination = *job.destination;
    NormaliseBand(band, Row<unsigned char>(destination, 2 * first), destination.rowStride,
                  destination.bitsPerComponent);
  };
  ParallelFor(usedThreads, plan.bands, std::ref(filter));  // by reference: a copy would ask for memory
  if (!context.control.Aborted()) progress.Finish();
  return 0;
}

}  // namespace

int SearchWindow(std::uint32_t quality) {
  switch (quality) {
    case kQualityLow:
      return 7;
    case kQualityMedium:
      return 13;
    default:
      return 21;
  }
}

int DisplacementCount(std::uint32_t quality) {
  const int side = SearchWindow(quality);
  return side * side / 2 + 1;
}

// The depths differ in what the work picture holds, and share everything else.
int DenoiseKernel8(EngineContext& context, const PlaneJob& job) {
  return RunKernel(context, job, 1);
}

int DenoiseKernel8Threaded(EngineContext& context, const PlaneJob& job, std::uint32_t threads) {
  return RunKernel(context, job, threads);
}

int DenoiseKernel16(EngineContext& context, const PlaneJob& job) {
  return RunKernel(context, job, 1);
}

int DenoiseKernel16Threaded(EngineContext& context, const PlaneJob& job, std::uint32_t threads) {
  return RunKernel(context, job, threads);
}

}  // namespace mirellon::engine
