#include "skin/skin_style.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include "skin/looks.h"
#include "skin/skin_canvas.h"
#include "skin/skin_images.h"

namespace mirellon::skin {

namespace {

// These show the focus on themselves, and need no frame around their text; a chosen row is filled.
bool ShowsFocusItself(const QStyleOption& option, const QWidget* widget) {
  const bool row = qobject_cast<const QAbstractItemView*>(widget) != nullptr;
  if (row) return option.state.testFlag(QStyle::State_Selected);
  return qobject_cast<const QAbstractButton*>(widget) != nullptr ||
         qobject_cast<const QComboBox*>(widget) != nullptr ||
         qobject_cast<const QAbstractSlider*>(widget) != nullptr ||
         qobject_cast<const QGroupBox*>(widget) != nullptr;
}

bool DrawArrow(const SkinCanvas& canvas, Part part, const QStyleOption& option) {
  const bool enabled = option.state.testFlag(QStyle::State_Enabled);
  return canvas.Centre(part, StateOf(enabled, false, true), option.rect);
}

// As the base style draws it, in another colour.
QStyleOptionButton WithTextColour(const QStyleOptionButton& button, const QColor& colour) {
  QStyleOptionButton changed = button;
  changed.palette.setColor(QPalette::Active, QPalette::ButtonText, colour);
  changed.palette.setColor(QPalette::Inactive, QPalette::ButtonText, colour);
  return changed;
}

void TrackPointer(QWidget* widget, bool track) {
  if (qobject_cast<QLineEdit*>(widget) != nullptr) widget->setAttribute(Qt::WA_Hover, track);
  if (auto* view = qobject_cast<QAbstractItemView*>(widget))
    view->viewport()->setAttribute(Qt::WA_Hover, track);
}

}  // namespace

SkinStyle::SkinStyle(const Scheme& scheme, const QString& folder)
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))),
      images_(std::make_unique<SkinImages>(scheme, folder)) {}

SkinStyle::~SkinStyle() = default;

void SkinStyle::SetScheme(const Scheme& scheme) {
  images_->SetScheme(scheme);
}

const Scheme& SkinStyle::scheme() const {
  return images_->scheme();
}

// ---- Drawing ----

void SkinStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  if (DrawPrimitive(element, *option, SkinCanvas(*images_, *painter), widget)) return;
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void SkinStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
  if (DrawControl(element, *option, SkinCanvas(*images_, *painter), widget)) return;
  QProxyStyle::drawControl(element, option, painter, widget);
}

void SkinStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const {
  if (DrawComplex(control, *option, SkinCanvas(*images_, *painter), widget)) return;
  QProxyStyle::drawComplexControl(control, option, painter, widget);
}

bool SkinStyle::DrawPrimitive(PrimitiveElement element, const QStyleOption& option, const SkinCanvas& canvas,
                              const QWidget* widget) {
  switch (element) {
    case PE_PanelButtonCommand:
      return DrawPushButton(canvas, option, widget);
    case PE_FrameDefaultButton:
    case PE_FrameStatusBarItem:
    case PE_FrameMenu:  // the panel has its outline
      return true;
    case PE_PanelButtonTool:
      return DrawToolPanel(canvas, option);
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
      return DrawIndicator(canvas, Part::kCheck, option);
    case PE_IndicatorRadioButton:
      return DrawIndicator(canvas, Part::kRadio, option);
    case PE_FrameFocusRect:
      return ShowsFocusItself(option, widget) || canvas.Stretch(Part::kFocus, PartState::kOn, option.rect);
    case PE_PanelLineEdit: {
      const auto* field = qstyleoption_cast<const QStyleOptionFrame*>(&option);
      return field != nullptr && DrawLineEdit(canvas, *field);
    }
    case PE_Frame:
      return DrawListFrame(canvas, option);
    case PE_PanelItemViewItem: {
      const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(&option);
      return item != nullptr && DrawItemPanel(canvas, *item);
    }
    case PE_PanelItemViewRow:
      return true;  // each item draws its own
    case PE_PanelMenu:
      return canvas.Stretch(Part::kMenu, PartState::kOn, option.rect);
    case PE_PanelMenuBar:
      return true;
    case PE_PanelTipLabel:
      return canvas.Stretch(Part::kTip, PartState::kOn, option.rect);
    case PE_PanelStatusBar:
      return canvas.Stretch(Part::kStatus, PartState::kOn, option.rect);
    case PE_IndicatorArrowUp:
      return DrawArrow(canvas, Part::kArrowUp, option);
    case PE_IndicatorArrowDown:
      return DrawArrow(canvas, Part::kArrowDown, option);
    case PE_IndicatorArrowLeft:
      return DrawArrow(canvas, Part::kArrowLeft, option);
    case PE_IndicatorArrowRight:
      return DrawArrow(canvas, Part::kArrowRight, option);
    case PE_IndicatorToolBarSeparator: {
      const bool across = option.state.testFlag(State_Horizontal);
      const QRect line =
          across ? QRect(option.rect.center().x(), option.rect.top() + 4, 1, option.rect.height() - 8)
                 : QRect(option.rect.left() + 4, option.rect.center().y(), option.rect.width() - 8, 1);
      canvas.painter().fillRect(line, option.palette.color(QPalette::Mid));
      return true;
    }
    default:
      return false;
  }
}

