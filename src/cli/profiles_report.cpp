#include "cli/profiles_report.h"

#include <string>
#include <system_error>

#include <nlohmann/json.hpp>

#include "base/text.h"
#include "cli/parameter_options.h"
#include "cli/report.h"
#include "profiles/number_text.h"

namespace mirellon::cli {

namespace {

// Keys in the order in which they were set.
using Json = nlohmann::ordered_json;

void Print(std::ostream& out, const Json& value, int indent) {
  out << value.dump(indent, ' ', false, Json::error_handler_t::replace) << '\n';
}

std::string Name(const profiles::CameraProfile& camera) {
  return base::Utf8FromWide(camera.name);
}

Json NameJson(const std::filesystem::path& file) {
  return base::Utf8FromWide(base::WideFromUtf8(file.native()));
}

void PrintSetJson(std::ostream& out, const profiles::CameraProfile& camera, std::size_t entry) {
  const engine::DenoiseParameters& set = camera.parameters[entry];
  Json object;
  object["schema"] = kReportSchema;
  object["camera"] = Name(camera);
  object["iso"] = camera.isoValues[entry];
  for (const profiles::StoredValue& row : profiles::kStoredValues) {
    object[base::Utf8FromWide(row.key)] = set.*row.member;
  }
  object[kArtefactsKey] = set.m_iUseMedian;
  Print(out, object, -1);
}

}  // namespace

void PrintCameras(std::ostream& out, const profiles::NoiseProfileStore& store, bool json) {
  Json list = Json::array();
  for (const profiles::CameraProfile& camera : store.cameras()) {
    if (json) {
      list.push_back({{"camera", Name(camera)}, {"iso", camera.isoValues}});
      continue;
    }
    std::string line = base::PrintableName(Name(camera)) + ":";
    for (const std::uint32_t iso : camera.isoValues) line.append(1, ' ').append(std::to_string(iso));
    out << line << '\n';
  }
  if (json) Print(out, list, 2);
}

void PrintSet(std::ostream& out, const profiles::CameraProfile& camera, std::size_t entry, bool json) {
  if (json) return PrintSetJson(out, camera, entry);
  const engine::DenoiseParameters& set = camera.parameters[entry];
  out << base::PrintableName(Name(camera)) << ", ISO " << std::to_string(camera.isoValues[entry]) << '\n';
  for (const profiles::StoredValue& row : profiles::kStoredValues) {
    out << "  " << base::Utf8FromWide(row.key) << " = "
        << base::Utf8FromWide(profiles::DecimalText(set.*row.member, 2)) << '\n';
  }
  out << "  " << kArtefactsKey << " = " << std::to_string(set.m_iUseMedian) << '\n';
}

void PrintPaths(std::ostream& out, const profiles::ProfilePaths& paths, bool json) {
  if (!json) {
    out << paths.userFile.native() << '\n';
    return;
  }
  Json object;
  object["schema"] = kReportSchema;
  object["userFile"] = NameJson(paths.userFile);
  std::error_code ignored;
  const bool shipped = std::filesystem::exists(paths.defaultFile, ignored);
  object["defaultFile"] = shipped ? NameJson(paths.defaultFile) : Json();
  Print(out, object, 2);
}

}  // namespace mirellon::cli
