#include "gpu/fake_egl.h"

#include <cstring>

#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace mirellon::test {

FakeEgl& TheFakeEgl() {
  static FakeEgl egl;
  return egl;
}

}  // namespace mirellon::test

namespace {

using mirellon::test::FakeDisplay;
using mirellon::test::TheFakeEgl;

FakeDisplay& Display(void* handle) {
  return *static_cast<FakeDisplay*>(handle);
}

// Answers for a step: no when it is the one that the display refuses.
EGLBoolean Does(const FakeDisplay& display, const char* step) {
  return display.failing == step ? EGL_FALSE : EGL_TRUE;
}

EGLDisplay GetPlatformDisplay(EGLenum platform, void* device, const EGLint* /*attributes*/) {
  return platform == EGL_PLATFORM_DEVICE_EXT ? device : &TheFakeEgl().displays.at(0);
}

EGLBoolean QueryDevices(EGLint room, EGLDeviceEXT* devices, EGLint* count) {
  *count = 0;
  auto& displays = TheFakeEgl().displays;
  for (std::size_t i = 2; i < displays.size() && *count < room; ++i) devices[(*count)++] = &displays[i];
  return EGL_TRUE;
}

const char* QueryDeviceString(EGLDeviceEXT device, EGLint /*name*/) {
  return Display(device).software ? "EGL_EXT_device_drm EGL_MESA_device_software" : "EGL_EXT_device_drm";
}

EGLBoolean QueryDisplayAttrib(EGLDisplay display, EGLint /*name*/, EGLAttrib* value) {
  *value = reinterpret_cast<EGLAttrib>(display);  // a display is its own device
  return EGL_TRUE;
}

}  // namespace

extern "C" {

__eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* name) {
  const auto as = [](auto* function) {
    return reinterpret_cast<__eglMustCastToProperFunctionPointerType>(function);
  };
  if (std::strcmp(name, "eglGetPlatformDisplayEXT") == 0) return as(GetPlatformDisplay);
  if (std::strcmp(name, "eglQueryDevicesEXT") == 0) return as(QueryDevices);
  if (!TheFakeEgl().libraryTellsDevices) return nullptr;
  if (std::strcmp(name, "eglQueryDeviceStringEXT") == 0) return as(QueryDeviceString);
  if (std::strcmp(name, "eglQueryDisplayAttribEXT") == 0) return as(QueryDisplayAttrib);
  return nullptr;
}

const char* eglQueryString(EGLDisplay dpy, EGLint /*name*/) {
  if (dpy == EGL_NO_DISPLAY) return TheFakeEgl().clientExtensions.c_str();
  return Display(dpy).needsSurface ? "" : "EGL_KHR_create_context EGL_KHR_surfaceless_context";
}

EGLDisplay eglGetDisplay(EGLNativeDisplayType /*native*/) {
  return &TheFakeEgl().displays.at(1);
}

EGLBoolean eglInitialize(EGLDisplay dpy, EGLint* /*major*/, EGLint* /*minor*/) {
  return Does(Display(dpy), "initialise");
}

EGLBoolean eglBindAPI(EGLenum api) {
  return api == EGL_OPENGL_API ? EGL_TRUE : EGL_FALSE;
}

EGLBoolean eglChooseConfig(EGLDisplay dpy, const EGLint* /*wanted*/, EGLConfig* configs, EGLint /*room*/,
                           EGLint* num_config) {
  TheFakeEgl().tried.push_back(Display(dpy).name);
  *configs = dpy;
  *num_config = Does(Display(dpy), "config") == EGL_TRUE ? 1 : 0;
  return EGL_TRUE;
}

EGLSurface eglCreatePbufferSurface(EGLDisplay dpy, EGLConfig /*config*/, const EGLint* attrib_list) {
  FakeDisplay& of = Display(dpy);
  if (Does(of, "surface") != EGL_TRUE) return EGL_NO_SURFACE;
  TheFakeEgl().surfaceSize = std::to_string(attrib_list[1]) + "x" + std::to_string(attrib_list[3]);
  ++of.surfaces;
  return &of.surfaces;
}

EGLBoolean eglDestroySurface(EGLDisplay dpy, EGLSurface /*surface*/) {
  --Display(dpy).surfaces;
  return EGL_TRUE;
}

EGLContext eglCreateContext(EGLDisplay dpy, EGLConfig /*config*/, EGLContext /*shared*/,
                            const EGLint* /*attributes*/) {
  FakeDisplay& of = Display(dpy);
  if (Does(of, "context") != EGL_TRUE) return EGL_NO_CONTEXT;
  ++of.contexts;
  return &of.contexts;
}

EGLBoolean eglDestroyContext(EGLDisplay dpy, EGLContext /*context*/) {
  --Display(dpy).contexts;
  return EGL_TRUE;
}

EGLBoolean eglMakeCurrent(EGLDisplay dpy, EGLSurface /*draw*/, EGLSurface /*read*/, EGLContext ctx) {
  return ctx == EGL_NO_CONTEXT ? EGL_TRUE : Does(Display(dpy), "current");
}

}  // extern "C"
