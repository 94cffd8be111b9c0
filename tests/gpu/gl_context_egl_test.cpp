// Which of several ways to a context is taken, on displays that refuse what they are told to.
#include "gpu/gl_context_egl.h"

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gpu/fake_egl.h"

namespace mirellon::gpu {
namespace {

using test::FakeDisplay;
using test::TheFakeEgl;
using Texts = std::vector<std::string>;

struct Opened {
  std::string failing;  // the first step that does; empty: none
  std::string holder;   // of the context that was made

  bool operator==(const Opened&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Opened& opened) {
  return out << "[" << opened.failing << "] [" << opened.holder << "]";
}

class EglContextTest : public ::testing::Test {
 protected:
  void SetUp() override {
    TheFakeEgl() = {};
    TheFakeEgl().displays = {{"surfaceless"}, {"default"}, {"first"}, {"second"}};
  }

  static FakeDisplay& Display(const std::string& name) {
    for (FakeDisplay& display : TheFakeEgl().displays) {
      if (display.name == name) return display;
    }
    ADD_FAILURE() << name;
    return TheFakeEgl().displays.front();
  }

  // What was made is released again.
  static Opened Open(EglSource source = EglSource::kAny) {
    const auto context = MakeEglContext(source, MIRELLON_FAKE_EGL);
    Opened opened;
    std::string& failing = opened.failing;
    if (context->OpenDevice()) {
      failing = "device";
    } else if (context->ChoosePixelFormat()) {
      failing = "config";
    } else if (context->SetPixelFormat()) {
      failing = "surface";
    } else if (context->CreateContext()) {
      failing = "context";
    } else if (context->MakeCurrent()) {
      failing = "current";
    }
    for (const FakeDisplay& display : TheFakeEgl().displays) {
      if (display.contexts > 0) opened.holder = display.name;
    }
    EXPECT_FALSE(context->DestroyContext() || context->CloseDevice());
    for (const FakeDisplay& display : TheFakeEgl().displays) {
      EXPECT_EQ(display.contexts + display.surfaces, 0) << display.name;
    }
    return opened;
  }
};

TEST_F(EglContextTest, SurfacelessThenDevicesThenAPbufferOnTheDefaultDisplay) {
  EXPECT_EQ(Open(), (Opened{"", "surfaceless"}));
  EXPECT_EQ(TheFakeEgl().tried, Texts{"surfaceless"});
  EXPECT_EQ(TheFakeEgl().surfaceSize, "");  // none is needed
  TheFakeEgl().tried.clear();
  for (FakeDisplay& display : TheFakeEgl().displays) display.failing = "context";
  Display("default").failing = "";
  EXPECT_EQ(Open(), (Opened{"", "default"}));
  EXPECT_EQ(TheFakeEgl().tried, (Texts{"surfaceless", "first", "second", "default"}));
  EXPECT_EQ(TheFakeEgl().surfaceSize, "50x50");
}

TEST_F(EglContextTest, WhateverStepIsRefusedTheNextOneIsTried) {
  for (const std::string step : {"initialise", "config", "surface", "context", "current"}) {
    SetUp();
    Display("surfaceless").failing = Display("first").failing = step;
    Display("surfaceless").needsSurface = Display("first").needsSurface = true;
    EXPECT_EQ(Open(), (Opened{"", "second"})) << step;
  }
}

TEST_F(EglContextTest, WhenAllRefuseTheStepsTellHowFarTheBestOneCame) {
  const struct {
    const char* failing[4];  // surfaceless, default, first, second
    const char* step;
  } cases[] = {{{"initialise", "initialise", "initialise", "initialise"}, "device"},
               {{"config", "initialise", "config", "config"}, "config"},
               {{"config", "surface", "initialise", "config"}, "surface"},
               {{"context", "surface", "config", "context"}, "context"},
               {{"config", "context", "current", "surface"}, "current"}};
  for (const auto& c : cases) {
    SetUp();
    for (std::size_t i = 0; i < 4; ++i) {
      TheFakeEgl().displays[i].failing = c.failing[i];
      TheFakeEgl().displays[i].needsSurface = true;
    }
    EXPECT_EQ(Open().failing, c.step);
  }
}

TEST_F(EglContextTest, SoftwareIsTakenOnlyWhenNoHardwareGivesAContext) {
  Display("surfaceless").software = Display("first").software = true;
  EXPECT_EQ(Open(), (Opened{"", "second"}));
  EXPECT_EQ(TheFakeEgl().tried, Texts{"second"});
  TheFakeEgl().tried.clear();
  Display("second").failing = "context";
  Display("default").failing = "current";
  EXPECT_EQ(Open(), (Opened{"", "surfaceless"}));
  EXPECT_EQ(TheFakeEgl().tried, (Texts{"second", "default", "surfaceless"}));
  // Where the library does not tell, all count as hardware.
  TheFakeEgl().libraryTellsDevices = false;
  TheFakeEgl().tried.clear();
  EXPECT_EQ(Open(), (Opened{"", "surfaceless"}));
}

TEST_F(EglContextTest, WhatTheLibraryLacksIsLeftOut) {
  for (FakeDisplay& display : TheFakeEgl().displays) display.failing = "config";
  const struct {
    const char* extensions;
    EglSource source;
    Texts tried;
  } cases[] = {{"", EglSource::kAny, {"default"}},
               {"EGL_MESA_platform_surfaceless", EglSource::kAny, {"surfaceless", "default"}},
               {"EGL_EXT_platform_device", EglSource::kAny, {"first", "second", "default"}},
               {"EGL_MESA_platform_surfaceless2", EglSource::kSurfaceless, {}},
               {"EGL_EXT_platform_device", EglSource::kDevice, {"first", "second"}},
               {"EGL_MESA_platform_surfaceless", EglSource::kSurfaceless, {"surfaceless"}},
               {"EGL_EXT_platform_device", EglSource::kPbuffer, {"default"}}};
  for (const auto& [extensions, source, tried] : cases) {
    TheFakeEgl().clientExtensions = extensions;
    TheFakeEgl().tried.clear();
    EXPECT_EQ(Open(source).failing, tried.empty() ? "device" : "config");
    EXPECT_EQ(TheFakeEgl().tried, tried) << extensions;
  }
}

}  // namespace
}  // namespace mirellon::gpu
