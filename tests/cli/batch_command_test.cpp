#include <algorithm>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "base/file_descriptor.h"
#include "cli/batch_report.h"
#include "cli/command_line.h"
#include "cli/diagnostics.h"
#include "cli/file_list.h"
#include "imageio/image_files.h"
#include "support/test_pictures.h"

namespace mirellon::cli {

namespace fs = std::filesystem;

class BatchCommandTest : public ::testing::Test {
 protected:
  ExitStatus Run(const std::vector<std::string>& options) {
    std::vector<const char*> args = {"batch"};
    for (const std::string& option : options) args.push_back(option.c_str());
    out_.str("");
    err_.str("");
    return RunCommandLine(args, shell_);
  }
  void MakePhoto(const std::string& name) {
    fs::create_directories((folder_ / name).parent_path());
    EXPECT_FALSE(test::WritePicture(folder_ / name, test::PhotoLikePicture(30, 20, 3, 8, 1)));
  }
  std::vector<nlohmann::json> Lines() const {
    std::vector<nlohmann::json> lines;
    std::istringstream text(out_.str());
    for (std::string line; std::getline(text, line);) lines.push_back(nlohmann::json::parse(line));
    return lines;
  }
  [[nodiscard]] std::string Path(const std::string& name) const { return folder_ / name; }

  test::TemporaryFolder folder_;
  test::TemporaryFolder settings_;
  std::ostringstream out_;
  std::ostringstream err_;
  engine::EngineContext engine_;
  Shell shell_{.out = out_, .err = err_, .engine = engine_, .applicationData = settings_.path()};
};

TEST_F(BatchCommandTest, OneLineAFileTellsWhatBecameOfIt) {
  MakePhoto("a/1.png");
  MakePhoto("a/n\xFF.bmp");
  test::WriteBytes(folder_ / "a/2.png", "broken");
  test::WriteBytes(folder_ / "notes.txt", "x");
  EXPECT_EQ(Run({Path(""), "--json", "--threads=3", "--quality=low", "--no-metadata"}), ExitStatus::kFailed);
  const auto lines = Lines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0]["input"], Path("a/1.png"));
  EXPECT_EQ(lines[0]["output"], Path("a/denoised/1.png"));
  EXPECT_TRUE(lines[0]["status"] == "done" && lines[0]["quality"] == "low" && lines[0]["threads"] == 3);
  EXPECT_EQ(lines[0]["profile"],
            (nlohmann::json{{"camera", "<<Unknown Camera>>"}, {"iso", 100}, {"rule", "fallback"}}));
  EXPECT_GT(lines[0]["ms"]["total"], 0.0);
  EXPECT_TRUE(lines[1]["status"] == "failed" && !lines[1]["cause"].get<std::string>().empty());
  EXPECT_TRUE(lines[2].contains("inputBase64") && lines[2].contains("outputBase64"));
  EXPECT_EQ(lines[3]["status"], "skipped");
  const std::string errors = err_.str();
  EXPECT_TRUE(errors.starts_with("mirellon-cli: '" + Path("a/2.png") + "': ")) << errors;
  EXPECT_NE(errors.find("mirellon-cli: 2 denoised, 1 skipped (1 of them no photographs), 1 failed, 00:0"),
            std::string::npos)
      << errors;
  EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 2);
}

TEST_F(BatchCommandTest, TheStatusTellsHowItEnded) {
  test::WriteBytes(folder_ / "notes.txt", "x");
  EXPECT_EQ(Run({Path("")}), ExitStatus::kInput);
  EXPECT_NE(err_.str().find("no photograph to denoise"), std::string::npos);
  for (const char* folder : {"missing", "notes.txt"}) EXPECT_EQ(Run({Path(folder)}), ExitStatus::kInput);
  EXPECT_EQ(Run({"--files-from", Path("missing")}), ExitStatus::kInput);
  for (const std::vector<std::string>& wrong :
       {std::vector<std::string>{}, {"a", "--files-from=b"}, {"a", "b"}, {"a", "--quality=best"}}) {
    EXPECT_EQ(Run(wrong), ExitStatus::kUsage);
  }
  MakePhoto("1.png");
  EXPECT_EQ(Run({Path(""), "--quiet", "--no-metadata"}), ExitStatus::kDone);
  EXPECT_EQ(out_.str() + err_.str(), "");
  engine_.control.RequestAbort();
  shell_.caughtSignal = [] { return 15; };
  EXPECT_EQ(static_cast<int>(Run({Path("")})), 143);
}

TEST_F(BatchCommandTest, AListMayComeFromAFileOrStandardInput) {
  for (const char* name : {"1.png", "new\nline.png"}) MakePhoto(name);
  test::WriteBytes(folder_ / "list", Path("1.png") + "\n\n" + Path("no.png") + "\n");
  EXPECT_EQ(Run({"--files-from", Path("list"), "--json"}), ExitStatus::kFailed);
  ASSERT_EQ(Lines().size(), 2U);
  EXPECT_EQ(Lines()[1]["status"], "failed");
  test::WriteBytes(folder_ / "list", Path("new\nline.png") + std::string(1, '\0'));
  const base::FileDescriptor list(open(Path("list").c_str(), O_RDONLY | O_CLOEXEC));
  shell_.in = list.get();
  EXPECT_EQ(Run({"--files-from=-"}), ExitStatus::kDone);
  EXPECT_TRUE(fs::exists(folder_ / "denoised/new\nline.png"));

  EXPECT_EQ(SplitFileList(" a\r\nb\nc").size(), 3U);
  EXPECT_EQ(SplitFileList(" a\r\nb").front(), " a\r");
  EXPECT_TRUE(SplitFileList("\n\n").empty());
}

