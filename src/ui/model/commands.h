// The program's commands and when they can be used.
#pragma once

#include <span>

namespace mirellon::ui {

// A command's number is part of its action's object name ("command32771"), by which tests find it.
enum class Command : int {
  kAbout = 104,
  kExit = 105,
  kOpen = 32771,
  kSaveAs = 32773,
  kHelp = 32788,
  kClose = 32790,
  kVisitWebSite = 32792,
  kZoomIn = 32793,
  kZoomOut = 32794,
  kZoom100 = 32795,
  kMoveLeft = 32797,
  kMoveRight = 32798,
  kDenoise = 32799,
  kBatch = 32800,
  kMoveUp = 32801,
  kMoveDown = 32802,
  kOptions = 32803,
  kPreviousImage = 32804,
  kNextImage = 32805,
  kZoomFit = 32806,
  kDenoiseFast = 32807,
  kPicker = 32809,
  // Commands of this program alone.
  kUndo = 40001,
  kRedo,
  kShowOriginal,
  kViewSingle,
  kViewSplit,
  kViewSideBySide,
  kViewRemovedNoise,
  kSchemeLight,
  kSchemeDark,
  kSchemeContrast,
  kColourManagement = 40021,
};

// What the window is doing, as far as commands depend on it.
enum class Activity {
  kIdle,
  kLoading,    // a photograph is on its way; the one before, if any, is still shown
  kDenoising,  // the whole photograph; a preview does not count
  kSaving,
  kBatch,
};

struct CommandContext {
  bool image = false;  // a photograph is open
  Activity activity = Activity::kIdle;
  bool undo = false;  // a change of parameters can be taken back
  bool redo = false;
};

// Whether the command can be used now.
[[nodiscard]] bool CommandEnabled(Command command, const CommandContext& context);

// All of them, in the order of their numbers.
[[nodiscard]] std::span<const Command> AllCommands();

}  // namespace mirellon::ui
