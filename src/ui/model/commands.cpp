#include "ui/model/commands.h"

#include <algorithm>
#include <array>

namespace mirellon::ui {

namespace {

enum class Need {
  kAlways,      // also while the window is busy
  kIdle,        // not while it is busy
  kIdleOrLoad,  // nor while a photograph is loaded, but it may be replaced by another one
  kImage,       // a photograph and an idle window
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
    Row{Command::kZoomIn, Need::kImage},
    Row{Command::kZoomOut, Need::kImage},
    Row{Command::kZoom100, Need::kImage},
    Row{Command::kMoveLeft, Need::kImage},
    Row{Command::kMoveRight, Need::kImage},
    Row{Command::kDenoise, Need::kImage},
    Row{Command::kBatch, Need::kIdle},
    Row{Command::kMoveUp, Need::kImage},
    Row{Command::kMoveDown, Need::kImage},
    Row{Command::kOptions, Need::kIdleOrLoad},
    Row{Command::kPreviousImage, Need::kIdleOrLoad},
    Row{Command::kNextImage, Need::kIdleOrLoad},
    Row{Command::kZoomFit, Need::kImage},
    Row{Command::kDenoiseFast, Need::kImage},
    Row{Command::kPicker, Need::kImage},
    Row{Command::kUndo, Need::kUndo},
    Row{Command::kRedo, Need::kRedo},
    Row{Command::kShowOriginal, Need::kImage},
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
