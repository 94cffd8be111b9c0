#include "ui/model/view_texts.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/text.h"
#include "ui/model/typed_value.h"

namespace mirellon::ui {

std::wstring WindowTitle(const std::filesystem::path& photograph) {
  if (photograph.empty()) return kProgramName;
  return std::wstring(kProgramName) + L" - " + base::WideFromUtf8(base::PrintableName(photograph.native()));
}

std::string ZoomText(double zoom) {
  // The toolkit sets the process's locale, which is not to choose the point.
  std::array<char, 400> text{};
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), zoom * 100.0, std::chars_format::fixed, 1);
  return std::string(text.data(), end) + " %";
}

std::optional<double> ZoomOfText(std::string_view text) {
  const std::optional<double> percent = NumberOfText(text, " %");
  if (!percent || *percent <= 0.0) return std::nullopt;
  return std::clamp(*percent / 100.0, 0.01, 32.0);
}

}  // namespace mirellon::ui
