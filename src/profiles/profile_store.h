// The parameter sets kept for each camera and ISO speed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/parameters.h"
#include "profiles/profile_file.h"

namespace mirellon::profiles {

inline constexpr const char* kProfileFileName = "CameraISOSettingX.ini";

struct ProfilePaths {
  std::filesystem::path userFile;     // read and written
  std::filesystem::path defaultFile;  // shipped with the program, read only; empty: none
};

// The user's file below base::ApplicationDataFolder(), and the shipped one of the first of
// base::ResourceFolders() that holds it.
[[nodiscard]] ProfilePaths StandardProfilePaths(const std::filesystem::path& applicationData,
                                                const std::vector<std::filesystem::path>& resourceFolders);

// The set of a first run: "Set Default" without the large-scale pass.
[[nodiscard]] engine::DenoiseParameters BuiltInParameters();

// Where the sets in memory come from.
enum class ProfileSource { kBuiltIn, kUserFile, kDefaultFile };

// What Load does when there is no file at all: save the built-in set (a first run), or leave the disk alone.
enum class FirstRun { kSave, kLeave };

// Cameras, each with its ISO speeds and one parameter set a speed. Camera 0 is always the catch-all
// "<<Unknown Camera>>" (in a file that says otherwise, it is what the file says; a damaged file may also give
// a camera without speeds, or no camera at all: look before using an index). Changes stay in memory until
// Save. A store is used by one thread at a time; several, and several programs, may share the files.
class NoiseProfileStore {
 public:
  NoiseProfileStore() = default;
  explicit NoiseProfileStore(ProfilePaths paths) : paths_(std::move(paths)) {}

  // Replaces the content by that of the user's file or, as long as there is none, by that of the default
  // file; never merges the two. Without either, one built-in set is made and, with kSave, saved at
  // once, a failure of which shows in cause() only; with kLeave, nothing is made on the disk, not even the
  // folder. What is missing gets defaults, numbers are held to their ranges. True =
  // failed: memory refused; the rest is there. cause() also tells when a file could not be understood.
  [[nodiscard]] bool Load(FirstRun firstRun = FirstRun::kSave);

  // Writes everything to the user's file, making its folder, in one step. A file there that this program
  // would have written otherwise (damaged, foreign, commented ..., but not empty) gets a second name first,
  // see keptCopy(); when that cannot be done, nothing is written. True = failed, cause() says why; the
  // content stays.
  [[nodiscard]] bool Save();

  // The first camera from index 1 on whose name equals the key, all spaces left out of both; 0 when none
  // does.
  [[nodiscard]] std::uint32_t FindCamera(std::wstring_view key) const;
  // The first entry of that speed (the text's leading integer); 0 when there is none.
  [[nodiscard]] std::uint32_t FindIso(std::uint32_t camera, std::wstring_view iso) const;
  // The entry of the key's camera whose noise levels are nearest, the lowest of equals; 0 without entries.
  // A chrominance below 1e-5 (a grey picture) leaves chrominance out.
  [[nodiscard]] std::uint32_t FindNearestNoise(std::wstring_view key, double luminance,
                                               double chrominance) const;

  // Stores a set under the camera of exactly that name, made when there is none, and the text's leading
  // integer, held to 16 to 409600. True = failed: a name that no file can hold (see IsStorableName), or
  // memory refused; nothing has changed then.
  [[nodiscard]] bool AddOrReplace(std::wstring_view camera, std::wstring_view iso,
                                  const engine::DenoiseParameters& parameters);
  // Removes an entry; a camera's only one takes the camera along. True = refused: no such entry, or the only
  // one of camera 0.
  [[nodiscard]] bool DeleteIso(std::uint32_t camera, std::uint32_t entry);
  // True = refused: camera 0, or no such camera.
  [[nodiscard]] bool DeleteCamera(std::uint32_t camera);

  // Makes the makers' spellings in all names uniform, in memory (as the panel does after Load).
  void NormalizeNames();

  // Null when there is no such entry.
  [[nodiscard]] const engine::DenoiseParameters* Entry(std::uint32_t camera, std::uint32_t entry) const;
  [[nodiscard]] const std::vector<CameraProfile>& cameras() const { return data_.cameras; }
  [[nodiscard]] std::uint32_t cameraCount() const { return static_cast<std::uint32_t>(data_.cameras.size()); }
  [[nodiscard]] std::uint32_t actualCamera() const { return data_.actualCamera; }
  [[nodiscard]] std::uint32_t actualIso() const { return data_.actualIso; }

  [[nodiscard]] const ProfilePaths& paths() const { return paths_; }
  [[nodiscard]] ProfileSource source() const { return source_; }
  // What was wrong at the last Load or Save, in English, without a full stop, and with which file or folder;
  // empty: nothing was.
  [[nodiscard]] const std::string& cause() const { return cause_; }
  [[nodiscard]] const std::filesystem::path& causeFile() const { return causeFile_; }
  // Whether the file that Load read is a profile file, be it a damaged one. False: it could not be read, or
  // is something else altogether (an empty file is neither).
  [[nodiscard]] bool understood() const { return understood_; }
  // The second name that the last Save gave to the file it replaced; empty: none was needed.
  [[nodiscard]] const std::filesystem::path& keptCopy() const { return keptCopy_; }

 private:
  [[nodiscard]] bool ReadFile(const std::filesystem::path& file);
  [[nodiscard]] bool KeepForeignFile();
  [[nodiscard]] CameraProfile* CameraNamed(std::wstring_view name);
  bool Fail(const std::filesystem::path& file, std::string_view why);

  ProfilePaths paths_;
  ProfileData data_;
  bool understood_ = true;
  ProfileSource source_ = ProfileSource::kBuiltIn;
  std::string cause_;
  std::filesystem::path causeFile_;
  std::filesystem::path keptCopy_;
};

}  // namespace mirellon::profiles
