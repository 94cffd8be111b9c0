#include <QIcon>
#include <QStyle>

#include "skin/looks.h"

namespace mirellon::skin {

namespace {

constexpr int kFrame = 2;
constexpr int kArrowWidth = 24;
constexpr int kSpinWidth = 20;
constexpr int kTextMargin = 8;
constexpr int kTypedMargin = 4;  // the line edit within has some of its own
constexpr int kIconGap = 4;

bool Enabled(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_Enabled);
}

// Having the focus is being typed into.
bool DrawField(const SkinCanvas& canvas, const QStyleOption& field) {
  const PartState state = StateOf(Enabled(field), field.state.testFlag(QStyle::State_MouseOver),
                                  field.state.testFlag(QStyle::State_HasFocus));
  return canvas.Stretch(Part::kEdit, state, field.rect);
}

PartState MarkState(const QStyleOption& option) {
  return Enabled(option) ? PartState::kOn : PartState::kSemiOn;
}

bool DrawSpinButton(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionSpinBox& spin,
                    QStyle::SubControl which, const QWidget* widget) {
  const bool up = which == QStyle::SC_SpinBoxUp;
  const bool possible = Enabled(spin) && spin.stepEnabled.testFlag(up ? QAbstractSpinBox::StepUpEnabled
                                                                      : QAbstractSpinBox::StepDownEnabled);
  const bool meant = spin.activeSubControls.testFlag(which);
  const bool hot = meant && spin.state.testFlag(QStyle::State_MouseOver);
  const bool pressed = meant && spin.state.testFlag(QStyle::State_Sunken);
  const QRect rect = style.subControlRect(QStyle::CC_SpinBox, &spin, which, widget);
  const PartState state = StateOf(Enabled(spin), hot && possible, pressed && possible);
  return canvas.Stretch(Part::kSpin, state, rect) &&
         canvas.Centre(up ? Part::kArrowUp : Part::kArrowDown, possible ? PartState::kOn : PartState::kSemiOn,
                       rect);
}

}  // namespace

bool DrawLineEdit(const SkinCanvas& canvas, const QStyleOptionFrame& field) {
  // Without a frame it lies in a combo box or spin box, which has drawn the field.
  return field.lineWidth <= 0 || DrawField(canvas, field);
}

bool DrawListFrame(const SkinCanvas& canvas, const QStyleOption& frame) {
  const PartState state = StateOf(Enabled(frame), frame.state.testFlag(QStyle::State_MouseOver),
                                  frame.state.testFlag(QStyle::State_HasFocus));
  return canvas.Stretch(Part::kList, state, frame.rect);
}

bool DrawItemPanel(const SkinCanvas& canvas, const QStyleOptionViewItem& item) {
  const bool chosen = item.state.testFlag(QStyle::State_Selected);
  const bool hot = item.state.testFlag(QStyle::State_MouseOver);
  if (!chosen && !(hot && Enabled(item))) {
    if (item.backgroundBrush.style() != Qt::NoBrush)
      canvas.painter().fillRect(item.rect, item.backgroundBrush);
    return true;
  }
  return canvas.Stretch(Part::kItem, StateOf(Enabled(item), hot, chosen), item.rect);
}

bool DrawHeaderSection(const SkinCanvas& canvas, const QStyleOption& section) {
  return canvas.Stretch(Part::kHeader, StateOf(section, section.state.testFlag(QStyle::State_Sunken)),
                        section.rect);
}

bool DrawComboBox(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionComboBox& combo,
                  const QWidget* widget) {
  const bool open = combo.state.testFlag(QStyle::State_On) || combo.state.testFlag(QStyle::State_Sunken);
  const bool focus = combo.state.testFlag(QStyle::State_HasFocus) && Enabled(combo);
  const QRect arrow = style.subControlRect(QStyle::CC_ComboBox, &combo, QStyle::SC_ComboBoxArrow, widget);
  const bool drawn = combo.editable ? DrawField(canvas, combo)
                                    : canvas.Stretch(Part::kCombo, StateOf(combo, open), combo.rect);
  if (!drawn || !canvas.Centre(Part::kArrowDown, MarkState(combo), arrow)) return false;
  return combo.editable || !focus || canvas.Stretch(Part::kFocus, PartState::kOn, combo.rect);
}

