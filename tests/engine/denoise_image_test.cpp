#include "engine/denoise_image.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "engine/plain_steps.h"
#include "engine/reference_kernel.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon::engine {
namespace {

using picture::CBxPicBufAPI;
using picture::PicBuf;

// ---- The pipeline in plain steps ----

PicBuf Rounded(const FloatPlane& level, int bits) {
  const float largest = bits == 8 ? 255.0F : 65535.0F;
  return test::MadeOf(level.width, level.height, 1, bits, [&](int x, int y, int) {
    return static_cast<unsigned>(std::min(std::max(level.Row(y)[x] + 0.5F, 0.0F), largest));
  });
}

PicBuf PlainChromaLarge(const PicBuf& plane, const DenoiseRequest& request, int quality) {
  const int strength = static_cast<int>(request.strengthChromaLarge);
  test::PlainPyramid pyramid(plane, 0, 3);
  for (int finer = 2; finer >= 0; --finer) {
    FloatPlane& quarter = pyramid.gauss[2];
    if (finer == 1 && !quarter.samples.empty()) {
      const PicBuf level = Rounded(quarter, plane->bitsPerComponent);
      test::PlainPyramid::Load(test::ReferencePlane(level, strength, quality, request.dynamics), 0, quarter);
    }
    pyramid.Rebuild(finer, 1.0F);
  }
  return Rounded(pyramid.gauss[0], plane->bitsPerComponent);
}

PicBuf PlainPipeline(const DenoiseRequest& request) {
  PicBuf picture = test::CopyOf(*request.source);
  const auto forEachPlane = [&picture](auto change) {
    for (int c = 0; c < picture->components; ++c) {
      PicBuf plane = change(c, test::ComponentOf(picture, c));
      CBxPicBufAPI::InsertComponent(picture, static_cast<unsigned>(c), plane);
    }
  };
  const int mode = request.pointArtefactMode;
  if (mode != 0) forEachPlane([mode](int, const PicBuf& plane) { return test::PlainMedian(plane, mode); });
  const bool colour = request.colour && picture->components == 3;
  if (colour) CBxPicBufAPI::ConvertRGBtoYUV(picture, picture);
  forEachPlane([&](int c, const PicBuf& plane) {
    const int quality = request.quality == 1 ? 1 : request.quality == 2 ? 2 : 3;
    const bool chroma = colour && c > 0;
    const double strength = chroma ? request.strengthChroma : request.strength;
    PicBuf filtered = test::ReferencePlane(plane, strength, quality, request.dynamics);
    return chroma && request.strengthChromaLarge > 1.0 ? PlainChromaLarge(filtered, request, quality)
                                                       : std::move(filtered);
  });
  if (colour) CBxPicBufAPI::ConvertYUVtoRGB(picture, picture);
  return picture;
}

// ---- Tests ----

// Odd and tiny sizes included. The large-scale pass runs above 1 and takes the whole part of its strength;
// without the colour pipeline every component is filtered alike.
TEST(DenoiseImage, EqualsThePlainPipeline) {
  // Width, height, components, bits, quality, large-scale strength, dynamics, point artefacts.
  const std::tuple<int, int, int, int, unsigned, double, double, int> cases[] = {
      {64, 48, 3, 8, 1, 9.99, 0.0, 0}, {61, 47, 3, 8, 2, 1.0, 0.4, 1},   {45, 33, 3, 16, 1, 1.5, -0.4, 2},
      {30, 12, 3, 8, 3, 25.0, 0.0, 2}, {19, 40, 3, 16, 7, 10.0, 0.0, 1}, {5, 5, 3, 8, 1, 10.0, 0.0, 0},
      {3, 2, 3, 8, 1, 10.0, 0.0, 2},   {1, 1, 3, 16, 2, 10.0, 0.0, 1},   {4, 33, 3, 8, 1, 10.0, 0.0, 0},
      {33, 4, 3, 8, 1, 10.0, 0.0, 1},  {57, 41, 1, 8, 1, 10.0, 0.5, 1},  {22, 23, 1, 16, 2, 10.0, 0.0, 2}};
  std::uint64_t seed = 10;
  for (const auto& [width, height, components, bits, quality, chromaLarge, dynamics, artefacts] : cases) {
    for (const bool colour : {true, false}) {
      SCOPED_TRACE(::testing::Message() << width << "x" << height << "x" << components << " " << bits);
      PicBuf source = test::PhotoLikePicture(width, height, components, bits, ++seed);
      PicBuf result;
      DenoiseRequest request{&result.record(), &source.record(), 12.0, 18.0, chromaLarge, quality, dynamics};
      request.threads = 2;
      request.colour = colour;
      request.pointArtefactMode = artefacts;
      EngineContext context;
      ASSERT_EQ(DenoiseImage(context, request), 0);
      EXPECT_TRUE(test::SamePicture(result, PlainPipeline(request)));
      EXPECT_TRUE(test::SamePicture(source, test::PhotoLikePicture(width, height, components, bits, seed)));
    }
  }
}

TEST(DenoiseImage, AnAbortGivesTheSourceBack) {
  for (const int components : {1, 3}) {
    PicBuf source = test::PhotoLikePicture(61, 50, components, 8, 7);
    PicBuf result;
    test::RecordingProgress progress;
    EngineContext context;
    progress.OnAdvance([&context](int position) {
      if (position == 10) context.control.RequestAbort();
    });
    DenoiseRequest request{&result.record(), &source.record()};
    request.progressWindow = &progress;
    request.pointArtefactMode = 2;
    ASSERT_EQ(DenoiseImage(context, request), 0);
    EXPECT_TRUE(test::SamePicture(result, source)) << components << " components";
  }
}

}  // namespace
}  // namespace mirellon::engine
