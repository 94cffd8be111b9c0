#include <QIcon>
#include <QStyle>
#include <algorithm>

#include "skin/looks.h"

namespace mirellon::skin {

namespace {

constexpr int kMargin = 8;
constexpr int kMarkWidth = 20;
constexpr int kGap = 8;
constexpr int kArrowWidth = 20;
constexpr int kHeight = 28;
constexpr int kSeparatorHeight = 9;
constexpr int kBeforeKey = 24;
constexpr int kIcon = 18;

bool Enabled(const QStyleOption& option) {
  return option.state.testFlag(QStyle::State_Enabled);
}

bool Chosen(const QStyleOptionMenuItem& item) {
  return item.state.testFlag(QStyle::State_Selected);
}

QColor TextColour(const QStyleOptionMenuItem& item) {
  if (!Enabled(item)) return item.palette.color(QPalette::Disabled, QPalette::Text);
  return item.palette.color(QPalette::Active, Chosen(item) ? QPalette::HighlightedText : QPalette::Text);
}

PartState MarkState(const QStyleOptionMenuItem& item) {
  return StateOf(Enabled(item), Chosen(item), true);
}

int MnemonicFlag(const QStyle& style, const QStyleOption& option, const QWidget* widget) {
  return style.styleHint(QStyle::SH_UnderlineShortcut, &option, widget) != 0 ? Qt::TextShowMnemonic
                                                                             : Qt::TextHideMnemonic;
}

void DrawIcon(const SkinCanvas& canvas, const QStyleOptionMenuItem& item, const QRect& place) {
  QIcon::Mode mode = Chosen(item) ? QIcon::Selected : QIcon::Normal;
  if (!Enabled(item)) mode = QIcon::Disabled;
  QRect rect(0, 0, kIcon, kIcon);
  rect.moveCenter(place.center());
  item.icon.paint(&canvas.painter(), rect, Qt::AlignCenter, mode, item.checked ? QIcon::On : QIcon::Off);
}

bool DrawMark(const SkinCanvas& canvas, const QStyleOptionMenuItem& item, const QRect& place) {
  const bool tickable = item.checkType != QStyleOptionMenuItem::NotCheckable;
  if (!item.icon.isNull()) {
    const QRect panel = place.adjusted(-4, 2, 4, -2);
    if (tickable && item.checked && !Chosen(item) &&
        !canvas.Stretch(Part::kTool, StateOf(Enabled(item), false, true), panel)) {
      return false;
    }
    DrawIcon(canvas, item, place);
    return true;
  }
  if (!tickable || !item.checked) return true;
  const Part mark = item.checkType == QStyleOptionMenuItem::Exclusive ? Part::kDot : Part::kTick;
  return canvas.Centre(mark, MarkState(item), place);
}

}  // namespace

bool DrawMenuItem(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionMenuItem& item,
                  const QWidget* widget) {
  const QRect& whole = item.rect;
  QPainter& painter = canvas.painter();
  if (item.menuItemType == QStyleOptionMenuItem::Separator) {
    const QRect line(whole.left() + kMargin, whole.center().y(), whole.width() - 2 * kMargin, kMargin);
    return canvas.Stretch(Part::kGroup, PartState::kOff, line);
  }
  if (Chosen(item) && !canvas.Stretch(Part::kMenuItem, StateOf(Enabled(item), true, true), whole))
    return false;
  const auto placed = [&](int left, int width) {
    const QRect rect(whole.left() + left, whole.top(), width, whole.height());
    return QStyle::visualRect(item.direction, whole, rect);
  };
  if (!DrawMark(canvas, item, placed(kMargin, kMarkWidth))) return false;
  const int start = kMargin + kMarkWidth + kGap;
  const QRect textPlace = placed(start, whole.width() - start - kArrowWidth - kMargin);
  const auto tab = item.text.indexOf(QLatin1Char('\t'));
  painter.save();
  painter.setFont(item.font);
  painter.setPen(TextColour(item));
  const int flags =
      static_cast<int>(Qt::AlignVCenter) | Qt::TextSingleLine | MnemonicFlag(style, item, widget);
  const auto side = [&](Qt::Alignment edge) {
    return static_cast<int>(QStyle::visualAlignment(item.direction, edge));
  };
  painter.drawText(textPlace, flags | side(Qt::AlignLeft), tab < 0 ? item.text : item.text.left(tab));
  if (tab >= 0) painter.drawText(textPlace, flags | side(Qt::AlignRight), item.text.mid(tab + 1));
  painter.restore();
  if (item.menuItemType != QStyleOptionMenuItem::SubMenu) return true;
  const bool leftward = item.direction == Qt::RightToLeft;
  return canvas.Centre(leftward ? Part::kArrowLeft : Part::kArrowRight, MarkState(item),
                       placed(whole.width() - kArrowWidth - kMargin / 2, kArrowWidth));
}

QSize MenuItemSize(const QStyleOptionMenuItem& item, const QSize& text) {
  if (item.menuItemType == QStyleOptionMenuItem::Separator) return {text.width(), kSeparatorHeight};
  // The menu itself adds the width of the longest key.
  const int key = item.reservedShortcutWidth > 0 || item.text.contains(QLatin1Char('\t')) ? kBeforeKey : 0;
  const int width = kMargin + kMarkWidth + kGap + text.width() + key + kArrowWidth + kMargin;
  return {width, std::max(kHeight, item.fontMetrics.height() + kGap)};
}

bool DrawMenuBarItem(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionMenuItem& item,
                     const QWidget* widget) {
  if (!canvas.Stretch(Part::kMenuBar, PartState::kOn, item.rect)) return false;
  const bool open = Chosen(item) && item.state.testFlag(QStyle::State_Sunken);
  const bool hot = Chosen(item) && !open && Enabled(item);
  if (open && !canvas.Stretch(Part::kMenuItem, PartState::kSelOn, item.rect)) return false;
  if (hot && !canvas.Stretch(Part::kMenuItem, PartState::kSelOff, item.rect)) return false;
  QPalette palette = item.palette;
  const QColor text = palette.color(open ? QPalette::HighlightedText : QPalette::WindowText);
  QPainter& painter = canvas.painter();
  painter.save();
  painter.setPen(Enabled(item) ? text : palette.color(QPalette::Disabled, QPalette::WindowText));
  painter.drawText(item.rect,
                   static_cast<int>(Qt::AlignCenter) | Qt::TextSingleLine | MnemonicFlag(style, item, widget),
                   item.text);
  painter.restore();
  return true;
}

}  // namespace mirellon::skin
