#include "skin/skin_style.h"

#include <QPainter>
#include <QPolygonF>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOption>
#include <algorithm>

#include "skin/icon_engine.h"
#include "skin/schemes.h"

namespace mirellon::skin {

namespace {

constexpr int kRadius = 4;
constexpr int kGroove = 4;
constexpr int kHandle = 14;

QColor Mixed(const QColor& a, const QColor& b, int percentOfB) {
  const auto mix = [percentOfB](int x, int y) { return (x * (100 - percentOfB) + y * percentOfB) / 100; };
  return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

QPalette::ColorGroup GroupOf(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_Enabled) ? QPalette::Active : QPalette::Disabled;
}

void DrawRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& fill,
                 const QColor& line) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(fill);
  painter.setPen(line.isValid() ? QPen(line, 1) : QPen(Qt::NoPen));
  painter.drawRoundedRect(line.isValid() ? rect.adjusted(0.5, 0.5, -0.5, -0.5) : rect, radius, radius);
}

bool IsPrimary(const QWidget* widget) {
  return widget != nullptr && widget->property(kPrimaryProperty).toBool();
}

void DrawPushButton(const QStyleOption& option, QPainter& painter, const QWidget* widget) {
  const QPalette& palette = option.palette;
  const auto group = GroupOf(option);
  const bool filled = IsPrimary(widget) && group == QPalette::Active;
  QColor fill = palette.color(group, filled ? QPalette::Highlight : QPalette::Button);
  QColor line = filled ? QColor() : palette.color(QPalette::Mid);
  const QColor text = palette.color(QPalette::ButtonText);
  if (option.state.testFlag(QStyle::State_Sunken) || option.state.testFlag(QStyle::State_On)) {
    fill = Mixed(fill, filled ? QColor(Qt::black) : text, 15);
  } else if (option.state.testFlag(QStyle::State_MouseOver) && group == QPalette::Active) {
    fill = Mixed(fill, filled ? QColor(Qt::white) : text, 8);
  }
  if (option.state.testFlag(QStyle::State_HasFocus) && group == QPalette::Active) {
    line = filled ? text : palette.color(QPalette::Highlight);
  }
  painter.save();
  DrawRounded(painter, option.rect, kRadius, fill, line);
  painter.restore();
}

void DrawSlider(const QStyle& style, const QStyleOptionSlider& option, QPainter& painter,
                const QWidget* widget) {
  const QPalette& palette = option.palette;
  const auto group = GroupOf(option);
  const QRect handle = style.subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, widget);
  const QPointF middle = QRectF(handle).center();
  const QRectF groove(option.rect.left() + 2.0, middle.y() - kGroove / 2.0, option.rect.width() - 4.0,
                      kGroove);
  painter.save();
  DrawRounded(painter, groove, kGroove / 2.0, palette.color(QPalette::Mid), QColor());
  const bool active = group == QPalette::Active;
  if (active) {
    QRectF done = groove;
    done.setRight(middle.x());
    DrawRounded(painter, done, kGroove / 2.0, palette.color(QPalette::Highlight), QColor());
  }
  QColor fill = palette.color(group, active ? QPalette::Text : QPalette::Mid);
  if (option.state.testFlag(QStyle::State_HasFocus) && active) {
    DrawRounded(painter, QRectF(middle.x() - kHandle / 2.0, middle.y() - kHandle / 2.0, kHandle, kHandle),
                kHandle / 2.0, palette.color(QPalette::Highlight), QColor());
  }
  constexpr qreal kKnob = kHandle - 4;
  DrawRounded(painter, QRectF(middle.x() - kKnob / 2, middle.y() - kKnob / 2, kKnob, kKnob), kKnob / 2, fill,
              QColor());
  painter.restore();
}

