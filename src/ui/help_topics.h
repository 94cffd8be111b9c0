// Which section of the help tells about what on the screen.
#pragma once

#include <QString>
#include <QWidget>
#include <span>

namespace mirellon::ui {

struct HelpTopic {
  const char* name;    // of the object; of a parameter's widgets what follows the dot
  const char* anchor;  // of the section
};

// Where the help begins, and what is shown for what has no section of its own.
inline constexpr const char* kHelpStart = "top";

[[nodiscard]] std::span<const HelpTopic> HelpTopics();

// The anchor for the widget or the nearest of those it lies in. Null: the start.
[[nodiscard]] QString TopicOf(const QWidget* widget);

}  // namespace mirellon::ui
