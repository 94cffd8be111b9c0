// mirellon-time-engine PICTURE plane|colour|preview [NAME=VALUE...]: the milliseconds that the engine takes,
// files and program start left out. A plane is the picture's Y alone. A preview is 400 x 400 pixels from the
// middle, denoised and sharpened, after one run that does not count. Names and their defaults: quality=3
// threads=1 bits=8 strength=10 dynamics=0 runs=1 (the median of them is printed).
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "engine/detail_pyramid.h"
#include "engine/simd_target.h"
#include "engine/whole_picture.h"
#include "imageio/load_image.h"
#include "stopwatch.h"

namespace {

using mirellon::bench::Clock;
using mirellon::engine::EngineContext;
using mirellon::picture::CBxPicBufAPI;
using mirellon::picture::PicBuf;

constexpr int kPreviewSide = 400;

struct Task {
  std::string kind;
  std::uint32_t quality = 3;
  std::uint32_t threads = 1;
  unsigned bits = 8;
  double strength = 10.0;
  double dynamics = 0.0;
  int runs = 1;
  Clock clock = Clock::kWall;

  // True = failed.
  bool Set(const std::string& name, const std::string& value) {
    char* end = nullptr;
    const double number = std::strtod(value.c_str(), &end);
    if (value.empty() || *end != '\0') return true;
    if (name == "quality") return quality = static_cast<std::uint32_t>(number), false;
    if (name == "threads") return threads = static_cast<std::uint32_t>(number), false;
    if (name == "bits") return bits = static_cast<unsigned>(number), false;
    if (name == "strength") return strength = number, false;
    if (name == "dynamics") return dynamics = number, false;
    if (name == "processor") return clock = number != 0 ? Clock::kProcessor : Clock::kWall, false;
    if (name == "runs") return runs = static_cast<int>(number), false;
    return true;
  }
};

// True = failed.
bool Read(int argc, char** argv, Task& task) {
  if (argc < 3) return true;
  task.kind = argv[2];
  if (task.kind != "plane" && task.kind != "colour" && task.kind != "preview") return true;
  for (int i = 3; i < argc; ++i) {
    const std::string text = argv[i];
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || task.Set(text.substr(0, equals), text.substr(equals + 1))) return true;
  }
  return task.runs < 1;
}

PicBuf Load(const char* name, const Task& task) {
  mirellon::imageio::Document document;
  std::filesystem::path path = name;
  if (LoadImageFile(document, path, /*quiet=*/true, nullptr)) return {};
  PicBuf picture = std::move(document.source);
  CBxPicBufAPI::ConvertBpcComp(picture, task.bits, task.kind == "plane" ? 1 : 3);
  if (task.kind != "preview") return picture;
  PicBuf part(kPreviewSide, kPreviewSide, picture->components, picture->bitsPerComponent);
  CBxPicBufAPI::CopyRect(part, picture, {0, 0},
                         {(picture->width - kPreviewSide) / 2, (picture->height - kPreviewSide) / 2},
                         {kPreviewSide, kPreviewSide});
  return part;
}

double Time(PicBuf& source, const Task& task) {
  EngineContext context;
  context.processorCount = task.threads;
  PicBuf result;
  mirellon::engine::DenoiseRequest request;
  request.source = &source.record();
  request.destination = &result.record();
  request.strength = task.strength;
  request.quality = task.quality;
  request.dynamics = task.dynamics;
  bool failed = false;
  const auto run = [&] {
    failed |= !DenoiseWholePicture(context, request, false);
    if (task.kind == "preview")
      failed |= mirellon::engine::SharpenPicture(result, 1.4, 1.2, 0.9, task.threads);
  };
  if (task.kind == "preview") run();
  const double milliseconds = mirellon::bench::MedianMilliseconds(task.clock, task.runs, run);
  return failed ? -1.0 : milliseconds;
}

}  // namespace

int main(int argc, char** argv) {
  Task task;
  if (Read(argc, argv, task) || mirellon::engine::ForceSimdTargetFromEnvironment()) {
    std::fprintf(stderr, "usage: mirellon-time-engine PICTURE plane|colour|preview [NAME=VALUE...]\n");
    return 2;
  }
  PicBuf source = Load(argv[1], task);
  const double milliseconds = source.empty() ? -1.0 : Time(source, task);
  if (milliseconds < 0.0) {
    std::fprintf(stderr, "mirellon-time-engine: '%s': unreadable, or not enough memory\n", argv[1]);
    return 1;
  }
  std::printf("%.2f\n", milliseconds);
  return 0;
}
