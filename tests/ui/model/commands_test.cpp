#include "ui/model/commands.h"

#include <set>

#include <gtest/gtest.h>

namespace mirellon::ui {
namespace {

std::set<Command> Usable(const CommandContext& context) {
  std::set<Command> usable;
  for (const Command command : AllCommands()) {
    if (CommandEnabled(command, context)) usable.insert(command);
  }
  return usable;
}

const std::set<Command> kViews{
    Command::kViewSingle,  Command::kViewSplit,  Command::kViewSideBySide, Command::kViewRemovedNoise,
    Command::kSchemeLight, Command::kSchemeDark, Command::kSchemeContrast, Command::kColourManagement};

TEST(CommandsTest, WithoutAPhotographOnlyWhatNeedsNoneCanBeUsed) {
  std::set<Command> expected{Command::kOpen, Command::kOptions, Command::kBatch,       Command::kHelp,
                             Command::kExit, Command::kAbout,   Command::kVisitWebSite};
  expected.insert(kViews.begin(), kViews.end());
  EXPECT_EQ(Usable({}), expected);
}

TEST(CommandsTest, WithAPhotographEverythingCanBeUsed) {
  EXPECT_EQ(Usable({true, Activity::kIdle, true, true}).size(), AllCommands().size());
  EXPECT_FALSE(CommandEnabled(Command::kUndo, {true, Activity::kIdle, false, true}));
  EXPECT_FALSE(CommandEnabled(Command::kRedo, {true, Activity::kIdle, true, false}));
}

TEST(CommandsTest, WhileBusyOnlyTheViewCanBeChanged) {
  for (const Activity activity : {Activity::kDenoising, Activity::kBatch}) {
    EXPECT_EQ(Usable({true, activity, true, true}), kViews);
  }
  std::set<Command> saving{Command::kZoomIn,   Command::kZoomOut,     Command::kZoom100, Command::kZoomFit,
                           Command::kMoveLeft, Command::kMoveRight,   Command::kMoveUp,  Command::kMoveDown,
                           Command::kPicker,   Command::kShowOriginal};
  saving.insert(kViews.begin(), kViews.end());
  EXPECT_EQ(Usable({true, Activity::kSaving, true, true}), saving);
  EXPECT_EQ(Usable({false, Activity::kSaving, true, true}), kViews);
}

TEST(CommandsTest, ALoadMayBeReplacedByAnother) {
  const CommandContext loading{true, Activity::kLoading, true, true};
  EXPECT_TRUE(CommandEnabled(Command::kOpen, loading));
  EXPECT_TRUE(CommandEnabled(Command::kNextImage, loading));
  EXPECT_TRUE(CommandEnabled(Command::kZoomIn, loading)) << "of the one before";
  EXPECT_FALSE(CommandEnabled(Command::kZoomIn, {false, Activity::kLoading, false, false}));
  EXPECT_TRUE(CommandEnabled(Command::kNextImage, {false, Activity::kLoading, false, false}));
  EXPECT_FALSE(CommandEnabled(Command::kDenoise, loading));
  EXPECT_FALSE(CommandEnabled(Command::kSaveAs, loading));
  EXPECT_FALSE(CommandEnabled(Command::kBatch, loading));
}

}  // namespace
}  // namespace mirellon::ui
