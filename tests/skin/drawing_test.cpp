#include "skin/drawing.h"

#include <gtest/gtest.h>

namespace mirellon::skin {
namespace {

TEST(DrawingTest, PutsColoursInPlaceOfTheirNames) {
  struct Case {
    const char* svg;
    std::optional<QByteArray> expected;
  };
  const Scheme& light = SchemeOf(kSchemeLight);
  const QByteArray accent = light.accent.name().toLatin1();
  const Case cases[] = {{"", QByteArray()},
                        {"<rect/>", QByteArray("<rect/>")},
                        {"{accent}", accent},
                        {"a{accent}b{accent}c", "a" + accent + "b" + accent + "c"},
                        {"{window}{field}", QByteArray("#ececec#ffffff")},
                        {"{Accent}", std::nullopt},
                        {"{}", std::nullopt},
                        {"a{accent", std::nullopt}};
  for (const Case& c : cases) EXPECT_EQ(InColours(c.svg, light), c.expected) << c.svg;
}

TEST(DrawingTest, MovesTheEdgesOfRectanglesOntoPixels) {
  const auto rect = [](const char* svg, qreal scale) {
    const QByteArray snapped = OnWholePixels(svg, scale);
    return snapped.mid(snapped.indexOf("<rect")).trimmed().toStdString();
  };
  // An outline of 1 from 0 to 24 is 36 pixels wide at 1.5; its inside goes from pixel 1 to 35: both sides
  // are 1.
  EXPECT_EQ(rect(R"(<rect x="1" y="1" width="22" height="22"/>)", 1.5),
            R"(<rect x="0.666667" y="0.666667" width="22.666667" height="22.666667"/>)");
  EXPECT_EQ(rect(R"(<rect x="2" y="4" width="16" height="8" rx="3"/>)", 1.5),
            R"(<rect rx="3" x="2.000000" y="4.000000" width="16.000000" height="8.000000"/>)");
  // A hairline stays to be seen.
  EXPECT_EQ(rect(R"(<rect x="0" y="0" width="16" height="0.2"/>)", 1.0),
            R"(<rect x="0.000000" y="0.000000" width="16.000000" height="1.000000"/>)");
  EXPECT_EQ(OnWholePixels("<svg><rect", 1.5), "<svg><rect");
}

}  // namespace
}  // namespace mirellon::skin
