// The parameter panel's arithmetic, without its widgets.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "engine/parameters.h"

namespace mirellon::profiles {

// One slider: positions are whole, values run in proportion.
struct SliderRow {
  double engine::DenoiseParameters::*value;
  std::int32_t minPosition;
  std::int32_t maxPosition;
  double minValue;
  double maxValue;
  int decimals;            // of the value's label
  double defaultValue;     // of "Set Default"
  const wchar_t* caption;  // in English
};

// Index into kSliders.
enum class Slider : std::size_t {
  kStrength,
  kStrengthChroma,
  kStrengthChromaLarge,
  kDynamics,
  kSharpTiny,
  kSharpMedium,
  kSharpRough,
};

// The strengths stop at 1.0 on the left although a file may hold 0: a stored 0 shows there, and moving the
// slider gives at least 1.0. The default of the large-scale strength is not that of the built-in set.
inline constexpr std::array<SliderRow, 7> kSliders{{
    {&engine::DenoiseParameters::m_dStrength, 20, 1000, 1.0, 50.0, 1, 10.0, L"Strength - Intensity:"},
    {&engine::DenoiseParameters::m_dStrengthChroma, 20, 1000, 1.0, 50.0, 1, 10.0, L"Strength - Chromacity:"},
    {&engine::DenoiseParameters::m_dStrengthChromaLarge, 0, 1000, 0.0, 50.0, 1, 10.0,
     L"Strength - Chromacity Large:"},
    {&engine::DenoiseParameters::m_dDynamics, 0, 200, -2.0, 2.0, 2, 0.0, L"Noise domination (dark - light):"},
    {&engine::DenoiseParameters::m_dSharp1, 0, 20, 0.0, 4.0, 1, 1.0, L"Tiny Details"},
    {&engine::DenoiseParameters::m_dSharp2, 0, 20, 0.0, 4.0, 1, 1.0, L"Medium Details"},
    {&engine::DenoiseParameters::m_dSharp3, 0, 20, 0.0, 4.0, 1, 1.0, L"Rough Details"},
}};

[[nodiscard]] constexpr const SliderRow& RowOf(Slider slider) {
  return kSliders[static_cast<std::size_t>(slider)];
}

[[nodiscard]] std::int32_t PositionOfValue(const SliderRow& row, double value);
[[nodiscard]] double ValueOfPosition(const SliderRow& row, std::int32_t position);
// The value itself, not the rounded position: "10.0", "-0.50".
[[nodiscard]] std::wstring ValueLabel(const SliderRow& row, double value);

// What moved a slider.
enum class ScrollCode : std::uint32_t {
  kLineUp = 0,
  kLineDown = 1,
  kPageUp = 2,
  kPageDown = 3,
  kThumbPosition = 4,
  kThumbTrack = 5,
  kTop = 6,
  kBottom = 7,
  kEnd = 8,  // the only one that asks for a preview
};

// The position that a scroll message leads to, from the slider's own one, which the message's may replace:
// of that one the lower 16 bits count, as a signed number. May pass the slider's ends by one, where
// ValueOfPosition holds it.
[[nodiscard]] std::int32_t ScrolledPosition(ScrollCode code, std::int32_t position,
                                            std::int32_t messagePosition);

// What a scroll message does: the position to set, the value to store and show.
struct SliderMove {
  std::int32_t position = 0;
  double value = 0.0;
  bool preview = false;
};
[[nodiscard]] SliderMove MoveSlider(const SliderRow& row, ScrollCode code, std::int32_t position,
                                    std::int32_t messagePosition);

// "Set Default": the seven values; points, noise and ISO speed stay.
void SetDefault(engine::DenoiseParameters& parameters);

// The radio button of m_iUseMedian: 0 "None (Recommended)", 1 "Common", 2 "Strong"; nothing for another
// value.
[[nodiscard]] std::optional<int> MedianButton(std::int32_t useMedian);

// A strength as a batch hands it to the engine: times 20, truncated to a whole number, divided by 20.
[[nodiscard]] double RunStrength(double strength);
// The three strengths of a set put through it.
[[nodiscard]] engine::DenoiseParameters RunParameters(engine::DenoiseParameters parameters);
// What a run or preview from the panel uses: it reads the positions of the three strengths' sliders, in
// twentieths, so that what is shown is what runs.
[[nodiscard]] engine::DenoiseParameters PanelRunParameters(engine::DenoiseParameters parameters);

// The texts and labels of the "Image Info" box.
struct ImageInfo {
  std::wstring make;
  std::wstring model;
  std::wstring dimensions;
  std::wstring iso;
  std::wstring fNumber;
  std::wstring exposure;
  std::wstring dateTaken;
};
// Each item is its label, two blanks and its text, then a line end, after ISO ", "; an empty text leaves only
// the blanks. `labels` holds the labels ("Maker:" ... in the user's language).
[[nodiscard]] std::wstring ImageInfoText(const ImageInfo& texts, const ImageInfo& labels);

}  // namespace mirellon::profiles
