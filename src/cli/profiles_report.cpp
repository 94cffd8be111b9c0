#include "cli/profiles_report.h"

#include <string>
#include <system_error>

#include "base/text.h"
#include "cli/json_parts.h"
#include "cli/parameter_options.h"
#include "cli/report.h"
#include "profiles/number_text.h"

namespace mirellon::cli {

namespace {

std::string Name(const profiles::CameraProfile& camera) {
  return base::Utf8FromWide(camera.name);
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
  Print(out, object, JsonLayout::kOneLine);
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
  if (json) Print(out, list, JsonLayout::kLines);
}

void PrintSet(std::ostream& out, const profiles::CameraProfile& camera, std::size_t entry, bool json) {
  if (json) return PrintSetJson(out, camera, entry);
  const engine::DenoiseParameters& set = camera.parameters[entry];
  out << base::PrintableName(Name(camera)) << ", ISO " << std::to_string(camera.isoValues[entry]) << '\n';
  for (const profiles::StoredValue& row : profiles::kStoredValues) {
    out << "  " << base::Utf8FromWide(row.key) << " = "
        << base::Utf8FromWide(profiles::DecimalText(set.*row.member, profiles::kStoredDecimals)) << '\n';
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
  SetName(object, "userFile", paths.userFile);
  std::error_code ignored;
  if (std::filesystem::exists(paths.defaultFile, ignored)) {
    SetName(object, "defaultFile", paths.defaultFile);
  } else {
    object["defaultFile"] = nullptr;
  }
  Print(out, object, JsonLayout::kLines);
}

}  // namespace mirellon::cli
