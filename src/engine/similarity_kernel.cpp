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

// Where a band lies in the picture, in blocks.
struct BandPlace {
  int firstBlockRow;
  int blockRows;
  int firstBlock;
  int blocks;
};

// Cuts a length into so many nearly equal parts.
class EvenParts {
 public:
  EvenParts(int length, int parts) : length_(length), parts_(std::clamp(parts, 1, std::max(length, 1))) {}
  [[nodiscard]] int count() const { return parts_; }
  [[nodiscard]] int First(int part) const {
    return static_cast<int>(static_cast<std::int64_t>(length_) * part / parts_);
  }
  [[nodiscard]] int Size(int part) const { return First(part + 1) - First(part); }
  [[nodiscard]] int Largest() const { return (length_ + parts_ - 1) / parts_; }

 private:
  int length_;
  int parts_;
};

// How a plane is cut into bands: narrow enough that the rows which all displacements of a dy need stay in the
// cache beside the accumulators, low enough that the accumulators do, and as many as give every thread the
// same number.
class BandPlan {
 public:
  BandPlan(const WorkPlanes& planes, std::uint32_t threads)
      : columns_(planes.width / 2, (planes.width / 2 + kMostBlocks - 1) / kMostBlocks),
        rows_(planes.height / 2, RowParts(planes, columns_, static_cast<int>(threads))) {}

  [[nodiscard]] int bands() const { return columns_.count() * rows_.count(); }
  [[nodiscard]] BandPlace Place(int band) const {
    const int row = band / columns_.count();
    const int column = band % columns_.count();
    return {rows_.First(row), rows_.Size(row), columns_.First(column), columns_.Size(column)};
  }
  [[nodiscard]] int MostRows() const { return rows_.Largest(); }
  [[nodiscard]] int MostBlocks() const { return columns_.Largest(); }

 private:
  static constexpr int kMostBlocks = 512;

  static int RowParts(const WorkPlanes& planes, const EvenParts& columns, int threads) {
    constexpr int kCacheBytes = 384 * 1024;
    // Per block of a row four sums of 4 bytes and a weight sum; at 16 bits four sums more.
    const int bytesPerRow = columns.Largest() * (planes.low == nullptr ? 20 : 36);
    const int mostRows = std::clamp(kCacheBytes / bytesPerRow, 4, 96);
    const int rowParts = (planes.height / 2 + mostRows - 1) / mostRows;
    // Whole rounds of bands for all threads.
    const int rounds = (rowParts * columns.count() + threads - 1) / threads;
    return (rounds * threads + columns.count() - 1) / columns.count();
  }

  EvenParts columns_;
  EvenParts rows_;
};

// What a thread needs for the band it works on.
class BandStorage {
 public:
  // Throws std::bad_alloc.
  BandStorage(const WorkPlanes& planes, const WeightTables& tables, int mostBlockRows, int mostBlocks) {
    const std::size_t stride = BlockStride(mostBlocks);
    const auto rows = static_cast<std::size_t>(mostBlockRows);
    weightSum_.resize(rows * stride);
    highSum_.resize(rows * stride * 4);
    if (planes.low != nullptr) lowSum_.resize(rows * stride * 4);
    blockSums_.resize(stride);
    tripleSums_.resize(6 * std::size_t{kMostPairs} * stride);
    distances_.resize(2 * stride);
    weights_.resize(2 * std::size_t{kMostPairs} * stride);
    blockTables_.assign(2 * stride, tables.Table(0));
    distancePairs_.resize(std::size_t{kMostPairs} * stride);
    samplePairs_.resize(4 * stride);
    band_.planes = &planes;
    band_.tables = &tables;
    band_.blockStride = stride;
    band_.fusedProducts = HasFusedProducts();
    band_.weightSum = weightSum_.data();
    band_.highSum = highSum_.data();
    band_.lowSum = lowSum_.data();
    band_.blockSums = blockSums_.data();
    band_.tripleSums = tripleSums_.data();
    band_.distances = distances_.data();
    band_.weights = weights_.data();
    band_.blockTables = blockTables_.data();
    band_.distancePairs = distancePairs_.data();
    band_.samplePairs = samplePairs_.data();
  }

  [[nodiscard]] SimilarityBand Band(const BandPlace& place) const {
    SimilarityBand band = band_;
    band.firstBlockRow = place.firstBlockRow;
    band.blockRows = place.blockRows;
    band.firstBlock = place.firstBlock;
    band.blocks = place.blocks;
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
  std::vector<const std::uint16_t*> blockTables_;
  std::vector<std::uint32_t> distancePairs_;
  std::vector<std::uint32_t> samplePairs_;
  SimilarityBand band_;
};

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
  const BandPlan plan(work.planes(), usedThreads);
  std::vector<BandStorage> storage;
  try {
    storage.reserve(usedThreads);
    for (std::uint32_t t = 0; t < usedThreads; ++t)
      storage.emplace_back(work.planes(), *tables, plan.MostRows(), plan.MostBlocks());
  } catch (const std::bad_alloc&) {
    return 1;
  }
  KernelProgress progress(job.progressWindow, DisplacementCount(job.quality), plan.bands(), usedThreads);
  const auto filter = [&](int index, std::uint32_t thread) {
    if (context.control.Aborted()) return;
    const BandPlace place = plan.Place(index);
    const SimilarityBand band = storage[thread].Band(place);
    FilterBand(context, band, job.quality, progress, thread == 0);
    if (context.control.Aborted()) return;
    SBxPicBuf& destination = *job.destination;
    unsigned char* rows = Row<unsigned char>(destination, 2 * place.firstBlockRow);
    const std::ptrdiff_t sampleBytes = destination.bitsPerComponent / 8;
    NormaliseBand(band, rows + 2 * std::ptrdiff_t{place.firstBlock} * sampleBytes, destination.rowStride,
                  destination.bitsPerComponent);
  };
  ParallelFor(usedThreads, plan.bands(), std::ref(filter));  // by reference: a copy would ask for memory
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
