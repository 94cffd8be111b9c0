// That no work is lost or put in the wrong place, whatever happens while a question is open.
#include <QComboBox>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include "support/test_pictures.h"
#include "ui/parameter_panel.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

using picture::PicBuf;
using test::WaitFor;

class LeaveTest : public ::testing::Test, protected test::WindowHarness {
 protected:
  LeaveTest() {
    QObject::connect(window.get(), &MainWindow::closed, [this] { closed = true; });
  }

  static PicBuf Photo(int width = 400, int height = 300) {
    return test::PhotoLikePicture(width, height, 3, 8, 11);
  }
  std::filesystem::path OpenNew(const std::string& name, const PicBuf& picture = Photo()) {
    std::filesystem::path file = WritePhotograph(name, picture);
    Open(file);
    return file;
  }
  void DenoiseNow() {
    Do(Command::kDenoise);
    WaitUntilIdle();
    ASSERT_TRUE(session().unsaved());
  }
  [[nodiscard]] bool Loading() { return session().activity() == Activity::kLoading; }
  void ChooseSuperior() { Find<QComboBox>("qualityList")->setCurrentIndex(2); }
  [[nodiscard]] std::filesystem::path ProfileFile() const {
    return folder / "config/MirellonGPU20/CameraISOSettingX.ini";
  }
  // Nobody can write there, root included.
  void BlockProfileFile() {
    std::filesystem::remove(ProfileFile());
    std::filesystem::create_directories(ProfileFile() / "inside");
  }

  bool closed = false;
};

TEST_F(LeaveTest, ACommandIsRefusedByWhatGoesOnAndNotByWhatIsShown) {
  OpenNew("a.png");
  const auto b = WritePhotograph("b.png", Photo(1500, 1200));
  ASSERT_TRUE(window->Open(b));
  for (const Command command : {Command::kSaveAs, Command::kDenoise, Command::kBatch, Command::kClose}) {
    Do(command);
  }
  EXPECT_TRUE(Loading());
  WaitUntilIdle();
  EXPECT_EQ(session().photograph().path, b);
  EXPECT_TRUE(dialogs.questions.empty() && dialogs.saveQuestions.empty());
}

TEST_F(LeaveTest, SavesNothingWhenThePhotographChangesDuringTheQuestions) {
  const auto a = OpenNew("a.png");
  const auto b = WritePhotograph("b.png", Photo(60, 40));
  const auto change = [&](const std::filesystem::path& to) {
    ASSERT_TRUE(window->Open(to));
    ASSERT_TRUE(WaitFor([&] { return session().photograph().path == to; }));
  };
  dialogs.choices = {1, 1};
  dialogs.saveAnswers = {{folder / "saved.png", 85}};
  dialogs.meanwhile = [&] { change(b); };  // whether to save what was not denoised
  Do(Command::kSaveAs);
  EXPECT_EQ(dialogs.messages.size(), 1U);
  EXPECT_TRUE(dialogs.saveQuestions.empty());
  WaitUntilIdle();
  dialogs.meanwhile = [&] { dialogs.meanwhile = [&] { change(a); }; };  // the file dialog
  Do(Command::kSaveAs);
  EXPECT_EQ(dialogs.saveQuestions.size(), 1U);
  EXPECT_EQ(dialogs.messages.size(), 2U);
  EXPECT_NE(dialogs.messages.back().find(L"Nothing was saved"), std::wstring::npos);
  WaitUntilIdle();
  EXPECT_FALSE(std::filesystem::exists(folder / "saved.png"));
}

TEST_F(LeaveTest, WhatWaitsForASaveIsForgottenWhenThereIsNone) {
  OpenNew("a.png");
  const auto b = WritePhotograph("b.png", Photo(60, 40));
  DenoiseNow();
  dialogs.openPaths = {b};
  dialogs.choices = {0};
  dialogs.saveAnswers = {{folder / "refused.png", 85}};
  dialogs.meanwhile = [&] { dialogs.meanwhile = [&] { (void)window->Open(b); }; };
  Do(Command::kOpen);
  WaitUntilIdle();
  EXPECT_EQ(dialogs.messages.size(), 1U) << "a load had begun: it could not be saved";
  EXPECT_FALSE(std::filesystem::exists(folder / "refused.png"));
  dialogs.choices = {1};
  dialogs.saveAnswers = {{folder / "later.png", 85}};
  Do(Command::kSaveAs);
  WaitUntilIdle();
  EXPECT_TRUE(std::filesystem::exists(folder / "later.png"));
  EXPECT_EQ(dialogs.openPaths.size(), 1U) << "the file dialog of the first command came after all";
}

