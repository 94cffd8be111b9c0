// From files to pictures and back: a photograph of 4 megapixels.

#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "bench_pictures.h"
#include "imageio/load_image.h"
#include "imageio/save_image.h"

namespace mirellon {
namespace {

using picture::PicBuf;

constexpr int kWidth = 2400;
constexpr int kHeight = 1600;

// Gone with everything in it when a benchmark ends.
class Folder {
 public:
  Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "mirellon-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) != nullptr) path_ = pattern;
  }
  ~Folder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

struct Kind {
  const char* extension;
  int bits;
};
constexpr Kind kKinds[] = {{"jpg", 8}, {"png", 8}, {"tif", 8}, {"bmp", 8}, {"png", 16}, {"tif", 16}};

void CountPixels(benchmark::State& state, const Kind& kind) {
  state.counters["MP/s"] = benchmark::Counter(
      static_cast<double>(state.iterations()) * kWidth * kHeight / 1e6, benchmark::Counter::kIsRate);
  state.SetLabel(std::string(kind.extension) + ", " + std::to_string(kind.bits) + " bits");
}

// True = failed.
bool Save(const PicBuf& picture, const std::filesystem::path& target, const std::filesystem::path& source) {
  imageio::SaveOptions options;
  options.metadata = !source.empty();
  return imageio::WriteImageFile(picture, target, source, 85, options);
}

void Load(benchmark::State& state) {
  const Kind& kind = kKinds[state.range(0)];
  const Folder folder;
  std::filesystem::path path = folder / (std::string("picture.") + kind.extension);
  if (Save(bench::NoisyPicture(kWidth, kHeight, 3, kind.bits), path, {})) return state.SkipWithError("save");
  imageio::Document document;
  for (auto _ : state) benchmark::DoNotOptimize(imageio::LoadImageFile(document, path, /*quiet=*/true));
  CountPixels(state, kind);
}
BENCHMARK(Load)->DenseRange(0, std::size(kKinds) - 1)->Unit(benchmark::kMillisecond)->UseRealTime();

void Save(benchmark::State& state) {
  const Kind& kind = kKinds[state.range(0)];
  const Folder folder;
  const PicBuf picture = bench::NoisyPicture(kWidth, kHeight, 3, kind.bits);
  const std::filesystem::path path = folder / (std::string("picture.") + kind.extension);
  for (auto _ : state) benchmark::DoNotOptimize(Save(picture, path, {}));
  CountPixels(state, kind);
}
BENCHMARK(Save)->DenseRange(0, std::size(kKinds) - 1)->Unit(benchmark::kMillisecond)->UseRealTime();

// A small picture, so that nearly all of the time is exiftool's.
void SaveWithMetadata(benchmark::State& state) {
  const Folder folder;
  const PicBuf picture = bench::NoisyPicture(64, 64, 3, 8);
  if (Save(picture, folder / "source.jpg", {})) return state.SkipWithError("save");
  for (auto _ : state) benchmark::DoNotOptimize(Save(picture, folder / "saved.jpg", folder / "source.jpg"));
}
BENCHMARK(SaveWithMetadata)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace mirellon
