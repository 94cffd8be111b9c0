#include "ui/clipped_texts.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyleOption>
#include <QTabBar>

namespace mirellon::test {

namespace {

// What a text takes, and what it has.
struct Fit {
  QString text;
  QSize needed;
  QSize given;
};

// Labels and drawing add up a line's height a little differently where fonts mix: less than a fifth of a line
// is blank anyway.
bool Clipped(const Fit& fit, int lineHeight) {
  return fit.needed.width() > fit.given.width() || fit.needed.height() > fit.given.height() + lineHeight / 5;
}

// As drawing lays it out, other fonts' characters among it; in lines of that width when it is given.
QSize SizeOf(const QFont& font, const QString& text, int wrapAt = 0) {
  const QRect space(0, 0, wrapAt > 0 ? wrapAt : QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
  const int flags = static_cast<int>(Qt::AlignTop | Qt::AlignLeft) | Qt::TextShowMnemonic;
  return QFontMetrics(font).boundingRect(space, wrapAt > 0 ? flags | Qt::TextWordWrap : flags, text).size();
}

QSize SizeOf(const QWidget& widget, const QString& text) {
  return SizeOf(widget.font(), text);
}

Fit OfLabel(const QLabel& label) {
  const QSize given = label.contentsRect().size();
  return {label.text(), SizeOf(label.font(), label.text(), label.wordWrap() ? given.width() : 0), given};
}

Fit OfButton(const QAbstractButton& button) {
  QStyleOptionButton option;
  option.initFrom(&button);
  option.text = button.text();
  QStyle::SubElement part = QStyle::SE_PushButtonContents;
  if (qobject_cast<const QCheckBox*>(&button) != nullptr) part = QStyle::SE_CheckBoxContents;
  if (qobject_cast<const QRadioButton*>(&button) != nullptr) part = QStyle::SE_RadioButtonContents;
  return {button.text(), SizeOf(button, button.text()),
          button.style()->subElementRect(part, &option, &button).size()};
}

Fit OfGroup(const QGroupBox& group) {
  QFont bold = group.font();  // as titles are drawn
  bold.setWeight(QFont::DemiBold);
  return {group.title(), SizeOf(bold, group.title()), group.size()};
}

// The longest of its texts.
Fit OfList(const QComboBox& list) {
  QStyleOptionComboBox option;
  option.initFrom(&list);
  option.editable = list.isEditable();
  const QSize given =
      list.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &list).size();
  Fit worst{list.currentText(), {}, given};
  for (int i = 0; i < list.count(); ++i) {
    const QSize needed = SizeOf(list, list.itemText(i));
    if (needed.width() > worst.needed.width()) worst = {list.itemText(i), needed, given};
  }
  return worst;
}

Fit OfField(const QLineEdit& field) {
  constexpr int kInside = 2;  // on either side of a field's text
  const QMargins around = field.textMargins();
  QStyleOptionFrame option;
  option.initFrom(&field);
  option.lineWidth = field.hasFrame() ? field.style()->pixelMetric(QStyle::PM_DefaultFrameWidth) : 0;
  const QRect inside = field.style()->subElementRect(QStyle::SE_LineEditContents, &option, &field);
  return {field.text(), SizeOf(field, field.text()),
          inside.marginsRemoved(around).adjusted(kInside, 0, -kInside, 0).size()};
}

QList<Fit> OfMenuBar(const QMenuBar& bar) {
  QList<Fit> fits;
  for (QAction* action : bar.actions()) {
    if (action->isSeparator()) continue;
    const QRect place = bar.actionGeometry(action) & bar.rect();
    fits.append({action->text(), SizeOf(bar, action->text()), place.size()});
  }
  return fits;
}

QList<Fit> OfTabs(const QTabBar& bar) {
  QList<Fit> fits;
  for (int i = 0; i < bar.count(); ++i) {
    fits.append({bar.tabText(i), SizeOf(bar, bar.tabText(i)), (bar.tabRect(i) & bar.rect()).size()});
  }
  return fits;
}

QList<Fit> FitsOf(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
    const bool shortens = label->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
    return shortens || label->text().isEmpty() ? QList<Fit>() : QList<Fit>{OfLabel(*label)};
  }
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
    const bool picture = !button->icon().isNull() && qobject_cast<const QPushButton*>(button) == nullptr;
    return picture || button->text().isEmpty() ? QList<Fit>() : QList<Fit>{OfButton(*button)};
  }
  if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) return {OfGroup(*group)};
  if (const auto* list = qobject_cast<const QComboBox*>(&widget)) return {OfList(*list)};
  if (const auto* field = qobject_cast<const QLineEdit*>(&widget)) return {OfField(*field)};
  if (const auto* bar = qobject_cast<const QMenuBar*>(&widget)) return OfMenuBar(*bar);
  if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) return OfTabs(*tabs);
  return {};
}

// The content of a scroll area may be larger than what is seen of it, where there is a bar to move it.
bool Scrolls(const QWidget& content) {
  const QWidget* viewport = content.parentWidget();
  const auto* area =
      viewport == nullptr ? nullptr : qobject_cast<const QAbstractScrollArea*>(viewport->parentWidget());
  if (area == nullptr || area->viewport() != viewport) return false;
  const bool wide = content.width() <= viewport->width() || area->horizontalScrollBar()->isVisible();
  const bool high = content.height() <= viewport->height() || area->verticalScrollBar()->isVisible();
  return wide && high;
}

// Whether one of the widgets around it cuts a piece off.
bool CutOff(const QWidget& widget) {
  QRect place = widget.geometry();
  for (const QWidget* around = &widget; !around->isWindow(); around = around->parentWidget()) {
    if (Scrolls(*around)) return false;
    if (!around->parentWidget()->rect().contains(place)) return true;
    place.translate(around->parentWidget()->pos());
  }
  return false;
}

QString Line(const QWidget& widget, const Fit& fit, const char* what) {
  return QStringLiteral("%1 \"%2\" %3: %4x%5 in %6x%7")
      .arg(widget.objectName().isEmpty() ? QString::fromLatin1(widget.metaObject()->className())
                                         : widget.objectName(),
           fit.text, QString::fromLatin1(what))
      .arg(fit.needed.width())
      .arg(fit.needed.height())
      .arg(fit.given.width())
      .arg(fit.given.height());
}

}  // namespace

QStringList ClippedTexts(QWidget& window) {
  QStringList lines;
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    if (!widget->isVisibleTo(&window) || widget->window() != window.window()) continue;
    for (const Fit& fit : FitsOf(*widget)) {
      if (Clipped(fit, widget->fontMetrics().height())) lines.append(Line(*widget, fit, "is clipped"));
      if (CutOff(*widget)) lines.append(Line(*widget, fit, "lies outside"));
    }
  }
  return lines;
}

}  // namespace mirellon::test
