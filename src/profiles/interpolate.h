// A set for a noise between those that sets are stored for.
#pragma once

#include <vector>

#include "engine/parameters.h"
#include "profiles/profile_store.h"

namespace mirellon::profiles {

// The set for a photograph of these noise levels, which become its own: luminance strength, dynamics and
// sharpening run in a straight line between the two stored sets on either side of the luminance noise,
// chrominance strengths likewise by chrominance (by luminance for a grey picture, below 1e-5), and end at the
// outermost sets; points are treated as in the set of the nearest luminance. Its ISO speed is left to the
// caller. `sets` is not empty, in any order.
[[nodiscard]] engine::DenoiseParameters InterpolateByNoise(std::vector<engine::DenoiseParameters> sets,
                                                           double luminance, double chrominance);

// The sets to interpolate between: those shipped for unknown cameras, even where the user's file says
// otherwise by now, else those that the store has for them. Never empty.
[[nodiscard]] std::vector<engine::DenoiseParameters> CatchAllSets(const NoiseProfileStore& store);

}  // namespace mirellon::profiles
