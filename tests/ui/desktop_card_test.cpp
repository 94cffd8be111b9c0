#include "ui/desktop_card.h"

#include <QSignalSpy>
#include <atomic>
#include <semaphore>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

using test::WaitFor;
using State = CardStatus::State;

CardExaminer::Trial Survived(const base::RunControl& /*control*/) {
  return CardExaminer::Trial::kSurvived;
}

// Notes on which thread it shows.
class ShownMessages : public test::ScriptedDialogs {
 public:
  void ShowMessage(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) override {
    EXPECT_EQ(std::this_thread::get_id(), window_);
    ScriptedDialogs::ShowMessage(caption + L": " + text, caption, kind);
  }

 private:
  std::thread::id window_ = std::this_thread::get_id();
};

// A platform that fails whenever it is asked for more than a window.
class BrokenContext : public gpu::GlContext {
 public:
  bool OpenWindow() override { return false; }
  bool OpenDevice() override { return true; }
  bool ChoosePixelFormat() override { return true; }
  bool SetPixelFormat() override { return true; }
  bool CreateContext() override { return true; }
  bool MakeCurrent() override { return true; }
  bool ReleaseCurrent() override { return true; }
  bool DestroyContext() override { return true; }
  bool CloseDevice() override { return true; }
  bool CloseWindow() override { return false; }
  bool UnregisterWindowClass() override { return true; }
};

class DesktopCardTest : public ::testing::Test {
 protected:
  std::unique_ptr<DesktopCard> Make(CardExaminer::Parts parts, DesktopCard::Patience patience = {}) {
    return std::make_unique<DesktopCard>(dialogs, std::move(parts), lines, lines, patience);
  }
  static void OpenAndWait(DesktopCard& card) {
    QSignalSpy opened(&card, &DesktopCard::opened);
    card.Open();
    ASSERT_TRUE(WaitFor([&] { return opened.count() == 1; }));
  }
  static bool Asked(DesktopCard& card) {
    std::optional<bool> answer;
    card.Check([&](bool usable) { answer = usable; });
    EXPECT_FALSE(answer.has_value()) << "not before the event loop runs";
    EXPECT_TRUE(WaitFor([&] { return answer.has_value(); }));
    return answer.value_or(false);
  }

  ShownMessages dialogs;
  std::ostringstream lines;
};

TEST_F(DesktopCardTest, ACardThatComputesWhatTheProcessorDoesCanBeSwitchedOn) {
  const auto card = Make({Survived, gpu::MakeGlContext});
  EXPECT_FALSE(card->filter().HardwareUsable());
  EXPECT_EQ(card->status().state, State::kExamined);
  OpenAndWait(*card);
  ASSERT_EQ(card->status().state, State::kUsable) << card->status().refusal;
  EXPECT_FALSE(card->status().name.empty());
  EXPECT_TRUE(card->filter().HardwareUsable());
  EXPECT_TRUE(Asked(*card));
  EXPECT_TRUE(Asked(*card)) << "as often as it is asked";
  EXPECT_FALSE(card->End());
  EXPECT_FALSE(card->filter().HardwareUsable());
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(DesktopCardTest, ADriverThatFailsInTheTrialIsNotTouched) {
  bool touched = false;
  const auto card = Make({[](const base::RunControl&) { return CardExaminer::Trial::kCrashed; },
                          [&] {
                            touched = true;
                            return gpu::MakeGlContext();
                          }});
  OpenAndWait(*card);
  EXPECT_TRUE(card->status().crashed);
  EXPECT_EQ(card->status().state, State::kRefused);
  EXPECT_FALSE(Asked(*card));
  EXPECT_FALSE(card->End());
  EXPECT_FALSE(touched);
}

TEST_F(DesktopCardTest, WhatADriverSaysIsShownFromTheEventLoop) {
  const auto card = Make({Survived, [] { return std::make_unique<BrokenContext>(); }});
  OpenAndWait(*card);
  ASSERT_TRUE(WaitFor([&] { return dialogs.messages.size() == 2; }));
  EXPECT_EQ(dialogs.messages[0], L"SHUTDOWN ERROR: Could Not Unregister Class.");
  EXPECT_EQ(dialogs.messages[1], L"ERROR: Can't Create A GL Device Context.");
  EXPECT_EQ(card->status().refusal, "no graphics driver can be opened");
  EXPECT_FALSE(card->End());
  EXPECT_EQ(dialogs.messages.size(), 3U) << "and at the end, when no loop runs any more, at once";
}

TEST_F(DesktopCardTest, ADriverThatDoesNotReturnHoldsNobodyUp) {
  auto gate = std::make_shared<std::binary_semaphore>(0);
  auto left = std::make_shared<std::atomic<bool>>(false);
  const auto card = Make({Survived,
                          [gate, left]() -> std::unique_ptr<gpu::GlContext> {
                            gate->acquire();
                            *left = true;
                            return std::make_unique<BrokenContext>();
                          }},
                         {std::chrono::milliseconds(20), std::chrono::milliseconds(20)});
  card->Open();
  EXPECT_FALSE(Asked(*card));
  EXPECT_EQ(card->status().state, State::kExamined);
  EXPECT_TRUE(card->End()) << "it does not come back";
  EXPECT_FALSE(card->End()) << "once";
  gate->release();  // what it does then reaches nobody
  ASSERT_TRUE(WaitFor([&] { return left->load(); }));
  EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(DesktopCardTest, EndsWhileItExamines) {
  // A trial ends when it is asked to.
  const auto card = Make({[](const base::RunControl& control) {
                            while (!control.Aborted()) std::this_thread::yield();
                            return CardExaminer::Trial::kNotHeld;
                          },
                          gpu::MakeGlContext});
  card->Open();
  EXPECT_FALSE(card->End());
  EXPECT_TRUE(lines.str().empty()) << "no card was opened for nobody";
}

}  // namespace
}  // namespace mirellon::ui
