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

namespace {

// The loops for AVX-512 have a form for newer processors, which Highway counts as a target of its own.
bool NewerAvx512Allowed() {
#if HWY_ARCH_X86 && (HWY_COMPILER_GCC || HWY_COMPILER_CLANG)
  return (hwy::SupportedTargets() & HWY_AVX3_DL) != 0 && __builtin_cpu_supports("avx512vnni") != 0;
#else
  return false;
#endif
}

}  // namespace

std::int64_t ActiveBandTarget() {
  const std::int64_t target = HWY_DYNAMIC_DISPATCH(TargetImpl)();
#if HWY_ARCH_X86
  if (target == HWY_AVX3 && NewerAvx512Allowed()) return HWY_AVX3_DL;
#endif
  return target;
}

bool HasFusedProducts() {
  return NewerAvx512Allowed();
}

const std::vector<std::int64_t>& CompiledBandTargets() {
  // Asked before any target is forced, since forcing one hides the others from Highway.
  static const std::vector<std::int64_t> targets = [] {
    std::vector<std::int64_t> found = hwy::SupportedAndGeneratedTargets();
#if HWY_ARCH_X86
    if (NewerAvx512Allowed()) found.insert(found.begin(), HWY_AVX3_DL);
#endif
    return found;
  }();
  return targets;
}

}  // namespace mirellon::engine
#endif  // HWY_ONCE
