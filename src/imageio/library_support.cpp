#include "imageio/library_support.h"

#include <mutex>

#include <FreeImage.h>
#include <dlfcn.h>
#include <exiv2/error.hpp>
#include <exiv2/xmp_exiv2.hpp>

#include "base/text.h"

namespace mirellon::imageio {

namespace {

constexpr std::size_t kMostText = 4096;

// The listener of each thread: the library's hook is one for the process and carries no pointer of ours.
LibraryMessages*& Listener() {
  thread_local LibraryMessages* listener = nullptr;
  return listener;
}

void TakeMessage(FREE_IMAGE_FORMAT /*format*/, const char* message) {
  if (Listener() != nullptr && message != nullptr) Listener()->Add(message);
}

// The TIFF library prints to standard error. It comes in underneath FreeImage, as part of it or on its own,
// so its two handlers are looked up rather than linked.
void SilenceTiff() {
  using SetHandler = void (*)(void*);
  for (const char* name : {"TIFFSetWarningHandler", "TIFFSetErrorHandler"}) {
    if (void* symbol = dlsym(RTLD_DEFAULT, name); symbol != nullptr) {
      reinterpret_cast<SetHandler>(symbol)(nullptr);
    }
  }
}

void LockXmp(void* mutex, bool lock) {
  auto* const xmp = static_cast<std::recursive_mutex*>(mutex);
  if (lock) {
    xmp->lock();
  } else {
    xmp->unlock();
  }
}

void PrepareOnce() {
  static std::recursive_mutex xmp;
  FreeImage_SetOutputMessage(TakeMessage);
  SilenceTiff();
  Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
  Exiv2::XmpParser::initialize(LockXmp, &xmp);
}

}  // namespace

void BitmapUnloader::operator()(FIBITMAP* bitmap) const {
  FreeImage_Unload(bitmap);
}

void PrepareLibraries() {
  static std::once_flag once;
  std::call_once(once, PrepareOnce);
}

LibraryMessages::LibraryMessages() : outer_(Listener()) {
  PrepareLibraries();
  Listener() = this;
}

LibraryMessages::~LibraryMessages() {
  Listener() = outer_;
}

void LibraryMessages::Add(const char* message) {
  if (text_.size() < kMostText) text_.append(message).append("\n");
}

std::string LibraryMessages::First() const {
  return base::PrintableName(text_.substr(0, text_.find('\n')));
}

}  // namespace mirellon::imageio
