// Which instruction set the fast loops use.
#pragma once

#include <string>
#include <string_view>

namespace mirellon::engine {

// "scalar", "ssse3", "sse4", "avx2", "avx3", "avx3_dl" or "neon": the target that the loops run on here.
[[nodiscard]] std::string SimdTargetName();

// The targets that this machine can run, best first, separated by blanks.
[[nodiscard]] std::string SupportedSimdTargets();

// Makes all later calls run on the target of that name; true = refused (an unknown name, or not to be had
// here), nothing changes then. Called once at program start, or between runs in tests: it changes the choice
// for the whole process.
[[nodiscard]] bool ForceSimdTarget(std::string_view name);

// The same by the environment variable MIRELLON_SIMD; unset or empty changes nothing. True = refused.
[[nodiscard]] bool ForceSimdTargetFromEnvironment();

}  // namespace mirellon::engine
