#include "cli/command_line.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/arguments.h"
#include "engine/detail_pyramid.h"
#include "engine/noise_estimate.h"
#include "engine/whole_picture.h"
#include "imageio/image_files.h"
#include "support/test_pictures.h"

namespace mirellon::cli {

using picture::PicBuf;

class CommandLineTest : public ::testing::Test {
 protected:
  ExitStatus Run(const std::vector<std::string>& arguments) {
    std::vector<const char*> args;
    args.reserve(arguments.size());
    for (const std::string& argument : arguments) args.push_back(argument.c_str());
    out_.str("");
    err_.str("");
    return RunCommandLine(args, shell_);
  }

  // From photo.tif to `target` without metadata.
  ExitStatus Denoise(const std::string& target, const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"denoise", Path("photo.tif"), Path(target), "--no-metadata"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Run(arguments);
  }

  [[nodiscard]] std::string Path(const std::string& name) const { return folder_ / name; }

  PicBuf MakePhoto(int width, int height, int components, int bits) const {
    PicBuf picture = test::PhotoLikePicture(width, height, components, bits, 5);
    EXPECT_FALSE(test::WritePicture(Path("photo.tif"), picture));
    return picture;
  }

  test::TemporaryFolder folder_;
  std::ostringstream out_;
  std::ostringstream err_;
  engine::EngineContext engine_;
  Shell shell_{.out = out_, .err = err_, .engine = engine_, .applicationData = folder_ / "settings"};
};

TEST_F(CommandLineTest, WrongUsageIsOneLineAndGivesTwo) {
  const std::vector<std::pair<std::vector<std::string>, const char*>> cases = {
      {{}, "no command given; see 'mirellon-cli --help'"},
      {{"polish", "."}, "'polish': unknown command; see 'mirellon-cli --help'"},
      {{"--json"}, "'--json': unknown option; see 'mirellon-cli --help'"},
      {{"new\nline"}, "'new?line': unknown command; see 'mirellon-cli --help'"},
      {{"denoise", "a", "b", "--strength", "60"}, "--strength: 60 is not between 0 and 50"},
      {{"info"}, "INPUT is required; see 'mirellon-cli info --help'"}};
  for (const auto& [arguments, line] : cases) {
    EXPECT_EQ(Run(arguments), ExitStatus::kUsage);
    EXPECT_EQ(err_.str(), std::string("mirellon-cli: ") + line + "\n");
    EXPECT_EQ(out_.str(), "");
  }
}

TEST_F(CommandLineTest, HelpAndVersionAreResults) {
  const std::vector<std::string> cases[] = {{"--help"},     {"-h"},          {"denoise", "--help"},
                                            {"info", "-h"}, {"batch", "-h"}, {"--version"}};
  for (const auto& arguments : cases) {
    EXPECT_EQ(Run(arguments), ExitStatus::kDone);
    EXPECT_NE(out_.str().find("mirellon-cli"), std::string::npos);
    EXPECT_EQ(err_.str(), "");
  }
}

TEST_F(CommandLineTest, DenoiseIsTheEngineBetweenTwoFiles) {
  const struct {
    int components;
    int bits;
    const char* target;
    std::vector<std::string> options;
  } cases[] = {{3, 8, "a.png", {"--profile=none"}},
               {1, 16, "b.tif", {"--profile=none", "--strength=20", "--quality=low"}},
               {3,
                16,
                "c.png",
                {"--strength=5", "--strength-chroma=7", "--strength-chroma-large=0", "--dynamics=-1.5",
                 "--sharp-tiny=2", "--sharp-medium=0.5", "--sharp-rough=3", "--artefacts=strong",
                 "--quality=superior", "--threads=3"}}};
  for (const auto& c : cases) {
    PicBuf source = MakePhoto(75, 52, c.components, c.bits);
    ASSERT_EQ(Denoise(c.target, c.options), ExitStatus::kDone) << err_.str();
    EXPECT_EQ(out_.str() + err_.str(), "");

    std::vector<const char*> args = {"in", "out"};
    for (const std::string& option : c.options) args.push_back(option.c_str());
    DenoiseArguments read;
    ASSERT_EQ(ParseDenoiseArguments(args, read).text, "");
    engine::DenoiseParameters parameters;
    read.given.Replace(parameters);
    PicBuf expected;
    engine::EngineContext context;
    engine::DenoiseRequest request;
    request.destination = &expected.record();
    request.source = &source.record();
    request.strength = parameters.m_dStrength;
    request.strengthChroma = parameters.m_dStrengthChroma;
    request.strengthChromaLarge = parameters.m_dStrengthChromaLarge;
    request.quality = read.quality;
    request.dynamics = parameters.m_dDynamics;
    request.pointArtefactMode = parameters.m_iUseMedian;
    ASSERT_TRUE(engine::DenoiseWholePicture(context, request, false));
    ASSERT_FALSE(
        engine::SharpenPicture(expected, parameters.m_dSharp1, parameters.m_dSharp2, parameters.m_dSharp3));
    EXPECT_TRUE(test::SamePicture(test::ReadPicture(Path(c.target)), expected)) << c.target;
  }
}

TEST_F(CommandLineTest, ReportsAreTheOnlyOutput) {
  const PicBuf source = MakePhoto(64, 48, 3, 8);
  ASSERT_EQ(Run({"denoise", Path("photo.tif"), Path("out.gif"), "--json", "--threads=2"}), ExitStatus::kDone);
  const auto report = nlohmann::json::parse(out_.str());
  EXPECT_EQ(report["output"], Path("out.tif"));
  EXPECT_EQ(report["threads"], 2);
  const auto ms = report["ms"].get<std::map<std::string, double>>();
  EXPECT_GE(ms.at("total") + 0.01, ms.at("load") + ms.at("denoise") + ms.at("sharpen") + ms.at("save"));
  EXPECT_GT(ms.at("denoise"), 0.0);
  // Each warning, here of the name and of the metadata, stands in the report and on standard error unless
  // quiet.
  const std::string errors = err_.str();
  EXPECT_EQ(report["warnings"].size(), 2U);
  EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 2);
  EXPECT_TRUE(errors.starts_with("mirellon-cli: warning: '")) << errors;
  EXPECT_EQ(Denoise("o.gif", {"--json", "--quiet"}), ExitStatus::kDone);
  EXPECT_EQ(err_.str(), "");

