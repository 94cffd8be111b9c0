#include "cli/json_parts.h"

#include <cmath>

#include "base/text.h"
#include "cli/parameter_options.h"

namespace mirellon::cli {

namespace {

// Microseconds are as fine as anybody will believe.
double Rounded(double milliseconds) {
  return std::round(milliseconds * 1000.0) / 1000.0;
}

}  // namespace

void SetName(Json& object, const std::string& key, const std::filesystem::path& name) {
  const std::string& bytes = name.native();
  // Malformed bytes become U+FFFD here; well-formed names come back unchanged.
  object[key] = base::Utf8FromWide(base::WideFromUtf8(bytes));
  if (!base::IsValidUtf8(bytes)) object[key + "Base64"] = Base64(bytes);
}

void SetGeometry(Json& object, const Geometry& geometry) {
  object["width"] = geometry.width;
  object["height"] = geometry.height;
  object["components"] = geometry.components;
  object["bits"] = geometry.bits;
}

Json ParametersJson(const engine::DenoiseParameters& parameters) {
  Json object;
  for (const ParameterOption& row : kParameterOptions) object[row.key] = parameters.*row.value;
  object[kArtefactsKey] = parameters.m_iUseMedian;
  return object;
}

Json TimingJson(const Timing& timing) {
  Json object;
  object["load"] = Rounded(timing.load);
  object["denoise"] = Rounded(timing.denoise);
  object["sharpen"] = Rounded(timing.sharpen);
  object["save"] = Rounded(timing.save);
  object["total"] = Rounded(timing.total);
  return object;
}

void Print(std::ostream& out, const Json& object, JsonLayout layout) {
  const int indent = layout == JsonLayout::kLines ? 2 : -1;
  out << object.dump(indent, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace mirellon::cli
