// Where the program keeps a user's files and finds its own.
#pragma once

#include <filesystem>

namespace mirellon::base {

// The folder that holds each application's settings: $MIRELLON_CONFIG_HOME (tests, portable use), else
// $XDG_CONFIG_HOME when absolute, else ~/.config, else the current folder.
[[nodiscard]] std::filesystem::path ApplicationDataFolder();

// The program's folder below the one given, "MirellonGPU20". Not created here.
[[nodiscard]] std::filesystem::path UserFolder(const std::filesystem::path& applicationData);

// "MirellonGPU20/MirellonGPU20.txt" below the folder given.
[[nodiscard]] std::filesystem::path SettingsFile(const std::filesystem::path& applicationData);

// Creates the folder with its parents; an existing folder is no error. True = failed.
[[nodiscard]] bool EnsureFolder(const std::filesystem::path& folder);

}  // namespace mirellon::base