  ASSERT_EQ(Run({"info", Path("photo.tif"), "--json"}), ExitStatus::kDone);
  const auto info = nlohmann::json::parse(out_.str());
  const engine::MeasuredNoise noise = engine::MeasureNoise(source);
  EXPECT_EQ(info["noise"]["luminance"], noise.luminance);
  EXPECT_EQ(info["noise"]["chrominance"], noise.chrominance);
  EXPECT_TRUE(info["format"] == "TIFF" && info["width"] == 64 && info["cameraKey"] == nlohmann::json(""));
}

TEST_F(CommandLineTest, ProgressFollowsItsModeAndTheTerminal) {
  MakePhoto(64, 48, 3, 8);
  const struct {
    std::vector<std::string> options;
    bool terminal;
    bool drawn;
  } cases[] = {{{}, false, false},
               {{}, true, true},
               {{"--progress=always"}, false, true},
               {{"--progress=never"}, true, false},
               {{"--quiet"}, true, false},
               {{"--progress=always", "--quiet"}, false, false}};
  for (const auto& c : cases) {
    shell_.errIsTerminal = c.terminal;
    std::vector<std::string> options = c.options;
    options.emplace_back("--overwrite");
    ASSERT_EQ(Denoise("out.png", options), ExitStatus::kDone) << err_.str();
    EXPECT_EQ(err_.str().find("denoising") != std::string::npos, c.drawn);
    EXPECT_EQ(err_.str().find("written") != std::string::npos, c.drawn);
    EXPECT_EQ(out_.str(), "");
  }
}

}  // namespace mirellon::cli
