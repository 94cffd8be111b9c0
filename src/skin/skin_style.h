// How the standard controls look.
#pragma once

#include <QApplication>
#include <QProxyStyle>

namespace mirellon::skin {

// Flat controls in the scheme's greys; what is active has the accent.
class SkinStyle : public QProxyStyle {
 public:
  SkinStyle();

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override;
  QIcon standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;
};

// The dynamic property that makes a push button the window's one filled button.
inline constexpr const char* kPrimaryProperty = "primary";

// Gives the application the style (once) and the colours of the scheme of that number.
void ApplyScheme(QApplication& application, int number);

}  // namespace mirellon::skin
