#include "gpu/gpu_filter.h"

#include <algorithm>
#include <limits>
#include <new>

#include "gpu/gl_functions.h"
#include "gpu/sample_transfer.h"

namespace mirellon::gpu {

namespace {

using base::MessageKind;
using picture::SBxPicBuf;

// Room for what tiles carry around them: margins of up to 100 pixels and the filter's border.
constexpr int kLargestSurround = 2 * 100 + 2 * 38;

std::string TextOf(GLenum name) {
  const auto* const text = reinterpret_cast<const char*>(glGetString(name));
  return text == nullptr ? std::string() : std::string(text);
}

// True = there was an error since the last look.
bool TakeErrors() {
  bool any = false;
  // Without a context every look gives an error.
  for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) any = true;
  return any;
}

}  // namespace

GpuFilter::GpuFilter(std::unique_ptr<GlContext> context, base::WindowServices* windows, std::ostream& out,
                     std::ostream& err, FilterOptions options)
    : context_(std::move(context)),
      windows_(windows),
      out_(out),
      err_(err),
      options_(options),
      passes_(programs_, textures_) {}

GpuFilter::~GpuFilter() {
  if (hardwareUsable_ && !context_->MakeCurrent()) ReleaseObjects();
  KillGLWindow();
}

void GpuFilter::Message(const wchar_t* text, const wchar_t* caption, MessageKind kind) const {
  if (windows_ != nullptr) windows_->ShowMessage(text, caption, kind);
}

bool GpuFilter::FailCreation(const wchar_t* text, const char* refusal) {
  KillGLWindow();
  Message(text, L"ERROR", MessageKind::kWarning);
  info_.refusal = refusal;
  return false;
}

bool GpuFilter::CreateGLWindow() {
  window_ = deviceContext_ = renderContext_ = false;
  window_ = !context_->OpenWindow();
  deviceContext_ = !context_->OpenDevice();
  if (!deviceContext_) {
    return FailCreation(L"Can't Create A GL Device Context.", "no graphics driver can be opened");
  }
  if (context_->ChoosePixelFormat()) {
    return FailCreation(L"Can't Find A Suitable PixelFormat.", "the graphics driver has no suitable format");
  }
  if (context_->SetPixelFormat()) {
    return FailCreation(L"Can't Set The PixelFormat.", "the graphics driver refuses its own format");
  }
  renderContext_ = !context_->CreateContext();
  if (!renderContext_) {
    return FailCreation(L"Can't Create A GL Rendering Context.",
                        "the graphics driver gives no OpenGL context");
  }
  if (context_->MakeCurrent()) {
    return FailCreation(L"Can't Activate The GL Rendering Context.",
                        "the OpenGL context cannot be made current");
  }
  return true;
}

void GpuFilter::KillGLWindow() {
  constexpr const wchar_t* kCaption = L"SHUTDOWN ERROR";
  if (renderContext_) {
    (void)context_->ReleaseCurrent();
    if (context_->DestroyContext()) {
      Message(L"Release Rendering Context Failed.", kCaption, MessageKind::kInformation);
    }
    renderContext_ = false;
  }
  // Unlike the context, these two are forgotten only when their release failed.
  if (deviceContext_ && context_->CloseDevice()) {
    Message(L"Release Device Context Failed.", kCaption, MessageKind::kInformation);
    deviceContext_ = false;
  }
  if (window_ && context_->CloseWindow()) {
    Message(L"Could Not Release hWnd.", kCaption, MessageKind::kInformation);
    window_ = false;
  }
  if (context_->UnregisterWindowClass()) {
    Message(L"Could Not Unregister Class.", kCaption, MessageKind::kInformation);
  }
}

bool GpuFilter::Initialise() {
  hardwareUsable_ = false;
  if (!CreateGLWindow()) return false;
  StartLoader();
  Examine();
  CompilePrograms();
  if (context_->ReleaseCurrent()) {
    Message(L"Can't Activate The GL Rendering Context.", L"ERROR", MessageKind::kWarning);
  }
  return hardwareUsable_;
}

void GpuFilter::StartLoader() {
  const GLenum status = glewInit();
  // Without an X display everything is loaded all the same, so that is no error.
  if (status != GLEW_OK && status != GLEW_ERROR_NO_GLX_DISPLAY) {
    err_ << "Error: " << reinterpret_cast<const char*>(glewGetErrorString(status)) << "\n" << std::flush;
  }
  out_ << "Status: Using GLEW " << reinterpret_cast<const char*>(glewGetString(GLEW_VERSION)) << "\n"
       << std::flush;
}

