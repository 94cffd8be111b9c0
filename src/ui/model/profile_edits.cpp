#include "ui/model/profile_edits.h"

#include <algorithm>

namespace mirellon::ui {

using profiles::NoiseProfileStore;

StoredPlace FindStored(const NoiseProfileStore& store, const std::wstring& camera) {
  const auto& cameras = store.cameras();
  const auto found = std::find_if(cameras.begin(), cameras.end(),
                                  [&](const profiles::CameraProfile& other) { return other.name == camera; });
  if (found == cameras.end()) return {};
  return {true, static_cast<std::uint32_t>(found - cameras.begin()), 0};
}

StoredPlace FindStored(const NoiseProfileStore& store, const std::wstring& camera, std::uint32_t iso) {
  StoredPlace place = FindStored(store, camera);
  if (!place.found) return {};
  const std::vector<std::uint32_t>& speeds = store.cameras()[place.camera].isoValues;
  const auto found = std::find(speeds.begin(), speeds.end(), iso);
  if (found == speeds.end()) return {};
  place.entry = static_cast<std::uint32_t>(found - speeds.begin());
  return place;
}

void ProfileEdits::DeleteCamera(const NoiseProfileStore& store, std::uint32_t camera) {
  edits_.emplace_back(Deletion{store.cameras()[camera].name, true, 0});
}

void ProfileEdits::DeleteIso(const NoiseProfileStore& store, std::uint32_t camera, std::uint32_t entry) {
  edits_.emplace_back(
      Deletion{store.cameras()[camera].name, false, store.cameras()[camera].isoValues[entry]});
}

bool ProfileEdits::Replay(NoiseProfileStore& store) const {
  for (const auto& edit : edits_) {
    if (const auto* addition = std::get_if<Addition>(&edit)) {
      if (store.AddOrReplace(addition->camera, addition->iso, addition->parameters)) return true;
      continue;
    }
    const auto& deletion = std::get<Deletion>(edit);
    const StoredPlace place = deletion.whole ? FindStored(store, deletion.camera)
                                             : FindStored(store, deletion.camera, deletion.iso);
    if (!place.found) continue;
    // Refused for the catch-all's last entry only, which then stays.
    (void)(deletion.whole ? store.DeleteCamera(place.camera) : store.DeleteIso(place.camera, place.entry));
  }
  return false;
}

}  // namespace mirellon::ui
