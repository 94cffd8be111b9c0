#include "base/checked_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirellon::base {

namespace {

constexpr std::size_t kBufferSize = std::size_t{256} << 10U;
constexpr std::size_t kPieceSize = std::size_t{1} << 20U;
constexpr int kLongestLinkChain = 40;  // as the system's own limit
constexpr mode_t kPermissionBits = 0777;

std::filesystem::path FolderOf(const std::filesystem::path& path) {
  const std::filesystem::path parent = path.parent_path();
  return parent.empty() ? std::filesystem::path(".") : parent;
}

bool IsMissing(int error) {
  return error == ENOENT || error == ENOTDIR;
}

// 0, or the error number.
int RenameUnlessThere(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // A file system without that call: a hard link never replaces either; its old name goes with the folder.
  if (link(from.c_str(), to.c_str()) == 0) return 0;
  if (errno != EPERM && errno != EOPNOTSUPP && errno != EMLINK) return errno;
  struct stat status {};
  if (lstat(to.c_str(), &status) == 0) return EEXIST;
  return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

int FollowLinks(const std::filesystem::path& path, std::filesystem::path& target) {
  target = path;
  for (int i = 0; i < kLongestLinkChain; ++i) {
    struct stat status {};
    if (lstat(target.c_str(), &status) != 0) return errno == ENOENT ? 0 : errno;
    if (!S_ISLNK(status.st_mode)) return 0;
    std::error_code error;
    const std::filesystem::path next = std::filesystem::read_symlink(target, error);
    if (error) return error.value();
    target = next.is_absolute() ? next : target.parent_path() / next;
  }
  return ELOOP;
}

int CheckWritable(const std::filesystem::path& target) {
  std::filesystem::path file;
  if (const int error = FollowLinks(target, file); error != 0) return error;
  if (!file.has_filename()) return file.empty() ? ENOENT : EISDIR;
  struct stat status {};
  if (stat(FolderOf(file).c_str(), &status) != 0) return errno;
  if (!S_ISDIR(status.st_mode)) return ENOTDIR;
  if (stat(file.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return EISDIR;
    if (!S_ISREG(status.st_mode)) return EINVAL;
    if (faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0) return errno;
  } else if (!IsMissing(errno)) {
    return errno;
  }
  return faccessat(AT_FDCWD, FolderOf(file).c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

int ReplaceFile(const std::filesystem::path& target, std::string_view content) {
  CheckedFile file;
  const bool failed = file.Open(target) || file.Write(content.data(), content.size()) ||
                      file.Commit(CheckedFile::Existing::kReplace);
  return failed ? file.error() : 0;
}

CheckedFile::~CheckedFile() {
  (void)file_.Close();
  std::error_code ignored;
  if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
}

bool CheckedFile::Fail(int error) {
  if (error_ == 0) error_ = error;
  return true;
}

bool CheckedFile::MakePrivateFolder() {
  std::string pattern = (FolderOf(target_) / ".mirellon-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) return Fail(errno);
  // Absolute, so that it is still found and removed after a change of the working folder.
  std::error_code error;
  folder_ = std::filesystem::absolute(pattern, error);
  if (error) folder_ = pattern;
  return false;
}

bool CheckedFile::Open(const std::filesystem::path& target, const std::string& workName,
                       const RunControl* control) {
  control_ = control;
  workName_ = workName;
  if (const int error = CheckWritable(target); error != 0) return Fail(error);
  if (const int error = FollowLinks(target, target_); error != 0) return Fail(error);
  std::error_code error;
  if (const auto absolute = std::filesystem::absolute(target_, error); !error) target_ = absolute;
  if (MakePrivateFolder()) return true;
  file_ = FileDescriptor(open(workPath().c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  struct stat fresh {};
  if (!file_.valid() || fstat(file_.get(), &fresh) != 0) return Fail(errno);
  newMode_ = fresh.st_mode & kPermissionBits;
  return false;
}

bool CheckedFile::Flush() {
  std::size_t done = 0;
  while (error_ == 0 && done < buffer_.size()) {
    if (control_ != nullptr && control_->Aborted()) return Fail(ECANCELED);
    const std::size_t piece = std::min(buffer_.size() - done, kPieceSize);
    const ssize_t written =
        pwrite(file_.get(), buffer_.data() + done, piece, static_cast<off_t>(bufferStart_ + done));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return Fail(written < 0 ? errno : EIO);
    done += static_cast<std::size_t>(written);
  }
  buffer_.clear();
  return error_ != 0;
}

bool CheckedFile::Write(const void* data, std::size_t size) {
  if (error_ != 0) return true;
  if (!file_.valid()) return Fail(EBADF);
  if (position_ != bufferStart_ + buffer_.size()) {
    if (Flush()) return true;
    bufferStart_ = position_;
  }
  const auto* bytes = static_cast<const unsigned char*>(data);
  while (size > 0) {
    const std::size_t room = std::min(size, kBufferSize - buffer_.size());
    buffer_.insert(buffer_.end(), bytes, bytes + room);
    bytes += room;
    size -= room;
    position_ += room;
    if (buffer_.size() == kBufferSize) {
      if (Flush()) return true;
      bufferStart_ = position_;
    }
  }
  size_ = std::max(size_, position_);
  return false;
}

bool CheckedFile::Read(void* data, std::size_t size, std::size_t& got) {
  got = 0;
  if (error_ != 0 || Flush()) return true;
  bufferStart_ = position_;
  auto* bytes = static_cast<unsigned char*>(data);
  while (got < size) {
    const ssize_t read = pread(file_.get(), bytes + got, size - got, static_cast<off_t>(position_));
    if (read < 0 && errno == EINTR) continue;
    if (read < 0) return Fail(errno);
    if (read == 0) break;
    got += static_cast<std::size_t>(read);
    position_ += static_cast<std::size_t>(read);
  }
  return false;
}

bool CheckedFile::Close() {
  if (error_ != 0 || Flush()) return true;
  const int error = file_.Close();
  return error == 0 ? false : Fail(error);
}

bool CheckedFile::SetPermissions(const FileDescriptor& file) {
  struct stat old {};
  const bool exists = stat(target_.c_str(), &old) == 0;
  if (!exists && !IsMissing(errno)) return Fail(errno);
  struct stat fresh {};
  if (fstat(file.get(), &fresh) != 0) return Fail(errno);
  if (exists && (fresh.st_uid != old.st_uid || fresh.st_gid != old.st_gid)) {
    // Only the super-user may give files away; for everybody else the content is what counts.
    [[maybe_unused]] const int ignored = fchown(file.get(), old.st_uid, old.st_gid);
  }
  const mode_t mode = exists ? old.st_mode & kPermissionBits : newMode_;
  // Some file systems have permissions but cannot change them.
  if ((fresh.st_mode & kPermissionBits) == mode) return false;
  return fchmod(file.get(), mode) == 0 ? false : Fail(errno);
}

bool CheckedFile::SyncWork() {
  FileDescriptor file(open(workPath().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (!file.valid()) return Fail(errno);
  if (SetPermissions(file)) return true;
  if (fsync(file.get()) != 0) return Fail(errno);
  const int error = file.Close();
  return error == 0 ? false : Fail(error);
}

bool CheckedFile::SyncParent() {
  const FileDescriptor parent(open(FolderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A folder that may be written but not read cannot be opened, and some file systems know no such sync.
  if (!parent.valid() || fsync(parent.get()) == 0) return false;
  return errno == EINVAL || errno == EROFS ? false : Fail(errno);
}

bool CheckedFile::Commit(Existing existing) {
  if (Close() || SyncWork()) return true;
  if (control_ != nullptr && control_->Aborted()) return Fail(ECANCELED);
  int error = 0;
  if (existing == Existing::kRefuse) {
    error = RenameUnlessThere(workPath(), target_);
  } else if (rename(workPath().c_str(), target_.c_str()) != 0) {
    error = errno;
  }
  return error != 0 ? Fail(error) : SyncParent();
}

}  // namespace mirellon::base
