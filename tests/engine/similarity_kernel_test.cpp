#include "engine/similarity_kernel.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/denoise_plane.h"
#include "engine/reference_kernel.h"
#include "engine/simd_target.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon {
namespace {

using engine::EngineContext;
using engine::PlaneSettings;
using picture::PicBuf;

struct Case {
  int width;
  int height;
  int bits;
  std::uint32_t quality;
  double dynamics;
  double strength;
};

std::string Describe(const Case& c) {
  std::ostringstream text;
  text << c.width << "x" << c.height << " " << c.bits << " bits quality " << c.quality << " dynamics "
       << c.dynamics << " strength " << c.strength;
  return text.str();
}

PicBuf Filtered(PicBuf& source, const Case& c, std::uint32_t threads) {
  EngineContext context;
  PlaneSettings settings;
  settings.strength = c.strength;
  settings.quality = c.quality;
  settings.dynamics = c.dynamics;
  settings.threads = threads;
  PicBuf result(source->width, source->height, 1, source->bitsPerComponent);
  EXPECT_EQ(engine::DenoisePlane(context, result, source, settings), 0);
  return result;
}

std::vector<std::string> Targets() {
  std::istringstream names(engine::SupportedSimdTargets());
  std::vector<std::string> targets;
  for (std::string name; names >> name;) targets.push_back(name);
  return targets;
}

// Runs the filter on every SIMD target of this machine, on several thread counts, against the plain
// definition.
void ExpectExact(PicBuf& source, const Case& c, const std::vector<std::uint32_t>& threadCounts) {
  SCOPED_TRACE(Describe(c));
  const PicBuf expected = test::ReferencePlane(source, c.strength, static_cast<int>(c.quality), c.dynamics);
  for (const std::string& target : Targets()) {
    ASSERT_FALSE(engine::ForceSimdTarget(target));
    for (const std::uint32_t threads : threadCounts) {
      ASSERT_TRUE(test::SamePicture(Filtered(source, c, threads), expected))
          << target << ", " << threads << " threads";
    }
  }
}

TEST(SimilarityKernel, EqualsTheDefinitionOverParameters) {
  std::uint64_t seed = 1;
  for (const int bits : {8, 16}) {
    for (const std::uint32_t quality : {1U, 2U, 3U}) {
      for (const double dynamics : {-1.5, -0.3, 0.0, 0.3, 1.5}) {
        for (const double strength : {0.5, 5.0, 12.0, 50.0}) {
          const Case c{47, 38, bits, quality, dynamics, strength};
          PicBuf source = test::PhotoLikePicture(c.width, c.height, 1, bits, ++seed);
          ExpectExact(source, c, {seed % 2 == 0 ? 1U : 3U});
        }
      }
    }
  }
}

TEST(SimilarityKernel, EqualsTheDefinitionOverSizes) {
  const std::vector<int> sides = {1, 2, 3, 4, 5, 6, 7, 9, 12, 17, 20, 21};
  std::uint64_t seed = 100;
  for (const int width : sides) {
    for (const int height : sides) {
      const auto quality = static_cast<std::uint32_t>(1 + seed % 3);
      const Case c{width, height, seed % 2 == 0 ? 8 : 16, quality, seed % 5 == 0 ? 0.7 : 0.0, 20.0};
      PicBuf source = test::PhotoLikePicture(width, height, 1, c.bits, ++seed);
      ExpectExact(source, c, {2});
    }
  }
}

TEST(SimilarityKernel, EqualsTheDefinitionOnLargerPicturesAndManyThreads) {
  const std::vector<Case> cases = {{200, 150, 8, 1, 0.0, 10.0}, {199, 149, 16, 1, 0.3, 10.0},
                                   {131, 74, 8, 2, -0.3, 25.0}, {73, 140, 16, 2, 0.0, 8.0},
                                   {76, 73, 8, 3, 1.5, 15.0},   {1, 150, 8, 3, 0.0, 30.0},
                                   {200, 1, 16, 1, -1.5, 30.0}, {150, 2, 8, 2, 0.0, 50.0}};
  std::uint64_t seed = 1000;
  for (const Case& c : cases) {
    PicBuf source = test::PhotoLikePicture(c.width, c.height, 1, c.bits, ++seed);
    ExpectExact(source, c, {1, 2, 3, 7, 16, 40});
  }
}

// Independent samples: extreme differences, where distances pass the tables' end and reach their largest.
TEST(SimilarityKernel, EqualsTheDefinitionOnRandomPictures) {
  std::uint64_t seed = 2000;
  for (const int bits : {8, 16}) {
    for (const double strength : {10.0, 50.0, 400.0}) {
      const Case c{62, 41, bits, 1, seed % 2 == 0 ? 0.0 : -1.5, strength};
      PicBuf source = test::RandomPicture(c.width, c.height, 1, bits, ++seed);
      ExpectExact(source, c, {3});
    }
  }
}

TEST(SimilarityKernel, AConstantStaysConstantOnEvenSides) {
  for (const unsigned value : {0U, 1U, 200U, 255U}) {
    PicBuf source = test::ConstantPicture(90, 64, 1, 8, value);
    const Case c{90, 64, 8, 3, 0.5, 50.0};
    EXPECT_TRUE(test::SamePicture(Filtered(source, c, 2), test::ConstantPicture(90, 64, 1, 8, value)));
  }
  PicBuf deep = test::ConstantPicture(90, 64, 1, 16, 65535);
  EXPECT_TRUE(test::SamePicture(Filtered(deep, {90, 64, 16, 1, 0.0, 10.0}, 2),
                                test::ConstantPicture(90, 64, 1, 16, 65535)));
}

TEST(SimilarityKernel, CountsItsDisplacements) {
  EXPECT_EQ(engine::DisplacementCount(1), 25);
  EXPECT_EQ(engine::DisplacementCount(2), 85);
  EXPECT_EQ(engine::DisplacementCount(3), 221);
  EXPECT_EQ(engine::DisplacementCount(4), 221);
}

// The bar moves as if the threads shared the displacements and the calling one alone reported.
TEST(SimilarityKernel, ReportsTheCallingThreadsShareOfSteps) {
  for (const auto& [threads, steps] :
       std::vector<std::pair<std::uint32_t, int>>{{1, 25}, {2, 13}, {4, 7}, {40, 2}}) {
    EngineContext context;
    test::RecordingProgress progress;
    PlaneSettings settings;
    settings.quality = 1;
    settings.threads = threads;
    settings.progressWindow = &progress;
    PicBuf source = test::PhotoLikePicture(120, 90, 1, 8, 5);
    PicBuf result(120, 90, 1, 8);
    ASSERT_EQ(engine::DenoisePlane(context, result, source, settings), 0);
    EXPECT_EQ(progress.position(), steps) << threads << " threads";
    EXPECT_EQ(progress.largestStep(), 1);
  }
}

TEST(SimilarityKernel, AnAbortedPlaneComesBackUnfiltered) {
  for (const int afterSteps : {0, 1, 5, 24}) {
    for (const std::uint32_t threads : {1U, 3U}) {
      EngineContext context;
      test::RecordingProgress progress;
      progress.OnAdvance([&](int position) {
        if (position >= afterSteps) context.control.RequestAbort();
      });
      if (afterSteps == 0) context.control.RequestAbort();
      PlaneSettings settings;
      settings.quality = 1;
      settings.threads = threads;
      settings.progressWindow = &progress;
      PicBuf source = test::PhotoLikePicture(121, 90, 1, 8, 6);
      PicBuf original;
      picture::CBxPicBufAPI::Copy(original, source);
      PicBuf result(121, 90, 1, 8);
      ASSERT_EQ(engine::DenoisePlane(context, result, source, settings), 0);
      if (!context.control.Aborted()) continue;  // three threads take fewer steps than asked for
      EXPECT_TRUE(test::SamePicture(result, original));
      EXPECT_TRUE(test::SamePicture(source, original));
    }
  }
}

}  // namespace
}  // namespace mirellon
