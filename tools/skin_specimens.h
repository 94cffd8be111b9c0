// One of each control, in every state that it can be in, for pictures and tests of the skin.
#pragma once

#include <QProxyStyle>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirellon::specimens {

// The states that otherwise only a pointer, a key or a window in front brings about.
enum class Pose { kNormal, kHot, kFocused, kPressed, kDisabled };

struct Specimen {
  std::string name;
  bool focusable;
  bool hasText;
  std::vector<Pose> poses;
  // With that text on it, of a size of its own; without a parent.
  std::function<std::unique_ptr<QWidget>(const QString& text)> make;
};

[[nodiscard]] const std::vector<Specimen>& Specimens();

// Puts the widget and what is in it into the pose; only a PosingStyle shows it.
void SetPose(QWidget& widget, Pose pose);

// Draws with another style, with the states of the pose added to those that the widgets have.
class PosingStyle : public QProxyStyle {
 public:
  // Takes the style.
  explicit PosingStyle(QStyle* style) : QProxyStyle(style) {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
};

// The widget alone, on the window's colour, so many device pixels a unit.
[[nodiscard]] QImage Picture(QWidget& widget, qreal scale);

}  // namespace mirellon::specimens
