#include "engine/simd_target.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>

#include "engine/similarity_band.h"
#include "hwy/targets.h"

namespace mirellon::engine {

namespace {

std::string LowerCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string NameOf(std::int64_t target) {
  return LowerCase(hwy::TargetName(target));
}

}  // namespace

std::string SimdTargetName() {
  return NameOf(ActiveBandTarget());
}

std::string SupportedSimdTargets() {
  std::string names;
  for (const std::int64_t target : CompiledBandTargets()) {
    if (!names.empty()) names += ' ';
    names += NameOf(target);
  }
  return names;
}

bool ForceSimdTarget(std::string_view name) {
  const auto& targets = CompiledBandTargets();
  const auto found = std::find_if(targets.begin(), targets.end(),
                                  [name](std::int64_t target) { return NameOf(target) == name; });
  if (found == targets.end()) return true;
  std::int64_t allowed = *found;
#if HWY_ARCH_X86
  if (allowed == HWY_AVX3_DL) allowed |= HWY_AVX3;  // a form of the loops for that one
#endif
  hwy::SetSupportedTargetsForTest(allowed);
  return false;
}

bool ForceSimdTargetFromEnvironment() {
  const char* name = std::getenv("MIRELLON_SIMD");
  return name != nullptr && *name != '\0' && ForceSimdTarget(name);
}

}  // namespace mirellon::engine
