#include "skin/schemes.h"

#include <array>
#include <utility>

namespace mirellon::skin {

namespace {

QColor Grey(int level) {
  return {level, level, level};
}

Scheme Light() {
  Scheme s{};
  s.number = kSchemeLight;
  s.view = 190;
  s.window = Grey(236);
  s.raised = Grey(248);
  s.field = Grey(255);
  s.line = Grey(198);
  s.edge = Grey(130);
  s.surface = Grey(250);
  s.surfaceHot = Grey(255);
  s.surfaceDown = Grey(222);
  s.text = Grey(28);
  s.hintText = Grey(96);
  s.quietText = Grey(120);
  s.accent = QColor(26, 104, 180);
  s.accentHot = QColor(34, 116, 196);
  s.accentDown = QColor(18, 84, 150);
  s.accentLine = QColor(26, 104, 180);
  s.onAccent = Grey(255);
  return s;
}

Scheme Dark() {
  Scheme s{};
  s.number = kSchemeDark;
  s.dark = true;
  s.view = 35;
  s.window = Grey(46);
  s.raised = Grey(56);
  s.field = Grey(34);
  s.line = Grey(78);
  s.edge = Grey(122);
  s.surface = Grey(64);
  s.surfaceHot = Grey(76);
  s.surfaceDown = Grey(52);
  s.text = Grey(222);
  s.hintText = Grey(164);
  s.quietText = Grey(136);
  s.accent = QColor(36, 110, 186);
  s.accentHot = QColor(44, 118, 194);
  s.accentDown = QColor(28, 90, 156);
  s.accentLine = QColor(96, 168, 236);
  s.onAccent = Grey(255);
  return s;
}

Scheme Contrast() {
  Scheme s{};
  s.number = kSchemeContrast;
  s.dark = true;
  s.view = 35;
  s.window = Grey(16);
  s.raised = Grey(26);
  s.field = Grey(0);
  s.line = Grey(112);
  s.edge = Grey(190);
  s.surface = Grey(38);
  s.surfaceHot = Grey(58);
  s.surfaceDown = Grey(24);
  s.text = Grey(255);
  s.hintText = Grey(204);
  s.quietText = Grey(156);
  s.accent = QColor(92, 172, 255);
  s.accentHot = QColor(128, 192, 255);
  s.accentDown = QColor(64, 144, 228);
  s.accentLine = QColor(92, 172, 255);
  s.onAccent = Grey(0);
  return s;
}

void SetAllGroups(QPalette& palette, const Scheme& scheme) {
  using Entry = std::pair<QPalette::ColorRole, QColor>;
  const std::array entries{Entry{QPalette::Window, scheme.window},
                           Entry{QPalette::WindowText, scheme.text},
                           Entry{QPalette::Base, scheme.field},
                           Entry{QPalette::AlternateBase, scheme.raised},
                           Entry{QPalette::Text, scheme.text},
                           Entry{QPalette::Button, scheme.surface},
                           Entry{QPalette::ButtonText, scheme.text},
                           Entry{QPalette::BrightText, scheme.text},
                           Entry{QPalette::ToolTipBase, scheme.raised},
                           Entry{QPalette::ToolTipText, scheme.text},
                           Entry{QPalette::PlaceholderText, scheme.hintText},
                           Entry{QPalette::Highlight, scheme.accent},
                           Entry{QPalette::HighlightedText, scheme.onAccent},
                           Entry{QPalette::Link, scheme.accentLine},
                           Entry{QPalette::LinkVisited, scheme.accentLine},
                           Entry{QPalette::Light, scheme.surfaceHot},
                           Entry{QPalette::Midlight, scheme.surface},
                           Entry{QPalette::Mid, scheme.line},
                           Entry{QPalette::Dark, scheme.edge},
                           Entry{QPalette::Shadow, scheme.window.darker(150)}};
  for (const auto& [role, colour] : entries) palette.setColor(role, colour);
}

}  // namespace

const Scheme& SchemeOf(int number) {
  static const std::array<Scheme, 3> kSchemes{Light(), Dark(), Contrast()};
  for (const Scheme& scheme : kSchemes) {
    if (scheme.number == number) return scheme;
  }
  return kSchemes[1];
}

QColor ColourNamed(const Scheme& scheme, QByteArrayView name) {
  using Entry = std::pair<QByteArrayView, QColor Scheme::*>;
  static constexpr std::array kColours{Entry{"window", &Scheme::window},
                                       Entry{"raised", &Scheme::raised},
                                       Entry{"field", &Scheme::field},
                                       Entry{"line", &Scheme::line},
                                       Entry{"edge", &Scheme::edge},
                                       Entry{"surface", &Scheme::surface},
                                       Entry{"surfaceHot", &Scheme::surfaceHot},
                                       Entry{"surfaceDown", &Scheme::surfaceDown},
                                       Entry{"text", &Scheme::text},
                                       Entry{"hintText", &Scheme::hintText},
                                       Entry{"quietText", &Scheme::quietText},
                                       Entry{"accent", &Scheme::accent},
                                       Entry{"accentHot", &Scheme::accentHot},
                                       Entry{"accentDown", &Scheme::accentDown},
                                       Entry{"accentLine", &Scheme::accentLine},
                                       Entry{"onAccent", &Scheme::onAccent}};
  for (const auto& [known, colour] : kColours) {
    if (known == name) return scheme.*colour;
  }
  return {};
}

QPalette PaletteOf(const Scheme& scheme) {
  QPalette palette;
  SetAllGroups(palette, scheme);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                                         QPalette::PlaceholderText, QPalette::HighlightedText}) {
    palette.setColor(QPalette::Disabled, role, scheme.quietText);
  }
  palette.setColor(QPalette::Disabled, QPalette::Highlight, scheme.surfaceDown);
  palette.setColor(QPalette::Disabled, QPalette::Base, scheme.window);
  palette.setColor(QPalette::Disabled, QPalette::Button, scheme.window);
  return palette;
}

}  // namespace mirellon::skin
