// Capital letters and digits from a grid of 5 x 7 squares.
#pragma once

#include <string_view>

namespace mirellon::tools {

// How much of the pixel at (x, y) the text covers: its upper left corner at (left, top), capitals `height`
// high. Characters without a shape are blank.
[[nodiscard]] double TextCover(std::string_view text, double x, double y, double left, double top,
                               double height, double pixel);

}  // namespace mirellon::tools
