// Which cards may be used.
#pragma once

#include <array>
#include <functional>
#include <string_view>

namespace mirellon::gpu {

// In the order in which they are asked for.
inline constexpr std::array<const char*, 3> kNeededExtensions = {
    "GL_EXT_framebuffer_object", "GL_ARB_shading_language_100", "GL_ARB_texture_non_power_of_two"};

// Two cards that have all that is asked for and still draw wrongly: names with "Radeon" and "1050" or "1300".
[[nodiscard]] bool RendererExcluded(std::string_view renderer);

// The first one that is not there; null when all are. Stops asking at the first.
[[nodiscard]] const char* FirstMissingExtension(const std::function<bool(const char*)>& supported);

}  // namespace mirellon::gpu
