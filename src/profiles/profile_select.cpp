#include "profiles/profile_select.h"

#include "profiles/camera_key.h"
#include "profiles/number_text.h"

namespace mirellon::profiles {

namespace {

bool HasSpeed(const NoiseProfileStore& store, std::uint32_t camera, std::uint32_t entry,
              const std::wstring& iso) {
  if (store.Entry(camera, entry) == nullptr) return false;
  return store.cameras()[camera].isoValues[entry] == static_cast<std::uint32_t>(ClampedInteger(iso));
}

ProfileChoice Choice(const NoiseProfileStore& store, std::uint32_t camera, std::uint32_t entry,
                     ProfileRule rule) {
  return {camera, entry, rule, store.Entry(camera, entry)};
}

}  // namespace

const char* RuleName(ProfileRule rule) {
  switch (rule) {
    case ProfileRule::kExact:
      return "exact";
    case ProfileRule::kNearest:
      return "nearest";
    case ProfileRule::kFallback:
      break;
  }
  return "fallback";
}

ProfileChoice SelectEntryOfCamera(const NoiseProfileStore& store, std::uint32_t camera,
                                  const std::wstring& iso, double luminanceNoise, double chrominanceNoise) {
  const std::uint32_t entry = store.FindIso(camera, iso);
  if (HasSpeed(store, camera, entry, iso)) return Choice(store, camera, entry, ProfileRule::kExact);
  if (camera >= store.cameraCount()) return Choice(store, camera, 0, ProfileRule::kNearest);
  // By the stored name, which may lead to another camera of that name; its entry's number counts all the
  // same.
  const std::uint32_t nearest =
      store.FindNearestNoise(store.cameras()[camera].name, luminanceNoise, chrominanceNoise);
  return Choice(store, camera, nearest, ProfileRule::kNearest);
}

ProfileChoice SelectProfileForImage(const NoiseProfileStore& store, const PhotoIdentity& photo,
                                    double luminanceNoise, double chrominanceNoise) {
  const std::uint32_t camera = store.FindCamera(CameraKey(photo.make, photo.model));
  return SelectEntryOfCamera(store, camera, photo.iso, luminanceNoise, chrominanceNoise);
}

ProfileChoice SelectProfileForBatch(const NoiseProfileStore& store, const PhotoIdentity& photo) {
  if (!photo.make.empty()) {
    const std::uint32_t camera = store.FindCamera(CameraKey(photo.make, photo.model));
    const std::uint32_t entry = store.FindIso(camera, photo.iso);
    if (HasSpeed(store, camera, entry, photo.iso)) return Choice(store, camera, entry, ProfileRule::kExact);
  }
  return Choice(store, 0, 0, ProfileRule::kFallback);
}

}  // namespace mirellon::profiles
