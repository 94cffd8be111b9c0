#include "gpu/gl_context_egl.h"

#include <algorithm>
#include <array>
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

class EglContext final : public GlContext {
 public:
  EglContext(EglSource source, std::string libraryName)
      : source_(source), libraryName_(std::move(libraryName)) {}

  [[nodiscard]] bool OpenWindow() override { return false; }

  [[nodiscard]] bool OpenDevice() override {
    // Drivers do not bear being unloaded.
    void* const library = dlopen(libraryName_.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library == nullptr || egl_.Load(library)) return true;
    bool opened = false;
    for (const Candidate& candidate : Candidates()) {
      if (candidate.display == EGL_NO_DISPLAY) continue;
      if (egl_.Initialize(candidate.display, nullptr, nullptr) != EGL_TRUE) continue;
      opened = true;
      display_ = candidate.display;
      pbuffer_ = candidate.pbuffer;
      if (!ChoosePixelFormat()) break;  // one that has what we need
    }
    return !opened;
  }

  [[nodiscard]] bool ChoosePixelFormat() override {
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
    return egl_.ChooseConfig(display_, kWanted.data(), &config_, 1, &count) != EGL_TRUE || count < 1;
  }

  // Nothing is ever drawn to the surface; it only has to exist where a context cannot do without one.
  [[nodiscard]] bool SetPixelFormat() override {
    if (!pbuffer_ && Lists(egl_.QueryString(display_, EGL_EXTENSIONS), "EGL_KHR_surfaceless_context")) {
      return false;
    }
    constexpr std::array<EGLint, 5> kSize = {EGL_WIDTH, 50, EGL_HEIGHT, 50, EGL_NONE};
    surface_ = egl_.CreatePbufferSurface(display_, config_, kSize.data());
    return surface_ == EGL_NO_SURFACE;
  }

  [[nodiscard]] bool CreateContext() override {
    context_ = egl_.CreateContext(display_, config_, EGL_NO_CONTEXT, nullptr);
    return context_ == EGL_NO_CONTEXT;
  }

  [[nodiscard]] bool MakeCurrent() override {
    // The interface that contexts belong to is chosen for each thread.
    return egl_.BindAPI(EGL_OPENGL_API) != EGL_TRUE ||
           egl_.MakeCurrent(display_, surface_, surface_, context_) != EGL_TRUE;
  }
  [[nodiscard]] bool ReleaseCurrent() override {
    return egl_.MakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) != EGL_TRUE;
  }

  [[nodiscard]] bool DestroyContext() override {
    if (context_ == EGL_NO_CONTEXT) return false;
    return egl_.DestroyContext(display_, std::exchange(context_, EGL_NO_CONTEXT)) != EGL_TRUE;
  }

  // The display stays initialised: terminating it would end every other context of this process on it.
  [[nodiscard]] bool CloseDevice() override {
    bool failed = false;
    if (surface_ != EGL_NO_SURFACE) {
      failed = egl_.DestroySurface(display_, std::exchange(surface_, EGL_NO_SURFACE)) != EGL_TRUE;
    }
    display_ = EGL_NO_DISPLAY;
    return failed;
  }

  [[nodiscard]] bool CloseWindow() override { return false; }
  [[nodiscard]] bool UnregisterWindowClass() override { return false; }

 private:
  struct Candidate {
    EGLDisplay display;
    bool pbuffer;
  };

  [[nodiscard]] bool Wanted(EglSource source) const {
    return source_ == EglSource::kAny || source_ == source;
  }

  void AddDevices(bool software, const char* clientExtensions, std::vector<Candidate>& candidates) const {
    if (!Wanted(EglSource::kDevice) || egl_.GetPlatformDisplay == nullptr || egl_.QueryDevices == nullptr ||
        egl_.QueryDeviceString == nullptr || !Lists(clientExtensions, "EGL_EXT_platform_device")) {
      return;
    }
    std::array<EGLDeviceEXT, 16> devices = {};
    EGLint count = 0;
    if (egl_.QueryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count) != EGL_TRUE) return;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
      const char* extensions = egl_.QueryDeviceString(devices[i], EGL_EXTENSIONS);
      if (Lists(extensions, "EGL_MESA_device_software") != software) continue;
      candidates.push_back({egl_.GetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr), false});
    }
  }

  // A driver that only knows its own devices stands beside Mesa's software one on many machines: hardware
  // goes first, wherever it is found.
  [[nodiscard]] std::vector<Candidate> Candidates() const {
    std::vector<Candidate> candidates;
    const char* extensions = egl_.QueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    AddDevices(false, extensions, candidates);
    if (Wanted(EglSource::kSurfaceless) && egl_.GetPlatformDisplay != nullptr &&
        Lists(extensions, "EGL_MESA_platform_surfaceless")) {
      void* const anyDevice = EGL_DEFAULT_DISPLAY;
      candidates.push_back(
          {egl_.GetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, anyDevice, nullptr), false});
    }
    AddDevices(true, extensions, candidates);
    if (Wanted(EglSource::kPbuffer)) candidates.push_back({egl_.GetDisplay(EGL_DEFAULT_DISPLAY), true});
    return candidates;
  }

  EglSource source_;
  std::string libraryName_;
  Egl egl_;
  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLConfig config_ = nullptr;
  EGLSurface surface_ = EGL_NO_SURFACE;
  EGLContext context_ = EGL_NO_CONTEXT;
  bool pbuffer_ = false;
};

}  // namespace

std::unique_ptr<GlContext> MakeEglContext(EglSource source, const std::string& library) {
  return std::make_unique<EglContext>(source, library);
}

std::unique_ptr<GlContext> MakeGlContext() {
  return MakeEglContext(EglSource::kAny);
}

}  // namespace mirellon::gpu
