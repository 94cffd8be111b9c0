#include "skin/skin_parts.h"

namespace mirellon::skin {

namespace {

enum class States { kAll, kOnOnly, kSingle };

struct Row {
  Part part;
  const char* name;
  int slice;  // on all four sides; 0: never stretched
  States states = States::kAll;
};

// Multiples of 2, better of 4: whole device pixels at 1.5 and 1.25, too.
constexpr std::array<Row, kParts> kRows{{
    {Part::kCheck, "CHECK", 0},
    {Part::kRadio, "RADIO", 0},
    {Part::kButton, "BUTTON", 8},
    {Part::kAction, "ACTION", 8},
    {Part::kEdit, "EDIT", 8},
    {Part::kCombo, "COMBO", 8},
    {Part::kSpin, "SPIN", 4},
    {Part::kList, "LIST", 4},
    {Part::kItem, "ITEM", 4},
    {Part::kHeader, "HEADER", 4},
    {Part::kGroup, "GROUP", 4},
    {Part::kTrack, "TRACK", 2},
    {Part::kThumb, "THUMB", 0},
    {Part::kProgress, "PROGRESS", 4},
    {Part::kTool, "TOOL", 8},
    {Part::kMenuItem, "MENUITEM", 4},
    {Part::kScroll, "SCROLL", 6},
    {Part::kSplit, "SPLIT", 2},
    {Part::kArrowUp, "ARROWUP", 0, States::kOnOnly},
    {Part::kArrowDown, "ARROWDOWN", 0, States::kOnOnly},
    {Part::kArrowLeft, "ARROWLEFT", 0, States::kOnOnly},
    {Part::kArrowRight, "ARROWRIGHT", 0, States::kOnOnly},
    {Part::kTick, "TICK", 0, States::kOnOnly},
    {Part::kDot, "DOT", 0, States::kOnOnly},
    {Part::kFocus, "FOCUS", 8, States::kSingle},
    {Part::kFocusRound, "FOCUSROUND", 0, States::kSingle},
    {Part::kMenuBar, "MENUBAR", 4, States::kSingle},
    {Part::kToolBar, "TOOLBAR", 4, States::kSingle},
    {Part::kStatus, "STATUS", 4, States::kSingle},
    {Part::kMenu, "MENU", 4, States::kSingle},
    {Part::kTip, "TIP", 4, States::kSingle},
}};

constexpr bool RowsFollowParts() {
  for (int i = 0; i < kParts; ++i) {
    if (kRows.at(static_cast<std::size_t>(i)).part != static_cast<Part>(i)) return false;
  }
  return true;
}
static_assert(RowsFollowParts());

const Row& RowOf(Part part) {
  return kRows.at(static_cast<std::size_t>(part));
}

constexpr std::array kStateNames{"SELON", "SELOFF", "ON", "OFF", "SEMION", "SEMIOFF"};

}  // namespace

QString ImageName(Part part, PartState state, bool dark) {
  return QStringLiteral("%1%2_%3.svg")
      .arg(QLatin1String(RowOf(part).name), dark ? QStringLiteral("D") : QString(),
           QLatin1String(kStateNames.at(static_cast<std::size_t>(state))));
}

bool HasState(Part part, PartState state) {
  switch (RowOf(part).states) {
    case States::kSingle:
      return state == PartState::kOn;
    case States::kOnOnly:
      return state == PartState::kSelOn || state == PartState::kOn || state == PartState::kSemiOn;
    case States::kAll:
      break;
  }
  return true;
}

QMargins SlicesOf(Part part) {
  const int slice = RowOf(part).slice;
  return {slice, slice, slice, slice};
}

PartState StateOf(bool enabled, bool selected, bool on) {
  if (!enabled) return on ? PartState::kSemiOn : PartState::kSemiOff;
  if (selected) return on ? PartState::kSelOn : PartState::kSelOff;
  return on ? PartState::kOn : PartState::kOff;
}

PartState StateOf(const QStyleOption& option, bool on) {
  const bool selected =
      option.state.testFlag(QStyle::State_MouseOver) || option.state.testFlag(QStyle::State_HasFocus);
  return StateOf(option.state.testFlag(QStyle::State_Enabled), selected, on);
}

}  // namespace mirellon::skin
