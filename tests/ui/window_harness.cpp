#include "ui/window_harness.h"

#include <QApplication>
#include <QTest>
#include <utility>

#include <gtest/gtest.h>

#include "imageio/save_image.h"

namespace mirellon::test {

namespace {

template <typename T>
std::optional<T> Next(std::deque<T>& answers) {
  if (answers.empty()) return std::nullopt;
  T answer = std::move(answers.front());
  answers.pop_front();
  return answer;
}

}  // namespace

void ScriptedDialogs::Pass() {
  if (const auto happens = std::exchange(meanwhile, nullptr)) happens();
}

void ScriptedDialogs::ShowMessage(const std::wstring& text, const std::wstring& /*caption*/,
                                  base::MessageKind /*kind*/) {
  messages.push_back(text);
  Pass();
}

std::optional<std::filesystem::path> ScriptedDialogs::AskOpenPath(const std::wstring& /*title*/) {
  Pass();
  return Next(openPaths);
}

std::optional<std::filesystem::path> ScriptedDialogs::AskSavePath(const std::wstring& /*title*/,
                                                                  const std::filesystem::path& /*proposal*/) {
  return std::nullopt;
}

std::optional<ui::SaveAnswer> ScriptedDialogs::AskSave(const ui::SaveQuestion& question) {
  saveQuestions.push_back(question);
  Pass();
  return Next(saveAnswers);
}

std::optional<std::filesystem::path> ScriptedDialogs::AskFolder(const std::wstring& /*title*/,
                                                                const std::filesystem::path& /*start*/) {
  return Next(folders);
}

std::optional<int> ScriptedDialogs::AskBatchOptions(int /*jpegQuality*/) {
  return Next(batchQualities);
}

std::optional<ui::ProfileName> ScriptedDialogs::AskProfileName(const ui::ProfileNameQuestion& /*question*/) {
  Pass();
  return Next(profileNames);
}

std::optional<int> ScriptedDialogs::AskChoice(const std::wstring& text, const std::wstring& /*caption*/,
                                              const std::vector<std::wstring>& /*answers*/) {
  questions.push_back(text);
  Pass();
  return Next(choices);
}

WindowHarness::WindowHarness(settings::Localization texts, Ask ask)
    : settings(folder / "config"),
      localization(std::move(texts)),
      context{engine,
              settings,
              localization,
              ask == Ask::kUser ? static_cast<ui::Dialogs&>(realDialogs) : dialogs,
              folder / "config",
              {},
              settings::LoadSettings(settings, [] { return false; }),
              nullptr},
      window(std::make_unique<ui::MainWindow>(context)) {
  realDialogs.SetOwner(window.get());
  engine.processorCount = 2;
  window->resize(1100, 760);
  window->show();
  EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
}

std::filesystem::path WindowHarness::WritePhotograph(const std::string& name,
                                                     const picture::SBxPicBuf& picture) {
  std::filesystem::path file = folder / name;
  EXPECT_FALSE(imageio::WriteImageFile(picture, file, {}, 95, {}));
  return file;
}

void WindowHarness::Open(const std::filesystem::path& photograph) {
  window->Open(photograph);
  WaitUntilIdle();
}

void WindowHarness::WaitUntilIdle() {
  EXPECT_TRUE(WaitFor([this] { return window->workbench().idle(); }));
}

QAction* WindowHarness::Action(ui::Command command) {
  return window->findChild<QAction*>(QStringLiteral("command%1").arg(static_cast<int>(command)));
}

ModalUser::ModalUser() {
  QObject::connect(&timer_, &QTimer::timeout, this, &ModalUser::Look);
  timer_.start(5);
}

ModalUser::~ModalUser() {
  for (const Step& step : steps_) ADD_FAILURE() << step.name.toStdString() << " did not come";
}

void ModalUser::Expect(const char* name, std::function<void(QWidget* dialog)> action) {
  steps_.push_back({QString::fromLatin1(name), std::move(action)});
}

void ModalUser::Look() {
  QWidget* dialog = QApplication::activeModalWidget();
  if (dialog == nullptr || steps_.empty() || dialog->objectName() != steps_.front().name) return;
  const Step step = std::move(steps_.front());
  steps_.pop_front();
  step.action(dialog);
}

bool WaitFor(const std::function<bool()>& condition) {
  return QTest::qWaitFor(condition, 30000);
}

}  // namespace mirellon::test
