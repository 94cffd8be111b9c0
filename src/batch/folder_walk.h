// Every file of a folder tree, once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace mirellon::batch {

// Where results go, beside the photographs; never walked into for photographs.
inline constexpr const char* kResultFolder = "denoised";

// A file or folder, by whatever names it is reached.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t number = 0;

  bool operator==(const FileIdentity&) const = default;
  bool operator<(const FileIdentity& other) const {
    return device != other.device ? device < other.device : number < other.number;
  }
};
using Identities = std::set<FileIdentity>;

// Links followed; nothing when there is no such file or it cannot be told.
[[nodiscard]] std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path);

// What the walk comes across.
struct WalkItem {
  enum class Kind {
    kFile,
    kFolder,  // one that is left out, `cause` tells why; the others are walked into
    kOther,   // a device, pipe or socket: not to be opened
    kGone,    // a link that leads nowhere, or a file that vanished
    kHidden,  // it is there, but the system does not tell what it is
  };
  Kind kind = Kind::kFile;
  std::filesystem::path path;  // the root as it was given, and the names below it
  std::string cause;
  bool unreadable = false;  // kFolder, kHidden: it is there, but cannot be read
};

// Goes through a tree entry by entry: the entries of a folder in the order of their names' bytes (so that
// runs repeat), a subfolder's where it stands among them. Links are followed; a folder that was reached
// before, by a loop of links or otherwise, is left out, so that the walk ends. Needs no stack for deep trees.
class FolderWalk {
 public:
  enum class Results { kLeaveOut, kInclude };

  // With kLeaveOut every entry named "denoised", in exactly these letters, is passed over without a word, and
  // so is any other name of a folder in `results`.
  FolderWalk(const std::filesystem::path& root, Results results, Identities resultFolders = {});

  // The next item; nothing at the end.
  [[nodiscard]] std::optional<WalkItem> Next();

  // The folders that were walked into so far, and those named "denoised" that are folders and no links.
  [[nodiscard]] const Identities& folders() const { return folders_; }
  [[nodiscard]] const Identities& resultFolders() const { return resultFolders_; }

 private:
  struct Level {
    std::filesystem::path folder;
    std::vector<std::string> names;  // still to come, last one first
  };

  std::optional<WalkItem> Visit(const std::filesystem::path& path, const std::string& name);
  std::optional<WalkItem> Enter(const std::filesystem::path& folder, FileIdentity identity);

  bool leaveOutResults_;
  Identities knownResults_;
  Identities folders_;
  Identities resultFolders_;
  std::vector<Level> levels_;
  std::optional<WalkItem> first_;  // the root, if it cannot be walked into
};

}  // namespace mirellon::batch
