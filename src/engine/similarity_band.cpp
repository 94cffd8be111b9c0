#include "engine/similarity_band.h"

// foreach_target.h includes this file again for every target, and must come first.
// clang-format off
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/similarity_band.cpp"
#include "hwy/foreach_target.h"  // IWYU pragma: keep
#include "engine/similarity_band-inl.h"
// clang-format on

#if HWY_ONCE
namespace mirellon::engine {

HWY_EXPORT(InitBandImpl);
HWY_EXPORT(AccumulateDisplacementImpl);
HWY_EXPORT(NormaliseBandImpl);
HWY_EXPORT(TargetImpl);

std::size_t BlockStride(int blocks) {
  // Two block columns more on either side for the neighbourhoods of displaced places, then whole vectors of
  // the widest target (32 blocks).
  constexpr std::size_t kVectorBlocks = 32;
  const std::size_t wanted = static_cast<std::size_t>(blocks) + 16;
  return (wanted / kVectorBlocks + 2) * kVectorBlocks;
}

void InitBand(const SimilarityBand& band) {
  HWY_DYNAMIC_DISPATCH(InitBandImpl)(band);
}

void AccumulateDisplacement(const SimilarityBand& band, int dy, int dx) {
  HWY_DYNAMIC_DISPATCH(AccumulateDisplacementImpl)(band, dy, dx);
}

void NormaliseBand(const SimilarityBand& band, unsigned char* rows, std::ptrdiff_t rowStride, int width,
                   int bits) {
  HWY_DYNAMIC_DISPATCH(NormaliseBandImpl)(band, rows, rowStride, width, bits);
}

std::int64_t ActiveBandTarget() {
  return HWY_DYNAMIC_DISPATCH(TargetImpl)();
}

const std::vector<std::int64_t>& CompiledBandTargets() {
  // Asked before any target is forced, since forcing one hides the others from Highway.
  static const std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();
  return targets;
}

}  // namespace mirellon::engine
#endif  // HWY_ONCE
