// Which colours the screen has.
#pragma once

#include <QScreen>
#include <string>

namespace mirellon::ui {

// The ICC profile that the desktop has set for the screen, as its properties tell under X (other platforms
// keep it to themselves); empty: none known. What it holds is not examined.
[[nodiscard]] std::string ScreenProfile(const QScreen* screen);

}  // namespace mirellon::ui
