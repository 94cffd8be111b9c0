// Options that several commands share: values of a parameter set, which set they stand over, which file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/parameters.h"

namespace mirellon::cli {

class Parser;

// The values that were given one by one.
struct GivenValues {
  std::vector<std::pair<double engine::DenoiseParameters::*, double>> numbers;
  std::optional<std::int32_t> artefacts;

  void Replace(engine::DenoiseParameters& parameters) const;
};

// The set that a run starts from.
struct ProfileRequest {
  enum class Kind { kAuto, kBatch, kNone, kNamed };
  Kind kind = Kind::kAuto;
  std::wstring camera;    // kNamed
  std::uint32_t iso = 0;  // kNamed
};

// The parser keeps references to what the options fill.
void AddParameterOptions(Parser& parser, GivenValues& given);
void AddNoiseOptions(Parser& parser, GivenValues& given);
void AddProfileOption(Parser& parser, ProfileRequest& request);
void AddProfilesOption(Parser& parser, std::filesystem::path& file);

// The name of a camera and an ISO speed as arguments; empty = read, else why not.
[[nodiscard]] std::string ReadCamera(std::string_view text, std::wstring& camera);
[[nodiscard]] std::string ReadIso(std::string_view text, std::uint32_t low, std::uint32_t high,
                                  std::uint32_t& iso);

}  // namespace mirellon::cli
