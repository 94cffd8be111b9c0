// The software card that the tests run on.
#pragma once

#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "base/text.h"
#include "gpu/gl_context_egl.h"
#include "gpu/gpu_filter.h"

namespace mirellon::test {

class RecordingWindows : public base::WindowServices {
 public:
  void ShowMessage(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) override {
    const bool warning = kind == base::MessageKind::kWarning;
    shown.push_back(base::Utf8FromWide(caption + L": " + text) + (warning ? " (!)" : " (i)"));
  }
  std::optional<std::filesystem::path> AskOpenPath(const std::wstring& /*title*/) override { return {}; }
  std::optional<std::filesystem::path> AskSavePath(const std::wstring& /*title*/,
                                                   const std::filesystem::path& /*proposal*/) override {
    return {};
  }

  std::vector<std::string> shown;
};

// A filter with all that it borrows.
struct OpenCard {
  explicit OpenCard(gpu::FilterOptions options = {},
                    std::unique_ptr<gpu::GlContext> context = gpu::MakeGlContext())
      : filter(std::move(context), &windows, lines, lines, options) {
    filter.Initialise();
  }

  RecordingWindows windows;
  std::ostringstream lines;
  gpu::GpuFilter filter;
};

#define ASSERT_USABLE(card)                                                                               \
  ASSERT_TRUE((card).filter.hardwareUsable())                                                             \
      << "these tests need an OpenGL driver (libgl1-mesa-dri, libegl1): " << (card).filter.info().refusal \
      << "\n"                                                                                             \
      << (card).lines.str()

}  // namespace mirellon::test
