// A main window with files of its own and a user that follows a script.
#pragma once

#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "picture/pic_buf.h"
#include "support/temporary_folder.h"
#include "ui/desktop_context.h"
#include "ui/dialogs/qt_dialogs.h"
#include "ui/main_window.h"

namespace mirellon::test {

// Answers from queues; without an answer, everything is cancelled. Remembers what it was told.
class ScriptedDialogs : public ui::Dialogs {
 public:
  void ShowMessage(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) override;
  std::optional<std::filesystem::path> AskOpenPath(const std::wstring& title) override;
  std::optional<std::filesystem::path> AskSavePath(const std::wstring& title,
                                                   const std::filesystem::path& proposal) override;
  std::optional<ui::SaveAnswer> AskSave(const ui::SaveQuestion& question) override;
  std::optional<std::filesystem::path> AskFolder(const std::wstring& title,
                                                 const std::filesystem::path& start) override;
  std::optional<int> AskBatchOptions(int jpegQuality) override;
  std::optional<ui::ProfileName> AskProfileName(const ui::ProfileNameQuestion& question) override;
  std::optional<int> AskChoice(const std::wstring& text, const std::wstring& caption,
                               const std::vector<std::wstring>& answers) override;

  // What happens while the next dialog is open, whichever it is; once.
  std::function<void()> meanwhile;

  std::vector<std::wstring> messages;
  std::vector<std::wstring> questions;
  std::vector<ui::SaveQuestion> saveQuestions;
  std::deque<std::filesystem::path> openPaths;
  std::deque<ui::SaveAnswer> saveAnswers;
  std::deque<ui::ProfileName> profileNames;
  std::deque<int> choices;
  std::deque<std::filesystem::path> folders;
  std::deque<int> batchQualities;

 private:
  void Pass();
};

class WindowHarness {
 public:
  enum class Ask { kScript, kUser };  // kUser: the real dialogs
  explicit WindowHarness(settings::Localization texts = {}, Ask ask = Ask::kScript);

  // A photograph of its own in the folder.
  std::filesystem::path WritePhotograph(const std::string& name, const picture::SBxPicBuf& picture);
  // Opens it and waits until it is there and previewed.
  void Open(const std::filesystem::path& photograph);
  void WaitUntilIdle();
  void Do(ui::Command command) const { window->Do(command); }

  template <typename Widget>
  [[nodiscard]] Widget* Find(const char* name) {
    return window->findChild<Widget*>(QString::fromLatin1(name));
  }
  [[nodiscard]] QAction* Action(ui::Command command);
  [[nodiscard]] const ui::DocumentSession& session() const { return window->workbench().session(); }

  TemporaryFolder folder;
  ScriptedDialogs dialogs;
  engine::EngineContext engine;
  settings::AppSettings settings;
  settings::Localization localization;
  ui::QtDialogs realDialogs{ui::Texts(localization)};
  ui::DesktopContext context;
  std::unique_ptr<ui::MainWindow> window;
};

// A user of modal dialogs: waits for each by its object name, in turn, and does with it what it was told.
class ModalUser : public QObject {
 public:
  ModalUser();
  // All have come.
  ~ModalUser() override;
  void Expect(const char* name, std::function<void(QWidget* dialog)> action);

 private:
  struct Step {
    QString name;
    std::function<void(QWidget*)> action;
  };
  void Look();
  std::deque<Step> steps_;
  QTimer timer_;
};

// Runs the event loop until the condition holds; false after half a minute.
[[nodiscard]] bool WaitFor(const std::function<bool()>& condition);

}  // namespace mirellon::test
