#include "batch/batch_run.h"

#include <csignal>
#include <cstdlib>
#include <functional>
#include <map>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/paths.h"
#include "engine/detail_pyramid.h"
#include "engine/whole_picture.h"
#include "imageio/image_files.h"
#include "support/recording_progress.h"
#include "support/test_pictures.h"

namespace mirellon::batch {

namespace fs = std::filesystem;
using engine::DenoiseParameters;
using picture::PicBuf;

namespace {

// Says what it hears: "+name" started, "name done", "name skipped: why", "." image done.
class Recorder : public BatchObserver {
 public:
  explicit Recorder(fs::path root) : root_(std::move(root)) {}
  void EntryStarted(const fs::path& file) override {
    heard.push_back(Name(file).insert(0, 1, '+'));
    if (onStart) onStart(Name(file));
  }
  void EntryEnded(const EntryReport& report) override {
    constexpr const char* kEnds[] = {" done", " skipped: ", " failed: "};
    heard.push_back(Name(report.input) + kEnds[static_cast<int>(report.end)] + report.cause);
    reports[Name(report.input)] = report;
  }
  void ImageDone() override { heard.emplace_back("."); }
  base::ProgressSink* PictureProgress() override {
    if (onWork) onWork();
    return &progress;
  }

  std::vector<std::string> heard;
  std::map<std::string, EntryReport> reports;
  std::function<void(const std::string&)> onStart;
  std::function<void()> onWork;
  test::RecordingProgress progress;

 private:
  [[nodiscard]] std::string Name(const fs::path& path) const {
    return path.lexically_relative(root_).string();
  }
  fs::path root_;
};

DenoiseParameters Set(double strength) {
  DenoiseParameters set;
  set.m_dStrength = strength;
  set.m_dStrengthChroma = strength + 0.0499;
  set.m_dSharp1 = 1.5;
  set.m_dSharp3 = 0.5;
  return set;
}

}  // namespace

class BatchRunTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_FALSE(store_.Load() || store_.AddOrReplace(profiles::kUnknownCamera, L"100", Set(2.0)) ||
                 store_.AddOrReplace(profiles::kUnknownCamera, L"800", Set(5.0)) ||
                 store_.AddOrReplace(L"Canon / EOS 5D", L"800", Set(9.03)));
    options_.metadata = false;
    options_.quality = engine::kQualityLow;
  }

  // A photograph of that camera; without one where `make` is empty.
  void MakePhoto(const std::string& name, const std::string& make = "", int iso = 0, int width = 40,
                 int components = 3, int bits = 8) {
    const fs::path file = folder_ / name;
    fs::create_directories(file.parent_path());
    ASSERT_FALSE(test::WritePicture(file, test::PhotoLikePicture(width, 24, components, bits, name.size())));
    if (make.empty()) return;
    const auto image = Exiv2::ImageFactory::open(file.string());
    image->exifData()["Exif.Image.Make"] = make;
    image->exifData()["Exif.Image.Model"] = make + " EOS 5D";
    image->exifData()["Exif.Photo.ISOSpeedRatings"] = static_cast<std::uint16_t>(iso);
    image->writeMetadata();
  }

  BatchSummary Run(const fs::path& root) {
    engine_.control.ClearAbort();
    BatchRun run(engine_, store_, options_, recorder_);
    return run.ProcessFolder(root);
  }

  // What the engine makes of a photograph with that set, the strengths in twentieths.
  PicBuf Expected(const std::string& name, DenoiseParameters set) {
    PicBuf source = test::ReadPicture(folder_ / name);
    PicBuf result;
    engine::DenoiseRequest request;
    request.destination = &result.record();
    request.source = &source.record();
    request.strength = static_cast<int>(set.m_dStrength * 20) / 20.0;
    request.strengthChroma = static_cast<int>(set.m_dStrengthChroma * 20) / 20.0;
    request.strengthChromaLarge = static_cast<int>(set.m_dStrengthChromaLarge * 20) / 20.0;
    request.quality = options_.quality;
    request.pointArtefactMode = set.m_iUseMedian;
    EXPECT_TRUE(engine::DenoiseWholePicture(engine_, request, false));
    // In three components, whatever the picture has.
    PicBuf three;
    picture::CBxPicBufAPI::Copy(three, result);
    const auto bits = static_cast<unsigned>(three->bitsPerComponent);
    const auto components = static_cast<unsigned>(result->components);
    EXPECT_EQ(picture::CBxPicBufAPI::ConvertBpcComp(three, bits, 3), 1);
    engine::DetailPyramid pyramid;
    EXPECT_FALSE(engine::DetailPyramid::Build(pyramid, three));
    EXPECT_FALSE(engine::DetailPyramid::Apply(three, pyramid, set.m_dSharp1, set.m_dSharp2, set.m_dSharp3));
    EXPECT_EQ(picture::CBxPicBufAPI::ConvertBpcComp(three, bits, components), 1);
    return three;
  }

  using Heard = std::vector<std::string>;
  test::TemporaryFolder folder_;
  test::TemporaryFolder settings_;
  profiles::NoiseProfileStore store_{profiles::ProfilePaths{settings_ / "p.ini", {}}};
  engine::EngineContext engine_;
  BatchOptions options_;
  Recorder recorder_{folder_.path()};
};

