#include "profiles/profile_store.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <new>
#include <system_error>

#include "base/checked_file.h"
#include "base/file_descriptor.h"
#include "base/kept_copy.h"
#include "base/paths.h"
#include "base/text.h"
#include "profiles/camera_key.h"
#include "profiles/number_text.h"

namespace mirellon::profiles {

namespace {

using engine::DenoiseParameters;

constexpr std::size_t kLargestFile = std::size_t{16} << 20U;  // 60 000 sets

bool Exists(const std::filesystem::path& file) {
  std::error_code ignored;
  return !file.empty() && std::filesystem::exists(file, ignored);
}

// 0, or the error number.
int ReadText(const std::filesystem::path& file, std::string& text) {
  base::FileDescriptor descriptor;
  const int error = base::OpenForReading(file, descriptor);
  return error != 0 ? error : base::ReadWhole(descriptor.get(), kLargestFile, text);
}

const char* FaultText(ProfileFault fault) {
  switch (fault) {
    case ProfileFault::kNotText:
      return "not a text of sections and keys";
    case ProfileFault::kNoGeneral:
      return "not a profile file: it has no section 'General'";
    case ProfileFault::kIncomplete:
      return "parts are missing or damaged; defaults stand in for them";
    case ProfileFault::kMemory:
      return "not enough memory";
    case ProfileFault::kNone:
      break;
  }
  return "";
}

std::wstring WithoutSpaces(std::wstring_view text) {
  std::wstring kept(text);
  kept.erase(std::remove(kept.begin(), kept.end(), L' '), kept.end());
  return kept;
}

double NoiseDistance(const DenoiseParameters& set, double luminance, double chrominance) {
  const double luminanceAway = set.m_dImmerkaerY - luminance;
  if (chrominance < kNoChrominance) return std::fabs(luminanceAway);
  const double chrominanceAway = set.m_dImmerkaerUV - chrominance;
  return std::sqrt(luminanceAway * luminanceAway + chrominanceAway * chrominanceAway);
}

// May throw std::bad_alloc, and has changed nothing then.
void PutEntry(CameraProfile& camera, const DenoiseParameters& parameters) {
  const auto same = std::find(camera.isoValues.begin(), camera.isoValues.end(), parameters.iso);
  if (same != camera.isoValues.end()) {
    camera.parameters[static_cast<std::size_t>(same - camera.isoValues.begin())] = parameters;
    return;
  }
  camera.parameters.reserve(camera.parameters.size() + 1);
  camera.isoValues.reserve(camera.isoValues.size() + 1);
  const auto greater = std::find_if(camera.isoValues.begin(), camera.isoValues.end(),
                                    [&](std::uint32_t iso) { return iso > parameters.iso; });
  camera.parameters.insert(camera.parameters.begin() + (greater - camera.isoValues.begin()), parameters);
  camera.isoValues.insert(greater, parameters.iso);
}

}  // namespace

ProfilePaths StandardProfilePaths(const std::filesystem::path& applicationData,
                                  const std::vector<std::filesystem::path>& resourceFolders) {
  return {base::UserFolder(applicationData) / kProfileFileName,
          resourceFolders.empty() ? std::filesystem::path()
                                  : base::ResourceFile(kProfileFileName, resourceFolders)};
}

DenoiseParameters BuiltInParameters() {
  DenoiseParameters parameters;
  parameters.m_dStrengthChromaLarge = 0.0;
  return parameters;
}

bool NoiseProfileStore::Fail(const std::filesystem::path& file, std::string_view why) {
  causeFile_ = file;
  cause_ = why;
  return true;
}

// True when memory was refused.
bool NoiseProfileStore::ReadFile(const std::filesystem::path& file) {
  std::string text;
  const int error = ReadText(file, text);
  // A file that cannot be read counts as empty.
  const ProfileFault fault = ParseProfiles(error == 0 ? std::string_view(text) : std::string_view(), data_);
  const bool foreign = fault == ProfileFault::kNotText || fault == ProfileFault::kNoGeneral;
  understood_ = error == 0 && (text.empty() || !foreign);
  if (error != 0) {
    Fail(file, base::ErrorText(error));
  } else if (fault != ProfileFault::kNone) {
    Fail(file, FaultText(fault));
  }
  return error == ENOMEM || fault == ProfileFault::kMemory;
}

bool NoiseProfileStore::Load(FirstRun firstRun) {
  cause_.clear();
  keptCopy_.clear();
  understood_ = true;
  if (firstRun == FirstRun::kSave) (void)base::EnsureFolder(paths_.userFile.parent_path());
  // No versions are compared: once the user's file exists, a newer default file changes nothing.
  if (Exists(paths_.userFile)) {
    source_ = ProfileSource::kUserFile;
    return ReadFile(paths_.userFile);
  }
  if (Exists(paths_.defaultFile)) {
    source_ = ProfileSource::kDefaultFile;
    return ReadFile(paths_.defaultFile);
  }
  source_ = ProfileSource::kBuiltIn;
  try {
    const DenoiseParameters set = BuiltInParameters();
    data_ = {};
    data_.cameras.push_back({0, kUnknownCamera, {set}, {set.iso}});
  } catch (const std::bad_alloc&) {
    return true;
  }
  if (firstRun == FirstRun::kSave) (void)Save();
  return false;
}

// True = failed.
bool NoiseProfileStore::KeepForeignFile() {
  const std::filesystem::path& file = paths_.userFile;
  std::string text;
  const int unreadable = ReadText(file, text);
  if (unreadable == ENOENT || unreadable == ENOTDIR) return false;
  if (unreadable == 0) {
    if (text.empty()) return false;
    ProfileData data;
    if (ParseProfiles(text, data) == ProfileFault::kNone && ProfilesText(data) == text) return false;
  }
  // What is not a file is for the writing to refuse.
  if (unreadable == EISDIR || unreadable == EINVAL) return Fail(file, base::ErrorText(unreadable));
  const int error = base::KeepCopy(file, keptCopy_);
  if (error == 0) return false;
  keptCopy_.clear();
  return Fail(file, "a copy could not be kept: " + base::ErrorText(error));
}

bool NoiseProfileStore::Save() {
  cause_.clear();
  keptCopy_.clear();
  const std::filesystem::path folder = paths_.userFile.parent_path();
  if (!folder.empty() && base::EnsureFolder(folder)) return Fail(folder, "the folder cannot be made");
  const std::string text = ProfilesText(data_);
  if (text.empty()) return Fail(paths_.userFile, base::ErrorText(ENOMEM));
  if (text.size() > kLargestFile) return Fail(paths_.userFile, "more sets than a profile file can hold");
  if (const int error = base::CheckWritable(paths_.userFile); error != 0) {
    return Fail(paths_.userFile, base::ErrorText(error));
  }
  if (KeepForeignFile()) return true;
  const int error = base::ReplaceFile(paths_.userFile, text);
  return error == 0 ? false : Fail(paths_.userFile, base::ErrorText(error));
}

std::uint32_t NoiseProfileStore::FindCamera(std::wstring_view key) const {
  const std::wstring wanted = WithoutSpaces(key);
  for (std::size_t i = 1; i < data_.cameras.size(); ++i) {
    if (WithoutSpaces(data_.cameras[i].name) == wanted) return static_cast<std::uint32_t>(i);
  }
  return 0;
}

std::uint32_t NoiseProfileStore::FindIso(std::uint32_t camera, std::wstring_view iso) const {
  if (camera >= cameraCount()) return 0;
  const std::vector<std::uint32_t>& speeds = data_.cameras[camera].isoValues;
  const auto found = std::find(speeds.begin(), speeds.end(), static_cast<std::uint32_t>(ClampedInteger(iso)));
  return found == speeds.end() ? 0 : static_cast<std::uint32_t>(found - speeds.begin());
}

std::uint32_t NoiseProfileStore::FindNearestNoise(std::wstring_view key, double luminance,
                                                  double chrominance) const {
  const std::uint32_t camera = FindCamera(key);
  if (camera >= cameraCount()) return 0;
  const std::vector<DenoiseParameters>& sets = data_.cameras[camera].parameters;
  double best = 1e300;
  std::size_t nearest = 0;
  for (std::size_t i = 0; i < sets.size(); ++i) {
    const double distance = NoiseDistance(sets[i], luminance, chrominance);
    if (!(distance < best)) continue;
    best = distance;
    nearest = i;
  }
  return static_cast<std::uint32_t>(nearest);
}

CameraProfile* NoiseProfileStore::CameraNamed(std::wstring_view name) {
  const auto found = std::find_if(data_.cameras.begin(), data_.cameras.end(),
                                  [name](const CameraProfile& camera) { return camera.name == name; });
  return found == data_.cameras.end() ? nullptr : &*found;
}

bool NoiseProfileStore::AddOrReplace(std::wstring_view camera, std::wstring_view iso,
                                     const DenoiseParameters& parameters) {
  if (!IsStorableName(camera)) return true;
  try {
    const std::wstring name = base::CutText(camera, base::kShortTextCapacity);
    DenoiseParameters set = parameters;
    set.iso = static_cast<std::uint32_t>(std::clamp(ClampedInteger(iso), kLowestAddedIso, kHighestAddedIso));
    if (CameraProfile* known = CameraNamed(name); known != nullptr) {
      PutEntry(*known, set);
      return false;
    }
    const auto start = data_.cameras.begin() + (data_.cameras.empty() ? 0 : 1);
    const auto place = std::find_if(start, data_.cameras.end(),
                                    [&name](const CameraProfile& other) { return other.name > name; });
    const auto index = static_cast<std::uint32_t>(place - data_.cameras.begin());
    data_.cameras.insert(place, {index, name, {set}, {set.iso}});
    return false;
  } catch (const std::bad_alloc&) {
    return true;
  }
}

bool NoiseProfileStore::DeleteIso(std::uint32_t camera, std::uint32_t entry) {
  if (Entry(camera, entry) == nullptr) return true;
  CameraProfile& profile = data_.cameras[camera];
  if (profile.isoValues.size() == 1) return DeleteCamera(camera);
  profile.parameters.erase(profile.parameters.begin() + entry);
  profile.isoValues.erase(profile.isoValues.begin() + entry);
  // Against the camera's index, and without a look at which entry went: that is the file's old custom.
  if (data_.actualIso >= camera) --data_.actualIso;
  return false;
}

bool NoiseProfileStore::DeleteCamera(std::uint32_t camera) {
  if (camera == 0 || camera >= cameraCount()) return true;
  data_.cameras.erase(data_.cameras.begin() + camera);
  for (std::uint32_t i = camera; i < cameraCount(); ++i) data_.cameras[i].index = i;
  return false;
}

void NoiseProfileStore::NormalizeNames() {
  for (CameraProfile& camera : data_.cameras) camera.name = NormalizeCameraKey(camera.name);
}

const DenoiseParameters* NoiseProfileStore::Entry(std::uint32_t camera, std::uint32_t entry) const {
  if (camera >= cameraCount() || entry >= data_.cameras[camera].parameters.size()) return nullptr;
  return &data_.cameras[camera].parameters[entry];
}

}  // namespace mirellon::profiles
