// Changing a profile file without losing what others change.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "base/file_descriptor.h"
#include "base/run_control.h"

namespace mirellon::profiles {

// Held from Load to Save, it makes other programs that change the same file wait; reading needs none. What is
// locked is a file of its own, "NAME.lock" beside the profile file (of a link, beside what it leads to), gone
// when the lock is. Where the file system knows no locks, or the profile file cannot be written anyway,
// nothing is locked.
class ProfileLock {
 public:
  ProfileLock() = default;
  ~ProfileLock() { Release(); }
  ProfileLock(const ProfileLock&) = delete;
  ProfileLock& operator=(const ProfileLock&) = delete;

  // Makes the file's folder if need be, and waits up to `limit`. True = failed: somebody else has it for
  // longer, the lock file cannot be opened, or an abort request of `control`, which may be null.
  [[nodiscard]] bool Acquire(const std::filesystem::path& profileFile, std::chrono::milliseconds limit,
                             const base::RunControl* control = nullptr);
  void Release();

  // Why Acquire failed, in English, without a full stop.
  [[nodiscard]] const std::string& cause() const { return cause_; }

 private:
  [[nodiscard]] int Try();

  std::filesystem::path lockFile_;
  base::FileDescriptor held_;
  std::string cause_;
};

}  // namespace mirellon::profiles
