// What was typed instead of slid.
#pragma once

#include <optional>
#include <string_view>

#include "profiles/slider_math.h"

namespace mirellon::ui {

// The value that a text asks for, held to the slider's range; nothing when it is no number. A comma counts as
// a point.
[[nodiscard]] std::optional<double> TypedValue(const profiles::SliderRow& row, std::string_view text);

}  // namespace mirellon::ui