TEST_F(BatchRunTest, DenoisesEachWithItsOwnCamerasSet) {
  const struct {
    const char* name;
    const char* make;
    int iso;
    int components;
    int bits;
    double strength;
    const wchar_t* camera;
    const char* rule;
  } cases[] = {
      {"a/exact.tif", "Canon", 800, 3, 16, 9.03, L"Canon / EOS 5D", "exact"},
      {"a/otherIso.jpg", "Canon", 400, 3, 8, 2.0, L"<<Unknown Camera>>", "fallback"},
      {"b/unknown.png", "Nikon", 800, 1, 16, 5.0, L"<<Unknown Camera>>", "exact"},
      {"nothing.bmp", "", 0, 1, 8, 2.0, L"<<Unknown Camera>>", "fallback"},
  };
  for (const auto& c : cases) MakePhoto(c.name, c.make, c.iso, 40, c.components, c.bits);
  const BatchSummary summary = Run(folder_.path());
  EXPECT_TRUE(summary.done == 4 && summary.skipped + summary.failed == 0 &&
              summary.end == BatchSummary::End::kComplete);
  for (const auto& c : cases) {
    const fs::path name(c.name);
    const fs::path result = folder_ / name.parent_path() / "denoised" / name.filename();
    const EntryReport& report = recorder_.reports[c.name];
    EXPECT_EQ(report.output, result);
    EXPECT_EQ(report.camera, c.camera);
    EXPECT_STREQ(profiles::RuleName(report.profile.rule), c.rule);
    if (name.extension() == ".jpg") {
      EXPECT_TRUE(fs::exists(result));
    } else {
      EXPECT_TRUE(test::SamePicture(test::ReadPicture(result), Expected(c.name, Set(c.strength)))) << c.name;
    }
  }
  EXPECT_EQ(recorder_.reports["a/exact.tif"].parameters.m_dStrength, 9.0);
  EXPECT_EQ(recorder_.reports["a/exact.tif"].parameters.m_dStrengthChroma, 9.05);
  EXPECT_GT(recorder_.progress.position(), 0);
}

