#include "ui/workbench.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include "support/test_pictures.h"
#include "ui/tagged_photo.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

using test::WaitFor;

class WorkbenchTest : public ::testing::Test {
 protected:
  WorkbenchTest() : workbench(engine, folder / "config") { engine.processorCount = 2; }

  void Open(const picture::SBxPicBuf& picture) {
    const auto file = folder / "photo.png";
    ASSERT_FALSE(imageio::WriteImageFile(picture, file, {}, 95, {}));
    ASSERT_TRUE(workbench.Load(file));
    ASSERT_TRUE(WaitFor([&] { return workbench.idle(); }));
    ASSERT_TRUE(workbench.session().hasImage());
  }

  test::TemporaryFolder folder;
  engine::EngineContext engine;
  Workbench workbench;
};

TEST_F(WorkbenchTest, PreviewShowsWhatTheRunWillBring) {
  for (const int components : {3, 1}) {
    Open(test::PhotoLikePicture(500, 400, components, 8, 3));
    PreviewWish wish;
    wish.rect = {101, 57, 260, 190};
    wish.parameters.m_dStrength = 27.77;  // not a whole number of twentieths
    wish.parameters.m_dSharp1 = 1.4;
    SharedDisplay preview;
    const auto shown =
        QObject::connect(&workbench, &Workbench::previewReady,
                         [&](const PictureRect&, const SharedDisplay& made) { preview = made; });
    workbench.WishPreview(wish);
    ASSERT_TRUE(WaitFor([&] { return preview != nullptr; }));
    ASSERT_TRUE(workbench.Denoise({wish.parameters, wish.quality}));
    ASSERT_TRUE(WaitFor([&] { return workbench.session().denoised(); }));
    const picture::PicBuf whole = test::CopyOf(workbench.session().resultDisplay()->level(0));
    const picture::PicBuf part = test::MadeOf(159, 133, 3, 8, [&](int x, int y, int c) {
      return test::Sample(whole, x + wish.rect.left, y + wish.rect.top, c);
    });
    EXPECT_TRUE(test::SamePicture(preview->level(0), part));
    QObject::disconnect(shown);
  }
}

TEST_F(WorkbenchTest, TurnedAndConvertedPreviewsLieWhereTheyWereWished) {
  const std::string profile = test::WideProfile();
  for (int exif = 2; exif <= 8; ++exif) {
    SCOPED_TRACE(exif);
    const auto file = folder / "photo.png";
    test::WriteTaggedPhoto(file, test::PhotoLikePicture(401, 300, 3, 8, 3), exif, profile);
    ASSERT_TRUE(workbench.Load(file));
    ASSERT_TRUE(WaitFor([&] { return workbench.idle(); }));
    const Photograph& photograph = workbench.session().photograph();
    EXPECT_EQ(photograph.profileUse, ProfileUse::kConverted);
    EXPECT_EQ(photograph.display->level(0).width, exif < 5 ? 401 : 300);
    PreviewWish wish;
    wish.rect = {101, 57, 240, 190};
    SharedDisplay preview;
    PictureRect place{};
    const auto shown = QObject::connect(&workbench, &Workbench::previewReady,
                                        [&](const PictureRect& rect, const SharedDisplay& made) {
                                          place = rect;
                                          preview = made;
                                        });
    workbench.WishPreview(wish);
    ASSERT_TRUE(WaitFor([&] { return preview != nullptr; }));
    EXPECT_EQ(place.left, 101);
    ASSERT_TRUE(workbench.Denoise({wish.parameters, wish.quality}));
    ASSERT_TRUE(WaitFor([&] { return workbench.session().denoised(); }));
    const picture::PicBuf whole = test::CopyOf(workbench.session().resultDisplay()->level(0));
    const picture::PicBuf part = test::MadeOf(139, 133, 3, 8, [&](int x, int y, int c) {
      return test::Sample(whole, x + wish.rect.left, y + wish.rect.top, c);
    });
    EXPECT_TRUE(test::SamePicture(preview->level(0), part));
    QObject::disconnect(shown);
  }
}

