#include "profiles/profile_file.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "base/ini_text.h"
#include "base/text.h"
#include "profiles/number_text.h"

namespace mirellon::profiles {

namespace {

using base::IniText;
using engine::DenoiseParameters;

constexpr const wchar_t* kGeneral = L"General";
constexpr const wchar_t* kCameraCountKey = L"No Of Cameras";
constexpr const wchar_t* kActualCameraKey = L"Actual Camera";
constexpr const wchar_t* kActualIsoKey = L"Actual ISO";
constexpr const wchar_t* kVersionKey = L"version";
constexpr const wchar_t* kVersion = L"2";
constexpr const wchar_t* kNameKey = L"m_wcsCameraName";
constexpr const wchar_t* kIsoCountKey = L"m_uiISOCount";
constexpr const wchar_t* kMedianKey = L"m_iUseMedian";
constexpr std::int32_t kMostSpeeds = 10000;  // of one camera
constexpr std::int32_t kStrongestMedian = 2;
// Counts up to the trusted ones are taken at their word, larger ones only as far as the text bears them out.
constexpr std::size_t kTrustedCameras = 1000;
constexpr std::size_t kTrustedEntries = 20000;  // of all cameras
// More than the largest file that is read can hold when this program wrote it: a set takes 244 bytes.
constexpr std::size_t kMostEntries = 70000;
constexpr std::size_t kMostCameras = kMostEntries;
constexpr std::wstring_view kBlockMark = L"<<<";

std::wstring CameraSection(std::size_t index) {
  return L"Camera_" + IntegerText(static_cast<std::uint32_t>(index));
}

std::wstring IsoKey(std::size_t entry) {
  return L"ISO" + IntegerText(static_cast<std::uint32_t>(entry));
}

std::wstring ParameterSection(const std::wstring& name, std::uint32_t iso) {
  return L"Camera " + name + L" ISO" + IntegerText(iso);
}

// A value not above the lower bound becomes it, one not below the upper bound likewise.
double Held(double value, double low, double high) {
  if (!(value > low)) return low;
  return value < high ? value : high;
}

class Reader {
 public:
  Reader(const IniText& ini, ProfileData& data) : ini_(ini), data_(data) {}

  ProfileFault Read() {
    const std::size_t count = CountCameras();
    data_.actualCamera = static_cast<std::uint32_t>(Integer(kGeneral, kActualCameraKey, 0));
    data_.actualIso = static_cast<std::uint32_t>(Integer(kGeneral, kActualIsoKey, 0));
    data_.cameras.resize(count);
    bool refused = false;
    for (std::size_t i = 0; i < count; ++i) {
      try {
        ReadCamera(i);
      } catch (const std::bad_alloc&) {
        refused = true;  // the cameras behind it are read all the same
      }
    }
    if (refused) return ProfileFault::kMemory;
    if (!ini_.HasSection(kGeneral)) return ProfileFault::kNoGeneral;
    return complete_ ? ProfileFault::kNone : ProfileFault::kIncomplete;
  }

 private:
  std::int32_t Integer(const std::wstring& section, const wchar_t* key, std::int32_t fallback) const {
    const wchar_t* text = ini_.Find(section, key);
    return text == nullptr ? fallback : ClampedInteger(text);
  }

  std::size_t CountCameras() {
    const auto counted = static_cast<std::uint32_t>(Integer(kGeneral, kCameraCountKey, 1));
    if (counted <= kTrustedCameras) return counted;
    std::size_t count = std::min<std::size_t>(counted, kMostCameras);
    while (count > 1 && ini_.Find(CameraSection(count - 1), kNameKey) == nullptr) --count;
    if (count != counted) complete_ = false;
    return count;
  }

  std::size_t CountSpeeds(const std::wstring& section) {
    const std::int32_t counted = Integer(section, kIsoCountKey, 0);
    const auto held = static_cast<std::size_t>(std::clamp(counted, 0, kMostSpeeds));
    const std::size_t most = std::clamp(ini_.SectionCount(), kTrustedEntries, kMostEntries);
    const std::size_t count = std::min(held, most - entries_);
    if (static_cast<std::int64_t>(count) != counted) complete_ = false;
    entries_ += count;
    return count;
  }

  void ReadCamera(std::size_t index) {
    CameraProfile& camera = data_.cameras[index];
    camera.index = static_cast<std::uint32_t>(index);
    const std::wstring section = CameraSection(index);
    const wchar_t* name = ini_.Find(section, kNameKey);
    if (name == nullptr) complete_ = false;
    camera.name = base::CutText(name == nullptr ? kUnknownCamera : name, base::kShortTextCapacity);
    const std::size_t count = CountSpeeds(section);
    camera.isoValues.reserve(count);
    camera.parameters.reserve(count);
    for (std::size_t entry = 0; entry < count; ++entry) {
      const std::wstring key = IsoKey(entry);
      if (ini_.Find(section, key.c_str()) == nullptr) complete_ = false;
      const std::int32_t iso = std::clamp(Integer(section, key.c_str(), 0), 0, kHighestStoredIso);
      camera.isoValues.push_back(static_cast<std::uint32_t>(iso));
      camera.parameters.push_back(ReadParameters(camera.name, camera.isoValues.back()));
    }
    MakeStorable(camera.name);
  }