TEST_F(BatchRunTest, SkipsWhatIsNoPhotographAndGoesOn) {
  MakePhoto("1.png");
  MakePhoto("2small.png", "", 0, 15);
  test::WriteBytes(folder_ / "3broken.png", test::ReadBytes(folder_ / "1.png").substr(0, 200));
  test::WriteBytes(folder_ / "4.txt", "no picture");
  test::WriteBytes(folder_ / "5.gif", "");
  ASSERT_TRUE(test::SaveBitmap(FIF_PNG, test::PaletteBitmap(40, 40), folder_ / "6palette.png"));
  MakePhoto("7photo.png");
  fs::rename(folder_ / "7photo.png", folder_ / "7photo.jpeg");  // a PNG by its content
  ASSERT_EQ(mkfifo((folder_ / "8.jpg").c_str(), 0600), 0);
  MakePhoto("9.png");

  const BatchSummary summary = Run(folder_.path());
  const Heard& heard = recorder_.heard;
  ASSERT_EQ(heard.size(), 21U) << testing::PrintToString(heard);
  const Heard start = {
      "+1.png", "1.png done", ".", "+2small.png", "2small.png skipped: smaller than 16 pixels", "."};
  EXPECT_EQ(Heard(heard.begin(), heard.begin() + 6), start);
  EXPECT_TRUE(heard[7].starts_with("3broken.png failed: ")) << heard[7];
  EXPECT_TRUE(heard[9].starts_with("4.txt skipped: ")) << heard[9];
  EXPECT_TRUE(heard[11].starts_with("5.gif skipped: ")) << heard[11];
  EXPECT_TRUE(heard[13].starts_with("6palette.png skipped: ")) << heard[13];
  const Heard end = {"+7photo.jpeg", "7photo.jpeg done", ".", "8.jpg skipped: a device, pipe or socket",
                     "+9.png",       "9.png done",       "."};
  EXPECT_EQ(Heard(heard.begin() + 14, heard.end()), end);
  EXPECT_TRUE(summary.done == 3 && summary.skipped == 5 && summary.failed == 1);
  EXPECT_FALSE(recorder_.reports["4.txt"].photograph);
  EXPECT_TRUE(recorder_.reports["3broken.png"].photograph);
  // The broken one between them changed nothing.
  EXPECT_TRUE(test::SamePicture(test::ReadPicture(folder_ / "denoised/9.png"), Expected("9.png", Set(2.0))));
  EXPECT_EQ(test::FilesIn(folder_ / "denoised"), 3U);

  // Once more: earlier results are no photographs, and are replaced.
  const std::string before = test::ReadBytes(folder_ / "denoised/1.png");
  test::WriteBytes(folder_ / "denoised/1.png", "earlier");
  EXPECT_EQ(Run(folder_.path()).done, 3U);
  EXPECT_EQ(test::ReadBytes(folder_ / "denoised/1.png"), before);
  EXPECT_FALSE(fs::exists(folder_ / "denoised/denoised"));
}

TEST_F(BatchRunTest, AStoreWithoutASetLeavesThoseOfTheFileBefore) {
  test::WriteBytes(settings_ / "gap.ini",
                   "[General]\nNo Of Cameras=1\nversion=2\n"
                   "[Camera_0]\nm_wcsCameraName=<<Unknown Camera>>\nm_uiISOCount=0\n");
  MakePhoto("1.png", "Canon", 800);
  MakePhoto("2.png");
  profiles::NoiseProfileStore gap(profiles::ProfilePaths{settings_ / "gap.ini", {}});
  ASSERT_FALSE(gap.Load());
  if (profiles::SelectProfileForBatch(gap, {}).parameters != nullptr)
    GTEST_FAIL() << "not a store with a gap";
  ASSERT_FALSE(gap.AddOrReplace(L"Canon / EOS 5D", L"800", Set(9.0)));
  BatchRun run(engine_, gap, options_, recorder_);
  EXPECT_EQ(run.ProcessFolder(folder_.path()).done, 2U);
  EXPECT_EQ(recorder_.reports["2.png"].parameters.m_dStrength, 9.0);
  EXPECT_EQ(recorder_.reports["2.png"].profile.parameters, nullptr);
}

TEST_F(BatchRunTest, NeverWritesOverAPhotograph) {
  for (const char* name : {"back/1.png", "cross/1.png", "other/1.png", "one/1.png", "one/2.png", "hard/1.png",
                           "away/1.png", "away/2.png"}) {
    MakePhoto(name);
  }
  const test::TemporaryFolder masters;
  fs::copy_file(folder_ / "other/1.png", masters / "1.png");
  fs::create_directory_symlink(masters.path(), folder_ / "away/denoised");
  fs::create_directory_symlink(".", folder_ / "back/denoised");
  fs::create_directory_symlink("../other", folder_ / "cross/denoised");
  fs::create_directory(folder_ / "one/denoised");
  fs::create_symlink("../2.png", folder_ / "one/denoised/1.png");
  fs::create_directory(folder_ / "hard/denoised");
  fs::create_hard_link(folder_ / "hard/1.png", folder_ / "hard/denoised/1.png");
  MakePhoto("taken/1.png");
  test::WriteBytes(folder_ / "taken/denoised", "a file");
  std::map<std::string, std::string> before;
  for (const char* name : {"back/1.png", "cross/1.png", "other/1.png", "one/2.png", "hard/1.png"}) {
    before[name] = test::ReadBytes(folder_ / name);
  }
  const BatchSummary summary = Run(folder_.path());
  EXPECT_TRUE(test::ReadBytes(masters / "1.png") == before["other/1.png"]);
  EXPECT_EQ(recorder_.reports["away/1.png"].cause,
            "'denoised' is a link, and nothing is replaced where it leads");
  EXPECT_TRUE(fs::exists(masters / "2.png"));
  for (const auto& [name, bytes] : before) EXPECT_TRUE(test::ReadBytes(folder_ / name) == bytes) << name;
  const std::string leads = "'denoised' leads to a folder of photographs";
  EXPECT_EQ(recorder_.reports["back/1.png"].cause, leads);
  EXPECT_EQ(recorder_.reports["cross/1.png"].cause, leads);
  EXPECT_EQ(recorder_.reports["one/1.png"].cause, "the result's name is taken by a link");
  EXPECT_EQ(recorder_.reports["hard/1.png"].cause, "it is the photograph itself");
  EXPECT_EQ(recorder_.reports["other/1.png"].end, EntryEnd::kDone);
  EXPECT_TRUE(summary.done == 3 && summary.failed == 6) << testing::PrintToString(recorder_.heard);
}

