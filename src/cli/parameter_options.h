// The parameter set as options of the command line: one row a value.
#pragma once

#include <array>

#include "cli/value_text.h"
#include "engine/parameters.h"

namespace mirellon::cli {

struct ParameterOption {
  const char* option;  // "--strength"
  const char* key;     // the name in the profile file and in JSON
  double engine::DenoiseParameters::*value;
  double low;  // the profile file's range
  double high;
  const char* meaning;
};

inline constexpr std::array<ParameterOption, 7> kParameterOptions{{
    {"--strength", "m_dStrength", &engine::DenoiseParameters::m_dStrength, 0.0, 50.0,
     "Strength against luminance noise"},
    {"--strength-chroma", "m_dStrengthChroma", &engine::DenoiseParameters::m_dStrengthChroma, 0.0, 50.0,
     "Strength against colour noise"},
    {"--strength-chroma-large", "m_dStrengthChromaLarge", &engine::DenoiseParameters::m_dStrengthChromaLarge,
     0.0, 50.0, "Strength against large colour blotches; up to 1 does nothing"},
    {"--dynamics", "m_dDynamics", &engine::DenoiseParameters::m_dDynamics, -2.0, 2.0,
     "Where noise dominates: below 0 in dark areas, above 0 in bright ones"},
    {"--sharp-tiny", "m_dSharp1", &engine::DenoiseParameters::m_dSharp1, 0.0, 4.0,
     "Factor for tiny details after denoising; 1 leaves them"},
    {"--sharp-medium", "m_dSharp2", &engine::DenoiseParameters::m_dSharp2, 0.0, 4.0,
     "Factor for medium details"},
    {"--sharp-rough", "m_dSharp3", &engine::DenoiseParameters::m_dSharp3, 0.0, 4.0,
     "Factor for rough details"},
}};

// The noise of the photograph that a set was made from: stored with it, no setting of the filter.
inline constexpr std::array<ParameterOption, 2> kNoiseOptions{{
    {"--noise-luminance", "m_dImmerkaerY", &engine::DenoiseParameters::m_dImmerkaerY, 0.0, 10000.0,
     "Luminance noise of the photograph that the set is for"},
    {"--noise-chrominance", "m_dImmerkaerUV", &engine::DenoiseParameters::m_dImmerkaerUV, 0.0, 10000.0,
     "Its chrominance noise"},
}};

inline constexpr const char* kArtefactsKey = "m_iUseMedian";
inline constexpr std::array<Choice, 3> kArtefactChoices{{{"none", 0}, {"common", 1}, {"strong", 2}}};
inline constexpr std::array<Choice, 3> kQualityChoices{{{"low", engine::kQualityLow},
                                                        {"medium", engine::kQualityMedium},
                                                        {"superior", engine::kQualitySuperior}}};

inline constexpr int kMinJpegQuality = 1;
inline constexpr int kMaxJpegQuality = 100;
inline constexpr int kMinPngCompression = 1;
inline constexpr int kMaxPngCompression = 9;
// Files two hundredths larger than the library's own 6 makes them, in half the time.
inline constexpr int kUsualPngCompression = 5;
inline constexpr int kMinThreads = 1;
inline constexpr int kMaxThreads = 256;

}  // namespace mirellon::cli
