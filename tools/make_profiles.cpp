// mirellon-make-profiles FILE: the profile file shipped with the program. For each ISO speed the sample
// photograph is taken as a sensor at that speed would, its noise is measured, and the strengths are searched
// that bring the denoised picture closest to the noiseless one.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "engine/noise_estimate.h"
#include "engine/whole_picture.h"
#include "picture/pic_buf.h"
#include "profiles/interpolate.h"
#include "profiles/profile_store.h"
#include "sample_scene.h"
#include "sample_sensor.h"

namespace {

using mirellon::engine::DenoiseParameters;
using mirellon::picture::PicBuf;
using mirellon::tools::Light;

// Pieces of the scene, one below the other: balloons and sky, sign and meadow, cabin and lake, mountains. Top
// left corners, in units of the scene; 1000 pixels a unit, as in the sample photograph.
constexpr double kCorners[][2] = {{2.20, 0.15}, {1.25, 1.35}, {0.30, 0.90}, {0.80, 0.30}};
constexpr int kPieceWidth = 480;
constexpr int kPieceHeight = 240;
constexpr double kPixel = 0.001;
constexpr std::uint64_t kSeed = 20240301;

// Searched; the speeds between them are interpolated by the noise measured at them.
constexpr int kSearched[] = {100, 200, 400, 800, 1600, 3200, 6400, 12800, 25600};
constexpr int kBetween[] = {125,  160,  250,  320,  500,  640,   1000,  1250,
                            2000, 2500, 4000, 5000, 8000, 10000, 16000, 20000};

// A difference that nobody sees: within it the weaker strength is taken, which keeps more texture.
constexpr double kInvisible = 0.03;  // dB

void Store(PicBuf& picture, int x, int y, const Light& light) {
  std::uint8_t* pixel = mirellon::picture::Row<std::uint8_t>(picture, y) + static_cast<std::ptrdiff_t>(3) * x;
  pixel[0] = mirellon::tools::Develop(light.blue);
  pixel[1] = mirellon::tools::Develop(light.green);
  pixel[2] = mirellon::tools::Develop(light.red);
}

struct Sample {
  PicBuf clean;
  PicBuf noisy;
};

Sample Draw(int iso) {
  const int height = kPieceHeight * static_cast<int>(std::size(kCorners));
  Sample sample{PicBuf(kPieceWidth, height, 3, 8), PicBuf(kPieceWidth, height, 3, 8)};
  if (sample.clean.empty() || sample.noisy.empty()) return {};
  const mirellon::tools::Sensor sensor = mirellon::tools::SensorAt(iso);
  for (int y = 0; y < height; ++y) {
    const double* corner = kCorners[y / kPieceHeight];
    const double top = corner[1] + (y % kPieceHeight + 0.5) * kPixel;
    for (int x = 0; x < kPieceWidth; ++x) {
      const Light light = mirellon::tools::SceneLight(corner[0] + (x + 0.5) * kPixel, top, kPixel);
      const auto number = static_cast<std::uint64_t>(y) * kPieceWidth + static_cast<std::uint64_t>(x);
      Store(sample.clean, x, y, light);
      Store(sample.noisy, x, y, Expose(light, sensor, number, kSeed + static_cast<std::uint64_t>(iso)));
    }
  }
  return sample;
}

double Psnr(const PicBuf& a, const PicBuf& b) {
  double sum = 0.0;
  for (int y = 0; y < a->height; ++y) {
    const std::uint8_t* first = mirellon::picture::Row<std::uint8_t>(a, y);
    const std::uint8_t* second = mirellon::picture::Row<std::uint8_t>(b, y);
    for (int i = 0; i < a->width * a->components; ++i) {
      const double difference = static_cast<double>(first[i]) - static_cast<double>(second[i]);
      sum += difference * difference;
    }
  }
  const double samples = static_cast<double>(a->width) * a->height * a->components;
  return 10.0 * std::log10(255.0 * 255.0 * samples / sum);
}

// What is searched, in whole numbers. Dynamics stays 0: searched too, it gained at most 0.2 dB, jumping from
// one speed to the next.
struct Coordinate {
  double DenoiseParameters::*value;
  int low;
  int high;
};

constexpr std::array<Coordinate, 3> kCoordinates{{{&DenoiseParameters::m_dStrength, 1, 50},
                                                  {&DenoiseParameters::m_dStrengthChroma, 1, 50},
                                                  {&DenoiseParameters::m_dStrengthChromaLarge, 0, 50}}};
using Position = std::array<int, kCoordinates.size()>;

class Search {
 public:
  Search(mirellon::engine::EngineContext& context, Sample& sample) : context_(context), sample_(sample) {}