TEST_F(BatchRunTest, ResultsThatReplaceEachOtherSaySo) {
  MakePhoto("1.png");
  for (const char* name : {"a", "a.dat", "a.thm"}) fs::copy_file(folder_ / "1.png", folder_ / name);
  const std::string replaces = "the result replaces an earlier one of this run";
  for (const bool dryRun : {true, false}) {
    options_.dryRun = dryRun;
    EXPECT_EQ(Run(folder_.path()).done, 4U);
    EXPECT_TRUE(recorder_.reports["a"].warnings.empty());
    EXPECT_EQ(recorder_.reports["a.dat"].warnings, Heard{replaces});
    EXPECT_EQ(recorder_.reports["a.thm"].warnings, Heard{replaces});
  }
}

TEST_F(BatchRunTest, GifsBecomeTiffsAndSaySo) {
  ASSERT_TRUE(test::SaveBitmap(FIF_GIF, test::NoiseBitmap(FIT_BITMAP, 40, 40, 8), folder_ / "a.gif"));
  MakePhoto("a.tif");
  MakePhoto("b/a.png");
  EXPECT_EQ(Run(folder_.path()).done, 3U);
  EXPECT_EQ(recorder_.reports["a.gif"].output, folder_ / "denoised/a.tif");
  EXPECT_EQ(recorder_.reports["a.gif"].warnings.size(), 1U);
  EXPECT_EQ(recorder_.reports["a.tif"].warnings.size(), 1U);
  EXPECT_TRUE(test::SamePicture(test::ReadPicture(folder_ / "denoised/a.tif"), Expected("a.tif", Set(2.0))));
}

TEST_F(BatchRunTest, AFolderForResultsThatCannotBeMade) {
  for (const char* name : {"a/1.png", "a/2.png", "b/1.png"}) MakePhoto(name);
  fs::create_symlink("nowhere/at/all", folder_ / "a/denoised");
  EXPECT_EQ(Run(folder_.path()).end, BatchSummary::End::kNoOutputFolder);
  EXPECT_EQ(
      recorder_.heard,
      (Heard{"+a/1.png", "a/1.png failed: the folder 'denoised' cannot be made: No such file or directory"}));

  options_.endWithoutOutputFolder = false;
  const BatchSummary summary = Run(folder_.path());
  EXPECT_TRUE(summary.end == BatchSummary::End::kComplete && summary.failed == 2 && summary.done == 1);
}

TEST_F(BatchRunTest, StopsBeforeTheNextOrWithinThePicture) {
  for (const char* name : {"1.png", "2.png", "3.png"}) MakePhoto(name);
  {
    BatchRun run(engine_, store_, options_, recorder_);
    recorder_.onStart = [&run](const std::string&) { run.RequestStop(); };
    const BatchSummary summary = run.ProcessFolder(folder_.path());
    EXPECT_TRUE(summary.end == BatchSummary::End::kStopped && summary.done == 1);
  }
  EXPECT_EQ(recorder_.heard, (Heard{"+1.png", "1.png done", "."}));
  recorder_.heard.clear();
  recorder_.onStart = [this](const std::string& name) {
    if (name == "2.png") engine_.control.RequestAbort();
  };
  const BatchSummary summary = Run(folder_.path());
  EXPECT_TRUE(summary.end == BatchSummary::End::kAborted && summary.done == 1);
  EXPECT_EQ(recorder_.heard, (Heard{"+1.png", "1.png done", ".", "+2.png"}));
  EXPECT_EQ(test::FilesIn(folder_ / "denoised"), 1U);
}

