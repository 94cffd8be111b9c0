// Sets made from photographs.
#pragma once

#include <filesystem>
#include <utility>
#include <vector>

#include "cli/exit_status.h"
#include "cli/shell.h"
#include "profiles/profile_store.h"

namespace mirellon::cli {

// Camera and entry of a set that was stored.
using StoredSet = std::pair<std::wstring, std::uint32_t>;

// Measures the photographs and puts one set a camera and ISO speed into the store: the mean of the noise
// measured, and strengths interpolated between `sets` (at least one). What fails is printed; the
// others are stored. kDone when all went well, else the status of the only photograph, or kFailed.
[[nodiscard]] ExitStatus MeasureProfiles(const std::vector<std::filesystem::path>& photos,
                                         const std::vector<engine::DenoiseParameters>& sets,
                                         profiles::NoiseProfileStore& store, std::vector<StoredSet>& stored,
                                         Shell& shell);

}  // namespace mirellon::cli