TEST_F(LeaveTest, AsksOnceForAResultThatIsGivenUp) {
  const auto a = OpenNew("a.png");
  const auto b = WritePhotograph("b.png", Photo(1500, 1200));
  DenoiseNow();
  dialogs.choices = {1};
  Do(Command::kNextImage);
  ASSERT_TRUE(WaitFor([&] { return Loading(); }));
  Do(Command::kPreviousImage);
  ASSERT_TRUE(WaitFor([&] { return !session().denoised(); }));
  WaitUntilIdle();
  EXPECT_EQ(session().photograph().path, a);
  EXPECT_EQ(dialogs.questions.size(), 1U);

  // Not given up for a photograph that never came.
  DenoiseNow();
  std::filesystem::remove(b);
  test::WriteBytes(b, "no picture");
  dialogs.choices = {1};
  Do(Command::kNextImage);
  ASSERT_TRUE(WaitFor([&] { return dialogs.messages.size() == 1; }));
  EXPECT_TRUE(session().unsaved());
  Do(Command::kClose);
  EXPECT_EQ(dialogs.questions.size(), 3U);
  EXPECT_TRUE(session().hasImage());
}

TEST_F(LeaveTest, AsksBeforeARunIsLost) {
  ChooseSuperior();
  OpenNew("a.png", Photo(900, 700));
  Do(Command::kDenoise);
  EXPECT_FALSE(window->close());
  EXPECT_EQ(dialogs.questions.size(), 1U);
  EXPECT_EQ(session().activity(), Activity::kDenoising) << "it goes on";
  WaitUntilIdle();
  EXPECT_TRUE(session().unsaved());
  EXPECT_TRUE(window->isVisible());

  Do(Command::kDenoise);
  dialogs.choices = {0};
  EXPECT_FALSE(window->close());
  EXPECT_EQ(dialogs.questions.size(), 3U) << "the run may go, and the earlier result?";
  EXPECT_EQ(session().activity(), Activity::kDenoising);
  dialogs.choices = {0, 0};
  dialogs.saveAnswers = {{folder / "out.png", 85}};
  EXPECT_FALSE(window->close());
  ASSERT_TRUE(WaitFor([&] { return closed; })) << "stopped, saved, then closed";
  EXPECT_EQ(dialogs.questions.size(), 5U);
  EXPECT_TRUE(std::filesystem::exists(folder / "out.png"));
}

TEST_F(LeaveTest, ARunThatEndsDuringTheQuestionIsAResultToAskFor) {
  OpenNew("a.png");
  Do(Command::kDenoise);
  dialogs.choices = {0};
  dialogs.meanwhile = [&] { WaitUntilIdle(); };
  EXPECT_FALSE(window->close());
  EXPECT_EQ(dialogs.questions.size(), 2U);
  EXPECT_TRUE(session().unsaved());
  EXPECT_TRUE(window->isVisible());
}

TEST_F(LeaveTest, ClosingTakesThePlaceOfWhatWaitedForTheSave) {
  OpenNew("a.png", Photo(900, 700));
  DenoiseNow();
  dialogs.choices = {0};
  dialogs.saveAnswers = {{folder / "out.png", 85}};
  dialogs.openPaths = {folder / "a.png"};
  Do(Command::kOpen);
  ASSERT_EQ(session().activity(), Activity::kSaving);
  window->close();
  ASSERT_TRUE(WaitFor([&] { return closed; }));
  QCoreApplication::processEvents();
  EXPECT_EQ(dialogs.openPaths.size(), 1U);
  EXPECT_TRUE(std::filesystem::exists(folder / "out.png"));
}

TEST_F(LeaveTest, ASaveThatFailsKeepsAClosingWindow) {
  OpenNew("a.png");
  DenoiseNow();
  test::WriteBytes(folder / "file", "");
  dialogs.saveAnswers = {{folder / "file/out.png", 85}};
  Do(Command::kSaveAs);
  window->close();
  ASSERT_TRUE(WaitFor([&] { return dialogs.messages.size() == 1; }));
  WaitUntilIdle();
  QCoreApplication::processEvents();
  EXPECT_TRUE(dialogs.questions.empty());
  EXPECT_FALSE(closed);
  EXPECT_TRUE(session().unsaved());
}

