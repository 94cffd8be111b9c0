#include "profiles/interpolate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "profiles/profile_file.h"

namespace mirellon::profiles {

namespace {

using engine::DenoiseParameters;
using Value = double DenoiseParameters::*;

constexpr Value kByLuminance[] = {&DenoiseParameters::m_dStrength, &DenoiseParameters::m_dDynamics,
                                  &DenoiseParameters::m_dSharp1, &DenoiseParameters::m_dSharp2,
                                  &DenoiseParameters::m_dSharp3};
constexpr Value kByChrominance[] = {&DenoiseParameters::m_dStrengthChroma,
                                    &DenoiseParameters::m_dStrengthChromaLarge};

// Between which two sets a noise lies, and how far on its way from one to the other (0 to 1).
struct Place {
  const DenoiseParameters* below;
  const DenoiseParameters* above;
  double share;

  [[nodiscard]] double Between(Value value) const {
    return below->*value + (above->*value - below->*value) * share;
  }
};

Place FindPlace(std::vector<DenoiseParameters>& sets, Value level, double noise) {
  std::stable_sort(sets.begin(), sets.end(),
                   [level](const auto& a, const auto& b) { return a.*level < b.*level; });
  const auto above =
      std::find_if(sets.begin(), sets.end(), [level, noise](const auto& set) { return set.*level >= noise; });
  if (above == sets.begin()) return {&sets.front(), &sets.front(), 0.0};
  if (above == sets.end()) return {&sets.back(), &sets.back(), 0.0};
  const DenoiseParameters& below = *(above - 1);
  return {&below, &*above, (noise - below.*level) / ((*above).*level - below.*level)};
}

}  // namespace

DenoiseParameters InterpolateByNoise(std::vector<DenoiseParameters> sets, double luminance,
                                     double chrominance) {
  DenoiseParameters result;
  result.m_dImmerkaerY = luminance;
  result.m_dImmerkaerUV = chrominance;
  Place place = FindPlace(sets, &DenoiseParameters::m_dImmerkaerY, luminance);
  for (const Value value : kByLuminance) result.*value = place.Between(value);
  result.m_iUseMedian = (place.share < 0.5 ? place.below : place.above)->m_iUseMedian;
  if (chrominance >= kNoChrominance) {
    place = FindPlace(sets, &DenoiseParameters::m_dImmerkaerUV, chrominance);
  }
  for (const Value value : kByChrominance) result.*value = place.Between(value);
  return result;
}

std::vector<engine::DenoiseParameters> CatchAllSets(const NoiseProfileStore& store) {
  NoiseProfileStore shipped({{}, store.paths().defaultFile});
  const bool found = !shipped.Load(FirstRun::kLeave) && shipped.source() == ProfileSource::kDefaultFile;
  const NoiseProfileStore& source = found ? shipped : store;
  if (source.Entry(0, 0) == nullptr) return {BuiltInParameters()};
  return source.cameras().front().parameters;
}

}  // namespace mirellon::profiles
