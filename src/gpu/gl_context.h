// A rendering context without a visible window.
#pragma once

#include <memory>

namespace mirellon::gpu {

// What a platform needs to have a context, one step a function, in the order in which GpuFilter takes them.
// All return true for "failed". A step of the release that finds nothing to release does nothing.
class GlContext {
 public:
  GlContext() = default;
  GlContext(const GlContext&) = delete;
  GlContext& operator=(const GlContext&) = delete;
  virtual ~GlContext() = default;

  // The hidden window, where the platform needs one.
  [[nodiscard]] virtual bool OpenWindow() = 0;
  [[nodiscard]] virtual bool OpenDevice() = 0;
  [[nodiscard]] virtual bool ChoosePixelFormat() = 0;
  [[nodiscard]] virtual bool SetPixelFormat() = 0;
  [[nodiscard]] virtual bool CreateContext() = 0;

  // For the calling thread. A context is current on one thread at most; whoever made it current releases it.
  [[nodiscard]] virtual bool MakeCurrent() = 0;
  [[nodiscard]] virtual bool ReleaseCurrent() = 0;

  [[nodiscard]] virtual bool DestroyContext() = 0;
  [[nodiscard]] virtual bool CloseDevice() = 0;
  [[nodiscard]] virtual bool CloseWindow() = 0;
  [[nodiscard]] virtual bool UnregisterWindowClass() = 0;
};

// The platform's own.
[[nodiscard]] std::unique_ptr<GlContext> MakeGlContext();

}  // namespace mirellon::gpu