TEST_F(LeaveTest, ClosesInOrderWhateverGoesOn) {
  struct Case {
    const char* what;
    Activity activity;
    std::function<void()> begin;
  };
  const Case cases[] = {
      {"a preview", Activity::kIdle, [] {}},
      {"a load", Activity::kLoading, [&] { (void)window->Open(folder / "a.png"); }},
      {"a run", Activity::kDenoising, [&] { Do(Command::kDenoise); }},
      {"a save", Activity::kSaving,
       [&] {
         dialogs.choices = {1};
         dialogs.saveAnswers = {{folder / "out.png", 85}};
         Do(Command::kSaveAs);
       }},
      {"a batch", Activity::kBatch,
       [&] {
         dialogs.folders = {folder / "in"};
         dialogs.batchQualities = {60};
         Do(Command::kBatch);
       }},
  };
  std::filesystem::create_directory(folder / "in");
  (void)WritePhotograph("in/a.png", Photo(900, 700));
  ChooseSuperior();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    closed = false;
    window->show();
    (void)WritePhotograph("a.png", Photo(900, 700));
    ASSERT_TRUE(window->Open(folder / "a.png"));
    ASSERT_TRUE(WaitFor([&] { return !Loading() && session().hasImage(); }));
    c.begin();
    ASSERT_EQ(session().activity(), c.activity);
    dialogs.choices = {0};  // where it is asked for
    std::filesystem::remove(ProfileFile());
    window->close();
    ASSERT_TRUE(WaitFor([&] { return closed; }));
    EXPECT_TRUE(window->workbench().idle());
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(std::filesystem::exists(ProfileFile())) << "written at every end";
    EXPECT_TRUE(dialogs.messages.empty());
  }
  EXPECT_TRUE(std::filesystem::exists(folder / "out.png"));
}

TEST_F(LeaveTest, GoesWithoutAProperEndWhileItLoads) {
  ASSERT_TRUE(window->Open(WritePhotograph("a.png", Photo(900, 700))));
  window.reset();
}

// A load goes on behind the panel's dialogs, and what they ask about may no longer be on the screen.
TEST_F(LeaveTest, CameraSettingsAreThoseOfThePhotographThatWasAskedAbout) {
  OpenNew("a.png");
  const auto b = WritePhotograph("b.png", Photo(60, 40));
  dialogs.profileNames = {{L"Maker / Model", L"400"}, {L"Maker / Model", L"800"}, {L"Other", L"100"}};
  for (int i = 0; i < 2; ++i) Find<QToolButton>("saveSetting")->click();
  ASSERT_EQ(Find<QComboBox>("cameraList")->currentIndex(), 1);
  const auto change = [&] {
    const auto before = session().photograph().path;
    ASSERT_TRUE(window->Open(before == b ? folder / "a.png" : b));
    ASSERT_TRUE(WaitFor([&] { return session().photograph().path != before; }));
    emit Find<QComboBox>("cameraList")->activated(1);  // as if it were of a camera that is known
  };
  dialogs.meanwhile = change;
  dialogs.choices = {0};
  Find<QToolButton>("deleteSetting")->click();
  EXPECT_EQ(Find<QComboBox>("cameraList")->count(), 2) << "deleted";
  dialogs.meanwhile = change;
  Find<QToolButton>("saveSetting")->click();
  EXPECT_EQ(Find<QComboBox>("cameraList")->count(), 2) << "added";
  EXPECT_EQ(dialogs.messages.size(), 2U);
  WaitUntilIdle();
}

TEST_F(LeaveTest, TellsWhenCameraSettingsCannotBeKept) {
  OpenNew("a.png");
  BlockProfileFile();
  EXPECT_TRUE(window->close()) << "nothing is lost";
  EXPECT_EQ(dialogs.messages.size(), 1U);
  window->show();
  dialogs.profileNames = {{L"Maker / Model", L"400"}};
  Find<QToolButton>("saveSetting")->click();
  ASSERT_TRUE(window->panel().changed());
  WaitUntilIdle();
  EXPECT_FALSE(window->close());
  ASSERT_EQ(dialogs.questions.size(), 1U);
  EXPECT_NE(dialogs.questions[0].find(L"could not be saved"), std::wstring::npos);
  EXPECT_TRUE(window->isVisible());
  dialogs.choices = {0};
  EXPECT_TRUE(window->close());
  EXPECT_EQ(dialogs.messages.size(), 1U) << "told once";
}

}  // namespace
}  // namespace mirellon::ui
