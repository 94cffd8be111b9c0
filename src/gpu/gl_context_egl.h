// Contexts through EGL, with no display needed.
#pragma once

#include <memory>
#include <string>

#include "gpu/gl_context.h"

namespace mirellon::gpu {

// Where a context may come from. kAny tries all in this order, first those on hardware, then those in
// software, until one gives a context that can be made current.
enum class EglSource { kAny, kSurfaceless, kDevice, kPbuffer };

// `library` is loaded when the device is opened, so that a machine without it merely has no card.
[[nodiscard]] std::unique_ptr<GlContext> MakeEglContext(EglSource source,
                                                        const std::string& library = "libEGL.so.1");

}  // namespace mirellon::gpu
