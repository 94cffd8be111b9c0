// What the profiles command is asked for.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/arguments.h"

namespace mirellon::cli {

enum class ProfilesAction { kList, kShow, kSet, kRemove, kMeasure, kPath };

// mirellon-cli profiles ACTION ...; each action fills what it knows.
struct ProfilesArguments {
  std::filesystem::path profiles;  // the profile file; empty: the user's
  std::wstring camera;
  std::optional<std::uint32_t> iso;
  GivenValues given;
  std::vector<std::filesystem::path> photos;
  bool json = false;
};

// Nothing when there is no action of that name.
[[nodiscard]] std::optional<ProfilesAction> FindProfilesAction(std::string_view name);
// All actions with their meaning.
[[nodiscard]] std::string ProfilesHelp();

// `args` are those after the action's name. Never throws.
[[nodiscard]] ParseOutcome ParseProfilesArguments(ProfilesAction action, std::span<const char* const> args,
                                                  ProfilesArguments& arguments);

}  // namespace mirellon::cli