TEST_F(WorkbenchTest, ColoursFollowTheirSwitchAndTheScreen) {
  const picture::PicBuf picture = test::PhotoLikePicture(200, 150, 3, 8, 3);
  const auto file = folder / "photo.png";
  test::WriteTaggedPhoto(file, picture, 1, test::WideProfile());
  ASSERT_TRUE(workbench.Load(file));
  ASSERT_TRUE(WaitFor([&] { return workbench.idle(); }));
  ASSERT_TRUE(workbench.Denoise({}));
  ASSERT_TRUE(WaitFor([&] { return workbench.session().denoised(); }));
  const picture::PicBuf converted = test::CopyOf(workbench.session().photograph().display->level(0));
  EXPECT_FALSE(test::SamePicture(converted, picture));

  QSignalSpy changes(&workbench, &Workbench::coloursChanged);
  const auto set = [&](const ViewColours& colours) {
    const auto before = changes.count();
    workbench.SetColours(colours);
    return WaitFor([&] { return changes.count() > before; });
  };
  const DocumentSession& session = workbench.session();
  ASSERT_TRUE(set({false, {}}));
  EXPECT_TRUE(test::SamePicture(session.photograph().display->level(0), picture)) << "as they are";
  EXPECT_TRUE(test::SamePicture(session.resultDisplay()->level(0), *session.result()));
  ASSERT_TRUE(set({true, test::WideProfile()}));
  EXPECT_EQ(session.photograph().profileUse, ProfileUse::kSame);
  EXPECT_TRUE(test::SamePicture(session.photograph().display->level(0), picture));
  ASSERT_TRUE(set({true, {}}));
  EXPECT_TRUE(test::SamePicture(session.photograph().display->level(0), converted));
  EXPECT_FALSE(test::SamePicture(session.resultDisplay()->level(0), *session.result()));

  // Changed while a photograph is on its way: it comes in the old colours and follows.
  ASSERT_TRUE(workbench.Load(file));
  workbench.SetColours({false, {}});
  ASSERT_TRUE(WaitFor([&] {
    return workbench.idle() && test::SamePicture(session.photograph().display->level(0), picture);
  }));
  EXPECT_TRUE(session.photograph().source != nullptr && !session.denoised());
}

TEST_F(WorkbenchTest, TellsOfProfilesThatAreOfNoUse) {
  const picture::PicBuf picture = test::PhotoLikePicture(40, 30, 3, 8, 3);
  const std::string wide = test::WideProfile();
  for (const std::string& profile : {wide.substr(0, wide.size() / 2), std::string(5000, 'x')}) {
    test::WriteTaggedPhoto(folder / "photo.tif", picture, 1, profile);
    ASSERT_TRUE(workbench.Load(folder / "photo.tif"));
    ASSERT_TRUE(WaitFor([&] { return workbench.idle(); }));
    EXPECT_EQ(workbench.session().photograph().profileUse, ProfileUse::kUnusable);
    EXPECT_TRUE(test::SamePicture(workbench.session().photograph().display->level(0), picture));
  }
}

TEST_F(WorkbenchTest, OnlyTheLatestPreviewIsShown) {
  Open(test::PhotoLikePicture(1600, 1200, 3, 8, 3));
  std::vector<int> shown;
  QObject::connect(&workbench, &Workbench::previewReady,
                   [&](const PictureRect& rect, const SharedDisplay&) { shown.push_back(rect.left); });
  for (int i = 0; i < 20; ++i) {
    PreviewWish wish;
    wish.rect = {i, 0, i + 1000, 1000};
    wish.quality = engine::kQualitySuperior;
    workbench.WishPreview(wish);
  }
  ASSERT_TRUE(WaitFor([&] { return workbench.idle(); }));
  EXPECT_EQ(shown, std::vector<int>{19});
}

