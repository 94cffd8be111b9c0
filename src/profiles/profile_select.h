// Which stored set a photograph gets.
#pragma once

#include <cstdint>
#include <string>

#include "engine/parameters.h"
#include "profiles/profile_store.h"

namespace mirellon::profiles {

// What a photograph tells of its camera: the texts of its EXIF summary.
struct PhotoIdentity {
  std::wstring make;
  std::wstring model;
  std::wstring iso;
};

enum class ProfileRule {
  kExact,     // the photograph's camera, or the catch-all for one that is not stored, at its ISO speed
  kNearest,   // that camera, the speed whose noise levels are nearest to the photograph's
  kFallback,  // batch: the catch-all's first entry
};

// "exact", "nearest", "fallback".
[[nodiscard]] const char* RuleName(ProfileRule rule);

struct ProfileChoice {
  std::uint32_t camera = 0;
  std::uint32_t entry = 0;
  ProfileRule rule = ProfileRule::kFallback;
  // The set; null when the store, read from a damaged file, has no such entry. Valid until the store changes.
  const engine::DenoiseParameters* parameters = nullptr;
};

// As the panel chooses: the stored camera (the catch-all when there is none), its entry at the photograph's
// ISO speed, else the one nearest to the measured noise.
[[nodiscard]] ProfileChoice SelectProfileForImage(const NoiseProfileStore& store, const PhotoIdentity& photo,
                                                  double luminanceNoise, double chrominanceNoise);

// As the batch chooses: the stored camera at exactly the photograph's ISO speed, else the catch-all's first
// entry. When `parameters` is null, the previous file's stay in use.
[[nodiscard]] ProfileChoice SelectProfileForBatch(const NoiseProfileStore& store, const PhotoIdentity& photo);

// As the panel chooses after the user has picked a camera or deleted an entry: the entry at the photograph's
// ISO speed, else the nearest.
[[nodiscard]] ProfileChoice SelectEntryOfCamera(const NoiseProfileStore& store, std::uint32_t camera,
                                                const std::wstring& iso, double luminanceNoise,
                                                double chrominanceNoise);

}  // namespace mirellon::profiles
