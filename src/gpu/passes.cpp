#include "gpu/passes.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>

#include "gpu/gl_functions.h"

namespace mirellon::gpu {

namespace {

// In texels of the texture it belongs to.
struct Rectangle {
  double x;
  double y;
  double width;
  double height;
};

// What one set of texture coordinates runs over.
struct Reading {
  const TextureShape* shape;
  Rectangle part;
};

Rectangle Whole(const TextureShape& shape) {
  return {0.0, 0.0, static_cast<double>(shape.width), static_cast<double>(shape.height)};
}

void Attach(GLenum point, std::uint32_t texture) {
  glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, point, GL_TEXTURE_2D, texture, 0);
}

// One unit of the coordinate system is one texel of the target.
void CoverTarget(const TextureShape& shape) {
  glViewport(0, 0, shape.width, shape.height);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(0.0, shape.width, 0.0, shape.height, -1.0, 1.0);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
}

void SetTarget(const TileTextures& textures, std::size_t texture) {
  Attach(GL_COLOR_ATTACHMENT0_EXT, textures.Name(texture));
  CoverTarget(textures.ShapeNow(texture));
}

void DrawRectangle(const Rectangle& target, std::initializer_list<Reading> readings) {
  constexpr std::array<std::array<double, 2>, 4> kCorners = {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}};
  glBegin(GL_QUADS);
  for (const auto& [right, bottom] : kCorners) {
    GLenum unit = GL_TEXTURE0_ARB;
    for (const Reading& reading : readings) {
      const Rectangle& part = reading.part;
      glMultiTexCoord2fARB(unit, static_cast<float>((part.x + right * part.width) / reading.shape->width),
                           static_cast<float>((part.y + bottom * part.height) / reading.shape->height));
      ++unit;
    }
    glVertex2f(static_cast<float>(target.x + right * target.width),
               static_cast<float>(target.y + bottom * target.height));
  }
  glEnd();
}

// Where the tile lies in its padded form, moved by a displacement.
Rectangle TileMoved(const TileGeometry& geometry, int row, int column) {
  return {static_cast<double>(geometry.Border() + column), static_cast<double>(geometry.Border() + row),
          static_cast<double>(geometry.width), static_cast<double>(geometry.height)};
}

}  // namespace

SumTextures SumTexturesOf(bool phase) {
  if (phase) return {kWeightSumB, kValueSumB, kWeightSumA, kValueSumA};
  return {kWeightSumA, kValueSumA, kWeightSumB, kValueSumB};
}

void Passes::Clear(std::size_t texture) const {
  SetTarget(textures_, texture);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT);
}

void Passes::Difference(const TileGeometry& geometry, std::size_t guide, Displacement d) const {
  const Program program = geometry.channels == 3 ? Program::kDiff3 : Program::kDiff1;
  const TextureShape& shape = textures_.ShapeNow(kDifference);
  const double width = shape.width - std::max(d.column, -d.column);
  const double height = shape.height - std::max(d.row, -d.row);
  const Rectangle here = {std::max(0.0, -1.0 * d.column), std::max(0.0, -1.0 * d.row), width, height};
  const Rectangle there = {std::max(0.0, 1.0 * d.column), std::max(0.0, 1.0 * d.row), width, height};
  Clear(kDifference);  // pixels without a partner
  programs_.Use(program);
  textures_.Bind(guide, 0);
  programs_.SetSampler(program, 0, 0);
  DrawRectangle(here, {{&shape, there}, {&shape, here}});
}

void Passes::HalfSum(const TileGeometry& geometry) const {
  const Program program = geometry.channels == 3 ? Program::kSum4Three : Program::kSum4One;
  const TextureShape& from = textures_.ShapeNow(kDifference);
  SetTarget(textures_, kHalfSum);
  programs_.Use(program);
  textures_.Bind(kDifference, 0);
  programs_.SetSampler(program, 0, 0);
  // A target pixel's centre falls where four texels meet; half a texel back is the middle of the first.
  const auto moved = [&](double x, double y) {
    Rectangle part = Whole(from);
    part.x += x - 0.5;
    part.y += y - 0.5;
    return Reading{&from, part};
  };
  DrawRectangle(Whole(textures_.ShapeNow(kHalfSum)), {moved(0, 0), moved(1, 0), moved(1, 1), moved(0, 1)});
}

void Passes::BoxSum(const TileGeometry& geometry) const {
  const Program program = geometry.channels == 3 ? Program::kBox9Three : Program::kBox9One;
  const TextureShape& shape = textures_.ShapeNow(kHalfSum);
  Clear(kBoxSum);  // its outermost rows and columns have no full neighbourhood
  programs_.Use(program);
  textures_.Bind(kHalfSum, 0);
  programs_.SetSampler(program, 0, 0);
  programs_.SetNumber(program, 1, 1.0F / static_cast<float>(shape.width));
  programs_.SetNumber(program, 2, 1.0F / static_cast<float>(shape.height));
  // The program steps from a corner of the neighbourhood.
  const double width = shape.width - 2.0;
  const double height = shape.height - 2.0;
  DrawRectangle({1.0, 1.0, width, height}, {{&shape, {0.0, 0.0, width, height}}});
}

