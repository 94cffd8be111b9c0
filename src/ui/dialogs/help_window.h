// The help pages in a window of the program's own.
#pragma once

#include <QWidget>
#include <filesystem>

namespace mirellon::ui {

// Shows the page; a window that `owner` has open already is used again. It ends with its owner.
void ShowHelpWindow(const std::filesystem::path& page, QWidget* owner);

}  // namespace mirellon::ui
