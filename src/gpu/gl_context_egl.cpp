#include "gpu/gl_context_egl.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <dlfcn.h>

namespace mirellon::gpu {

namespace {

// The library's functions, by their names without "egl".
struct Egl {
  decltype(&eglGetProcAddress) GetProcAddress = nullptr;
  decltype(&eglQueryString) QueryString = nullptr;
  decltype(&eglGetDisplay) GetDisplay = nullptr;
  decltype(&eglInitialize) Initialize = nullptr;
  decltype(&eglBindAPI) BindAPI = nullptr;
  decltype(&eglChooseConfig) ChooseConfig = nullptr;
  decltype(&eglCreatePbufferSurface) CreatePbufferSurface = nullptr;
  decltype(&eglDestroySurface) DestroySurface = nullptr;
  decltype(&eglCreateContext) CreateContext = nullptr;
  decltype(&eglDestroyContext) DestroyContext = nullptr;
  decltype(&eglMakeCurrent) MakeCurrent = nullptr;
  // Extensions; null where they are missing.
  PFNEGLGETPLATFORMDISPLAYEXTPROC GetPlatformDisplay = nullptr;
  PFNEGLQUERYDEVICESEXTPROC QueryDevices = nullptr;
  PFNEGLQUERYDEVICESTRINGEXTPROC QueryDeviceString = nullptr;
  PFNEGLQUERYDISPLAYATTRIBEXTPROC QueryDisplayAttrib = nullptr;

  // True = failed: a function is missing.
  [[nodiscard]] bool Load(void* library) {
    bool missing = false;
    const auto load = [&](auto& function, const char* name) {
      function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
      missing |= function == nullptr;
    };
    load(GetProcAddress, "eglGetProcAddress");
    load(QueryString, "eglQueryString");
    load(GetDisplay, "eglGetDisplay");
    load(Initialize, "eglInitialize");
    load(BindAPI, "eglBindAPI");
    load(ChooseConfig, "eglChooseConfig");
    load(CreatePbufferSurface, "eglCreatePbufferSurface");
    load(DestroySurface, "eglDestroySurface");
    load(CreateContext, "eglCreateContext");
    load(DestroyContext, "eglDestroyContext");
    load(MakeCurrent, "eglMakeCurrent");
    if (missing) return true;
    const auto extension = [&](auto& function, const char* name) {
      function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(GetProcAddress(name));
    };
    extension(GetPlatformDisplay, "eglGetPlatformDisplayEXT");
    extension(QueryDevices, "eglQueryDevicesEXT");
    extension(QueryDeviceString, "eglQueryDeviceStringEXT");
    extension(QueryDisplayAttrib, "eglQueryDisplayAttribEXT");
    return false;
  }
};

// Whether a list of names separated by blanks, which may be null, has one of them.
bool Lists(const char* list, std::string_view name) {
  std::string_view rest = list == nullptr ? "" : list;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    if (rest.substr(0, end) == name) return true;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return false;
}

// How far a way to a context has led.
enum class Reached : std::uint8_t { kNothing, kDevice, kFormat, kSurface, kContext, kCurrent };

class EglContext final : public GlContext {
 public:
  EglContext(EglSource source, std::string libraryName)
      : source_(source), libraryName_(std::move(libraryName)) {}

  [[nodiscard]] bool OpenWindow() override { return false; }

  // Goes all ways to a context until one leads to its end; the later steps tell how far the best one led.
  [[nodiscard]] bool OpenDevice() override {
    // Drivers do not bear being unloaded.
    void* const library = dlopen(libraryName_.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library == nullptr || egl_.Load(library)) return true;
    std::vector<Candidate> software;
    for (const Candidate& candidate : Candidates()) {
      if (candidate.display == EGL_NO_DISPLAY) continue;
      if (egl_.Initialize(candidate.display, nullptr, nullptr) != EGL_TRUE) continue;
      if (IsSoftware(candidate.display)) {
        software.push_back(candidate);
      } else if (!Take(candidate)) {
        return false;
      }
    }
    for (const Candidate& candidate : software) {
      if (!Take(candidate)) return false;
    }
    return way_.reached == Reached::kNothing;
  }

  [[nodiscard]] bool ChoosePixelFormat() override { return way_.reached < Reached::kFormat; }
  [[nodiscard]] bool SetPixelFormat() override { return way_.reached < Reached::kSurface; }
  [[nodiscard]] bool CreateContext() override { return way_.reached < Reached::kContext; }
  [[nodiscard]] bool MakeCurrent() override { return MakeCurrent(way_); }
  [[nodiscard]] bool ReleaseCurrent() override { return ReleaseCurrent(way_); }
  [[nodiscard]] bool DestroyContext() override { return DestroyContext(way_); }
  // The display stays initialised: terminating it would end every other context of this process on it.
  [[nodiscard]] bool CloseDevice() override {
    const bool failed = DestroySurface(way_);
    way_ = {};
    return failed;
  }
  [[nodiscard]] bool CloseWindow() override { return false; }
  [[nodiscard]] bool UnregisterWindowClass() override { return false; }

 private:
  struct Candidate {
    EGLDisplay display;
    bool pbuffer;
  };

  struct Way {
    Reached reached = Reached::kNothing;
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLConfig config = nullptr;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
  };

  // ---- Candidates: surfaceless, devices, the default display ----

  [[nodiscard]] bool Wanted(EglSource source) const {
    return source_ == EglSource::kAny || source_ == source;
  }

