#include "gpu/tile_textures.h"

#include "gpu/gl_functions.h"

namespace mirellon::gpu {

namespace {

constexpr TexelFormat kLuminance = {GL_LUMINANCE32F_ARB, GL_LUMINANCE, "GL_LUMINANCE32F_ARB"};
constexpr TexelFormat kRed = {GL_R32F, GL_RED, "GL_R32F"};
constexpr TexelFormat kRgb = {GL_RGB32F_ARB, GL_BGR, "GL_RGB32F_ARB"};
constexpr TexelFormat kRgba = {GL_RGBA32F_ARB, GL_BGR, "GL_RGBA32F_ARB"};

void SetSampling() {
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP);
}

void Create(const TexelFormat& format, int width, int height) {
  glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format.internal), width, height, 0, format.data, GL_FLOAT,
               nullptr);
}

}  // namespace

TextureShape ShapeOf(std::size_t texture, const TileGeometry& geometry) {
  const int width = geometry.PaddedWidth();
  const int height = geometry.PaddedHeight();
  const int halfWidth = geometry.width / 2 + geometry.margin;
  const int halfHeight = geometry.height / 2 + geometry.margin;
  switch (texture) {
    case kSource:
      return {width, height, 3};
    case kGuide:
    case kDifference:
    case kWeights:
      return {width, height, geometry.channels};
    case kHalfSum:
    case kBoxSum:
      return {halfWidth + 3, halfHeight + 3, geometry.channels};
    case kSpare:
      return {halfWidth * 2 + 6, halfHeight * 2 + 6, geometry.channels};
    default:
      return {geometry.width, geometry.height, 3};
  }
}

void TileTextures::Generate() {
  glGenTextures(static_cast<GLsizei>(names_.size()), names_.data());
}

void TileTextures::Release() {
  glDeleteTextures(static_cast<GLsizei>(names_.size()), names_.data());
  names_ = {};
  shapes_ = {};
  geometry_ = {};
}

bool TileTextures::Renderable(const TexelFormat& format) const {
  glBindTexture(GL_TEXTURE_2D, names_[kSource]);
  SetSampling();
  Create(format, 16, 16);
  glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, names_[kSource], 0);
  const bool complete = glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT) == GL_FRAMEBUFFER_COMPLETE_EXT;
  glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, 0, 0);
  glBindTexture(GL_TEXTURE_2D, 0);
  return complete && glGetError() == GL_NO_ERROR;
}

bool TileTextures::ChooseFormats(const FormatLimits& limits) {
  const bool luminance = !limits.withoutLuminance && Renderable(kLuminance);
  const bool rgb = !limits.withoutRgb && Renderable(kRgb);
  formats_ = {luminance ? kLuminance : kRed, rgb ? kRgb : kRgba, !luminance};
  geometry_ = {};
  return (!luminance && !Renderable(kRed)) || (!rgb && !Renderable(kRgba));
}

const TexelFormat& TileTextures::FormatOf(std::size_t texture) const {
  return shapes_[texture].channels == 1 ? formats_.one : formats_.three;
}

bool TileTextures::Shape(const TileGeometry& geometry) {
  if (geometry == geometry_) return false;
  geometry_ = geometry;
  bool failed = false;
  for (std::size_t texture = 0; texture < kTextureCount && !failed; ++texture) {
    shapes_[texture] = ShapeOf(texture, geometry);
    if (texture == kWeights && formats_.oneIsRed) shapes_[texture].channels = 3;
    glBindTexture(GL_TEXTURE_2D, names_[texture]);
    SetSampling();
    Create(FormatOf(texture), shapes_[texture].width, shapes_[texture].height);
    failed = glGetError() != GL_NO_ERROR;
  }
  glBindTexture(GL_TEXTURE_2D, 0);
  if (failed) Forget();
  return failed;
}

void TileTextures::Fill(std::size_t texture, const std::vector<float>& texels, int channels) const {
  const GLenum data = channels == 1 && shapes_[texture].channels == 3 ? GL_LUMINANCE : FormatOf(texture).data;
  glBindTexture(GL_TEXTURE_2D, names_[texture]);
  glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, shapes_[texture].width, shapes_[texture].height, data, GL_FLOAT,
                  texels.data());
  glBindTexture(GL_TEXTURE_2D, 0);
}

void TileTextures::Bind(std::size_t texture, int unit) const {
  glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
  glBindTexture(GL_TEXTURE_2D, names_[texture]);
}

}  // namespace mirellon::gpu
