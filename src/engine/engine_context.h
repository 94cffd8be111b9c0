// What all engine calls of one program share.
#pragma once

#include <array>
#include <cstdint>

#include "base/progress_sink.h"
#include "base/run_control.h"
#include "engine/weight_tables.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// What the plane filter hands to a kernel or a card: pictures of one component, even sides and one geometry,
// and the source's samples at 8 bits, the guide. Kernels get one picture as destination and source, and as
// guide where it has 8 bits: they copy what they read before they write. A card gets a destination of its
// own.
struct PlaneJob {
  picture::SBxPicBuf* destination = nullptr;  // with storage
  const picture::SBxPicBuf* source = nullptr;
  const picture::SBxPicBuf* guide = nullptr;
  double strength = 0.0;
  std::uint32_t quality = 0;
  double dynamicity = 0.0;                       // twice m_dDynamics
  base::ProgressSink* progressWindow = nullptr;  // null: no progress
  double noiseLevel = 0.0;                       // the effective one, for a card that reads it
  const base::RunControl* control = nullptr;     // only a card is given one; null: never aborted
};

// The three planes of a colour picture for a card, Y, U and V, each as above. The guides have 8 bits.
struct ColourJob {
  std::array<picture::SBxPicBuf*, 3> destination{};  // with storage, apart from the sources
  std::array<const picture::SBxPicBuf*, 3> source{};
  std::array<const picture::SBxPicBuf*, 3> guide{};
  double strength = 0.0;
  double strengthChroma = 0.0;
  std::uint32_t quality = 0;
  double dynamicity = 0.0;
  base::ProgressSink* progressWindow = nullptr;
  double noiseLevel = 0.0;
  double noiseLevelChroma = 0.0;
  const base::RunControl* control = nullptr;
};

// The graphics card, as far as the engine knows it.
class CardFilter {
 public:
  CardFilter() = default;
  CardFilter(const CardFilter&) = delete;
  CardFilter& operator=(const CardFilter&) = delete;
  virtual ~CardFilter() = default;

  [[nodiscard]] virtual bool HardwareUsable() const = 0;
  [[nodiscard]] virtual int MaxTileSide() const = 0;  // pixels
  // Whether jobs need noise levels. They are those of a whole region, which is then filtered whole.
  [[nodiscard]] virtual bool ReadsNoiseLevels() const { return false; }
  // True = failed; the processor then filters the planes. An aborted job is not failed; its destination is
  // left as it was. The progress advances by one for each displacement.
  [[nodiscard]] virtual bool FilterPlane(const PlaneJob& job) = 0;
  [[nodiscard]] virtual bool FilterColour(const ColourJob& job) = 0;
};

// Why a card is no longer asked.
enum class CardFault : std::uint8_t {
  kNone,
  kFailed,       // it says so itself
  kImplausible,  // a result that no average of the source can be
  kDisagrees,    // samples of a result differ from the processor's
};

// What the card did in one run. A fault is final for the run: the processor does that job and all others.
struct CardRun {
  int jobs = 0;  // done by the card
  CardFault fault = CardFault::kNone;
  bool sampled = false;               // a result was compared with the processor's
  double sampleDifference = 0.0;      // the mean one then, in 8-bit steps
  bool processorIsElsewhere = false;  // a failed job is handed back (kCardGaveUp), not done by the processor
};

// Owned by the application, one per program (tests make one each), handed down by reference.
struct EngineContext {
  base::RunControl control;
  std::uint32_t processorCount = 1;  // threads that a whole-picture run may use
  WeightTableCache weightTables;
  CardFilter* card = nullptr;  // not owned; null: none
  CardRun cardRun;             // of the current or last whole-picture run; written by whoever uses the card
};

// The processors that this process may run on (its affinity set), counted modulo 256, at least 1.
[[nodiscard]] std::uint32_t CountProcessors();

}  // namespace mirellon::engine
