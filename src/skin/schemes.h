// The three colour schemes.
#pragma once

#include <QByteArrayView>
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
  bool dark;
  std::uint8_t view;  // grey level around the photograph
  QColor window;
  QColor raised;       // menus and tips, which lie on the window
  QColor field;        // where something is typed or chosen
  QColor line;         // parts one thing from another
  QColor edge;         // outlines what is typed into or ticked; 3:1 against the window
  QColor surface;      // a button,
  QColor surfaceHot;   // one under the pointer,
  QColor surfaceDown;  // one that is pressed
  QColor text;
  QColor hintText;    // what stands in an empty field
  QColor quietText;   // what cannot be used; 3:1 at least
  QColor accent;      // filled with it: what is active
  QColor accentHot;   // under the pointer
  QColor accentDown;  // pressed
  QColor accentLine;  // outlines and links, which lie on greys
  QColor onAccent;    // text on all of the filled ones
};

// The scheme of that number; the dark one for any other number.
[[nodiscard]] const Scheme& SchemeOf(int number);

// The colour that images name with its field's name: "window", "accentHot"; not valid for any other name.
[[nodiscard]] QColor ColourNamed(const Scheme& scheme, QByteArrayView name);

[[nodiscard]] QPalette PaletteOf(const Scheme& scheme);

}  // namespace mirellon::skin
