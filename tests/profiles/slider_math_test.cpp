#include "profiles/slider_math.h"

#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace mirellon::profiles {

TEST(SliderMathTest, ValuesShowAtTheirPositions) {
  const struct {
    Slider slider;
    double value;
    std::int32_t position;
    const wchar_t* label;
  } cases[] = {
      {Slider::kStrength, 0.0, 20, L"0.0"},
      {Slider::kStrength, 0.5, 20, L"0.5"},
      {Slider::kStrength, 1.02, 20, L"1.0"},
      {Slider::kStrength, 1.03, 21, L"1.0"},
      {Slider::kStrengthChroma, 10.0, 200, L"10.0"},
      {Slider::kStrength, 49.97, 999, L"50.0"},
      {Slider::kStrength, 49.98, 1000, L"50.0"},
      {Slider::kStrength, 77.25, 1000, L"77.2"},
      {Slider::kStrengthChromaLarge, 0.02, 0, L"0.0"},
      {Slider::kStrengthChromaLarge, 0.026, 1, L"0.0"},
      {Slider::kStrengthChromaLarge, 10.0, 200, L"10.0"},
      {Slider::kDynamics, -9.0, 0, L"-9.00"},
      {Slider::kDynamics, -0.995, 50, L"-0.99"},
      {Slider::kDynamics, 0.0, 100, L"0.00"},
      {Slider::kDynamics, 1.0, 150, L"1.00"},
      {Slider::kSharpTiny, 1.0, 5, L"1.0"},
      {Slider::kSharpMedium, 1.09, 5, L"1.1"},
      {Slider::kSharpRough, 1.11, 6, L"1.1"},
      {Slider::kSharpRough, std::numeric_limits<double>::quiet_NaN(), 0, L"nan"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(PositionOfValue(RowOf(c.slider), c.value), c.position) << c.value;
    EXPECT_EQ(ValueLabel(RowOf(c.slider), c.value), c.label) << c.value;
  }
}

TEST(SliderMathTest, PositionsGiveTheirValuesAndComeBack) {
  EXPECT_EQ(ValueOfPosition(RowOf(Slider::kStrength), 200), 1.0 + 180.0 / 980.0 * 49.0);
  EXPECT_EQ(ValueOfPosition(RowOf(Slider::kStrengthChromaLarge), 1), 0.05);
  EXPECT_EQ(ValueOfPosition(RowOf(Slider::kDynamics), 150), 1.0);
  EXPECT_DOUBLE_EQ(ValueOfPosition(RowOf(Slider::kSharpTiny), 6), 1.2);
  for (const SliderRow& row : kSliders) {
    EXPECT_EQ(ValueOfPosition(row, -32768), row.minValue);
    EXPECT_EQ(ValueOfPosition(row, 32767), row.maxValue);
    for (std::int32_t position = row.minPosition; position <= row.maxPosition; ++position) {
      EXPECT_EQ(PositionOfValue(row, ValueOfPosition(row, position)), position);
    }
  }
}

TEST(SliderMathTest, ScrollingMovesByOneOrToTheMessagesPosition) {
  const struct {
    std::uint32_t code;
    std::int32_t position;
    double value;
    bool preview;
  } cases[] = {{0, 4, 0.8, false}, {1, 6, 1.2, false},  {2, 4, 0.8, false},
               {3, 6, 1.2, false}, {4, -2, 0.0, false}, {5, -2, 0.0, false},
               {6, 5, 1.0, false}, {7, 5, 1.0, false},  {8, 5, 1.0, true}};
  for (const auto& c : cases) {
    const SliderMove move =
        MoveSlider(RowOf(Slider::kSharpTiny), static_cast<ScrollCode>(c.code), 5, 0x1FFFE);
    EXPECT_EQ(move.position, c.position) << c.code;
    EXPECT_DOUBLE_EQ(move.value, c.value) << c.code;
    EXPECT_EQ(move.preview, c.preview) << c.code;
  }
  // Touched at its left end, a strength of 0.5 becomes 1.0.
  const SliderMove touched = MoveSlider(RowOf(Slider::kStrength), ScrollCode::kLineUp, 20, 0);
  EXPECT_EQ(touched.value, 1.0);
}

TEST(SliderMathTest, SetDefaultLeavesPointsAndNoise) {
  engine::DenoiseParameters parameters{800, 1, 2, 3, -1, 0, 2, 4, 7.5, 8.5, 2};
  SetDefault(parameters);
  const std::int32_t positions[] = {200, 200, 200, 100, 5, 5, 5};
  const wchar_t* labels[] = {L"10.0", L"10.0", L"10.0", L"0.00", L"1.0", L"1.0", L"1.0"};
  for (std::size_t i = 0; i < kSliders.size(); ++i) {
    EXPECT_EQ(PositionOfValue(kSliders[i], parameters.*kSliders[i].value), positions[i]);
    EXPECT_EQ(ValueLabel(kSliders[i], parameters.*kSliders[i].value), labels[i]);
  }
  EXPECT_TRUE(parameters.iso == 800 && parameters.m_iUseMedian == 2 && parameters.m_dImmerkaerY == 7.5 &&
              parameters.m_dImmerkaerUV == 8.5);
  for (const int median : {0, 1, 2}) EXPECT_EQ(MedianButton(median), median);
  for (const int median : {-1, 3}) EXPECT_EQ(MedianButton(median), std::nullopt);
}

TEST(SliderMathTest, BatchesTakeStrengthsInTwentieths) {
  const double cases[][2] = {{0.0, 0.0},    {0.049, 0.0},   {0.05, 0.05},
                             {12.63, 12.6}, {12.65, 12.65}, {50.0, 50.0}};
  for (const auto& c : cases) EXPECT_EQ(RunStrength(c[0]), c[1]);
  const engine::DenoiseParameters run =
      RunParameters({100, 1.09, 2.09, 3.09, 0.333, 1.09, 1, 1, 9.99, 9.99, 1});
  EXPECT_TRUE(run.m_dStrength == 1.05 && run.m_dStrengthChroma == 2.05 && run.m_dStrengthChromaLarge == 3.05);
  EXPECT_TRUE(run.m_dDynamics == 0.333 && run.m_dSharp1 == 1.09 && run.m_dImmerkaerY == 9.99);
}

TEST(SliderMathTest, ThePanelRunsWhatItsSlidersShow) {
  for (const Slider slider : {Slider::kStrength, Slider::kStrengthChroma, Slider::kStrengthChromaLarge}) {
    const SliderRow& row = RowOf(slider);
    for (std::int32_t position = row.minPosition; position <= row.maxPosition; ++position) {
      engine::DenoiseParameters parameters;
      parameters.*row.value = ValueOfPosition(row, position);
      EXPECT_EQ(PanelRunParameters(parameters).*row.value, position / 20.0);
    }
  }
  // Stored values stand between the positions or beside the slider.
  const engine::DenoiseParameters run =
      PanelRunParameters({100, 7.39, 0.5, 0.0, 0.333, 1.09, 1, 1, 9.99, 9.99, 1});
  EXPECT_TRUE(run.m_dStrength == 7.4 && run.m_dStrengthChroma == 1.0 && run.m_dStrengthChromaLarge == 0.0);
  EXPECT_TRUE(run.m_dDynamics == 0.333 && run.m_dSharp1 == 1.09 && run.m_dImmerkaerY == 9.99);
}

TEST(SliderMathTest, ImageInfoLeavesOutWhatIsNotKnown) {
  const ImageInfo labels{L"Maker:",   L"Type:",     L"Resolution:", L"ISO:",
                         L"FNumber:", L"Exposure:", L"Captured:"};
  EXPECT_EQ(
      ImageInfoText({L"Canon", L"EOS 5D", L"4368x2912", L"400", L"f 5.6", L"1/125 sec.", L"2004"}, labels),
      L"Maker:  Canon\nType:  EOS 5D\nResolution:  4368x2912\nISO:  400, FNumber:  f 5.6\n"
      L"Exposure:  1/125 sec.\nCaptured:  2004");
  EXPECT_EQ(ImageInfoText({L"", L"EOS 5D", L"", L"400", L"", L"", L""}, labels),
            L"  Type:  EOS 5D\n  ISO:  400,       ");
  ImageInfo endless;
  endless.make.assign(2000, L'x');
  EXPECT_EQ(ImageInfoText(endless, labels).size(), 1023U);
}

}  // namespace mirellon::profiles
