// What a core operation may ask of the person in front of the program.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace mirellon::base {

enum class MessageKind { kPlain, kInformation, kWarning, kError };

// Message boxes and file dialogs behind one seam: real windows on the desktop, standard error in the
// command-line program (which never asks: its Ask functions answer "cancelled"), a script in tests.
class WindowServices {
 public:
  WindowServices() = default;
  WindowServices(const WindowServices&) = delete;
  WindowServices& operator=(const WindowServices&) = delete;
  virtual ~WindowServices() = default;

  virtual void ShowMessage(const std::wstring& text, const std::wstring& caption, MessageKind kind) = 0;
  // The path chosen, or nothing when the user cancelled.
  virtual std::optional<std::filesystem::path> AskOpenPath(const std::wstring& title) = 0;
  virtual std::optional<std::filesystem::path> AskSavePath(const std::wstring& title,
                                                           const std::filesystem::path& proposal) = 0;
};

}  // namespace mirellon::base
