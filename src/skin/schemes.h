// The three colour schemes.
#pragma once

#include <QColor>
#include <QPalette>
#include <cstdint>

namespace mirellon::skin {

inline constexpr int kSchemeLight = 1;
inline constexpr int kSchemeDark = 2;      // at the first start
inline constexpr int kSchemeContrast = 3;  // darker, with higher contrast

// Neutral greys and one accent. Around a photograph nothing else has a colour.
struct Scheme {
  int number;
  std::uint8_t view;  // grey level around the photograph
  QColor window;
  QColor raised;  // bars and fields that lie on the window
  QColor field;   // where something is typed or chosen
  QColor line;
  QColor text;
  QColor quietText;  // captions of what cannot be used, hints
  QColor accent;
  QColor onAccent;
};

// The scheme of that number; the dark one for any other number.
[[nodiscard]] const Scheme& SchemeOf(int number);

[[nodiscard]] QPalette PaletteOf(const Scheme& scheme);

}  // namespace mirellon::skin
