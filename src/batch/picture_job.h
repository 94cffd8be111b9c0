// One photograph of a batch run, from file to file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "batch/batch_report.h"
#include "batch/folder_walk.h"
#include "engine/engine_context.h"
#include "engine/parameters.h"
#include "imageio/save_image.h"
#include "profiles/profile_store.h"

namespace mirellon::batch {

struct BatchOptions {
  std::uint32_t quality = engine::kQualityMedium;
  bool useGpu = false;
  bool fusion = false;
  std::optional<int> jpegQuality = {};     // percent; none: the one of the settings file
  std::optional<int> pngCompression = {};  // 1 to 9; none: the usual one
  bool metadata = true;
  std::filesystem::path applicationData = {};  // where the settings are; empty: none are read or written
  bool dryRun = false;                         // load and choose parameters, make and write nothing
  // Whether a folder "denoised" that cannot be made ends the run, or fails its photographs only.
  bool endWithoutOutputFolder = true;
};

// What a run carries from one photograph to the next.
struct BatchState {
  engine::EngineContext& engine;
  const profiles::NoiseProfileStore& store;
  BatchOptions options;
  engine::DenoiseParameters parameters = {};  // stay in use where the store has none for a photograph
  imageio::MetadataTool tool = {};
  Identities sources = {};  // folders of photographs: nothing is ever written into them
  // What the run wrote: folder and name. Where there is no "denoised" yet, "denoised/" leads the name.
  std::set<std::pair<FileIdentity, std::string>> written = {};
};

enum class JobEnd { kReported, kAborted, kNoOutputFolder };

// Loads, chooses the parameters, denoises, sharpens, saves into "denoised" beside the photograph. The
// observer hears the start and, unless aborted, the end. An existing result is replaced, with a warning where
// it is one of this run; a photograph never is, and nothing is where "denoised" is a link.
[[nodiscard]] JobEnd ProcessPicture(BatchState& state, const std::filesystem::path& file,
                                    BatchObserver& observer, EntryReport& report);

}  // namespace mirellon::batch
