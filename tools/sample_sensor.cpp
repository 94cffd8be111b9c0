#include "sample_sensor.h"

#include <cmath>

#include "plain_math.h"

namespace mirellon::tools {

namespace {

// A stream of random numbers of one pixel and channel.
class Stream {
 public:
  explicit Stream(std::uint64_t state) : state_(state) {}

  // (0, 1]
  double Unit() { return 1.0 - UnitFromBits(MixBits(state_++)); }

  // Mean 0, standard deviation 1 (Box and Muller).
  double Normal() {
    const double radius = std::sqrt(-2.0 * 0.69314718055994530942 * Log2(Unit()));
    return radius * SineOfTurns(Unit());
  }

  double Poisson(double mean) {
    // Well above zero the distribution is as good as normal, and multiplying on would take long.
    if (mean > 40.0) return std::floor(mean + std::sqrt(mean) * Normal() + 0.5);
    const double least = Exp(-mean);
    double product = Unit();
    double count = 0.0;
    while (product > least) {
      product *= Unit();
      count += 1.0;
    }
    return count;
  }

 private:
  std::uint64_t state_;
};

double Count(double light, double white, double readNoise, std::uint64_t state) {
  Stream stream(state);
  const double electrons = stream.Poisson(std::fmax(0.0, light) * white) + readNoise * stream.Normal();
  return electrons / white;
}

}  // namespace

Sensor SensorAt(int iso) {
  Sensor sensor;
  const double gain = static_cast<double>(kSampleIso) / iso;
  sensor.white = {sensor.white.red * gain, sensor.white.green * gain, sensor.white.blue * gain};
  return sensor;
}

Light Expose(const Light& light, const Sensor& sensor, std::uint64_t pixel, std::uint64_t seed) {
  const std::uint64_t state = MixBits(seed ^ MixBits(pixel));
  return {Count(light.red, sensor.white.red, sensor.readNoise, MixBits(state ^ 1U)),
          Count(light.green, sensor.white.green, sensor.readNoise, MixBits(state ^ 2U)),
          Count(light.blue, sensor.white.blue, sensor.readNoise, MixBits(state ^ 3U))};
}

std::uint8_t Develop(double light) {
  const double held = Saturate(light);
  const double shown = held <= 0.0031308 ? 12.92 * held : 1.055 * Power(held, 1.0 / 2.4) - 0.055;
  return static_cast<std::uint8_t>(std::floor(shown * 255.0 + 0.5));
}

}  // namespace mirellon::tools
