#include "engine/similarity_kernel.h"

#include <cstdlib>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "engine/denoise_plane.h"
#include "engine/mirror_border.h"
#include "engine/plain_steps.h"
#include "engine/reference_kernel.h"
#include "engine/work_picture.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::PicBuf;

// ---- What the kernel works on; planes smaller than their border are left to the definition ----

// The stated rule for planes large enough to be mirrored once.
int MirroredOnce(int i, int size, int border) {
  if (i < size / 2) return border + std::abs(i - border);
  return size - border - 1 - std::abs(size - i - border - 1);
}

TEST(MirrorBorder, ReflectsWithoutRepeatingTheEdge) {
  for (const int bits : {8, 16}) {
    PicBuf work = test::RandomPicture(43, 35, 1, bits, 9);
    const PicBuf expected = test::MadeOf(43, 35, 1, bits, [&](int x, int y, int) {
      return test::Sample(work, MirroredOnce(x, 43, 11), MirroredOnce(y, 35, 11));
    });
    bits == 8 ? MirrorBorder8(work, 11) : MirrorBorder16(work, 11);
    EXPECT_TRUE(test::SamePicture(work, expected));
  }
}

TEST(WorkPicture, BorderFollowsTheShorterSideAndTheSearch) {
  for (const auto& [width, height, halfWindow, border] :
       {std::tuple{1000, 800, 10, 38}, {72, 200, 3, 38}, {70, 200, 3, 37}, {20, 500, 10, 12}, {2, 2, 3, 5}}) {
    EXPECT_EQ(BorderOf(width, height, halfWindow), border) << width << "x" << height;
  }
}

// ---- The kernel ----

struct Case {
  int width, height, bits;
  std::uint32_t quality;
  double dynamics, strength;
};

// The result of a run that may report and be aborted.
PicBuf Filtered(EngineContext& context, const Case& c, PicBuf& source, std::uint32_t threads,
                base::ProgressSink* progress = nullptr) {
  PicBuf result(c.width, c.height, 1, c.bits);
  EXPECT_EQ(DenoisePlane(context, result, source,
                         {c.strength, c.quality, c.dynamics, progress, -1.0, false, threads}),
            0);
  return result;
}

// Runs the filter on every SIMD target of this machine, on several thread counts, against the plain
// definition.
void ExpectExact(const PicBuf& picture, const Case& c, const std::vector<std::uint32_t>& threadCounts) {
  SCOPED_TRACE(::testing::Message() << c.width << "x" << c.height << " " << c.bits << " bits quality "
                                    << c.quality << " dynamics " << c.dynamics << " strength " << c.strength);
  PicBuf source = test::CopyOf(picture);
  const PicBuf expected = test::ReferencePlane(source, c.strength, static_cast<int>(c.quality), c.dynamics);
  test::OnEverySimdTarget([&] {
    for (const std::uint32_t threads : threadCounts) {
      EngineContext context;
      ASSERT_TRUE(test::SamePicture(Filtered(context, c, source, threads), expected))
          << threads << " threads";
    }
  });
}

TEST(SimilarityKernel, EqualsTheDefinitionOverParameters) {
  std::uint64_t seed = 1;
  for (const int bits : {8, 16}) {
    for (const std::uint32_t quality : {1U, 2U, 3U}) {
      for (const double dynamics : {-1.5, -0.3, 0.0, 0.3, 1.5}) {
        for (const double strength : {0.5, 5.0, 12.0, 50.0}) {
          const PicBuf source = test::PhotoLikePicture(47, 38, 1, bits, ++seed);
          ExpectExact(source, {47, 38, bits, quality, dynamics, strength}, {seed % 2 == 0 ? 1U : 3U});
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
      ExpectExact(test::PhotoLikePicture(c.width, c.height, 1, c.bits, ++seed), c, {2});
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
    ExpectExact(test::PhotoLikePicture(c.width, c.height, 1, c.bits, ++seed), c, {1, 2, 3, 7, 16, 40});
  }
}

// Independent samples: extreme differences, where distances pass the tables' end and reach their largest. No
// difference at all: the largest sums there are.
TEST(SimilarityKernel, EqualsTheDefinitionOnRandomAndConstantPictures) {
  std::uint64_t seed = 2000;
  for (const int bits : {8, 16}) {
    for (const double strength : {10.0, 50.0, 400.0}) {
      const Case c{62, 41, bits, 1, seed % 2 == 0 ? 0.0 : -1.5, strength};
      ExpectExact(test::RandomPicture(c.width, c.height, 1, bits, ++seed), c, {3});
    }
    ExpectExact(test::ConstantPicture(80, 64, 1, bits, bits == 8 ? 255 : 65535), {80, 64, bits, 3, 0.5, 50.0},
                {2});
  }
}

// The bar moves as if the threads shared the displacements and the calling one alone reported.
TEST(SimilarityKernel, ReportsTheCallingThreadsShareOfSteps) {
  for (const auto& [quality, threads, steps] :
       {std::tuple{1U, 1U, 25}, {1U, 2U, 13}, {1U, 4U, 7}, {1U, 40U, 2}, {2U, 1U, 85}, {4U, 1U, 221}}) {
    EngineContext context;
    test::RecordingProgress progress;
    PicBuf source = test::PhotoLikePicture(120, 90, 1, 8, 5);
    Filtered(context, {120, 90, 8, quality, 0.0, 10.0}, source, threads, &progress);
    EXPECT_EQ(progress.position(), steps) << threads << " threads";
    EXPECT_EQ(progress.largestStep(), 1);
  }
}

TEST(SimilarityKernel, AnAbortedPlaneComesBackUnfiltered) {
  for (const auto& [afterSteps, threads] : {std::pair{0, 1U}, {0, 3U}, {1, 1U}, {5, 1U}, {5, 3U}, {24, 1U}}) {
    EngineContext context;
    test::RecordingProgress progress;
    progress.OnAdvance([&context, after = afterSteps](int position) {
      if (position >= after) context.control.RequestAbort();
    });
    if (afterSteps == 0) context.control.RequestAbort();
    PicBuf source = test::PhotoLikePicture(121, 90, 1, 8, 6);
    const PicBuf original = test::CopyOf(source);
    const PicBuf result = Filtered(context, {121, 90, 8, 1, 0.0, 10.0}, source, threads, &progress);
    EXPECT_TRUE(test::SamePicture(result, original)) << "after " << afterSteps;
    EXPECT_TRUE(test::SamePicture(source, original));
  }
}

}  // namespace
}  // namespace mirellon::engine