  DenoiseParameters ReadParameters(const std::wstring& name, std::uint32_t iso) {
    const std::wstring section = ParameterSection(name, iso);
    const bool present = ini_.HasSection(section);
    if (!present) complete_ = false;
    DenoiseParameters parameters;
    parameters.iso = iso;
    for (const StoredValue& row : kStoredValues) {
      const wchar_t* text = present ? ini_.Find(section, row.key) : nullptr;
      parameters.*row.member = Held(text == nullptr ? row.fallback : LeadingDecimal(text), row.low, row.high);
    }
    const std::int32_t median = present ? Integer(section, kMedianKey, 0) : 0;
    parameters.m_iUseMedian = std::clamp(median, 0, kStrongestMedian);
    return parameters;
  }

  // Only a block of lines can hold what would make the next file unreadable.
  static void MakeStorable(std::wstring& name) {
    std::replace_if(
        name.begin(), name.end(), [](wchar_t c) { return c == L'\n' || c == L'\r'; }, L' ');
    while (name.starts_with(kBlockMark)) name.erase(0, 1);
  }

  const IniText& ini_;
  ProfileData& data_;
  std::size_t entries_ = 0;
  bool complete_ = true;
};

// True = failed, as IniText::Add.
bool AddParameters(IniText& ini, const std::wstring& section, const DenoiseParameters& parameters) {
  for (const StoredValue& row : kStoredValues) {
    if (ini.Add(section, row.key, DecimalText(parameters.*row.member, kStoredDecimals))) return true;
  }
  return ini.Add(section, kMedianKey, IntegerText(static_cast<std::uint32_t>(parameters.m_iUseMedian)));
}

bool AddCamera(IniText& ini, std::size_t index, const CameraProfile& camera) {
  const std::wstring section = CameraSection(index);
  const std::size_t count = camera.isoValues.size();
  if (ini.Add(section, kNameKey, camera.name)) return true;
  if (ini.Add(section, kIsoCountKey, IntegerText(static_cast<std::uint32_t>(count)))) return true;
  for (std::size_t entry = 0; entry < count; ++entry) {
    if (ini.Add(section, IsoKey(entry).c_str(), IntegerText(camera.isoValues[entry]))) return true;
  }
  for (std::size_t entry = 0; entry < count; ++entry) {
    const std::wstring parameters = ParameterSection(camera.name, camera.isoValues[entry]);
    if (AddParameters(ini, parameters, camera.parameters[entry])) return true;
  }
  return false;
}

bool AddGeneral(IniText& ini, const ProfileData& data) {
  const auto count = static_cast<std::uint32_t>(data.cameras.size());
  return ini.Add(kGeneral, kCameraCountKey, IntegerText(count)) ||
         ini.Add(kGeneral, kActualCameraKey, IntegerText(data.actualCamera)) ||
         ini.Add(kGeneral, kActualIsoKey, IntegerText(data.actualIso)) ||
         ini.Add(kGeneral, kVersionKey, kVersion);
}

}  // namespace

ProfileFault ParseProfiles(std::string_view text, ProfileData& data) {
  data = {};
  try {
    IniText ini;
    const bool failed = ini.Parse(text);
    const ProfileFault fault = Reader(ini, data).Read();
    return failed ? ProfileFault::kNotText : fault;
  } catch (const std::bad_alloc&) {
    return ProfileFault::kMemory;
  }
}

std::string ProfilesText(const ProfileData& data) {
  try {
    IniText ini;
    if (AddGeneral(ini, data)) return {};
    for (std::size_t i = 0; i < data.cameras.size(); ++i) {
      if (AddCamera(ini, i, data.cameras[i])) return {};
    }
    return ini.Text();
  } catch (const std::bad_alloc&) {
    return {};
  }
}

DenoiseParameters AsStored(const DenoiseParameters& parameters) {
  DenoiseParameters stored = parameters;
  for (const StoredValue& row : kStoredValues) {
    stored.*row.member =
        Held(LeadingDecimal(DecimalText(parameters.*row.member, kStoredDecimals)), row.low, row.high);
  }
  stored.m_iUseMedian = std::clamp(parameters.m_iUseMedian, 0, kStrongestMedian);
  return stored;
}

bool IsStorableName(std::wstring_view name) {
  if (name.starts_with(kBlockMark)) return false;
  return std::none_of(name.begin(), name.end(), [](wchar_t c) {
    const auto character = static_cast<char32_t>(c);
    return character < 0x20 || character == 0x7F || character == L']';
  });
}

}  // namespace mirellon::profiles
