// Writing a file so that no fault passes unseen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_descriptor.h"
#include "base/run_control.h"

namespace mirellon::base {

// A new content for one file. It grows in a private folder (hidden, mode 0700) beside the target and takes
// the target's name only in Commit, when every byte is known to be on the disk; until then the target is
// untouched. Without a Commit, or after a failed one, nothing stays behind; only where it is the last sync of
// the target's folder that failed, the new content is in place.
//
// A link as target stays a link: the file it leads to is replaced. An existing file's permissions are kept
// (and its owner, where the system lets us); a new one gets what the umask leaves. Errors are sticky: after
// the first one everything fails, and error() and cause() tell of the first.
class CheckedFile {
 public:
  enum class Existing { kReplace, kRefuse };

  CheckedFile() = default;
  ~CheckedFile();
  CheckedFile(const CheckedFile&) = delete;
  CheckedFile& operator=(const CheckedFile&) = delete;

  // True = failed: folder missing or not writable, target a folder, device or write-protected file ... Once
  // per object. `workName` is the file's name within the private folder; an abort request of `control`, which
  // may be null, makes the next piece fail with ECANCELED.
  [[nodiscard]] bool Open(const std::filesystem::path& target, const std::string& workName = "content",
                          const RunControl* control = nullptr);

  // At the current position, which moves on. True = failed.
  [[nodiscard]] bool Write(const void* data, std::size_t size);
  // Reads back what was written; `got` is less than `size` only at the end. True = failed.
  [[nodiscard]] bool Read(void* data, std::size_t size, std::size_t& got);
  void Seek(std::uint64_t position) { position_ = position; }
  [[nodiscard]] std::uint64_t position() const { return position_; }
  [[nodiscard]] std::uint64_t size() const { return size_; }

  // Hands everything to the system and closes, so that another program may change the file in folder(), or
  // put another in its place. No writing after that. True = failed.
  [[nodiscard]] bool Close();

  // Syncs the file, gives it the target's name, syncs the target's folder. True = failed; with kRefuse and a
  // target that exists by now, error() is EEXIST.
  [[nodiscard]] bool Commit(Existing existing);

  [[nodiscard]] int error() const { return error_; }  // errno's value; 0 = none
  [[nodiscard]] std::string cause() const { return ErrorText(error_); }
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }  // the private folder
  [[nodiscard]] std::filesystem::path workPath() const { return folder_ / workName_; }
  [[nodiscard]] const std::filesystem::path& finalTarget() const { return target_; }  // links followed

 private:
  bool Fail(int error);
  bool Flush();
  bool MakePrivateFolder();
  bool SetPermissions(const FileDescriptor& file);
  bool SyncWork();
  bool SyncParent();

  std::filesystem::path target_;
  std::filesystem::path folder_;
  std::string workName_;
  const RunControl* control_ = nullptr;
  FileDescriptor file_;
  unsigned newMode_ = 0;  // permissions of a file that was not there before
  int error_ = 0;
  std::vector<unsigned char> buffer_;  // not yet handed to the system
  std::uint64_t bufferStart_ = 0;      // its place in the file
  std::uint64_t position_ = 0;
  std::uint64_t size_ = 0;
};

// The end of a chain of links; it need not exist. 0, or the error number (ELOOP, EACCES ...).
[[nodiscard]] int FollowLinks(const std::filesystem::path& path, std::filesystem::path& target);

// 0 when a file of that name can be made or replaced as far as can be told beforehand, else the error number:
// EISDIR for a folder, EINVAL for a device or the like, EACCES for a write-protected file or folder, ENOENT
// or ENOTDIR for a missing parent.
[[nodiscard]] int CheckWritable(const std::filesystem::path& target);

// Replaces or makes a whole file. 0, or the error number.
[[nodiscard]] int ReplaceFile(const std::filesystem::path& target, std::string_view content);

}  // namespace mirellon::base
