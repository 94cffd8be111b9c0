// What a session has changed in the stored sets.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "engine/parameters.h"
#include "profiles/profile_store.h"

namespace mirellon::ui {

// Additions and deletions by name, in their order, so that they can be made again on a store that others have
// changed meanwhile. What is not there any more need not be deleted.
class ProfileEdits {
 public:
  void Add(const std::wstring& camera, const std::wstring& iso, const engine::DenoiseParameters& parameters) {
    edits_.emplace_back(Addition{camera, iso, parameters});
  }
  // Indices of the store as it is before the deletion.
  void DeleteCamera(const profiles::NoiseProfileStore& store, std::uint32_t camera);
  void DeleteIso(const profiles::NoiseProfileStore& store, std::uint32_t camera, std::uint32_t entry);

  // True = failed: memory refused.
  [[nodiscard]] bool Replay(profiles::NoiseProfileStore& store) const;

  [[nodiscard]] bool empty() const { return edits_.empty(); }
  void Clear() { edits_.clear(); }

 private:
  struct Addition {
    std::wstring camera;
    std::wstring iso;
    engine::DenoiseParameters parameters;
  };
  struct Deletion {
    std::wstring camera;
    bool whole = false;
    std::uint32_t iso = 0;  // speed, unless whole
  };
  std::vector<std::variant<Addition, Deletion>> edits_;
};

// Where a camera of exactly that name, and an entry of exactly that speed, lie in the store.
struct StoredPlace {
  bool found = false;
  std::uint32_t camera = 0;
  std::uint32_t entry = 0;
};
[[nodiscard]] StoredPlace FindStored(const profiles::NoiseProfileStore& store, const std::wstring& camera);
[[nodiscard]] StoredPlace FindStored(const profiles::NoiseProfileStore& store, const std::wstring& camera,
                                     std::uint32_t iso);

}  // namespace mirellon::ui
