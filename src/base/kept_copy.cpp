#include "base/kept_copy.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <unistd.h>

#include "base/checked_file.h"

namespace mirellon::base {

namespace {

constexpr int kMostCopies = 1000;

// 0, or the error number; never replaces.
int LinkOrCopy(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (link(from.c_str(), to.c_str()) == 0) return 0;
  if (errno != EPERM && errno != EOPNOTSUPP && errno != EMLINK && errno != EXDEV) return errno;
  std::error_code error;
  std::filesystem::copy_file(from, to, error);
  return error.value();
}

}  // namespace

int KeepCopy(const std::filesystem::path& file, std::filesystem::path& kept) {
  std::filesystem::path source;
  if (const int error = FollowLinks(file, source); error != 0) return error;
  int error = EEXIST;
  for (int i = 1; error == EEXIST && i <= kMostCopies; ++i) {
    kept = source;
    kept += i == 1 ? std::string(".bak") : ".bak" + std::to_string(i);
    error = LinkOrCopy(source, kept);
  }
  return error;
}

}  // namespace mirellon::base
