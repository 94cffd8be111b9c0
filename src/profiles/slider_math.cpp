#include "profiles/slider_math.h"

#include <cmath>

#include "base/text.h"
#include "profiles/number_text.h"

namespace mirellon::profiles {

namespace {

constexpr double kStepsPerUnit = 20.0;

}  // namespace

std::int32_t PositionOfValue(const SliderRow& row, double value) {
  if (!(value > row.minValue)) return row.minPosition;
  if (!(value < row.maxValue)) return row.maxPosition;
  const double way = (value - row.minValue) / (row.maxValue - row.minValue);
  const double exact = way * (row.maxPosition - row.minPosition);
  return row.minPosition + static_cast<std::int32_t>(std::trunc(exact + 0.5));
}

double ValueOfPosition(const SliderRow& row, std::int32_t position) {
  if (position <= row.minPosition) return row.minValue;
  if (position >= row.maxPosition) return row.maxValue;
  const double way = static_cast<double>(position - row.minPosition) / (row.maxPosition - row.minPosition);
  return row.minValue + way * (row.maxValue - row.minValue);
}

std::wstring ValueLabel(const SliderRow& row, double value) {
  return DecimalText(value, row.decimals);
}

std::int32_t ScrolledPosition(ScrollCode code, std::int32_t position, std::int32_t messagePosition) {
  switch (code) {
    case ScrollCode::kLineUp:
    case ScrollCode::kPageUp:
      return position - 1;
    case ScrollCode::kLineDown:
    case ScrollCode::kPageDown:
      return position + 1;
    case ScrollCode::kThumbPosition:
    case ScrollCode::kThumbTrack:
      return static_cast<std::int16_t>(messagePosition);
    case ScrollCode::kTop:
    case ScrollCode::kBottom:
    case ScrollCode::kEnd:
      break;
  }
  return position;
}

SliderMove MoveSlider(const SliderRow& row, ScrollCode code, std::int32_t position,
                      std::int32_t messagePosition) {
  const std::int32_t moved = ScrolledPosition(code, position, messagePosition);
  return {moved, ValueOfPosition(row, moved), code == ScrollCode::kEnd};
}

void SetDefault(engine::DenoiseParameters& parameters) {
  for (const SliderRow& row : kSliders) parameters.*row.value = row.defaultValue;
}

std::optional<int> MedianButton(std::int32_t useMedian) {
  return useMedian < 0 || useMedian > 2 ? std::nullopt : std::optional<int>(useMedian);
}

double RunStrength(double strength) {
  return std::trunc(strength * kStepsPerUnit) / kStepsPerUnit;
}

engine::DenoiseParameters RunParameters(engine::DenoiseParameters parameters) {
  parameters.m_dStrength = RunStrength(parameters.m_dStrength);
  parameters.m_dStrengthChroma = RunStrength(parameters.m_dStrengthChroma);
  parameters.m_dStrengthChromaLarge = RunStrength(parameters.m_dStrengthChromaLarge);
  return parameters;
}

engine::DenoiseParameters PanelRunParameters(engine::DenoiseParameters parameters) {
  for (const Slider slider : {Slider::kStrength, Slider::kStrengthChroma, Slider::kStrengthChromaLarge}) {
    double& strength = parameters.*RowOf(slider).value;
    strength = PositionOfValue(RowOf(slider), strength) / kStepsPerUnit;
  }
  return parameters;
}

std::wstring ImageInfoText(const ImageInfo& texts, const ImageInfo& labels) {
  struct Item {
    std::wstring ImageInfo::*text;
    const wchar_t* separator;
  };
  constexpr std::array<Item, 7> kItems{{{&ImageInfo::make, L"\n"},
                                        {&ImageInfo::model, L"\n"},
                                        {&ImageInfo::dimensions, L"\n"},
                                        {&ImageInfo::iso, L", "},
                                        {&ImageInfo::fNumber, L"\n"},
                                        {&ImageInfo::exposure, L"\n"},
                                        {&ImageInfo::dateTaken, L""}}};
  std::wstring all;
  for (const Item& item : kItems) {
    const std::wstring& text = texts.*item.text;
    if (!text.empty()) all += labels.*item.text;
    all += L"  " + text;
    if (!text.empty()) all += item.separator;
  }
  return base::CutText(all, base::kLongTextCapacity);
}

}  // namespace mirellon::profiles
