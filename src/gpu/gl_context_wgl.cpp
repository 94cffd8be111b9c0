// Contexts through WGL, on a window that nobody sees.
#include <memory>
#include <utility>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "gpu/gl_context.h"

namespace mirellon::gpu {

namespace {

constexpr const wchar_t* kClassName = L"VextorForPresident";

LRESULT CALLBACK HelperProcedure(HWND window, UINT message, WPARAM wide, LPARAM longer) {
  if (message == WM_ERASEBKGND) return 1;
  return DefWindowProcW(window, message, wide, longer);
}

// Nothing is ever drawn to the window, so the least there is will do.
PIXELFORMATDESCRIPTOR WantedFormat() {
  PIXELFORMATDESCRIPTOR format = {};
  format.nSize = sizeof format;
  format.nVersion = 1;
  format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
  format.iPixelType = PFD_TYPE_RGBA;
  format.cColorBits = 8;
  format.cDepthBits = 8;
  format.iLayerType = PFD_MAIN_PLANE;
  return format;
}

class WglContext final : public GlContext {
 public:
  [[nodiscard]] bool OpenWindow() override {
    WNDCLASSW windowClass = {};
    windowClass.style = CS_HREDRAW | CS_VREDRAW | CS_OWNDC;
    windowClass.lpfnWndProc = HelperProcedure;
    windowClass.hInstance = module_;
    registered_ = RegisterClassW(&windowClass) != 0;
    window_ = CreateWindowExW(0, kClassName, L"", WS_POPUP | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0, 0, 50, 50,
                              nullptr, nullptr, module_, nullptr);
    return window_ == nullptr;
  }
  [[nodiscard]] bool OpenDevice() override {
    device_ = window_ == nullptr ? nullptr : GetDC(window_);
    return device_ == nullptr;
  }
  [[nodiscard]] bool ChoosePixelFormat() override {
    const PIXELFORMATDESCRIPTOR wanted = WantedFormat();
    format_ = ::ChoosePixelFormat(device_, &wanted);
    return format_ == 0;
  }
  [[nodiscard]] bool SetPixelFormat() override {
    const PIXELFORMATDESCRIPTOR wanted = WantedFormat();
    return ::SetPixelFormat(device_, format_, &wanted) == FALSE;
  }
  [[nodiscard]] bool CreateContext() override {
    context_ = wglCreateContext(device_);
    return context_ == nullptr;
  }

  [[nodiscard]] bool MakeCurrent() override { return wglMakeCurrent(device_, context_) == FALSE; }
  [[nodiscard]] bool ReleaseCurrent() override { return wglMakeCurrent(nullptr, nullptr) == FALSE; }

  [[nodiscard]] bool DestroyContext() override {
    return context_ != nullptr && wglDeleteContext(std::exchange(context_, nullptr)) == FALSE;
  }
  [[nodiscard]] bool CloseDevice() override {
    return device_ != nullptr && ReleaseDC(window_, std::exchange(device_, nullptr)) == 0;
  }
  [[nodiscard]] bool CloseWindow() override {
    return window_ != nullptr && DestroyWindow(std::exchange(window_, nullptr)) == FALSE;
  }
  [[nodiscard]] bool UnregisterWindowClass() override {
    return std::exchange(registered_, false) && UnregisterClassW(kClassName, module_) == FALSE;
  }

 private:
  HINSTANCE module_ = GetModuleHandleW(nullptr);
  HWND window_ = nullptr;
  HDC device_ = nullptr;
  HGLRC context_ = nullptr;
  int format_ = 0;
  bool registered_ = false;
};

}  // namespace

std::unique_ptr<GlContext> MakeGlContext() {
  return std::make_unique<WglContext>();
}

}  // namespace mirellon::gpu
