// Results on standard output, as text and as JSON.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "engine/noise_estimate.h"
#include "engine/parameters.h"
#include "imageio/exif_summary.h"
#include "picture/pic_buf_api.h"

namespace mirellon::cli {

inline constexpr int kReportSchema = 1;

// The picture's geometry, without its samples.
struct Geometry {
  int width = 0;   // pixels
  int height = 0;  // pixels
  int components = 0;
  int bits = 0;  // per component

  [[nodiscard]] static Geometry Of(const picture::SBxPicBuf& picture) {
    return {picture.width, picture.height, picture.components, picture.bitsPerComponent};
  }
};

// Milliseconds of wall-clock time.
struct Timing {
  double load = 0.0;
  double denoise = 0.0;
  double sharpen = 0.0;
  double save = 0.0;  // metadata included
  double total = 0.0;
};

// A stored set by its names.
struct ProfileReport {
  std::optional<std::wstring> camera;  // nothing: no stored set
  std::uint32_t iso = 0;
  std::string rule = "none";  // "exact", "nearest", "fallback", "given" or "none"
};

struct DenoiseReport {
  std::filesystem::path input;
  std::filesystem::path output;  // the name really written
  Geometry geometry;
  engine::DenoiseParameters parameters;
  ProfileReport profile;  // where the parameters come from, before values given one by one
  std::uint32_t quality = engine::kQualityMedium;
  std::string backend = "cpu";  // what did the work: "cpu", "gpu" or "fusion"
  std::string simd;             // the instruction set in use
  std::uint32_t threads = 1;
  std::vector<std::string> warnings;
  Timing milliseconds;
};

struct InfoReport {
  std::filesystem::path file;
  std::string format;  // "JPEG"
  Geometry geometry;
  imageio::ExifSummary exif;
  std::wstring cameraKey;  // empty when the photograph names no camera
  engine::MeasuredNoise noise;
  ProfileReport profile;       // as the panel chooses
  ProfileReport batchProfile;  // as a batch chooses
};

struct GpuReport {
  bool usable = false;
  std::string refusal;  // why not; empty: it is
  std::string vendor;
  std::string renderer;
  std::string version;
  std::vector<std::pair<std::string, bool>> extensions;  // those needed; false: missing or not asked for
  int largestTile = 0;                                   // pixels
  std::string format;                                    // of textures with one channel
  std::optional<int> largestDifference;                  // from the processor, in the agreement test
};

// One JSON object with a line end. Keys whose values are names of files get a twin ending in "Base64" when
// the name is not UTF-8, which holds its exact bytes.
void PrintJson(std::ostream& out, const DenoiseReport& report);
void PrintJson(std::ostream& out, const InfoReport& report);
void PrintJson(std::ostream& out, const GpuReport& report);

// Lines of "label: value"; what the photograph does not tell is "-".
void PrintText(std::ostream& out, const InfoReport& report);
void PrintText(std::ostream& out, const GpuReport& report);

// RFC 4648, with padding.
[[nodiscard]] std::string Base64(std::string_view bytes);

}  // namespace mirellon::cli