void DrawComboBoxLabel(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionComboBox& combo,
                       const QWidget* widget) {
  if (combo.editable && combo.currentIcon.isNull()) return;  // the line edit shows the text
  QPainter& painter = canvas.painter();
  QRect rect = style.subControlRect(QStyle::CC_ComboBox, &combo, QStyle::SC_ComboBoxEditField, widget);
  painter.save();
  painter.setClipRect(rect, Qt::IntersectClip);
  if (!combo.currentIcon.isNull()) {
    const QIcon::Mode mode = Enabled(combo) ? QIcon::Normal : QIcon::Disabled;
    QRect icon(QPoint(rect.left(), rect.center().y() - combo.iconSize.height() / 2), combo.iconSize);
    icon = QStyle::visualRect(combo.direction, rect, icon);
    combo.currentIcon.paint(&painter, icon, Qt::AlignCenter, mode);
    const int used = combo.iconSize.width() + kIconGap;
    rect = QStyle::visualRect(combo.direction, rect, rect.adjusted(used, 0, 0, 0));
  }
  if (!combo.editable) {
    const QString text = combo.fontMetrics.elidedText(combo.currentText, Qt::ElideRight, rect.width());
    const auto side = QStyle::visualAlignment(combo.direction, Qt::AlignLeft | Qt::AlignVCenter);
    style.drawItemText(&painter, rect, static_cast<int>(side), combo.palette, Enabled(combo), text,
                       QPalette::ButtonText);
  }
  painter.restore();
}

QRect ComboBoxPart(const QStyleOptionComboBox& combo, QStyle::SubControl part) {
  const QRect& whole = combo.rect;
  const auto placed = [&](const QRect& rect) { return QStyle::visualRect(combo.direction, whole, rect); };
  switch (part) {
    case QStyle::SC_ComboBoxArrow:
      return placed(whole.adjusted(whole.width() - kArrowWidth - kFrame, kFrame, -kFrame, -kFrame));
    case QStyle::SC_ComboBoxEditField:
      return placed(whole.adjusted(combo.editable ? kTypedMargin : kTextMargin, kFrame, -kArrowWidth - kFrame,
                                   -kFrame));
    default:
      return whole;
  }
}

bool DrawSpinBox(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionSpinBox& spin,
                 const QWidget* widget) {
  if (spin.frame && !DrawField(canvas, spin)) return false;
  if (spin.buttonSymbols == QAbstractSpinBox::NoButtons) return true;
  return DrawSpinButton(canvas, style, spin, QStyle::SC_SpinBoxUp, widget) &&
         DrawSpinButton(canvas, style, spin, QStyle::SC_SpinBoxDown, widget);
}

QRect SpinBoxPart(const QStyleOptionSpinBox& spin, QStyle::SubControl part) {
  const QRect& whole = spin.rect;
  const int buttons = spin.buttonSymbols == QAbstractSpinBox::NoButtons ? 0 : kSpinWidth;
  const int start = whole.width() - kFrame - buttons;
  const int inside = whole.height() - 2 * kFrame;
  const auto placed = [&](int left, int top, int width, int height) {
    const QRect rect(whole.left() + left, whole.top() + top, width, height);
    return QStyle::visualRect(spin.direction, whole, rect);
  };
  switch (part) {
    case QStyle::SC_SpinBoxUp:
      return placed(start, kFrame, buttons, inside / 2);
    case QStyle::SC_SpinBoxDown:
      return placed(start, kFrame + inside / 2, buttons, inside - inside / 2);
    case QStyle::SC_SpinBoxEditField:
      return placed(kTypedMargin, kFrame, start - kTypedMargin, inside);
    default:
      return whole;
  }
}

}  // namespace mirellon::skin
