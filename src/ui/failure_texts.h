// Why something failed, in the user's language.
#pragma once

#include <string>

#include "imageio/load_image.h"
#include "imageio/save_image.h"
#include "ui/texts.h"

namespace mirellon::ui {

// The text `number`, unless there is no translation of it: then the cause, which tells more but is English.
[[nodiscard]] QString Reason(const Texts& texts, int number, const std::string& cause);

[[nodiscard]] QString ReasonOf(const Texts& texts, const imageio::LoadReport& report);
[[nodiscard]] QString ReasonOf(const Texts& texts, const imageio::SaveReport& report);

}  // namespace mirellon::ui