TEST_F(WorkbenchTest, ARunThatIsStoppedBeforeItBeganEnds) {
  Open(test::PhotoLikePicture(1600, 1200, 3, 8, 3));
  PreviewWish wish;
  wish.rect = {0, 0, 1500, 1100};
  wish.quality = engine::kQualitySuperior;
  workbench.WishPreview(wish);
  ASSERT_TRUE(workbench.Denoise({wish.parameters, wish.quality}));
  QSignalSpy failures(&workbench, &Workbench::denoiseFailed);
  workbench.Abort();
  ASSERT_TRUE(WaitFor([&] { return workbench.idle(); }));
  EXPECT_FALSE(workbench.session().denoised());
  EXPECT_EQ(failures.count(), 0);
}

TEST_F(WorkbenchTest, AnAbortedLoadChangesNothing) {
  Open(test::PhotoLikePicture(40, 30, 3, 8, 3));
  const auto source = workbench.session().photograph().source;
  QSignalSpy failures(&workbench, &Workbench::loadFailed);
  ASSERT_TRUE(workbench.Load(folder / "photo.png"));
  workbench.Abort();
  EXPECT_EQ(workbench.session().activity(), Activity::kIdle);
  ASSERT_TRUE(workbench.Load(folder / "missing.png"));
  ASSERT_TRUE(WaitFor([&] { return failures.count() == 1; }));
  EXPECT_EQ(workbench.session().photograph().source, source);
}

TEST_F(WorkbenchTest, ALoadThatIsNotWantedAnyMoreGivesUp) {
  const auto file = folder / "photo.png";
  ASSERT_FALSE(imageio::WriteImageFile(test::PhotoLikePicture(40, 30, 3, 8, 3), file, {}, 95, {}));
  base::RunControl control;
  const auto colours = std::make_shared<const ViewColours>();
  EXPECT_NE(LoadPhotograph(file, colours, control).photograph.source, nullptr);
  control.RequestAbort();
  const LoadOutcome outcome = LoadPhotograph(file, colours, control);
  EXPECT_EQ(outcome.photograph.source, nullptr);
  EXPECT_EQ(outcome.report.status, imageio::LoadStatus::kCancelled);
  // Of many loads, only the last one is shown.
  QSignalSpy shown(&workbench, &Workbench::photographChanged);
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(workbench.Load(file));
  ASSERT_TRUE(WaitFor([&] { return workbench.idle(); }));
  EXPECT_EQ(shown.count(), 1);
}

TEST_F(WorkbenchTest, ABatchWaitsForALoadThatWasDropped) {
  const auto file = folder / "photo.png";
  ASSERT_FALSE(imageio::WriteImageFile(test::PhotoLikePicture(900, 700, 3, 8, 3), file, {}, 95, {}));
  ASSERT_TRUE(workbench.Load(file));
  ASSERT_TRUE(workbench.Close());
  bool ready = false;
  ASSERT_TRUE(workbench.BeginBatch([&] { ready = true; }));
  EXPECT_FALSE(ready) << "it may still be decoded";
  ASSERT_TRUE(WaitFor([&] { return ready; }));
  workbench.FinishBatch();
}

TEST_F(WorkbenchTest, BatchWaitsForTheEngine) {
  Open(test::PhotoLikePicture(1600, 1200, 3, 8, 3));
  PreviewWish wish;
  wish.rect = {0, 0, 1500, 1100};
  workbench.WishPreview(wish);
  bool ready = false;
  ASSERT_TRUE(workbench.BeginBatch([&] { ready = true; }));
  EXPECT_FALSE(ready);
  ASSERT_TRUE(WaitFor([&] { return ready; }));
  EXPECT_FALSE(engine.control.Aborted());
  workbench.FinishBatch();
  EXPECT_TRUE(workbench.idle());
}

}  // namespace
}  // namespace mirellon::ui
