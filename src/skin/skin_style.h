// How the standard controls look.
#pragma once

#include <QProxyStyle>
#include <memory>

#include "skin/schemes.h"

namespace mirellon::skin {

class SkinImages;
class SkinCanvas;

// The dynamic property that makes a push button the window's one filled button.
inline constexpr const char* kPrimaryProperty = "primary";

// Controls from skin images in a scheme's colours. What has no image is drawn by the base style.
class SkinStyle : public QProxyStyle {
 public:
  // The folder holds the images ("CHECK_SELON.svg" and so on).
  explicit SkinStyle(const Scheme& scheme, const QString& folder = QStringLiteral(":/skin"));
  ~SkinStyle() override;

  // Whoever calls this has everything repainted.
  void SetScheme(const Scheme& scheme);
  [[nodiscard]] const Scheme& scheme() const;

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  QRect subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const override;
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                       const QWidget* widget) const override;
  QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                         const QWidget* widget) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override;
  QIcon standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;
  using QProxyStyle::polish;
  void polish(QWidget* widget) override;
  using QProxyStyle::unpolish;
  void unpolish(QWidget* widget) override;

 private:
  static bool DrawPrimitive(PrimitiveElement element, const QStyleOption& option, const SkinCanvas& canvas,
                            const QWidget* widget);
  bool DrawControl(ControlElement element, const QStyleOption& option, const SkinCanvas& canvas,
                   const QWidget* widget) const;
  bool DrawComplex(ComplexControl control, const QStyleOptionComplex& option, const SkinCanvas& canvas,
                   const QWidget* widget) const;
  void KeepMoving(const QStyleOption& bar, const QWidget* widget) const;

  std::unique_ptr<SkinImages> images_;  // a cache, filled while drawing
};

}  // namespace mirellon::skin