base::RunControl* aborting = nullptr;

TEST_F(BatchRunTest, AnAbortWhileSavingLeavesNothing) {
  MakePhoto("1.png");
  // In the place of the metadata's tool, which is asked once the folder of results is there.
  const test::TemporaryFolder tools;
  test::WriteBytes(tools / "exiftool",
                   "#!/bin/sh\nread line\nkill -USR1 $PPID\nwhile read line; do :; done\n");
  fs::permissions(tools / "exiftool", fs::perms::owner_all);
  aborting = &engine_.control;
  std::signal(SIGUSR1, [](int) { aborting->RequestAbort(); });
  const char* const path = std::getenv("PATH");
  const std::string before = path == nullptr ? "" : path;
  setenv("PATH", tools.path().c_str(), 1);
  options_.metadata = true;
  const BatchSummary summary = Run(folder_.path());
  setenv("PATH", before.c_str(), 1);
  EXPECT_EQ(summary.end, BatchSummary::End::kAborted);
  EXPECT_FALSE(fs::exists(folder_ / "denoised"));
}

TEST_F(BatchRunTest, FilesThatVanishAreSkipped) {
  for (const char* name : {"1.png", "2.png"}) MakePhoto(name);
  recorder_.onStart = [this](const std::string& name) { fs::remove(folder_ / name); };
  const BatchSummary summary = Run(folder_.path());
  EXPECT_EQ(summary.skipped, 2U);
  EXPECT_FALSE(fs::exists(folder_ / "denoised"));
}

TEST_F(BatchRunTest, MemoryRefusedToOneCostsThatOne) {
  for (const char* name : {"1.png", "2.png"}) MakePhoto(name);
  bool refused = false;
  recorder_.onWork = [&refused] {
    if (!std::exchange(refused, true)) throw std::bad_alloc();
  };
  const BatchSummary summary = Run(folder_.path());
  EXPECT_TRUE(summary.done == 1 && summary.failed == 1);
  EXPECT_EQ(recorder_.reports["1.png"].cause, "not enough memory");
}

TEST_F(BatchRunTest, AListNamesItsFiles) {
  for (const char* name : {"b/1.png", "a/2.png", "a/denoised/2.png", "a/3.png"}) MakePhoto(name);
  BatchRun run(engine_, store_, options_, recorder_);
  const BatchSummary summary = run.ProcessFiles({folder_ / "b/1.png", folder_ / "a", folder_ / "no.png",
                                                 folder_ / "a/denoised/2.png", folder_ / "a/2.png"});
  EXPECT_TRUE(summary.done == 2 && summary.skipped == 2 && summary.failed == 1)
      << testing::PrintToString(recorder_.heard);
  EXPECT_EQ(recorder_.reports["no.png"].cause, "no such file");
  EXPECT_EQ(test::FilesIn(folder_ / "a/denoised"), 1U);
  EXPECT_TRUE(fs::exists(folder_ / "b/denoised/1.png"));
  EXPECT_EQ(recorder_.heard.back(), ".");
  // Wherever the program was started.
  const fs::path before = fs::current_path();
  fs::create_directory(folder_ / "a/denoised/sub");
  fs::copy_file(folder_ / "a/3.png", folder_ / "a/denoised/sub/3.png");
  fs::current_path(folder_ / "a/denoised");
  BatchRun inside(engine_, store_, options_, recorder_);
  const BatchSummary among = inside.ProcessFiles({"2.png", "sub/3.png", "../3.png"});
  fs::current_path(before);
  EXPECT_TRUE(among.done == 1 && among.skipped == 2) << testing::PrintToString(recorder_.heard);
}

TEST_F(BatchRunTest, ADryRunWritesNothing) {
  MakePhoto("1.tif", "Canon", 800);
  options_.dryRun = true;
  EXPECT_EQ(Run(folder_.path()).done, 1U);
  EXPECT_EQ(recorder_.reports["1.tif"].output, folder_ / "denoised/1.tif");
  EXPECT_EQ(recorder_.reports["1.tif"].parameters.m_dStrength, 9.0);
  EXPECT_EQ(test::FilesIn(folder_.path()), 1U);
}

}  // namespace mirellon::batch