// A radio button's or check box's own square.
void DrawIndicator(QStyle::PrimitiveElement element, const QStyleOption& option, QPainter& painter) {
  const QPalette& palette = option.palette;
  const auto group = GroupOf(option);
  const bool active = group == QPalette::Active;
  const bool on = option.state.testFlag(QStyle::State_On);
  const bool round = element == QStyle::PE_IndicatorRadioButton;
  const QRectF rect = QRectF(option.rect).adjusted(1, 1, -1, -1);
  const qreal radius = round ? rect.width() / 2 : 3;
  const QColor fill = on && active ? palette.color(QPalette::Highlight) : palette.color(QPalette::Base);
  const bool marked = option.state.testFlag(QStyle::State_HasFocus) && active;
  QColor line = palette.color(marked ? QPalette::Text : QPalette::Mid);
  if (active && !marked) line = Mixed(line, palette.color(QPalette::Text), 25);
  painter.save();
  DrawRounded(painter, rect, radius, fill, on && active && !marked ? fill : line);
  const QColor mark = palette.color(group, active ? QPalette::HighlightedText : QPalette::Text);
  if (on && round) {
    const qreal inset = rect.width() * 0.32;
    DrawRounded(painter, rect.adjusted(inset, inset, -inset, -inset), rect.width(), mark, QColor());
  } else if (on) {
    painter.setPen(QPen(mark, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const auto at = [&rect](qreal x, qreal y) {
      return QPointF(rect.left() + x * rect.width(), rect.top() + y * rect.height());
    };
    painter.drawPolyline(QPolygonF({at(0.24, 0.52), at(0.43, 0.72), at(0.78, 0.30)}));
  }
  painter.restore();
}

void DrawScrollBar(const QStyle& style, const QStyleOptionSlider& option, QPainter& painter,
                   const QWidget* widget) {
  painter.fillRect(option.rect, option.palette.color(QPalette::Window));
  if (option.maximum <= option.minimum) return;
  const QRectF knob = style.subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, widget);
  const bool hot =
      option.state.testFlag(QStyle::State_MouseOver) || option.state.testFlag(QStyle::State_Sunken);
  const QColor grey = option.palette.color(QPalette::Mid);
  painter.save();
  DrawRounded(painter, knob.adjusted(3, 2, -3, -2), 3,
              hot ? Mixed(grey, option.palette.color(QPalette::Text), 30) : grey, QColor());
  painter.restore();
}

// Without arrows: the knob has the whole length.
QRect ScrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part) {
  const bool upright = bar.orientation == Qt::Vertical;
  const int length = upright ? bar.rect.height() : bar.rect.width();
  const int range = bar.maximum - bar.minimum;
  constexpr int kLeastKnob = 32;
  int knob = length;
  if (range > 0) {
    knob = static_cast<int>(static_cast<qint64>(bar.pageStep) * length / (range + bar.pageStep));
    knob = std::min(std::max(knob, kLeastKnob), length);
  }
  const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                    length - knob, bar.upsideDown);
  const auto span = [&](int first, int size) {
    const QRect rect =
        upright ? QRect(0, first, bar.rect.width(), size) : QRect(first, 0, size, bar.rect.height());
    return QStyle::visualRect(bar.direction, bar.rect, rect.translated(bar.rect.topLeft()));
  };
  switch (part) {
    case QStyle::SC_ScrollBarSlider:
      return span(start, knob);
    case QStyle::SC_ScrollBarSubPage:
      return span(0, start);
    case QStyle::SC_ScrollBarAddPage:
      return span(start + knob, length - start - knob);
    case QStyle::SC_ScrollBarGroove:
      return bar.rect;
    default:
      return {};
  }
}

void DrawProgress(QStyle::ControlElement element, const QStyleOptionProgressBar& option, QPainter& painter) {
  const QRectF rect = option.rect;
  const qreal radius = std::min(rect.height(), rect.width()) / 2;
  painter.save();
  if (element == QStyle::CE_ProgressBarGroove) {
    DrawRounded(painter, rect, radius, option.palette.color(QPalette::Mid), QColor());
  } else if (option.maximum > option.minimum && option.progress > option.minimum) {
    QRectF done = rect;
    done.setWidth(std::max(
        rect.width() * (option.progress - option.minimum) / (option.maximum - option.minimum), 2 * radius));
    DrawRounded(painter, done, radius, option.palette.color(QPalette::Highlight), QColor());
  }
  painter.restore();
}

}  // namespace

