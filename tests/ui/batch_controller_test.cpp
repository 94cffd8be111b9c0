#include "ui/batch_controller.h"

#include <string>
#include <vector>

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

#include "imageio/image_files.h"
#include "support/test_pictures.h"
#include "ui/window_harness.h"

namespace mirellon::ui {
namespace {

namespace fs = std::filesystem;

class BatchControllerTest : public ::testing::Test {
 protected:
  BatchControllerTest() {
    QObject::connect(&controller, &BatchController::entryStarted, [this](const fs::path& file) {
      heard.push_back(file.filename().string().insert(0, 1, '+'));
    });
    QObject::connect(&controller, &BatchController::loaded,
                     [this](const QImage& image) { heard.push_back("loaded " + SizeOf(image)); });
    QObject::connect(&controller, &BatchController::denoised,
                     [this](const QImage& image) { heard.push_back("denoised " + SizeOf(image)); });
    QObject::connect(&controller, &BatchController::imageDone, [this] { heard.emplace_back("."); });
    QObject::connect(&controller, &BatchController::counted,
                     [this](std::uint32_t images) { counts.push_back(images); });
    QObject::connect(&controller, &BatchController::finished, [this](const BatchOutcome& result) {
      outcome = result;
      heard.emplace_back("finished");
    });
  }

  fs::path WritePhoto(const std::string& name, int width = 200, int height = 100) {
    const fs::path file = harness.folder / name;
    fs::create_directories(file.parent_path());
    EXPECT_FALSE(test::WritePicture(file, test::PhotoLikePicture(width, height, 3, 8, 5)));
    return file;
  }
  void WaitForTheEnd() {
    ASSERT_TRUE(test::WaitFor([this] { return !heard.empty() && heard.back() == "finished"; }));
  }
  static std::string SizeOf(const QImage& image) {
    return std::to_string(image.width()) + "x" + std::to_string(image.height());
  }

  test::WindowHarness harness;
  std::vector<std::string> heard;
  std::vector<std::uint32_t> counts;
  BatchOutcome outcome;
  BatchController controller{harness.context};
};

TEST_F(BatchControllerTest, TellsWhatIsInWorkUpright) {
  const fs::path turned = WritePhoto("in/a.jpg");
  const auto image = Exiv2::ImageFactory::open(turned.string());
  image->exifData()["Exif.Image.Orientation"] = std::uint16_t{6};
  image->writeMetadata();
  WritePhoto("in/b.png", 1200, 20);
  WritePhoto("in/c.png", 10, 10);
  test::WriteBytes(harness.folder / "in/d.txt", "text");
  controller.Start({{harness.folder / "in"}}, engine::kQualityLow);
  EXPECT_TRUE(controller.running());
  WaitForTheEnd();
  EXPECT_EQ(heard, (std::vector<std::string>{"+a.jpg", "loaded 100x200", "denoised 100x200", ".", "+b.png",
                                             "loaded 576x9", "denoised 576x9", ".", "+c.png", ".", "+d.txt",
                                             "finished"}));
  EXPECT_FALSE(controller.running());
  ASSERT_EQ(outcome.entries.size(), 3U);
  EXPECT_EQ(outcome.entries[2].reason, batch::EntryReason::kTooSmall);
  EXPECT_EQ(outcome.summary.done, 2U);
}

TEST_F(BatchControllerTest, RunsOnFilesAndFolders) {
  const fs::path single = WritePhoto("single.png");
  WritePhoto("in/sub/a.jpeg");
  WritePhoto("in/denoised/old.png");
  const BatchWork work{{single, harness.folder / "in", harness.folder / "missing.png"}};
  controller.Count({{harness.folder / "in"}});
  controller.Count(work);
  ASSERT_TRUE(test::WaitFor([this] { return !counts.empty(); }));
  EXPECT_EQ(counts, std::vector<std::uint32_t>{3}) << "by name, results too; of the last question";
  controller.Start(work, engine::kQualityLow);
  WaitForTheEnd();
  EXPECT_EQ(outcome.summary.done, 2U);
  EXPECT_TRUE(fs::exists(harness.folder / "denoised/single.png"));
  EXPECT_TRUE(fs::exists(harness.folder / "in/sub/denoised/a.jpeg"));
  ASSERT_EQ(outcome.entries.size(), 3U);
  EXPECT_EQ(outcome.entries[2].reason, batch::EntryReason::kUnreadable) << "it was named";
}

TEST_F(BatchControllerTest, EndsWithItsOwner) {
  for (const char* name : {"in/a.png", "in/b.png", "in/c.png"}) WritePhoto(name, 900, 700);
  auto own = std::make_unique<BatchController>(harness.context);
  bool started = false;
  bool told = false;
  QObject::connect(own.get(), &BatchController::entryStarted, [&] { started = true; });
  QObject::connect(own.get(), &BatchController::finished, [&] { told = true; });
  own->Start({{harness.folder / "in"}}, engine::kQualityLow);
  ASSERT_TRUE(test::WaitFor([&] { return started; }));
  own.reset();
  EXPECT_FALSE(told);
  if (!fs::exists(harness.folder / "in/denoised")) return;  // not even an empty folder
  EXPECT_LT(test::FilesIn(harness.folder / "in/denoised"), 3U);
}

}  // namespace
}  // namespace mirellon::ui
