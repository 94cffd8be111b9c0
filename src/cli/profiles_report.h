// Stored sets on standard output.
#pragma once

#include <ostream>

#include "profiles/profile_store.h"

namespace mirellon::cli {

// Cameras and their speeds in store order; as JSON one array of {"camera", "iso": [...]}.
void PrintCameras(std::ostream& out, const profiles::NoiseProfileStore& store, bool json);

// One set under the names of the profile file. As JSON one object on a line of its own.
void PrintSet(std::ostream& out, const profiles::CameraProfile& camera, std::size_t entry, bool json);

// The file that is read and written; as JSON the shipped one too (null: none).
void PrintPaths(std::ostream& out, const profiles::ProfilePaths& paths, bool json);

}  // namespace mirellon::cli
