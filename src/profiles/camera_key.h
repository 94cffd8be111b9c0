// The name under which a camera's parameter sets are kept.
#pragma once

#include <string>
#include <string_view>

namespace mirellon::profiles {

// A camera key ("maker / model") with the makers' spellings made uniform, cut to 127 characters.
[[nodiscard]] std::wstring NormalizeCameraKey(std::wstring_view key);

// The normalised key of a photograph: "%s / %s" of its maker and model texts, as they are.
[[nodiscard]] std::wstring CameraKey(std::wstring_view make, std::wstring_view model);

}  // namespace mirellon::profiles
