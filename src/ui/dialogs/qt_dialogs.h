// The real message boxes and file dialogs.
#pragma once

#include <QWidget>

#include "ui/dialogs/dialogs.h"
#include "ui/texts.h"

namespace mirellon::ui {

class QtDialogs : public Dialogs {
 public:
  explicit QtDialogs(const Texts& texts) : texts_(texts) {}

  // The window that owns all of them; it outlives the calls.
  void SetOwner(QWidget* owner) { owner_ = owner; }

  void ShowMessage(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) override;
  std::optional<std::filesystem::path> AskOpenPath(const std::wstring& title) override;
  std::optional<std::filesystem::path> AskSavePath(const std::wstring& title,
                                                   const std::filesystem::path& proposal) override;
  std::optional<SaveAnswer> AskSave(const SaveQuestion& question) override;
  std::optional<std::filesystem::path> AskFolder(const std::wstring& title,
                                                 const std::filesystem::path& start) override;
  std::optional<int> AskBatchOptions(int jpegQuality) override;
  std::optional<ProfileName> AskProfileName(const ProfileNameQuestion& question) override;
  std::optional<int> AskChoice(const std::wstring& text, const std::wstring& caption,
                               const std::vector<std::wstring>& answers) override;

  std::optional<int> AskCarefully(const std::wstring& text, const std::wstring& caption,
                                  const std::vector<std::wstring>& answers) override;
  void LookBeside(const std::filesystem::path& photograph) override;

 private:
  enum class Recommend { kFirst, kCancel };
  std::optional<int> Ask(const std::wstring& text, const std::wstring& caption,
                         const std::vector<std::wstring>& answers, Recommend recommend);

  Texts texts_;
  QWidget* owner_ = nullptr;
  std::filesystem::path lastFolder_;
};

}  // namespace mirellon::ui
