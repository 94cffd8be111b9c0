// How each kind of control is put together from images. A function is false when an image is missing; the
// control is then the base style's to draw.
#pragma once

#include <QProxyStyle>
#include <QStyleOption>

#include "skin/skin_canvas.h"

namespace mirellon::skin {

// ---- Buttons and groups (button_looks.cpp) ----

// Whether it is the window's one filled button.
[[nodiscard]] bool IsPrimary(const QWidget* widget);

bool DrawPushButton(const SkinCanvas& canvas, const QStyleOption& button, const QWidget* widget);
bool DrawIndicator(const SkinCanvas& canvas, Part part, const QStyleOption& indicator);
// With its label.
bool DrawToolButton(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionToolButton& button,
                    const QWidget* widget);
bool DrawToolPanel(const SkinCanvas& canvas, const QStyleOption& button);
// A title, and a line from its end on.
bool DrawGroupBox(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionGroupBox& group,
                  const QWidget* widget);
QRect GroupBoxPart(const QStyle& style, const QStyleOptionGroupBox& group, QStyle::SubControl part,
                   const QWidget* widget);

// ---- Fields and lists (field_looks.cpp) ----

bool DrawLineEdit(const SkinCanvas& canvas, const QStyleOptionFrame& field);
bool DrawListFrame(const SkinCanvas& canvas, const QStyleOption& frame);
bool DrawItemPanel(const SkinCanvas& canvas, const QStyleOptionViewItem& item);
bool DrawHeaderSection(const SkinCanvas& canvas, const QStyleOption& section);
bool DrawComboBox(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionComboBox& combo,
                  const QWidget* widget);
void DrawComboBoxLabel(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionComboBox& combo,
                       const QWidget* widget);
QRect ComboBoxPart(const QStyleOptionComboBox& combo, QStyle::SubControl part);
bool DrawSpinBox(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionSpinBox& spin,
                 const QWidget* widget);
QRect SpinBoxPart(const QStyleOptionSpinBox& spin, QStyle::SubControl part);

// ---- Sliders, scroll bars, progress bars (range_looks.cpp) ----

bool DrawSlider(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionSlider& slider,
                const QWidget* widget);
bool DrawScrollBar(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionSlider& bar,
                   const QWidget* widget);
// Without arrows: the knob has the whole length.
QRect ScrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part);
bool DrawProgressGroove(const SkinCanvas& canvas, const QStyleOptionProgressBar& bar);
// A busy bar, of which nobody knows the end, is drawn as it is at the moment.
[[nodiscard]] bool IsBusy(const QStyleOptionProgressBar& bar);
bool DrawProgressContents(const SkinCanvas& canvas, const QStyleOptionProgressBar& bar);
// In two colours, where the filled part reaches under it.
void DrawProgressText(const SkinCanvas& canvas, const QStyleOptionProgressBar& bar);

// ---- Menus (menu_looks.cpp) ----

bool DrawMenuItem(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionMenuItem& item,
                  const QWidget* widget);
QSize MenuItemSize(const QStyleOptionMenuItem& item, const QSize& text);
bool DrawMenuBarItem(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionMenuItem& item,
                     const QWidget* widget);

}  // namespace mirellon::skin
