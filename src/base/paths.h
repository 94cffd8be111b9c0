// Where the program keeps a user's files and finds its own.
#pragma once

#include <filesystem>
#include <vector>

namespace mirellon::base {

// The folder that holds each application's settings: $MIRELLON_CONFIG_HOME (tests, portable use), else
// $XDG_CONFIG_HOME when absolute, else ~/.config, else the current folder.
[[nodiscard]] std::filesystem::path ApplicationDataFolder();

// The program's folder below the one given, "MirellonGPU20". Not created here.
[[nodiscard]] std::filesystem::path UserFolder(const std::filesystem::path& applicationData);

// "MirellonGPU20/MirellonGPU20.txt" below the folder given.
[[nodiscard]] std::filesystem::path SettingsFile(const std::filesystem::path& applicationData);

// Where the program's own files are looked for, best first: its own folder, <prefix>/share/mirellon, and in a
// build tree the source tree's "resources". Empty when the system does not tell where the program is.
[[nodiscard]] std::vector<std::filesystem::path> ResourceFolders();

// The first of the folders' files of that name; the name in the first folder when none holds it.
[[nodiscard]] std::filesystem::path ResourceFile(
    const std::filesystem::path& name, const std::vector<std::filesystem::path>& folders = ResourceFolders());

// Creates the folder with its parents; an existing folder is no error. True = failed.
[[nodiscard]] bool EnsureFolder(const std::filesystem::path& folder);

}  // namespace mirellon::base
