#include "skin/schemes.h"

#include <array>

namespace mirellon::skin {

const Scheme& SchemeOf(int number) {
  static const std::array<Scheme, 3> kSchemes{{
      {kSchemeLight, 190, QColor(236, 236, 236), QColor(246, 246, 246), QColor(255, 255, 255),
       QColor(196, 196, 196), QColor(28, 28, 28), QColor(128, 128, 128), QColor(26, 107, 186),
       QColor(255, 255, 255)},
      {kSchemeDark, 35, QColor(46, 46, 46), QColor(54, 54, 54), QColor(36, 36, 36), QColor(78, 78, 78),
       QColor(214, 214, 214), QColor(128, 128, 128), QColor(58, 134, 208), QColor(255, 255, 255)},
      {kSchemeContrast, 35, QColor(16, 16, 16), QColor(24, 24, 24), QColor(0, 0, 0), QColor(128, 128, 128),
       QColor(255, 255, 255), QColor(150, 150, 150), QColor(84, 168, 255), QColor(0, 0, 0)},
  }};
  for (const Scheme& scheme : kSchemes) {
    if (scheme.number == number) return scheme;
  }
  return kSchemes[1];
}

QPalette PaletteOf(const Scheme& scheme) {
  QPalette palette;
  const auto set = [&](QPalette::ColorRole role, const QColor& colour) { palette.setColor(role, colour); };
  set(QPalette::Window, scheme.window);
  set(QPalette::WindowText, scheme.text);
  set(QPalette::Base, scheme.field);
  set(QPalette::AlternateBase, scheme.raised);
  set(QPalette::Text, scheme.text);
  set(QPalette::Button, scheme.raised);
  set(QPalette::ButtonText, scheme.text);
  set(QPalette::BrightText, scheme.text);
  set(QPalette::ToolTipBase, scheme.raised);
  set(QPalette::ToolTipText, scheme.text);
  set(QPalette::PlaceholderText, scheme.quietText);
  set(QPalette::Highlight, scheme.accent);
  set(QPalette::HighlightedText, scheme.onAccent);
  set(QPalette::Link, scheme.accent);
  set(QPalette::LinkVisited, scheme.accent);
  set(QPalette::Light, scheme.raised.lighter(110));
  set(QPalette::Midlight, scheme.raised);
  set(QPalette::Mid, scheme.line);
  set(QPalette::Dark, scheme.line);
  set(QPalette::Shadow, scheme.window.darker(150));
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, scheme.quietText);
  }
  palette.setColor(QPalette::Disabled, QPalette::Highlight, scheme.line);
  palette.setColor(QPalette::Disabled, QPalette::HighlightedText, scheme.quietText);
  return palette;
}

}  // namespace mirellon::skin