bool SkinStyle::DrawControl(ControlElement element, const QStyleOption& option, const SkinCanvas& canvas,
                            const QWidget* widget) const {
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
  const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(&option);
  const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(&option);
  switch (element) {
    case CE_PushButtonLabel: {
      if (button == nullptr || !IsPrimary(widget)) return false;
      const QStyleOptionButton label = WithTextColour(*button, scheme().onAccent);
      QProxyStyle::drawControl(element, &label, &canvas.painter(), widget);
      return true;
    }
    case CE_ComboBoxLabel: {
      const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(&option);
      if (combo == nullptr) return false;
      DrawComboBoxLabel(canvas, *proxy(), *combo, widget);
      return true;
    }
    case CE_ProgressBarGroove:
      return bar != nullptr && DrawProgressGroove(canvas, *bar);
    case CE_ProgressBarContents:
      if (bar == nullptr || !DrawProgressContents(canvas, *bar)) return false;
      if (IsBusy(*bar)) KeepMoving(*bar, widget);
      return true;
    case CE_ProgressBarLabel:
      if (bar == nullptr || !bar->state.testFlag(State_Horizontal)) return false;
      DrawProgressText(canvas, *bar);
      return true;
    case CE_MenuItem:
      return item != nullptr && DrawMenuItem(canvas, *proxy(), *item, widget);
    case CE_MenuBarItem:
      return item != nullptr && DrawMenuBarItem(canvas, *proxy(), *item, widget);
    case CE_MenuBarEmptyArea:
      return canvas.Stretch(Part::kMenuBar, PartState::kOn, option.rect);
    case CE_ToolBar:
      return canvas.Stretch(Part::kToolBar, PartState::kOn, option.rect);
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
      return DrawHeaderSection(canvas, option);
    case CE_Splitter: {
      QRectF line(option.rect);
      const QPointF middle = line.center();
      line.setSize(option.state.testFlag(State_Horizontal) ? QSizeF(2, line.height())
                                                           : QSizeF(line.width(), 2));
      line.moveCenter(middle);
      return canvas.Stretch(Part::kSplit, StateOf(option, option.state.testFlag(State_Sunken)), line);
    }
    default:
      return false;
  }
}

bool SkinStyle::DrawComplex(ComplexControl control, const QStyleOptionComplex& option,
                            const SkinCanvas& canvas, const QWidget* widget) const {
  if (const auto* range = qstyleoption_cast<const QStyleOptionSlider*>(&option)) {
    if (control == CC_Slider) return DrawSlider(canvas, *proxy(), *range, widget);
    return control == CC_ScrollBar && DrawScrollBar(canvas, *proxy(), *range, widget);
  }
  if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(&option)) {
    return DrawComboBox(canvas, *proxy(), *combo, widget);
  }
  if (const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(&option)) {
    return DrawSpinBox(canvas, *proxy(), *spin, widget);
  }
  if (const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(&option)) {
    return DrawGroupBox(canvas, *proxy(), *group, widget);
  }
  const auto* tool = qstyleoption_cast<const QStyleOptionToolButton*>(&option);
  return tool != nullptr && DrawToolButton(canvas, *proxy(), *tool, widget);
}

// The base style has the clock that repaints a busy bar; it is wound up by drawing, if only to where nobody
// looks.
void SkinStyle::KeepMoving(const QStyleOption& bar, const QWidget* widget) const {
  QPixmap unseen(1, 1);
  QPainter painter(&unseen);
  QProxyStyle::drawControl(CE_ProgressBarContents, &bar, &painter, widget);
}

// ---- Following the pointer ----

void SkinStyle::polish(QWidget* widget) {
  QProxyStyle::polish(widget);
  TrackPointer(widget, true);
}

void SkinStyle::unpolish(QWidget* widget) {
  TrackPointer(widget, false);
  QProxyStyle::unpolish(widget);
}

}  // namespace mirellon::skin
