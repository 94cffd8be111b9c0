// Everything that the window asks its user.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/window_services.h"
#include "imageio/exif_summary.h"
#include "imageio/save_names.h"

namespace mirellon::ui {

struct SaveQuestion {
  std::wstring title;
  imageio::SaveProposal proposal;
  int bitsPerComponent = 8;
  int jpegQuality = 85;
  std::filesystem::path source = {};  // which cannot be the target
};
struct SaveAnswer {
  std::filesystem::path path;  // with its extension
  int jpegQuality = 85;        // as the slider was left; not held to any range
};

// For which camera and ISO speed a set is kept.
struct ProfileName {
  std::wstring camera;
  std::wstring iso;
};
struct ProfileNameQuestion {
  ProfileName proposal;
  imageio::ExifSummary exif;  // of the photograph, which may tell better
};

// Message boxes, questions and file dialogs behind one seam, so that tests answer them by a script.
class Dialogs : public base::WindowServices {
 public:
  // Nothing: cancelled. An existing file was confirmed.
  virtual std::optional<SaveAnswer> AskSave(const SaveQuestion& question) = 0;
  virtual std::optional<std::filesystem::path> AskFolder(const std::wstring& title,
                                                         const std::filesystem::path& start) = 0;
  // The JPEG quality of a batch run.
  virtual std::optional<int> AskBatchOptions(int jpegQuality) = 0;
  virtual std::optional<ProfileName> AskProfileName(const ProfileNameQuestion& question) = 0;
  // One of the answers by index, the first the recommended one; nothing: cancelled, which is always offered.
  virtual std::optional<int> AskChoice(const std::wstring& text, const std::wstring& caption,
                                       const std::vector<std::wstring>& answers) = 0;
  // The same where every answer destroys something: none is recommended but to cancel.
  virtual std::optional<int> AskCarefully(const std::wstring& text, const std::wstring& caption,
                                          const std::vector<std::wstring>& answers) {
    return AskChoice(text, caption, answers);
  }
  // The photograph on the screen, beside which the next one is looked for first.
  virtual void LookBeside(const std::filesystem::path& /*photograph*/) {}
};

}  // namespace mirellon::ui
