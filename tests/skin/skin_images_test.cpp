#include "skin/skin_images.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

#include "skin/icon_engine.h"
#include "skin/pixels.h"
#include "support/temporary_folder.h"

namespace mirellon::skin {
namespace {

constexpr std::array kSchemes{kSchemeLight, kSchemeDark, kSchemeContrast};

// Calls with every part, state and scheme for which there is an image.
template <typename Function>
void ForEveryImage(Function function) {
  for (int i = 0; i < kParts; ++i) {
    for (const PartState state : kPartStates) {
      const Part part = static_cast<Part>(i);
      if (!HasState(part, state)) continue;
      for (const int scheme : kSchemes) function(part, state, SchemeOf(scheme));
    }
  }
}

bool ShowsSomething(const QImage& image) {
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (qAlpha(image.pixel(x, y)) > 128) return true;
    }
  }
  return false;
}

TEST(SkinImagesTest, NamesFollowOneRule) {
  EXPECT_EQ(ImageName(Part::kCheck, PartState::kSelOn, false), "CHECK_SELON.svg");
  EXPECT_EQ(ImageName(Part::kCheck, PartState::kSemiOff, true), "CHECKD_SEMIOFF.svg");
  QStringList named;
  ForEveryImage([&](Part part, PartState state, const Scheme& scheme) {
    named.append(ImageName(part, state, scheme.dark));
  });
  named.removeDuplicates();
  named.sort();
  QStringList present = QDir(QStringLiteral(":/skin")).entryList(QDir::Files);
  present.sort();
  EXPECT_EQ(present, named);  // none is missing, and none lies there unused
}

TEST(SkinImagesTest, EveryImageShowsSomethingAndCanBeStretched) {
  test::CaughtWarnings warnings;
  ForEveryImage([](Part part, PartState state, const Scheme& scheme) {
    SkinImages images(scheme);
    for (const qreal scale : {1.0, 1.5, 2.0}) {
      const SkinImage image = images.Find(part, state, scale);
      const std::string name = ImageName(part, state, scheme.dark).toStdString();
      ASSERT_FALSE(image.missing()) << name;
      EXPECT_TRUE(ShowsSomething(image.pixmap.toImage())) << name << " at " << scale;
      EXPECT_EQ(image.pixmap.width(), qRound(images.Find(part, state, 1).pixmap.width() * scale)) << name;
      const QMargins& slices = image.slices;
      if (slices.isNull()) continue;
      EXPECT_LT(slices.left() + slices.right(), image.pixmap.width()) << name;
      EXPECT_LT(slices.top() + slices.bottom(), image.pixmap.height()) << name;
    }
  });
  EXPECT_TRUE(warnings.all().isEmpty()) << warnings.all().join('\n').toStdString();
}

TEST(SkinImagesTest, WhatIsStretchedIsTheSameAlongTheStretch) {
  ForEveryImage([](Part part, PartState state, const Scheme& scheme) {
    for (const qreal scale : {1.0, 1.5, 2.0}) {
      const SkinImage image = SkinImages(scheme).Find(part, state, scale);
      if (image.slices.isNull()) continue;
      const QImage pixels = image.pixmap.toImage();
      const int left = image.slices.left();
      const int top = image.slices.top();
      for (int y = 0; y < pixels.height(); ++y) {
        for (int x = left; x < pixels.width() - image.slices.right(); ++x) {
          ASSERT_EQ(pixels.pixel(x, y), pixels.pixel(left, y))
              << ImageName(part, state, scheme.dark).toStdString();
        }
      }
      for (int x = 0; x < pixels.width(); ++x) {
        for (int y = top; y < pixels.height() - image.slices.bottom(); ++y) {
          ASSERT_EQ(pixels.pixel(x, y), pixels.pixel(x, top))
              << ImageName(part, state, scheme.dark).toStdString();
        }
      }
    }
  });
}

TEST(SkinImagesTest, TheBarsAndThePanelsIconsAreThere) {
  for (const char* name :
       {"IDP_FOLDER", "IDP_SAVE", "IDP_DENOISEBATCH", "IDP_ZOOMIN", "IDP_ZOOMOUT", "IDP_ZOOM100",
        "IDP_ZOOMFIT", "IDP_PICKER", "SETTINGS_SAVE", "SETTINGS_DELETE", "SETTINGS_SHOW", "SETTINGS_HIDE"}) {
    const QIcon icon = StrokeIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
    EXPECT_TRUE(ShowsSomething(icon.pixmap(QSize(24, 24)).toImage())) << name;
  }
}

TEST(SkinImagesTest, WhatCannotBeDrawnIsMissingAndToldOnce) {
  const test::TemporaryFolder folder;
  const QString path = QString::fromStdString(folder.path().string());
  const auto write = [&](const char* name, const char* text) {
    QFile file(path + QLatin1Char('/') + QLatin1String(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  };
  write("CHECK_ON.svg", R"(<svg xmlns="http://www.w3.org/2000/svg"><rect fill="{purple}"/></svg>)");
  write("CHECK_OFF.svg", "not a drawing");
  test::CaughtWarnings warnings;
  SkinImages images(SchemeOf(kSchemeLight), path);
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(images.Find(Part::kCheck, PartState::kOn, 1).missing());
    EXPECT_TRUE(images.Find(Part::kCheck, PartState::kOff, 1).missing());
    EXPECT_TRUE(images.Find(Part::kCheck, PartState::kSelOn, 1).missing());
    images.SetScheme(SchemeOf(kSchemeLight));
  }
  const QStringList ours = warnings.all().filter(QStringLiteral("skin's image"));
  ASSERT_EQ(ours.size(), 3) << warnings.all().join('\n').toStdString();
  EXPECT_TRUE(ours[0].contains(QStringLiteral("CHECK_ON.svg names an unknown colour")));
  EXPECT_TRUE(ours[1].contains(QStringLiteral("CHECK_OFF.svg cannot be read")));
  EXPECT_TRUE(ours[2].contains(QStringLiteral("CHECK_SELON.svg is missing")));
}

TEST(SkinImagesTest, KeepsAFewMegabytesOfOneScheme) {
  SkinImages images(SchemeOf(kSchemeLight));
  const QImage light = images.Find(Part::kButton, PartState::kOff, 1).pixmap.toImage();
  for (int step = 0; step < 400; ++step) {
    const qreal scale = 4 + step / 100.0;
    (void)images.Find(Part::kButton, PartState::kOff, scale);
    (void)images.Find(Part::kAction, PartState::kOff, scale);
  }
  EXPECT_GT(images.kept(), 1024);
  EXPECT_LE(images.kept(), 4096);
  images.SetScheme(SchemeOf(kSchemeDark));
  EXPECT_EQ(images.kept(), 0);
  EXPECT_NE(images.Find(Part::kButton, PartState::kOff, 1).pixmap.toImage(), light);
}

}  // namespace
}  // namespace mirellon::skin
