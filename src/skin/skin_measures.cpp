// Where the parts of the controls lie and how large they are, on a grid of 4 pixels.
#include <QAbstractItemView>
#include <QSlider>
#include <QStyleOption>
#include <QTextEdit>
#include <algorithm>

#include "skin/looks.h"
#include "skin/skin_style.h"

namespace mirellon::skin {

namespace {

constexpr int kGrid = 4;
constexpr int kControlHeight = 28;
constexpr int kItemHeight = 24;
constexpr int kIndicator = 20;
constexpr int kLabelGap = 6;   // the drawing leaves 2 more
constexpr int kTextInset = 4;  // the line edit has 2 more

int UpToGrid(int length) {
  return (length + kGrid - 1) / kGrid * kGrid;
}

QSize AsHighAsAControl(QSize size) {
  size.setHeight(UpToGrid(std::max(size.height(), kControlHeight)));
  return size;
}

}  // namespace

QRect SkinStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
  switch (element) {
    case SE_LineEditContents: {
      const auto* field = qstyleoption_cast<const QStyleOptionFrame*>(option);
      if (field == nullptr || field->lineWidth <= 0) break;
      return visualRect(option->direction, option->rect,
                        option->rect.adjusted(kTextInset, 2, -kTextInset, -2));
    }
    case SE_CheckBoxContents:
    case SE_RadioButtonContents:
      return visualRect(option->direction, option->rect,
                        option->rect.adjusted(kIndicator + kLabelGap, 0, 0, 0));
    case SE_ItemViewItemFocusRect:
    case SE_ProgressBarContents:
    case SE_ProgressBarGroove:
    case SE_ProgressBarLabel:
      return option->rect;
    default:
      break;
  }
  return QProxyStyle::subElementRect(element, option, widget);
}

QRect SkinStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                const QWidget* widget) const {
  if (control == CC_ScrollBar) {
    if (const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option))
      return ScrollBarPart(*bar, part);
  } else if (control == CC_GroupBox) {
    const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
    if (group != nullptr) return GroupBoxPart(*this, *group, part, widget);
  } else if (control == CC_ComboBox) {
    if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option))
      return ComboBoxPart(*combo, part);
  } else if (control == CC_SpinBox) {
    if (const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option))
      return SpinBoxPart(*spin, part);
  }
  QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
  const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control == CC_Slider && part == SC_SliderHandle && slider != nullptr &&
      slider->tickPosition == QSlider::NoTicks) {
    // The base style's is half a pixel off, and would lose its outline on one side.
    const QRect& whole = slider->rect;
    if (slider->orientation == Qt::Horizontal) {
      rect.moveTop(whole.top() + (whole.height() - rect.height()) / 2);
    } else {
      rect.moveLeft(whole.left() + (whole.width() - rect.width()) / 2);
    }
  }
  return rect;
}

QSize SkinStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                  const QWidget* widget) const {
  if (type == CT_MenuItem) {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (item != nullptr) return MenuItemSize(*item, contents);
  }
  if (type == CT_MenuBarItem) return AsHighAsAControl(contents + QSize(16, 8));
  if (type == CT_ToolButton)
    return (contents + QSize(8, 8)).expandedTo(QSize(kControlHeight, kControlHeight));
  QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
  switch (type) {
    case CT_PushButton:
      return AsHighAsAControl(size + QSize(16, 0));
    case CT_LineEdit:
      return AsHighAsAControl(size);
    case CT_SpinBox:
      size.setHeight(contents.height());  // of its line edit, which has room enough
      return AsHighAsAControl(size);
    case CT_ComboBox:
      return AsHighAsAControl(size + QSize(8, 0));
    case CT_HeaderSection:
    case CT_ItemViewItem:
      size.setHeight(std::max(size.height(), kItemHeight));
      return size;
    default:
      return size;
  }
}

int SkinStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
    case PM_SliderThickness:
    case PM_SliderControlThickness:
    case PM_SliderLength:
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
    case PM_ToolBarIconSize:
      return kIndicator;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
      return kLabelGap;
    case PM_ScrollBarExtent:
      return 12;
    case PM_ScrollBarSliderMin:
      return 32;
    case PM_ToolBarItemSpacing:
    case PM_MenuVMargin:
    case PM_MenuHMargin:
    case PM_MenuBarHMargin:
      return kGrid;
    case PM_FocusFrameHMargin:  // beside the text of a list's row
    case PM_HeaderMargin:
      return 6;
    case PM_MenuPanelWidth:
      return 1;
    case PM_SplitterWidth:
      return 8;
    case PM_ToolTipLabelFrameWidth:
      return 6;
    case PM_DefaultFrameWidth:
      // Room for the frame that shows the focus.
      if (qobject_cast<const QAbstractScrollArea*>(widget) != nullptr) return 2;
      break;
    default:
      break;
  }
  return QProxyStyle::pixelMetric(metric, option, widget);
}

int SkinStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returned) const {
  switch (hint) {
    case SH_Slider_AbsoluteSetButtons:
      return Qt::LeftButton;  // a click brings the knob there
    case SH_DrawMenuBarSeparator:
      return 1;  // not drawn: what follows it stands at the other end
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_ComboBox_Popup:  // a list below, not a menu over it
      return 0;
    default:
      return QProxyStyle::styleHint(hint, option, widget, returned);
  }
}

}  // namespace mirellon::skin