  void AddDevices(const char* clientExtensions, std::vector<Candidate>& candidates) const {
    if (!Wanted(EglSource::kDevice) || egl_.GetPlatformDisplay == nullptr || egl_.QueryDevices == nullptr ||
        !Lists(clientExtensions, "EGL_EXT_platform_device")) {
      return;
    }
    std::array<EGLDeviceEXT, 16> devices = {};
    EGLint count = 0;
    if (egl_.QueryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count) != EGL_TRUE) return;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
      candidates.push_back({egl_.GetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr), false});
    }
  }

  [[nodiscard]] std::vector<Candidate> Candidates() const {
    std::vector<Candidate> candidates;
    const char* extensions = egl_.QueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (Wanted(EglSource::kSurfaceless) && egl_.GetPlatformDisplay != nullptr &&
        Lists(extensions, "EGL_MESA_platform_surfaceless")) {
      void* const anyDevice = EGL_DEFAULT_DISPLAY;
      candidates.push_back(
          {egl_.GetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, anyDevice, nullptr), false});
    }
    AddDevices(extensions, candidates);
    if (Wanted(EglSource::kPbuffer)) candidates.push_back({egl_.GetDisplay(EGL_DEFAULT_DISPLAY), true});
    return candidates;
  }

  // A driver that only knows its own devices stands beside Mesa's, whose surfaceless display is then a
  // software one: those are left for last.
  [[nodiscard]] bool IsSoftware(EGLDisplay display) const {
    if (egl_.QueryDisplayAttrib == nullptr || egl_.QueryDeviceString == nullptr) return false;
    EGLAttrib device = 0;
    if (egl_.QueryDisplayAttrib(display, EGL_DEVICE_EXT, &device) != EGL_TRUE || device == 0) return false;
    const char* const extensions =
        egl_.QueryDeviceString(reinterpret_cast<EGLDeviceEXT>(device), EGL_EXTENSIONS);  // NOLINT: EGL's way
    return Lists(extensions, "EGL_MESA_device_software");
  }

  // ---- One way ----

  // Keeps the candidate's way if it leads further than the one kept. False when it led to its end.
  [[nodiscard]] bool Take(const Candidate& candidate) {
    Way way{Reached::kDevice, candidate.display};
    Go(way, candidate.pbuffer);
    if (way.reached > way_.reached) std::swap(way, way_);
    (void)DestroyContext(way);
    (void)DestroySurface(way);
    return way_.reached != Reached::kCurrent;
  }

  void Go(Way& way, bool pbuffer) const {
    if (ChooseConfig(way)) return;
    way.reached = Reached::kFormat;
    if (CreateSurface(way, pbuffer)) return;
    way.reached = Reached::kSurface;
    way.context = egl_.CreateContext(way.display, way.config, EGL_NO_CONTEXT, nullptr);
    if (way.context == EGL_NO_CONTEXT) return;
    way.reached = Reached::kContext;
    if (MakeCurrent(way)) return;
    way.reached = Reached::kCurrent;
    (void)ReleaseCurrent(way);
  }

  [[nodiscard]] bool ChooseConfig(Way& way) const {
    constexpr std::array<EGLint, 11> kWanted = {EGL_SURFACE_TYPE,
                                                EGL_PBUFFER_BIT,
                                                EGL_RENDERABLE_TYPE,
                                                EGL_OPENGL_BIT,
                                                EGL_RED_SIZE,
                                                8,
                                                EGL_GREEN_SIZE,
                                                8,
                                                EGL_BLUE_SIZE,
                                                8,
                                                EGL_NONE};
    EGLint count = 0;
    if (egl_.BindAPI(EGL_OPENGL_API) != EGL_TRUE) return true;
    return egl_.ChooseConfig(way.display, kWanted.data(), &way.config, 1, &count) != EGL_TRUE || count < 1;
  }

  // Nothing is ever drawn to the surface; it only has to exist where a context cannot do without one.
  [[nodiscard]] bool CreateSurface(Way& way, bool pbuffer) const {
    if (!pbuffer && Lists(egl_.QueryString(way.display, EGL_EXTENSIONS), "EGL_KHR_surfaceless_context")) {
      return false;
    }
    constexpr std::array<EGLint, 5> kSize = {EGL_WIDTH, 50, EGL_HEIGHT, 50, EGL_NONE};
    way.surface = egl_.CreatePbufferSurface(way.display, way.config, kSize.data());
    return way.surface == EGL_NO_SURFACE;
  }

  [[nodiscard]] bool MakeCurrent(const Way& way) const {
    // The interface that contexts belong to is chosen for each thread.
    return egl_.BindAPI(EGL_OPENGL_API) != EGL_TRUE ||
           egl_.MakeCurrent(way.display, way.surface, way.surface, way.context) != EGL_TRUE;
  }
  [[nodiscard]] bool ReleaseCurrent(const Way& way) const {
    return egl_.MakeCurrent(way.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) != EGL_TRUE;
  }
  [[nodiscard]] bool DestroyContext(Way& way) const {
    return way.context != EGL_NO_CONTEXT &&
           egl_.DestroyContext(way.display, std::exchange(way.context, EGL_NO_CONTEXT)) != EGL_TRUE;
  }
  [[nodiscard]] bool DestroySurface(Way& way) const {
    return way.surface != EGL_NO_SURFACE &&
           egl_.DestroySurface(way.display, std::exchange(way.surface, EGL_NO_SURFACE)) != EGL_TRUE;
  }

  EglSource source_;
  std::string libraryName_;
  Egl egl_;
  Way way_;
};

}  // namespace

std::unique_ptr<GlContext> MakeEglContext(EglSource source, const std::string& library) {
  return std::make_unique<EglContext>(source, library);
}

std::unique_ptr<GlContext> MakeGlContext() {
  return MakeEglContext(EglSource::kAny);
}

}  // namespace mirellon::gpu
