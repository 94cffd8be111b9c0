// Why something failed, in the user's language.
#pragma once

#include <string>

#include "imageio/load_image.h"
#include "imageio/save_image.h"
#include "ui/texts.h"

namespace mirellon::ui {

// The text `number`, with the cause as its detail, which tells more but is English; where there is no
// translation of the text, the cause alone.
[[nodiscard]] QString Reason(const Texts& texts, int number, const std::string& cause);

[[nodiscard]] QString ReasonOf(const Texts& texts, const imageio::LoadReport& report);
[[nodiscard]] QString ReasonOf(const Texts& texts, const imageio::SaveReport& report);

// One of a save's warnings.
[[nodiscard]] QString WarningOf(const Texts& texts, const std::string& warning);

}  // namespace mirellon::ui
