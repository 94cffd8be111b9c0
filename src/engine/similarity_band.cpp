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
HWY_EXPORT(AccumulateDisplacementsImpl);
HWY_EXPORT(NormaliseBandImpl);
HWY_EXPORT(TargetImpl);

std::size_t BlockStride(int blocks) {
  // Up to ten block columns more than the picture's for the displaced places, two for neighbourhoods, and
  // whole steps of the widest target (64 blocks).
  constexpr std::size_t kStepBlocks = 64;
  const std::size_t wanted = static_cast<std::size_t>(blocks) + 16;
  return (wanted / kStepBlocks + 2) * kStepBlocks;
}

void InitBand(const SimilarityBand& band) {
  HWY_DYNAMIC_DISPATCH(InitBandImpl)(band);
}

void AccumulateDisplacements(const SimilarityBand& band, const DisplacementRow& displacements) {
  HWY_DYNAMIC_DISPATCH(AccumulateDisplacementsImpl)(band, displacements);
}

void NormaliseBand(const SimilarityBand& band, unsigned char* rows, std::ptrdiff_t rowStride, int bits) {
  HWY_DYNAMIC_DISPATCH(NormaliseBandImpl)(band, rows, rowStride, bits);
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
