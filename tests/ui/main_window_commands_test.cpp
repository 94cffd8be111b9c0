#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <deque>

#include <gtest/gtest.h>

#include "engine/fake_card.h"
#include "support/test_pictures.h"
#include "ui/dialogs/about_dialog.h"
#include "ui/tagged_photo.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

using settings::Setting;
using test::WaitFor;
using test::WindowHarness;

// Answers when it is told to.
class FakeService : public CardService {
 public:
  [[nodiscard]] CardStatus status() const override { return now; }
  void Check(std::function<void(bool usable)> answer) override { asked.push_back(std::move(answer)); }
  void Answer(bool usable) {
    ASSERT_FALSE(asked.empty());
    const auto answer = std::move(asked.front());
    asked.pop_front();
    answer(usable);
  }

  CardStatus now{CardStatus::State::kUsable, "Fake 9000", {}, false};
  std::deque<std::function<void(bool usable)>> asked;
};

class MainWindowCommandsTest : public ::testing::Test {
 protected:
  MainWindowCommandsTest() { harness.context.card = &card; }

  // What the user does with the dialog that comes up next; it is gone afterwards.
  template <typename Action>
  static void InNextDialog(Action action) {
    QTimer::singleShot(0, [action] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      action(*dialog);
      dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
    });
  }

  FakeService card;
  WindowHarness harness;
};

TEST_F(MainWindowCommandsTest, OptionsWaitForTheCardAndAskItAgain) {
  struct Case {
    bool usableBefore;
    bool usableAfter;
    int stored;
    int inForce;
  };
  for (const Case& c : {Case{false, false, 0, 0}, Case{true, false, 1, 0}, Case{true, true, 1, 1}}) {
    ASSERT_FALSE(harness.settings.SetNumber(Setting::kHwAccel, 0));
    harness.Do(Command::kOptions);
    harness.Do(Command::kOptions);
    ASSERT_EQ(card.asked.size(), 1U) << "one dialog, once the card has answered";
    InNextDialog([&](QDialog& dialog) {
      auto* hardware = dialog.findChild<QCheckBox*>("control1076");
      EXPECT_EQ(hardware->isEnabled(), c.usableBefore);
      EXPECT_FALSE(hardware->isChecked());
      EXPECT_EQ(hardware->toolTip(), "Graphics card: Fake 9000 (switched off in the options)");
      hardware->click();
    });
    card.Answer(c.usableBefore);
    EXPECT_EQ(harness.settings.GetNumber(Setting::kHwAccel), c.stored);
    EXPECT_EQ(harness.context.loaded.hwAccel, 0) << "not before the card was asked again";
    ASSERT_EQ(card.asked.size(), c.stored == 1 ? 1U : 0U);
    if (c.stored == 1) card.Answer(c.usableAfter);
    EXPECT_EQ(harness.context.loaded.hwAccel, c.inForce);
    harness.context.loaded.hwAccel = 0;
  }
  harness.Do(Command::kOptions);
  harness.window.reset();
  card.Answer(true);  // reaches nobody
}

TEST_F(MainWindowCommandsTest, RunsUseTheCardThatIsInForce) {
  harness.Open(harness.WritePhotograph("a.png", test::PhotoLikePicture(200, 150, 3, 8, 11)));
  test::FakeCard worker;
  harness.engine.card = &worker;
  const auto denoise = [&] {
    harness.Do(Command::kDenoise);
    harness.WaitUntilIdle();
  };
  denoise();
  EXPECT_EQ(worker.jobs, 0);
  harness.context.loaded.hwAccel = 1;
  denoise();
  EXPECT_GT(worker.jobs, 0);
  const auto& hint = *harness.Find<QLabel>("hint");
  EXPECT_FALSE(hint.text().contains("failed"));
  test::FakeCard failing;
  failing.way = test::FakeCard::Way::kFails;
  harness.engine.card = &failing;
  denoise();
  EXPECT_EQ(failing.jobs, 1);
  EXPECT_TRUE(harness.session().denoised()) << "by the processor";
  EXPECT_TRUE(WaitFor([&] { return hint.text().startsWith("The graphics card failed"); }));
  harness.engine.card = nullptr;
}

TEST_F(MainWindowCommandsTest, AboutNamesTheCard) {
  struct Case {
    CardStatus status;
    bool on;
    const char* text;
  };
  const Case cases[] = {
      {{CardStatus::State::kExamined, {}, {}, false}, false, "Graphics card: being examined ..."},
      {{CardStatus::State::kUsable, "A & B", {}, false}, true, "Graphics card: A & B"},
      {{CardStatus::State::kUsable, "A", {}, false}, false, "Graphics card: A (switched off in the options)"},
      {{CardStatus::State::kRefused, "A", "it is old", false}, false, "Graphics card: not used, it is old"},
  };
  for (const Case& c : cases) {
    card.now = c.status;
    harness.context.loaded.hwAccel = c.on ? 1 : 0;
    InNextDialog([&](QDialog& dialog) { EXPECT_EQ(dialog.findChild<QLabel*>("card")->text(), c.text); });
    harness.Do(Command::kAbout);
  }
}

TEST_F(MainWindowCommandsTest, ColourManagementIsSwitchedAndRemembered) {
  const picture::PicBuf picture = test::PhotoLikePicture(300, 200, 3, 8, 11);
  const auto file = harness.folder / "a.png";
  test::WriteTaggedPhoto(file, picture, 6, test::WideProfile());
  harness.Open(file);
  EXPECT_TRUE(harness.Find<QLabel>("photographInfo")->text().startsWith(QString::fromUtf8("200×300")));
  const auto seen = [&] { return harness.window->view().grab().toImage(); };
  harness.window->view().HoldOriginal(true);
  const QImage managed = seen();
  const double zoom = harness.window->view().geometry().zoom();
  harness.window->view().SetZoom(zoom);
  QAction* action = harness.Action(Command::kColourManagement);
  EXPECT_TRUE(action->isChecked());
  action->trigger();
  EXPECT_EQ(harness.settings.GetNumber(Setting::kColourManagement), 0);
  ASSERT_TRUE(WaitFor([&] { return seen() != managed; }));
  EXPECT_DOUBLE_EQ(harness.window->view().geometry().zoom(), zoom);
  action->trigger();
  EXPECT_EQ(harness.settings.GetNumber(Setting::kColourManagement), 1);
  ASSERT_TRUE(WaitFor([&] { return seen() == managed; }));
  harness.WaitUntilIdle();

  test::WriteTaggedPhoto(harness.folder / "b.png", picture, 1, std::string(4000, 'x'));
  harness.Open(harness.folder / "b.png");
  EXPECT_TRUE(harness.Find<QLabel>("hint")->text().contains("colour profile"));
}

}  // namespace
}  // namespace mirellon::ui
