// What a camera's sensor and its processing make of a scene's light.
#pragma once

#include <cstdint>

#include "sample_scene.h"

namespace mirellon::tools {

// A Poisson-Gaussian sensor at a high ISO speed, stated in photoelectrons: in every pixel and channel n
// electrons are counted, n Poisson distributed around light x white, with Gaussian read noise of `readNoise`
// electrons on top; dividing by `white` gives the light back. Red and blue gather less than green, and white
// balance amplifies them with their noise.
struct Sensor {
  Light white{180.0, 320.0, 220.0};  // electrons at light 1
  double readNoise = 4.0;            // electrons, standard deviation
};

// The sensor above is at ISO 12800; twice the speed is half the electrons, with the same read noise.
inline constexpr int kSampleIso = 12800;
[[nodiscard]] Sensor SensorAt(int iso);

// The light as counted at a pixel; `pixel` numbers it, so that the result does not depend on any order.
[[nodiscard]] Light Expose(const Light& light, const Sensor& sensor, std::uint64_t pixel, std::uint64_t seed);

// The sRGB curve to 8 bits, rounded, clamped.
[[nodiscard]] std::uint8_t Develop(double light);

}  // namespace mirellon::tools
