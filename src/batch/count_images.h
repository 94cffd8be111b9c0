// How many photographs a run will meet.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "base/run_control.h"

namespace mirellon::batch {

// The files below the folder, at any depth, whose names end in ".bmp", ".gif", ".jpg", ".tif" or ".png", in
// any case. Differs from what a run processes, on purpose: files in folders named "denoised" count, names in
// ".jpeg" do not (a run goes by content). So a progress bar of this range need not come to its end exactly.
// An abort request of `control` (may be null) ends it early.
[[nodiscard]] std::uint32_t CountImages(const std::filesystem::path& folder,
                                        const base::RunControl* control = nullptr);

// The rule for one name.
[[nodiscard]] bool HasCountedExtension(std::string_view name);

// Whether a name promises a photograph: one that counts, or one in ".jpeg" or ".tiff", in any case.
[[nodiscard]] bool IsNamedAsPhotograph(std::string_view name);

}  // namespace mirellon::batch
