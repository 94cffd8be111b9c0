#include <QWidget>

#include "skin/looks.h"
#include "skin/skin_style.h"

namespace mirellon::skin {

namespace {

constexpr int kTitleHeight = 20;
constexpr int kBelowTitle = 4;
constexpr int kBesideTitle = 8;

// Pressed counts as on.
bool IsOn(const QStyleOption& button) {
  return button.state.testFlag(QStyle::State_On) || button.state.testFlag(QStyle::State_Sunken);
}

bool HasFocus(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_Enabled);
}

QFont TitleFont(QFont font) {
  font.setWeight(QFont::DemiBold);
  return font;
}

int TitleHeight(const QStyleOptionGroupBox& group) {
  return group.text.isEmpty() && !group.subControls.testFlag(QStyle::SC_GroupBoxCheckBox)
             ? 0
             : std::max(kTitleHeight, group.fontMetrics.height());
}

void DrawGroupTitle(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionGroupBox& group,
                    const QRect& rect) {
  const bool enabled = group.state.testFlag(QStyle::State_Enabled);
  const int mnemonic = style.styleHint(QStyle::SH_UnderlineShortcut, &group) != 0 ? Qt::TextShowMnemonic
                                                                                  : Qt::TextHideMnemonic;
  QPainter& painter = canvas.painter();
  painter.save();
  painter.setFont(TitleFont(painter.font()));
  painter.setPen(group.palette.color(enabled ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
  const auto side = QStyle::visualAlignment(group.direction, Qt::AlignLeft);
  painter.drawText(rect, static_cast<int>(side | Qt::AlignVCenter) | mnemonic | Qt::TextSingleLine,
                   group.text);
  painter.restore();
}

}  // namespace

bool IsPrimary(const QWidget* widget) {
  return widget != nullptr && widget->property(kPrimaryProperty).toBool();
}

bool DrawPushButton(const SkinCanvas& canvas, const QStyleOption& button, const QWidget* widget) {
  const Part part = IsPrimary(widget) ? Part::kAction : Part::kButton;
  if (!canvas.Stretch(part, StateOf(button, IsOn(button)), button.rect)) return false;
  return !HasFocus(button) || canvas.Stretch(Part::kFocus, PartState::kOn, button.rect);
}

bool DrawIndicator(const SkinCanvas& canvas, Part part, const QStyleOption& indicator) {
  if (indicator.state.testFlag(QStyle::State_NoChange)) return false;
  const bool on = indicator.state.testFlag(QStyle::State_On);
  if (!canvas.Centre(part, StateOf(indicator, on), indicator.rect)) return false;
  if (!HasFocus(indicator)) return true;
  return part == Part::kRadio ? canvas.Centre(Part::kFocusRound, PartState::kOn, indicator.rect)
                              : canvas.Stretch(Part::kFocus, PartState::kOn, indicator.rect);
}

bool DrawToolPanel(const SkinCanvas& canvas, const QStyleOption& button) {
  return canvas.Stretch(Part::kTool, StateOf(button, IsOn(button)), button.rect);
}

bool DrawToolButton(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionToolButton& button,
                    const QWidget* widget) {
  if (button.features.testFlag(QStyleOptionToolButton::MenuButtonPopup)) return false;
  const PartState state = StateOf(button, IsOn(button));
  if (!canvas.Has(Part::kTool, state)) return false;
  // In a bar nothing is outlined but what is under the pointer, ticked or pressed.
  const bool flat = button.state.testFlag(QStyle::State_AutoRaise) &&
                    (state == PartState::kOff || state == PartState::kSemiOff);
  if (!flat) canvas.Stretch(Part::kTool, state, button.rect);
  if (HasFocus(button)) canvas.Stretch(Part::kFocus, PartState::kOn, button.rect);
  style.drawControl(QStyle::CE_ToolButtonLabel, &button, &canvas.painter(), widget);
  return true;
}

bool DrawGroupBox(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionGroupBox& group,
                  const QWidget* widget) {
  const auto part = [&](QStyle::SubControl which) {
    return style.subControlRect(QStyle::CC_GroupBox, &group, which, widget);
  };
  const bool tickable = group.subControls.testFlag(QStyle::SC_GroupBoxCheckBox);
  const bool on = !tickable || group.state.testFlag(QStyle::State_On);
  const PartState state = StateOf(group.state.testFlag(QStyle::State_Enabled), HasFocus(group), on);
  if (!canvas.Has(Part::kGroup, state)) return false;
  if (group.subControls.testFlag(QStyle::SC_GroupBoxFrame) && TitleHeight(group) > 0) {
    const QRect frame = part(QStyle::SC_GroupBoxFrame);
    if (!frame.isEmpty()) canvas.Stretch(Part::kGroup, state, frame);
  }
  if (tickable) {
    QStyleOptionButton box;
    box.QStyleOption::operator=(group);
    box.rect = part(QStyle::SC_GroupBoxCheckBox);
    style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, &canvas.painter(), widget);
  }
  if (!group.text.isEmpty()) DrawGroupTitle(canvas, style, group, part(QStyle::SC_GroupBoxLabel));
  return true;
}

QRect GroupBoxPart(const QStyle& style, const QStyleOptionGroupBox& group, QStyle::SubControl part,
                   const QWidget* widget) {
  const QRect& whole = group.rect;
  const int height = TitleHeight(group);
  const bool tickable = group.subControls.testFlag(QStyle::SC_GroupBoxCheckBox);
  const int box = tickable ? style.pixelMetric(QStyle::PM_IndicatorWidth, &group, widget) : 0;
  const int textStart = tickable ? box + kBelowTitle : 0;
  const QFont font = TitleFont(widget == nullptr ? QFont() : widget->font());
  const int text = QFontMetrics(font).horizontalAdvance(group.text) + 1;
  const auto placed = [&](int left, int top, int width, int partHeight) {
    const QRect rect(whole.left() + left, whole.top() + top, width, partHeight);
    return QStyle::visualRect(group.direction, whole, rect);
  };
  switch (part) {
    case QStyle::SC_GroupBoxCheckBox:
      return placed(0, (height - box) / 2, box, box);
    case QStyle::SC_GroupBoxLabel:
      return placed(textStart, 0, std::min(text, whole.width() - textStart), height);
    case QStyle::SC_GroupBoxFrame: {
      const int start = textStart + (group.text.isEmpty() ? 0 : text + kBesideTitle);
      return placed(start, height / 2, std::max(whole.width() - start, 0), kBesideTitle);
    }
    case QStyle::SC_GroupBoxContents:
      return whole.adjusted(0, height == 0 ? 0 : height + kBelowTitle, 0, 0);
    default:
      return {};
  }
}

}  // namespace mirellon::skin