SkinStyle::SkinStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void SkinStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
  if (element == PE_PanelButtonCommand) return DrawPushButton(*option, *painter, widget);
  if (element == PE_IndicatorRadioButton || element == PE_IndicatorCheckBox) {
    return DrawIndicator(element, *option, *painter);
  }
  // Groups are told apart by their titles and the space between them.
  if (element == PE_FrameGroupBox || element == PE_PanelStatusBar || element == PE_FrameStatusBarItem) return;
  if (element == PE_FrameFocusRect && qobject_cast<const QPushButton*>(widget) != nullptr) return;
  QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void SkinStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const {
  const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control == CC_Slider && slider != nullptr && slider->orientation == Qt::Horizontal) {
    return DrawSlider(*this, *slider, *painter, widget);
  }
  if (control == CC_ScrollBar && slider != nullptr) return DrawScrollBar(*this, *slider, *painter, widget);
  if (control == CC_GroupBox) {
    painter->save();
    QFont font = painter->font();
    font.setWeight(QFont::DemiBold);
    painter->setFont(font);
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    painter->restore();
    return;
  }
  QProxyStyle::drawComplexControl(control, option, painter, widget);
}

void SkinStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
  const QPalette& palette = option->palette;
  if (element == CE_ToolBar || element == CE_MenuBarEmptyArea) {
    painter->fillRect(option->rect, palette.color(QPalette::Window));
    return;
  }
  if (element == CE_PushButtonLabel && IsPrimary(widget)) {
    if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
      QStyleOptionButton filled = *button;
      filled.palette.setColor(QPalette::Active, QPalette::ButtonText,
                              palette.color(QPalette::HighlightedText));
      filled.palette.setColor(QPalette::Inactive, QPalette::ButtonText,
                              palette.color(QPalette::HighlightedText));
      return QProxyStyle::drawControl(element, &filled, painter, widget);
    }
  }
  const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option);
  const bool progress = element == CE_ProgressBarGroove || element == CE_ProgressBarContents;
  if (progress && bar != nullptr && bar->maximum > bar->minimum) return DrawProgress(element, *bar, *painter);
  QProxyStyle::drawControl(element, option, painter, widget);
  if (element == CE_MenuBarItem && !option->state.testFlag(State_Selected)) {
    // The base draws a line below each item.
    painter->fillRect(QRect(option->rect.left(), option->rect.bottom(), option->rect.width(), 1),
                      palette.color(QPalette::Window));
  }
}

QRect SkinStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                const QWidget* widget) const {
  const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control == CC_ScrollBar && slider != nullptr) return ScrollBarPart(*slider, part);
  QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
  if (control == CC_GroupBox && (part == SC_GroupBoxContents || part == SC_GroupBoxLabel)) {
    rect.setLeft(option->rect.left());
    rect.setRight(option->rect.right());
  }
  return rect;
}

int SkinStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
    case PM_SliderThickness:
    case PM_SliderControlThickness:
    case PM_SliderLength:
      return kHandle;
    case PM_ScrollBarExtent:
      return 12;
    case PM_ScrollBarSliderMin:
      return 32;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
      return 16;
    case PM_ToolBarIconSize:
      return 20;
    case PM_ToolBarItemSpacing:
      return 4;
    default:
      return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

int SkinStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* returned) const {
  if (hint == SH_Slider_AbsoluteSetButtons) return Qt::LeftButton;  // a click brings the knob there
  if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
  if (hint == SH_EtchDisabledText || hint == SH_DitherDisabledText) return 0;
  return QProxyStyle::styleHint(hint, option, widget, returned);
}

QIcon SkinStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
  switch (icon) {
    case SP_MessageBoxInformation:
      return StrokeIcon(QStringLiteral(":/icons/message-information.svg"));
    case SP_MessageBoxQuestion:
      return StrokeIcon(QStringLiteral(":/icons/message-question.svg"));
    case SP_MessageBoxWarning:
      return StrokeIcon(QStringLiteral(":/icons/message-warning.svg"));
    case SP_MessageBoxCritical:
      return StrokeIcon(QStringLiteral(":/icons/message-error.svg"));
    default:
      return QProxyStyle::standardIcon(icon, option, widget);
  }
}

void ApplyScheme(QApplication& application, int number) {
  if (application.property("mirellonStyled").isNull()) {
    QApplication::setStyle(new SkinStyle);  // the application's now
    application.setProperty("mirellonStyled", true);
  }
  QApplication::setPalette(PaletteOf(SchemeOf(number)));
}

}  // namespace mirellon::skin
