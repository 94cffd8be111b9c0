// The texts of the fragment programs, from src/gpu/shaders.
#pragma once

#include <array>
#include <cstddef>

namespace mirellon::gpu {

inline constexpr std::size_t kProgramCount = 16;

// By slot (see programs.h).
extern const std::array<const char*, kProgramCount> kProgramTexts;

}  // namespace mirellon::gpu
