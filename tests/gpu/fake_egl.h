// A libEGL of the tests' own, a shared library: displays that refuse what they are told to.
#pragma once

#include <string>
#include <vector>

namespace mirellon::test {

struct FakeDisplay {
  std::string name;
  std::string failing{};      // the step that it refuses: initialise, config, surface, context, current
  bool software = false;      // as its device tells
  bool needsSurface = false;  // lacks EGL_KHR_surfaceless_context
  int contexts = 0;           // there are now
  int surfaces = 0;           // likewise
};

struct FakeEgl {
  std::string clientExtensions = "EGL_EXT_platform_device EGL_MESA_platform_surfaceless";
  std::vector<FakeDisplay> displays;  // the surfaceless one, the default one, one for each device
  std::vector<std::string> tried;     // names of displays that were asked for a format
  std::string surfaceSize;            // of the last one made
  bool libraryTellsDevices = true;    // has eglQueryDisplayAttribEXT
};

// The state of the library.
[[nodiscard]] FakeEgl& TheFakeEgl();

}  // namespace mirellon::test
