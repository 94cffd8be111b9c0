// An open file of the operating system, and reading a whole one.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>

namespace mirellon::base {

// Owns a descriptor; -1 = none.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  ~FileDescriptor() { (void)Close(); }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }

  [[nodiscard]] int get() const { return descriptor_; }
  [[nodiscard]] bool valid() const { return descriptor_ >= 0; }
  [[nodiscard]] int Release() { return std::exchange(descriptor_, -1); }
  // 0, or the error number: a disk over the network may tell of a failed write only here.
  int Close();

 private:
  int descriptor_ = -1;
};

// What the operating system calls an error number ("No space left on device").
[[nodiscard]] std::string ErrorText(int error);

// Opens a regular file for reading; never blocks on a pipe. 0, or the error number (EISDIR for a folder,
// EINVAL for a device, pipe or socket).
[[nodiscard]] int OpenForReading(const std::filesystem::path& file, FileDescriptor& descriptor);

// Everything from the file's start. 0, or the error number: EFBIG when it is larger than `limit` bytes,
// ENOMEM when memory is refused.
[[nodiscard]] int ReadWhole(int descriptor, std::size_t limit, std::string& content);

}  // namespace mirellon::base
