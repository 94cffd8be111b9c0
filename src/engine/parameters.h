// What a denoising run is asked to do.
#pragma once

#include <cstdint>

#include "base/progress_sink.h"
#include "picture/pic_buf_api.h"

namespace mirellon::engine {

// One parameter set. The defaults are those of the panel's "Set Default"; ranges are those of the profile
// file.
struct DenoiseParameters {
  std::uint32_t iso = 100;
  double m_dStrength = 10.0;             // 0 to 50; luminance. The filter's variance is its power 3.5
  double m_dStrengthChroma = 10.0;       // 0 to 50; chrominance, same mapping
  double m_dStrengthChromaLarge = 10.0;  // 0 to 50; large-scale chrominance, runs above 1.0
  double m_dDynamics = 0.0;              // -2 to 2; positive smooths bright pixels more, negative dark ones
  double m_dSharp1 = 1.0;                // 0 to 4; tiny details, 1.0 leaves them as they are
  double m_dSharp2 = 1.0;                // 0 to 4; medium details
  double m_dSharp3 = 1.0;                // 0 to 4; rough details
  double m_dImmerkaerY = 10.0;    // 0 to 10000; luminance noise of the photograph the set was made from
  double m_dImmerkaerUV = 10.0;   // 0 to 10000; chrominance noise of the same
  std::int32_t m_iUseMedian = 0;  // 0 none, 1 common, 2 strong point-artefact reduction
};

// Quality codes. Every value other than low and medium means superior.
inline constexpr std::uint32_t kQualityLow = 1;       // 7 x 7 search window
inline constexpr std::uint32_t kQualityMedium = 2;    // 13 x 13
inline constexpr std::uint32_t kQualitySuperior = 3;  // 21 x 21

// The arguments of one engine call on one picture or tile.
struct DenoiseRequest {
  picture::SBxPicBuf* destination = nullptr;  // re-created with the source's geometry
  picture::SBxPicBuf* source = nullptr;       // 8 or 16 bits, 1 or 3 components; unchanged on return
  double strength = 10.0;
  double strengthChroma = 10.0;
  double strengthChromaLarge = 10.0;
  std::uint32_t quality = kQualityMedium;
  double dynamics = 0.0;
  base::ProgressSink* progressWindow = nullptr;  // null: no progress
  double noiseLevels[3] = {-1.0, -1.0, -1.0};    // luminance, chrominance, spare; negative: estimate
  bool colour = true;                            // run the luminance/chrominance pipeline
  bool useGpu = false;
  std::uint32_t threads = 1;  // the plane filter never uses more than 16
  int pointArtefactMode = 0;  // m_iUseMedian

  // Takes what a set says of the filter: strengths, dynamics, point artefacts.
  void Use(const DenoiseParameters& parameters) {
    strength = parameters.m_dStrength;
    strengthChroma = parameters.m_dStrengthChroma;
    strengthChromaLarge = parameters.m_dStrengthChromaLarge;
    dynamics = parameters.m_dDynamics;
    pointArtefactMode = parameters.m_iUseMedian;
  }
};

}  // namespace mirellon::engine
