#include "ui/model/view_texts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "base/text.h"

namespace mirellon::ui {

std::wstring WindowTitle(const std::filesystem::path& photograph) {
  if (photograph.empty()) return kProgramName;
  return std::wstring(kProgramName) + L" - " + base::WideFromUtf8(base::PrintableName(photograph.native()));
}

std::string ZoomText(double zoom) {
  std::string text(static_cast<std::size_t>(std::snprintf(nullptr, 0, "%.1f %s", zoom * 100.0, "%")), ' ');
  std::snprintf(text.data(), text.size() + 1, "%.1f %s", zoom * 100.0, "%");
  return text;
}

std::optional<double> ZoomOfText(std::string_view text) {
  std::string plain;
  for (const char c : text) {
    if (c == ' ' || c == '%') continue;
    plain += c == ',' ? '.' : c;
  }
  double percent = 0.0;
  const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), percent);
  const bool number = error == std::errc() && end == plain.data() + plain.size();
  if (!number || !std::isfinite(percent) || percent <= 0.0) return std::nullopt;
  return std::clamp(percent / 100.0, 0.01, 32.0);
}

}  // namespace mirellon::ui