void Passes::Weights(const TileGeometry& geometry, const WeightSettings& settings) const {
  const bool three = geometry.channels == 3;
  // The two thresholds differ; at 0 both choices give the same weights.
  const bool darkSide = three ? settings.dynamics < 1e-5 : static_cast<float>(settings.dynamics) < 0.0F;
  const auto strength = static_cast<float>(settings.dynamics * (darkSide ? -0.00390625 : 0.00390625));
  const auto variance = static_cast<float>(settings.variance * 300.0);
  const Program one = darkSide ? Program::kWeight1 : Program::kWeightDirect1;
  const Program program = three ? (darkSide ? Program::kWeight3 : Program::kWeightDirect3) : one;
  SetTarget(textures_, kWeights);
  programs_.Use(program);
  textures_.Bind(kBoxSum, 0);
  textures_.Bind(kSource, 1);
  programs_.SetSampler(program, 0, 1);
  programs_.SetSampler(program, 1, 0);
  if (three) {
    programs_.SetNumber(program, 2, variance);
    programs_.SetNumber(program, 3, static_cast<float>(settings.varianceUV * 300.0));
    programs_.SetNumber(program, 4, strength);
  } else {
    programs_.SetNumber(program, 2, strength);
    programs_.SetNumber(program, 3, variance);
  }
  const TextureShape& shape = textures_.ShapeNow(kWeights);
  DrawRectangle(Whole(shape), {{&shape, Whole(shape)}});
}

void Passes::AccumulateCentre(const TileGeometry& geometry, const SumTextures& sums) const {
  const TextureShape& tile = textures_.ShapeNow(sums.weightsRead);
  const TextureShape& padded = textures_.ShapeNow(kSource);
  const Reading sum = {&tile, Whole(tile)};
  const Reading pixel = {&padded, TileMoved(geometry, 0, 0)};
  SetTarget(textures_, sums.weightsWritten);
  programs_.Use(Program::kAdd);
  textures_.Bind(sums.weightsRead, 0);
  textures_.Bind(kWeights, 1);
  for (int unit = 0; unit < 2; ++unit) {
    programs_.SetSampler(Program::kAdd, static_cast<std::size_t>(unit), unit);
  }
  DrawRectangle(Whole(tile), {sum, pixel});

  SetTarget(textures_, sums.valuesWritten);
  programs_.Use(Program::kAccumulate);
  textures_.Bind(sums.valuesRead, 0);
  textures_.Bind(kSource, 2);
  for (int unit = 0; unit < 3; ++unit) {
    programs_.SetSampler(Program::kAccumulate, static_cast<std::size_t>(unit), unit);
  }
  DrawRectangle(Whole(tile), {sum, pixel, pixel});
}

void Passes::AccumulateBothWays(const TileGeometry& geometry, const SumTextures& sums, Displacement d) const {
  constexpr std::array<GLenum, 2> kTargets = {GL_COLOR_ATTACHMENT0_EXT, GL_COLOR_ATTACHMENT1_EXT};
  const TextureShape& tile = textures_.ShapeNow(sums.weightsRead);
  const TextureShape& padded = textures_.ShapeNow(kSource);
  SetTarget(textures_, sums.weightsWritten);
  Attach(GL_COLOR_ATTACHMENT1_EXT, textures_.Name(sums.valuesWritten));
  glDrawBuffers(static_cast<GLsizei>(kTargets.size()), kTargets.data());
  programs_.Use(Program::kAccumulateDual);
  const std::array<std::size_t, 6> inputs = {sums.weightsRead, sums.valuesRead, kWeights,
                                             kWeights,         kSource,         kSource};
  for (std::size_t unit = 0; unit < inputs.size(); ++unit) {
    textures_.Bind(inputs[unit], static_cast<int>(unit));
    programs_.SetSampler(Program::kAccumulateDual, unit, static_cast<int>(unit));
  }
  const Reading sum = {&tile, Whole(tile)};
  const Reading there = {&padded, TileMoved(geometry, d.row, d.column)};
  const Reading back = {&padded, TileMoved(geometry, -d.row, -d.column)};
  DrawRectangle(Whole(tile), {sum, sum, {&padded, TileMoved(geometry, 0, 0)}, back, there, back});
}

void Passes::Divide(const SumTextures& sums) const {
  const TextureShape& shape = textures_.ShapeNow(kResult);
  SetTarget(textures_, kResult);
  programs_.Use(Program::kDivide);
  textures_.Bind(sums.weightsRead, 0);
  textures_.Bind(sums.valuesRead, 1);
  programs_.SetSampler(Program::kDivide, 0, 0);
  programs_.SetSampler(Program::kDivide, 1, 1);
  DrawRectangle(Whole(shape), {{&shape, Whole(shape)}});
  glUseProgramObjectARB(0);
}

void Passes::Finish() {
  glFinish();
  glDrawBuffer(GL_COLOR_ATTACHMENT0_EXT);
  Attach(GL_COLOR_ATTACHMENT1_EXT, 0);
  for (int unit = 5; unit >= 0; --unit) {
    glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
    if (unit > 0) glBindTexture(GL_TEXTURE_2D, 0);
  }
}

}  // namespace mirellon::gpu
