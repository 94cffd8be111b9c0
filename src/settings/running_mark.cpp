#include "settings/running_mark.h"

#include <fcntl.h>
#include <unistd.h>

#include "base/paths.h"

namespace mirellon::settings {

namespace {

// Locks of the open file and not of the process, so that two marks of one process see each other, too.
struct flock WholeFile(short kind) {
  struct flock lock {};
  lock.l_type = kind;
  lock.l_whence = SEEK_SET;
  return lock;
}

}  // namespace

RunningMark::RunningMark(const std::filesystem::path& applicationData) {
  std::filesystem::path name = base::SettingsFile(applicationData);
  if (base::EnsureFolder(name.parent_path())) return;
  name += ".running";
  constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  file_ = base::FileDescriptor(open(name.c_str(), kFlags, 0666));
  if (!file_.valid()) return;
  // Instances share the lock: whoever could have it alone would be alone.
  struct flock lock = WholeFile(F_RDLCK);
  if (fcntl(file_.get(), F_OFD_SETLK, &lock) == 0) othersRan_ = OthersRun();
}

bool RunningMark::OthersRun() const {
  struct flock lock = WholeFile(F_WRLCK);
  return fcntl(file_.get(), F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

bool RunningMark::Leave() {
  if (!file_.valid()) return true;
  // First: of two that end at once, at least one then finds nobody else.
  struct flock lock = WholeFile(F_UNLCK);
  (void)fcntl(file_.get(), F_OFD_SETLK, &lock);
  return !OthersRun();
}

}  // namespace mirellon::settings
