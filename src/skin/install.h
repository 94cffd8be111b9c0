// The skin put on an application and taken off again.
#pragma once

#include <QApplication>

namespace mirellon::skin {

// Gives the application the skin in the scheme of that number; what there was before is remembered. On an
// application that has the skin it changes the scheme only.
void InstallSkin(QApplication& application, int scheme);

// The scheme of every control that there is, at once. Without the skin nothing happens.
void SetColourScheme(QApplication& application, int scheme);

// Brings back the style and the colours that the application had before. Without the skin nothing happens.
void RemoveSkin(QApplication& application);

}  // namespace mirellon::skin