  // Uphill from `start`, along one coordinate at a time, with steps that halve; then back to weaker values
  // as long as nobody sees the difference.
  Position Run(Position start) {
    best_ = start;
    for (int step = 8; step >= 1; step /= 2) {
      while (ImproveAll(step)) {
      }
    }
    const double least = Quality(best_) - kInvisible;
    for (std::size_t i = 0; i < best_.size(); ++i) {
      for (Position weaker = best_; weaker[i] > kCoordinates[i].low; best_ = weaker) {
        --weaker[i];
        if (Quality(weaker) < least) break;
      }
    }
    return best_;
  }

  // dB between the denoised picture and the noiseless one.
  double Quality(const Position& position) {
    const auto [known, added] = known_.try_emplace(position, 0.0);
    if (added) known->second = Measure(position);
    return known->second;
  }

  static DenoiseParameters ParametersAt(const Position& position) {
    DenoiseParameters parameters;
    for (std::size_t i = 0; i < position.size(); ++i) {
      parameters.*kCoordinates[i].value = position[i];
    }
    return parameters;
  }

 private:
  bool ImproveAll(int step) {
    bool improved = false;
    for (std::size_t i = 0; i < best_.size(); ++i) {
      for (const int change : {step, -step}) {
        Position other = best_;
        other[i] = std::clamp(other[i] + change, kCoordinates[i].low, kCoordinates[i].high);
        if (other == best_ || Quality(other) <= Quality(best_)) continue;
        best_ = other;
        improved = true;
      }
    }
    return improved;
  }

  double Measure(const Position& position) {
    const DenoiseParameters parameters = ParametersAt(position);
    PicBuf denoised;
    mirellon::engine::DenoiseRequest request;
    request.destination = &denoised.record();
    request.source = &sample_.noisy.record();
    request.strength = parameters.m_dStrength;
    request.strengthChroma = parameters.m_dStrengthChroma;
    request.strengthChromaLarge = parameters.m_dStrengthChromaLarge;
    request.dynamics = parameters.m_dDynamics;
    const bool done = mirellon::engine::DenoiseWholePicture(context_, request, /*fusion=*/false);
    return done ? Psnr(denoised, sample_.clean) : 0.0;
  }

  mirellon::engine::EngineContext& context_;
  Sample& sample_;
  Position best_{};
  std::map<Position, double> known_;
};

// The set of a searched speed, and where the next search may start.
DenoiseParameters SearchedSet(mirellon::engine::EngineContext& context, int iso, Position& position) {
  Sample sample = Draw(iso);
  const mirellon::engine::MeasuredNoise noise = mirellon::engine::MeasureNoise(sample.noisy);
  Search search(context, sample);
  position = search.Run(position);
  DenoiseParameters set = Search::ParametersAt(position);
  set.m_dImmerkaerY = noise.luminance;
  set.m_dImmerkaerUV = noise.chrominance;
  std::printf("ISO %5d: noise %.2f %.2f, strengths %2.0f %2.0f %2.0f, %.2f dB became %.2f dB\n", iso,
              set.m_dImmerkaerY, set.m_dImmerkaerUV, set.m_dStrength, set.m_dStrengthChroma,
              set.m_dStrengthChromaLarge, Psnr(sample.noisy, sample.clean), search.Quality(position));
  std::fflush(stdout);
  return set;
}

// Strengths to a tenth, as the panel shows them.
DenoiseParameters InterpolatedSet(const std::vector<DenoiseParameters>& sets, int iso) {
  const Sample sample = Draw(iso);
  const mirellon::engine::MeasuredNoise noise = mirellon::engine::MeasureNoise(sample.noisy);
  DenoiseParameters set = mirellon::profiles::InterpolateByNoise(sets, noise.luminance, noise.chrominance);
  for (const Coordinate& coordinate : kCoordinates) {
    set.*coordinate.value = std::round(set.*coordinate.value * 10.0) / 10.0;
  }
  return set;
}

bool Add(mirellon::profiles::NoiseProfileStore& store, int iso, const DenoiseParameters& set) {
  return store.AddOrReplace(mirellon::profiles::kUnknownCamera, std::to_wstring(iso), set);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: mirellon-make-profiles FILE\n");
    return 2;
  }
  mirellon::engine::EngineContext context;
  mirellon::profiles::NoiseProfileStore store({argv[1], {}});
  Position position{10, 10, 0};
  std::vector<DenoiseParameters> sets;
  bool failed = false;
  for (const int iso : kSearched) {
    sets.push_back(SearchedSet(context, iso, position));
    failed = failed || Add(store, iso, sets.back());
  }
  for (const int iso : kBetween) failed = failed || Add(store, iso, InterpolatedSet(sets, iso));
  if (failed || store.Save()) {
    std::fprintf(stderr, "mirellon-make-profiles: '%s': %s\n", argv[1], store.cause().c_str());
    return 1;
  }
  return 0;
}
