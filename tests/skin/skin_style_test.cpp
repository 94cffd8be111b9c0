#include "skin/skin_style.h"

#include <QApplication>
#include <QImage>
#include <QMenuBar>
#include <QStyleFactory>

#include <gtest/gtest.h>

#include "skin/pixels.h"
#include "skin_specimens.h"
#include "support/temporary_folder.h"

namespace mirellon::skin {
namespace {

using specimens::Picture;
using specimens::Pose;
using specimens::Specimen;
using specimens::Specimens;

constexpr double kLegible = 4.5;
constexpr double kLegibleDisabled = 3;
constexpr double kVisible = 3;
const QString kText = QStringLiteral("HEIL");

void Wear(int number) {
  const Scheme& scheme = SchemeOf(number);
  QApplication::setStyle(new specimens::PosingStyle(new SkinStyle(scheme)));  // the application's
  QApplication::setPalette(PaletteOf(scheme));
}

QImage Posed(const Specimen& specimen, Pose pose, const QString& text, qreal scale = 1) {
  const std::unique_ptr<QWidget> widget = specimen.make(text);
  specimens::SetPose(*widget, pose);
  return Picture(*widget, scale);
}

const char* NameOf(Pose pose) {
  constexpr std::array kNames{"normal", "hot", "focused", "pressed", "disabled"};
  return kNames.at(static_cast<std::size_t>(pose));
}

class SkinStyleTest : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override { Wear(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(AllSchemes, SkinStyleTest,
                         ::testing::Values(kSchemeLight, kSchemeDark, kSchemeContrast));

TEST_P(SkinStyleTest, AMenuBehindASeparatorStandsAtTheBarsEnd) {
  QMenuBar bar;
  QAction* first = bar.addMenu("File")->menuAction();
  bar.addSeparator();
  QAction* last = bar.addMenu("Help")->menuAction();
  bar.resize(600, 30);
  bar.show();
  EXPECT_LT(bar.actionGeometry(first).right(), 100);
  EXPECT_GT(bar.actionGeometry(last).right(), 580);
}

TEST_P(SkinStyleTest, TextIsLegibleOnEveryControlInEveryState) {
  for (const Specimen& specimen : Specimens()) {
    if (!specimen.hasText) continue;
    for (const Pose pose : specimen.poses) {
      const double least = pose == Pose::kDisabled ? kLegibleDisabled : kLegible;
      // Large enough that a letter's stem covers whole pixels.
      const std::vector<double> lines =
          test::TextContrasts(Posed(specimen, pose, {}, 3), Posed(specimen, pose, kText, 3));
      EXPECT_FALSE(lines.empty()) << specimen.name << ", " << NameOf(pose);
      for (const double contrast : lines) EXPECT_GE(contrast, least) << specimen.name << ", " << NameOf(pose);
    }
  }
}

TEST_P(SkinStyleTest, PaletteIsLegible) {
  struct Pair {
    QPalette::ColorRole text;
    QPalette::ColorRole ground;
  };
  const QPalette palette = PaletteOf(SchemeOf(GetParam()));
  for (const Pair& pair :
       {Pair{QPalette::WindowText, QPalette::Window}, Pair{QPalette::Text, QPalette::Base},
        Pair{QPalette::Text, QPalette::AlternateBase}, Pair{QPalette::ButtonText, QPalette::Button},
        Pair{QPalette::HighlightedText, QPalette::Highlight},
        Pair{QPalette::ToolTipText, QPalette::ToolTipBase}, Pair{QPalette::Link, QPalette::Window},
        Pair{QPalette::Link, QPalette::Base}, Pair{QPalette::LinkVisited, QPalette::Base},
        Pair{QPalette::PlaceholderText, QPalette::Base}, Pair{QPalette::BrightText, QPalette::Window}}) {
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
      EXPECT_GE(test::Contrast(palette.color(group, pair.text), palette.color(group, pair.ground)),
                group == QPalette::Disabled ? kLegibleDisabled : kLegible)
          << "text " << pair.text << ", group " << group;
    }
  }
  const Scheme& scheme = SchemeOf(GetParam());
  for (const QColor& ground : {scheme.window, scheme.field}) {
    EXPECT_GE(test::Contrast(scheme.edge, ground), kVisible);        // what is typed into or ticked
    EXPECT_GE(test::Contrast(scheme.accentLine, ground), kVisible);  // the focus
  }
}

TEST_P(SkinStyleTest, FocusIsVisible) {
  for (const Specimen& specimen : Specimens()) {
    if (!specimen.focusable) continue;
    const QImage without = Posed(specimen, Pose::kNormal, kText);
    const QImage with = Posed(specimen, Pose::kFocused, kText);
    // The outline of the smallest of them, a check box, has more.
    EXPECT_GE(test::OutstandingPixels(without, with, kVisible), 24) << specimen.name;
    // And the pointer alone does not look like it.
    EXPECT_GT(test::DifferentPixels(Posed(specimen, Pose::kHot, kText), with), 24) << specimen.name;
  }
}

TEST_P(SkinStyleTest, EveryStateLooksDifferent) {
  for (const Specimen& specimen : Specimens()) {
    for (std::size_t i = 0; i < specimen.poses.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        // Pressing a tick or a switch that is on changes it when it is let go.
        const bool pressed = specimen.poses[i] == Pose::kPressed && specimen.poses[j] == Pose::kHot;
        const bool ticks = specimen.name.starts_with("check") || specimen.name.starts_with("radio") ||
                           specimen.name.ends_with(", on");
        if (!specimen.hasText || (pressed && ticks)) continue;
        EXPECT_GT(test::DifferentPixels(Posed(specimen, specimen.poses[i], kText),
                                        Posed(specimen, specimen.poses[j], kText)),
                  8)
            << specimen.name << ", " << NameOf(specimen.poses[i]) << " and " << NameOf(specimen.poses[j]);
      }
    }
  }
}

TEST_P(SkinStyleTest, RightToLeftIsMirrored) {
  for (const char* name : {"combo box", "slider", "progress bar", "scroll bar", "group box, tickable",
                           "check box, on", "combo box, editable", "push button"}) {
    const auto found = std::find_if(Specimens().begin(), Specimens().end(),
                                    [&](const Specimen& specimen) { return specimen.name == name; });
    ASSERT_NE(found, Specimens().end()) << name;
    const std::unique_ptr<QWidget> widget = found->make({});
    const QImage leftToRight = Picture(*widget, 2);
    widget->setLayoutDirection(Qt::RightToLeft);
    const QImage rightToLeft = Picture(*widget, 2);
    // A tick keeps its shape; its box alone moves.
    const bool ticked =
        std::string(name).find("tick") != std::string::npos || std::string(name).find("check") == 0;
    EXPECT_LE(test::DifferentPixels(leftToRight.mirrored(true, false), rightToLeft), ticked ? 400 : 60)
        << name;
    if (std::string(name) != "push button") {
      EXPECT_GT(test::DifferentPixels(leftToRight, rightToLeft), 60) << name;
    }
  }
}

TEST(SkinStyleFallbackTest, WithoutImagesTheBaseStyleDraws) {
  const test::TemporaryFolder empty;
  const Scheme& scheme = SchemeOf(kSchemeLight);
  QApplication::setPalette(PaletteOf(scheme));
  test::CaughtWarnings warnings;
  QApplication::setStyle(
      new specimens::PosingStyle(new SkinStyle(scheme, QString::fromStdString(empty.path().string()))));
  for (const Specimen& specimen : Specimens()) {
    for (const Pose pose : specimen.poses) {
      QImage blank = Posed(specimen, pose, kText);
      QImage ground(blank.size(), blank.format());
      ground.fill(scheme.window);
      if (specimen.name == "splitter" || specimen.name == "group box") continue;  // hardly more than space
      EXPECT_GT(test::DifferentPixels(blank, ground), 20) << specimen.name << ", " << NameOf(pose);
    }
  }
  QStringList told = warnings.all().filter(QStringLiteral("skin's image"));
  EXPECT_GT(told.size(), 60);
  const qsizetype all = told.size();
  told.removeDuplicates();
  EXPECT_EQ(told.size(), all);
}

}  // namespace
}  // namespace mirellon::skin
