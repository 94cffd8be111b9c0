// Sets made from photographs.
#pragma once

#include <filesystem>
#include <map>
#include <utility>
#include <vector>

#include "cli/exit_status.h"
#include "cli/shell.h"
#include "profiles/profile_store.h"

namespace mirellon::cli {

// Camera and entry of a set that was stored.
using StoredSet = std::pair<std::wstring, std::uint32_t>;

// The noise of the photographs of one camera and speed.
struct NoiseSums {
  double luminance = 0.0;
  double chrominance = 0.0;
  int count = 0;
};

// By camera key and ISO speed.
using NoiseByCamera = std::map<StoredSet, NoiseSums>;

// Measures the photographs. What fails is printed; the others are measured all the same. kDone when all went
// well, else the status of the only photograph, or kFailed; `measured` is empty when interrupted.
[[nodiscard]] ExitStatus MeasurePhotos(const std::vector<std::filesystem::path>& photos,
                                       NoiseByCamera& measured, Shell& shell);

// Puts one set a camera and ISO speed into the store: the mean of the noise measured, and strengths
// interpolated between `sets` (at least one). What is refused is printed and left out. kDone when nothing
// was, else kInput or kMemory.
[[nodiscard]] ExitStatus AddMeasured(const NoiseByCamera& measured,
                                     const std::vector<engine::DenoiseParameters>& sets,
                                     profiles::NoiseProfileStore& store, std::vector<StoredSet>& stored,
                                     Shell& shell);

}  // namespace mirellon::cli
