// The texts of the fragment programs, from src/gpu/shaders.
#pragma once

#include <array>
#include <cstddef>

namespace mirellon::gpu {

inline constexpr std::size_t kProgramCount = 16;

// By slot (see programs.h).
using ProgramTexts = std::array<const char*, kProgramCount>;
extern const ProgramTexts kProgramTexts;

}  // namespace mirellon::gpu
