// What was typed instead of slid.
#pragma once

#include <optional>
#include <string_view>

#include "profiles/slider_math.h"

namespace mirellon::ui {

// The finite number that a text is, the ignored characters left out; nothing for any other text. A comma
// counts as a point, a plus before it changes nothing.
[[nodiscard]] std::optional<double> NumberOfText(std::string_view text, std::string_view ignored);

// The value that a text asks for, held to the slider's range; nothing when it is no number.
[[nodiscard]] std::optional<double> TypedValue(const profiles::SliderRow& row, std::string_view text);

}  // namespace mirellon::ui
