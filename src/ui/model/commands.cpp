#include "ui/model/commands.h"

#include <algorithm>
#include <array>

namespace mirellon::ui {

namespace {

enum class Need {
  kAlways,       // also while the window is busy
  kIdle,         // not while it is busy
  kIdleOrLoad,   // nor while a photograph is loaded, but it may be replaced by another one
  kImage,        // a photograph and an idle window
  kImageOrLoad,  // a photograph, or one on its way
  kView,         // a photograph, while it is read or written too
  kUndo,
  kRedo,
};

struct Row {
  Command command;
  Need need;
};

constexpr std::array kRows{
    Row{Command::kAbout, Need::kIdleOrLoad},
    Row{Command::kExit, Need::kIdleOrLoad},
    Row{Command::kOpen, Need::kIdleOrLoad},
    Row{Command::kSaveAs, Need::kImage},
    Row{Command::kHelp, Need::kIdleOrLoad},
    Row{Command::kClose, Need::kImage},
    Row{Command::kVisitWebSite, Need::kIdleOrLoad},
    Row{Command::kZoomIn, Need::kView},
    Row{Command::kZoomOut, Need::kView},
    Row{Command::kZoom100, Need::kView},
    Row{Command::kMoveLeft, Need::kView},
    Row{Command::kMoveRight, Need::kView},
    Row{Command::kDenoise, Need::kImage},
    Row{Command::kBatch, Need::kIdle},
    Row{Command::kMoveUp, Need::kView},
    Row{Command::kMoveDown, Need::kView},
    Row{Command::kOptions, Need::kIdleOrLoad},
    Row{Command::kPreviousImage, Need::kImageOrLoad},
    Row{Command::kNextImage, Need::kImageOrLoad},
    Row{Command::kZoomFit, Need::kView},
    Row{Command::kDenoiseFast, Need::kImage},
    Row{Command::kPicker, Need::kView},
    Row{Command::kUndo, Need::kUndo},
    Row{Command::kRedo, Need::kRedo},
    Row{Command::kShowOriginal, Need::kView},
    Row{Command::kViewSingle, Need::kAlways},
    Row{Command::kViewSplit, Need::kAlways},
    Row{Command::kViewSideBySide, Need::kAlways},
    Row{Command::kViewRemovedNoise, Need::kAlways},
    Row{Command::kSchemeLight, Need::kAlways},
    Row{Command::kSchemeDark, Need::kAlways},
    Row{Command::kSchemeContrast, Need::kAlways},
    Row{Command::kColourManagement, Need::kAlways},
};

constexpr auto kCommands = [] {
  std::array<Command, kRows.size()> commands{};
  for (std::size_t i = 0; i < commands.size(); ++i) commands[i] = kRows[i].command;
  return commands;
}();

}  // namespace

bool CommandEnabled(Command command, const CommandContext& context) {
  const auto* row =
      std::find_if(kRows.begin(), kRows.end(), [command](const Row& r) { return r.command == command; });
  if (row == kRows.end()) return false;
  const bool idle = context.activity == Activity::kIdle;
  switch (row->need) {
    case Need::kAlways:
      return true;
    case Need::kIdle:
      return idle;
    case Need::kIdleOrLoad:
      return idle || context.activity == Activity::kLoading;
    case Need::kImage:
      return idle && context.image;
    case Need::kImageOrLoad:
      return context.activity == Activity::kLoading || (idle && context.image);
    case Need::kView:
      return context.image && context.activity != Activity::kDenoising &&
             context.activity != Activity::kBatch;
    case Need::kUndo:
      return idle && context.image && context.undo;
    case Need::kRedo:
      return idle && context.image && context.redo;
  }
  return false;
}

std::span<const Command> AllCommands() {
  return kCommands;
}

}  // namespace mirellon::ui
