// What is drawn from images, and what the images are called.
#pragma once

#include <QMargins>
#include <QString>
#include <QStyleOption>
#include <array>

namespace mirellon::skin {

enum class Part {
  kCheck,
  kRadio,
  kButton,
  kAction,  // the window's one filled button
  kEdit,
  kCombo,
  kSpin,
  kList,
  kItem,
  kHeader,
  kGroup,
  kTrack,
  kThumb,
  kProgress,
  kTool,
  kMenuItem,
  kScroll,
  kSplit,
  kArrowUp,
  kArrowDown,
  kArrowLeft,
  kArrowRight,
  kTick,  // of a menu's entry
  kDot,   // of one among several
  kFocus,
  kFocusRound,
  kMenuBar,
  kToolBar,
  kStatus,
  kMenu,
  kTip,
};
inline constexpr int kParts = static_cast<int>(Part::kTip) + 1;

// SEL: under the pointer or with the keyboard's focus; SEMI: cannot be used. On: pressed, ticked, open, typed
// into, filled.
enum class PartState { kSelOn, kSelOff, kOn, kOff, kSemiOn, kSemiOff };
inline constexpr std::array kPartStates{PartState::kSelOn, PartState::kSelOff, PartState::kOn,
                                        PartState::kOff,   PartState::kSemiOn, PartState::kSemiOff};

// The image's file, without its folder: "CHECK_SELON.svg"; "CHECKD_SELON.svg" for dark schemes.
[[nodiscard]] QString ImageName(Part part, PartState state, bool dark);

// Whether there is such an image: marks have no off, panels are always on.
[[nodiscard]] bool HasState(Part part, PartState state);

// Along each side so many units of the drawing are kept, and what is between them is stretched.
[[nodiscard]] QMargins SlicesOf(Part part);

[[nodiscard]] PartState StateOf(const QStyleOption& option, bool on);
[[nodiscard]] PartState StateOf(bool enabled, bool selected, bool on);

}  // namespace mirellon::skin
