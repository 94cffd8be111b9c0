#include "batch/folder_walk.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <utility>

#include <dirent.h>
#include <sys/stat.h>

#include "base/file_descriptor.h"

namespace mirellon::batch {

namespace {

struct FolderCloser {
  void operator()(DIR* folder) const { closedir(folder); }
};

FileIdentity Identity(const struct stat& status) {
  return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

// 0, or the error number; what was read before the error stays.
int ReadNames(const std::filesystem::path& folder, std::vector<std::string>& names) {
  const std::unique_ptr<DIR, FolderCloser> open(opendir(folder.c_str()));
  if (!open) return errno;
  while (true) {
    errno = 0;
    const dirent* entry = readdir(open.get());
    if (entry == nullptr) return errno;
    std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(std::move(name));
  }
}

// Whether the error tells that there is nothing, rather than that it cannot be reached.
bool IsGone(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP;
}

bool IsRealFolder(const std::filesystem::path& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return Identity(status);
}

FolderWalk::FolderWalk(const std::filesystem::path& root, Results results, Identities resultFolders)
    : leaveOutResults_(results == Results::kLeaveOut), knownResults_(std::move(resultFolders)) {
  const std::optional<FileIdentity> identity = IdentityOf(root);
  // Chosen by the user, so it is walked into whatever it is called.
  if (identity) {
    knownResults_.erase(*identity);
    first_ = Enter(root, *identity);
  } else {
    first_ = WalkItem{WalkItem::Kind::kFolder, root, base::ErrorText(errno), true};
  }
}

std::optional<WalkItem> FolderWalk::Next() {
  if (first_) return std::exchange(first_, std::nullopt);
  while (!levels_.empty()) {
    Level& level = levels_.back();
    if (level.names.empty()) {
      levels_.pop_back();
      continue;
    }
    const std::string name = std::move(level.names.back());
    level.names.pop_back();
    std::optional<WalkItem> item = Visit(level.folder / name, name);
    if (item) return item;
  }
  return std::nullopt;
}

std::optional<WalkItem> FolderWalk::Visit(const std::filesystem::path& path, const std::string& name) {
  using Kind = WalkItem::Kind;
  const bool result = name == kResultFolder;
  struct stat status {};
  const int error = stat(path.c_str(), &status) == 0 ? 0 : errno;
  const bool folder = error == 0 && S_ISDIR(status.st_mode);
  if (result && folder && IsRealFolder(path)) resultFolders_.insert(Identity(status));
  if (result && leaveOutResults_) return std::nullopt;
  if (folder) return Enter(path, Identity(status));
  if (error != 0) {
    const bool gone = IsGone(error);
    return WalkItem{gone ? Kind::kGone : Kind::kHidden, path, base::ErrorText(error), !gone};
  }
  if (S_ISREG(status.st_mode)) return WalkItem{Kind::kFile, path, {}, false};
  return WalkItem{Kind::kOther, path, "a device, pipe or socket", false};
}

std::optional<WalkItem> FolderWalk::Enter(const std::filesystem::path& folder, FileIdentity identity) {
  if (leaveOutResults_ && knownResults_.contains(identity)) return std::nullopt;
  if (!folders_.insert(identity).second) {
    return WalkItem{WalkItem::Kind::kFolder, folder, "a folder that was met before under another name",
                    false};
  }
  Level level{folder, {}};
  const int error = ReadNames(folder, level.names);
  std::sort(level.names.begin(), level.names.end(), std::greater<>());
  levels_.push_back(std::move(level));
  if (error == 0) return std::nullopt;
  return WalkItem{WalkItem::Kind::kFolder, folder, base::ErrorText(error), true};
}

}  // namespace mirellon::batch
