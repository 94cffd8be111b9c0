// What every use of the image libraries needs: ownership, and their messages kept off standard error.
#pragma once

#include <memory>
#include <string>

struct FIBITMAP;

namespace mirellon::imageio {

struct BitmapUnloader {
  void operator()(FIBITMAP* bitmap) const;
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

// Silences the libraries' own printing, once for the process; thread-safe. Everything in this folder that is
// about to call one goes through here.
void PrepareLibraries();

// Collects what FreeImage says on this thread while the object lives; the innermost one listens.
class LibraryMessages {
 public:
  LibraryMessages();
  ~LibraryMessages();
  LibraryMessages(const LibraryMessages&) = delete;
  LibraryMessages& operator=(const LibraryMessages&) = delete;

  [[nodiscard]] bool Contain(const char* text) const { return text_.find(text) != std::string::npos; }
  // The first message, made fit to be shown; empty when there was none.
  [[nodiscard]] std::string First() const;

  void Add(const char* message);

 private:
  std::string text_;  // one message a line
  LibraryMessages* outer_;
};

}  // namespace mirellon::imageio
