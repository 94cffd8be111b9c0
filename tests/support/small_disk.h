// A disk that is soon full, for tests of what happens then.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirellon::test {

inline constexpr int kCannotTest = 200;

// Runs in a child process, whose limits and mounts are its own; the answer is its exit status.
inline int RunInChild(const std::function<int()>& run) {
  const pid_t child = fork();
  if (child == 0) _exit(run());
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Puts a file system of that size ("128k") on the folder, seen by this process alone: for use in RunInChild.
// False = not allowed here.
inline bool MountSmallDisk(const std::filesystem::path& folder, const std::string& size) {
  const std::string user = std::to_string(geteuid());
  const std::string group = std::to_string(getegid());
  const bool ordinary = geteuid() != 0;
  if (unshare(ordinary ? CLONE_NEWUSER | CLONE_NEWNS : CLONE_NEWNS) != 0) return false;
  if (ordinary) {
    // Inside, the user is what he was.
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << user << " " << user << " 1";
    std::ofstream("/proc/self/gid_map") << group << " " << group << " 1";
  }
  const std::string options = "size=" + size;
  return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

}  // namespace mirellon::test
