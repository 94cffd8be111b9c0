// The owner of a picture record.
#pragma once

#include <cstddef>
#include <utility>

#include "picture/pic_buf_api.h"

namespace mirellon::picture {

// Holds one SBxPicBuf from birth to death: moved, never copied silently (CBxPicBufAPI::Copy copies).
// Functions borrow the record; a callee may release and re-create its storage meanwhile.
class PicBuf {
 public:
  PicBuf() { CBxPicBufAPI::Init(record_); }
  PicBuf(int width, int height, int components, int bitsPerComponent) : PicBuf() {
    CBxPicBufAPI::ReinitHeap(record_, width, height, components, bitsPerComponent);
  }
  explicit PicBuf(const SBxPicBuf& like, int components) : PicBuf() {
    CBxPicBufAPI::ReinitHeap(record_, like.width, like.height, components, like.bitsPerComponent);
  }
  ~PicBuf() { CBxPicBufAPI::DoneHeap(record_); }

  PicBuf(const PicBuf&) = delete;
  PicBuf& operator=(const PicBuf&) = delete;
  PicBuf(PicBuf&& other) noexcept : PicBuf() { std::swap(record_, other.record_); }
  PicBuf& operator=(PicBuf&& other) noexcept {
    std::swap(record_, other.record_);
    return *this;
  }

  [[nodiscard]] SBxPicBuf& record() { return record_; }
  [[nodiscard]] const SBxPicBuf& record() const { return record_; }
  operator SBxPicBuf&() { return record_; }  // NOLINT(google-explicit-constructor): lends the record
  operator const SBxPicBuf&() const { return record_; }  // NOLINT(google-explicit-constructor)
  SBxPicBuf* operator->() { return &record_; }
  const SBxPicBuf* operator->() const { return &record_; }

  [[nodiscard]] bool empty() const { return record_.samples == nullptr; }

 private:
  SBxPicBuf record_;
};

// The first sample of row y, as samples of type T. T is std::uint8_t, std::uint16_t, std::uint32_t or double,
// after the picture's bits.
template <typename T>
[[nodiscard]] T* Row(SBxPicBuf& picture, int y) {
  return reinterpret_cast<T*>(picture.samples + static_cast<std::ptrdiff_t>(y) * picture.rowStride);
}
template <typename T>
[[nodiscard]] const T* Row(const SBxPicBuf& picture, int y) {
  return reinterpret_cast<const T*>(picture.samples + static_cast<std::ptrdiff_t>(y) * picture.rowStride);
}

}  // namespace mirellon::picture
