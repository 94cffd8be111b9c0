// Stored sets, as the commands use them.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/arguments.h"
#include "cli/exit_status.h"
#include "cli/report.h"
#include "cli/shell.h"
#include "imageio/exif_summary.h"
#include "profiles/profile_select.h"

namespace mirellon::cli {

// The profile file that `file` names (empty: the user's), with the one shipped with the program.
[[nodiscard]] profiles::ProfilePaths ChosenProfilePaths(const std::filesystem::path& file,
                                                        const Shell& shell);

// For another program that changes the profile file.
inline constexpr std::chrono::seconds kLongestProfilesWait{10};

// Whether --profiles names a file in a folder that is not there: a misspelt name, which every command refuses
// as wrong usage. Prints that.
[[nodiscard]] bool RefusesProfilesFolder(const std::filesystem::path& file, Shell& shell);

// Loads the store. What is wrong with the file is added to `warnings`; only a refused folder, as above, and
// lack of memory end the command, which is printed. With kSave, the first run's set is saved into the user's
// own file, never into one that `file` names.
[[nodiscard]] ExitStatus OpenProfiles(profiles::NoiseProfileStore& store, const std::filesystem::path& file,
                                      profiles::FirstRun firstRun, Shell& shell,
                                      std::vector<std::string>& warnings);

// A camera by its stored name or, spaces left out, as photographs are matched.
[[nodiscard]] std::optional<std::uint32_t> FindStoredCamera(const profiles::NoiseProfileStore& store,
                                                            const std::wstring& name);
// Nothing when the camera has no such speed.
[[nodiscard]] std::optional<std::uint32_t> FindStoredEntry(const profiles::NoiseProfileStore& store,
                                                           std::uint32_t camera, std::uint32_t iso);
// Why a camera or a speed was not found: "'X': no such camera in 'FILE'", "'X' has no ISO 50, only 100, 200".
[[nodiscard]] std::string NoSuchCamera(const profiles::NoiseProfileStore& store, const std::wstring& name);
[[nodiscard]] std::string NoSuchSpeed(const profiles::NoiseProfileStore& store, std::uint32_t camera,
                                      std::uint32_t iso);

// Why a camera's name was refused: "'X]' cannot be stored; ...".
[[nodiscard]] std::string NotStorable(const std::wstring& name);

// The EXIF texts that choose a set.
[[nodiscard]] profiles::PhotoIdentity IdentityOf(const imageio::ExifSummary& exif);
// A choice by its names, not its numbers; a store without that entry gives rule "none".
[[nodiscard]] ProfileReport NamedChoice(const profiles::NoiseProfileStore& store,
                                        const profiles::ProfileChoice& choice);

}  // namespace mirellon::cli