void GpuFilter::Examine() {
  info_.vendor = TextOf(GL_VENDOR);
  info_.renderer = TextOf(GL_RENDERER);
  info_.version = TextOf(GL_VERSION);
  if (RendererExcluded(info_.renderer)) {
    info_.refusal = "this card is known to draw wrongly";
    return;
  }
  std::size_t asked = 0;
  const char* const missing = FirstMissingExtension([&](const char* name) {
    const bool there = glewIsSupported(name) != 0;
    info_.extensions.at(asked++) = there;
    return there;
  });
  if (missing != nullptr) {
    info_.refusal = std::string("the graphics driver lacks ") + missing;
    return;
  }
  GLint side = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
  info_.maxTextureSide = side;
  maxTileSide_ = std::clamp(side - kLargestSurround, 0, kMaxTileSide);
  hardwareUsable_ = true;
}

void GpuFilter::CompilePrograms() {
  if (!hardwareUsable_) return;
  (void)TakeErrors();
  glGenFramebuffersEXT(1, &framebuffer_);
  textures_.Generate();
  const bool refused = programs_.Compile(options_.texts, err_);
  glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, framebuffer_);
  programs_.LookUpUniforms();
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  accumulatorPhase_ = true;
  const bool formatless = textures_.ChooseFormats(options_.formats);
  info_.format = textures_.formats().one.name;
  if (!refused && !formatless) return;
  info_.refusal = refused ? "the graphics driver refuses the filter's programs"
                          : "the card cannot draw to textures of floating-point numbers";
  ReleaseObjects();
  hardwareUsable_ = false;
}

void GpuFilter::ReleaseObjects() {
  programs_.Release();
  glDeleteFramebuffersEXT(1, &framebuffer_);
  framebuffer_ = 0;
  textures_.Release();
}

GpuFilter::Job::Job(GpuFilter& filter)
    : filter_(filter),
      lock_(filter.mutex_),
      failed_(!filter.hardwareUsable_ || filter.context_->MakeCurrent()) {
  if (failed_ && filter.hardwareUsable_) {
    filter.Message(L"Can't Activate The GL Rendering Context.", L"ERROR", MessageKind::kWarning);
  }
}

GpuFilter::Job::~Job() {
  if (!failed_ && filter_.context_->ReleaseCurrent()) {
    filter_.Message(L"Can't Activate The GL Rendering Context.", L"ERROR", MessageKind::kWarning);
  }
}

bool GpuFilter::Upload(const SBxPicBuf& source, const SBxPicBuf& guide, int width, int height, int components,
                       int margin, int channels, int depth) {
  tile_ = {width, height, margin, channels};
  tileComponents_ = components;
  tileDepth_ = depth;
  if (std::max(tile_.PaddedWidth(), tile_.PaddedHeight()) > info_.maxTextureSide) return true;
  (void)TakeErrors();
  if (textures_.Shape(tile_)) return true;
  // A guide that is the source need not go up twice.
  const bool shared = &guide == &source && channels == 3 && components == 3;
  guideTexture_ = shared ? kSource : kGuide;
  try {
    TexelsOf(source, staging_);
    textures_.Fill(kSource, staging_, components);
    if (!shared) {
      TexelsOf(guide, staging_);
      textures_.Fill(kGuide, staging_, channels);
    }
  } catch (const std::bad_alloc&) {
    return true;
  }
  accumulatorPhase_ = true;
  // Those written first are covered whole before anybody reads them.
  const SumTextures sums = SumTexturesOf(accumulatorPhase_);
  passes_.Clear(sums.weightsRead);
  passes_.Clear(sums.valuesRead);
  const bool failed = TakeErrors();
  if (failed) textures_.Forget();
  return failed;
}

void GpuFilter::RenderDisplacement(int rowOffset, int columnOffset, const WeightSettings& settings) {
  const Displacement d = {rowOffset, columnOffset};
  const SumTextures sums = SumTexturesOf(accumulatorPhase_);
  passes_.Difference(tile_, guideTexture_, d);
  passes_.HalfSum(tile_);
  passes_.BoxSum(tile_);
  passes_.Weights(tile_, settings);
  if (rowOffset == 0 && columnOffset == 0) {
    passes_.AccumulateCentre(tile_, sums);
  } else {
    passes_.AccumulateBothWays(tile_, sums, d);
  }
  Passes::Finish();
  accumulatorPhase_ = !accumulatorPhase_;
}

bool GpuFilter::ReadBack(SBxPicBuf& destination) {
  passes_.Divide(SumTexturesOf(accumulatorPhase_));
  try {
    // A lost context writes nothing: what is there by then must not pass for a result.
    staging_.assign(static_cast<std::size_t>(tile_.width) * static_cast<std::size_t>(tile_.height) *
                        static_cast<std::size_t>(tileComponents_),
                    std::numeric_limits<float>::quiet_NaN());
  } catch (const std::bad_alloc&) {
    return true;
  }
  glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
  // All channels of a grey tile are alike; component 0 lies in z.
  const GLenum read = tileComponents_ == 1 ? GL_BLUE : GL_BGR;
  glReadPixels(0, 0, tile_.width, tile_.height, read, GL_FLOAT, staging_.data());
  Passes::Finish();
  if (TakeErrors()) {
    textures_.Forget();
    return true;
  }
  return SamplesOf(staging_, destination);
}

}  // namespace mirellon::gpu
