#include "profiles/profile_lock.h"

#include <cerrno>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/checked_file.h"
#include "base/paths.h"

namespace mirellon::profiles {

namespace {

constexpr std::chrono::milliseconds kPause{10};

// Somebody else's file may be open to reading only, which is enough for most file systems.
int OpenLock(const std::filesystem::path& file) {
  constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | kFlags, 0666);
  if (descriptor >= 0 || errno != EACCES) return descriptor;
  const int readOnly = open(file.c_str(), O_RDONLY | kFlags);
  if (readOnly < 0) errno = EACCES;
  return readOnly;
}

bool KnowsNoLocks(int error) {
  return error == ENOLCK || error == ENOSYS || error == EOPNOTSUPP;
}

bool IsFile(int descriptor, const std::filesystem::path& file) {
  struct stat opened {};
  struct stat named {};
  return fstat(descriptor, &opened) == 0 && lstat(file.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

// 0 = locked, EWOULDBLOCK = somebody else's, else what is wrong.
int ProfileLock::Try() {
  for (;;) {
    base::FileDescriptor opened(OpenLock(lockFile_));
    if (!opened.valid()) return errno;
    if (flock(opened.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EINTR) continue;
      return errno;
    }
    // The one who held it may have taken the name away meanwhile; the next comer would lock another file.
    if (!IsFile(opened.get(), lockFile_)) continue;
    held_ = std::move(opened);
    return 0;
  }
}

bool ProfileLock::Acquire(const std::filesystem::path& profileFile, std::chrono::milliseconds limit,
                          const base::RunControl* control) {
  Release();
  cause_.clear();
  std::filesystem::path target;
  if (base::FollowLinks(profileFile, target) != 0) return false;  // for the writing to refuse
  const std::filesystem::path folder = target.parent_path();
  if (!folder.empty()) (void)base::EnsureFolder(folder);
  if (base::CheckWritable(target) != 0) return false;
  lockFile_ = target;
  lockFile_ += ".lock";
  const auto end = std::chrono::steady_clock::now() + limit;
  int error = Try();
  while (error == EWOULDBLOCK && std::chrono::steady_clock::now() < end) {
    if (control != nullptr && control->Aborted()) break;
    std::this_thread::sleep_for(kPause);
    error = Try();
  }
  if (error == 0 || KnowsNoLocks(error)) return false;
  cause_ = error == EWOULDBLOCK ? "another program is changing it; try again when that is done"
                                : "its lock file cannot be opened: " + base::ErrorText(error);
  return true;
}

void ProfileLock::Release() {
  if (!held_.valid()) return;
  (void)unlink(lockFile_.c_str());  // while it is locked, so that nobody loses a lock of his own
  (void)held_.Close();
}

}  // namespace mirellon::profiles