TEST_F(BatchCommandTest, AListThatDoesNotEndMayBeStopped) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  const base::FileDescriptor pipe(open(Path("pipe").c_str(), O_RDWR | O_CLOEXEC));
  shell_.in = pipe.get();
  for (const std::string& list : {std::string("-"), Path("pipe")}) {
    engine_.control.ClearAbort();
    std::jthread stopper([this] { engine_.control.RequestAbort(); });
    EXPECT_EQ(Run({"--files-from", list}), ExitStatus::kInterrupted);
  }
  engine_.control.ClearAbort();
  test::WriteBytes(folder_ / "list", "0123456789");
  std::vector<fs::path> files;
  EXPECT_EQ(ReadFileList(Path("list"), -1, engine_.control, files, 9), "the list is longer than 9 bytes");
  EXPECT_EQ(ReadFileList(Path("list"), -1, engine_.control, files, 10), "");
  EXPECT_EQ(ReadFileList(folder_.path(), -1, engine_.control, files), "Is a directory");
}

TEST_F(BatchCommandTest, TakesTheSettingsAndProfilesGiven) {
  MakePhoto("1.png");
  fs::create_directories(settings_ / "MirellonGPU20");
  test::WriteBytes(settings_ / "MirellonGPU20/MirellonGPU20.txt", "[General]\nQuality=3\n");
  ASSERT_EQ(Run({Path(""), "--json", "--profiles", Path("mine.ini")}), ExitStatus::kDone);
  EXPECT_EQ(Lines()[0]["quality"], "superior");
  EXPECT_FALSE(fs::exists(settings_ / "MirellonGPU20/CameraISOSettingX.ini"));
  ASSERT_EQ(Run({Path(""), "--json", "--quality=medium"}), ExitStatus::kDone);
  EXPECT_EQ(Lines()[0]["quality"], "medium");
}

TEST_F(BatchCommandTest, ADryRunListsWhatWouldBeDone) {
  MakePhoto("1.png");
  fs::remove_all(folder_ / "denoised");
  ASSERT_EQ(Run({Path(""), "--dry-run", "--quiet"}), ExitStatus::kDone);
  EXPECT_EQ(err_.str(), "");
  EXPECT_EQ(out_.str(), Quoted(Path("1.png")) + " -> " + Quoted(Path("denoised/1.png")) +
                            " (<<Unknown Camera>>, ISO 100)\n");
  EXPECT_FALSE(fs::exists(folder_ / "denoised"));
}

TEST_F(BatchCommandTest, RepeatedWarningsAreCounted) {
  for (const char* name : {"1.gif", "2.gif", "3.gif"}) {
    ASSERT_TRUE(test::SaveBitmap(FIF_GIF, test::NoiseBitmap(FIT_BITMAP, 20, 20, 8), folder_ / name));
  }
  ASSERT_EQ(Run({Path("")}), ExitStatus::kDone);
  const std::string errors = err_.str();
  EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 3) << errors;
  EXPECT_NE(errors.find("warning: 2 more with the warning: the metadata was not copied"), std::string::npos);
}

TEST_F(BatchCommandTest, ProgressProjectsTheDuration) {
  BatchArguments arguments;
  arguments.progress = ProgressMode::kAlways;
  std::chrono::steady_clock::time_point now;
  BatchReporter reporter(arguments, {}, 10, shell_, [&now] { return now; });
  const auto draw = [&] {
    err_.str("");
    reporter.PictureProgress()->SetRange(0, 4);
    const std::string line = err_.str().substr(err_.str().rfind('\r') + 1);
    return line.substr(0, line.find('%') + 1);
  };
  EXPECT_EQ(draw(), "1/10 00:00   0 %");
  now += std::chrono::seconds(13);
  reporter.ImageDone();
  now += std::chrono::seconds(60);
  EXPECT_EQ(draw(), "2/10 01:13 of 02:10   0 %");
}

TEST_F(BatchCommandTest, TheDocumentationNamesEveryOption) {
  ASSERT_EQ(Run({"--help"}), ExitStatus::kDone);
  const std::string text = test::ReadBytes(MIRELLON_DOCS "/batch.md");
  const std::string help = out_.str();
  std::size_t options = 0;
  for (std::size_t at = help.find("\n  --"); at != std::string::npos; at = help.find("\n  --", at + 1)) {
    const std::string option = help.substr(at + 3, help.find(' ', at + 3) - at - 3);
    EXPECT_NE(text.find("\n| `" + option), std::string::npos) << option;
    ++options;
  }
  std::size_t rows = 0;
  for (std::size_t at = text.find("\n| `--"); at != std::string::npos; at = text.find("\n| `--", at + 1))
    ++rows;
  EXPECT_EQ(rows, options);
}

}  // namespace mirellon::cli
