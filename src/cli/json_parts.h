// What the JSON reports have in common.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

#include "cli/report.h"
#include "engine/parameters.h"

namespace mirellon::cli {

// Keys in the order in which they were set.
using Json = nlohmann::ordered_json;

// Under `key`, and under `key` + "Base64" when the name is not UTF-8.
void SetName(Json& object, const std::string& key, const std::filesystem::path& name);
void SetGeometry(Json& object, const Geometry& geometry);
[[nodiscard]] Json ParametersJson(const engine::DenoiseParameters& parameters);
[[nodiscard]] Json TimingJson(const Timing& timing);

enum class JsonLayout { kLines, kOneLine };
void Print(std::ostream& out, const Json& object, JsonLayout layout);

}  // namespace mirellon::cli
