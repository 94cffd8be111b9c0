#include "engine/simd_target.h"

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
  for (const std::int64_t target : CompiledBandTargets()) {
    if (NameOf(target) != name) continue;
    hwy::SetSupportedTargetsForTest(target);
    return false;
  }
  return true;
}

bool ForceSimdTargetFromEnvironment() {
  const char* name = std::getenv("MIRELLON_SIMD");
  return name != nullptr && *name != '\0' && ForceSimdTarget(name);
}

}  // namespace mirellon::engine
