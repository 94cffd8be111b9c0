#include "cli/command_line.h"

#include <algorithm>
#include <csignal>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "engine/detail_pyramid.h"
#include "engine/noise_estimate.h"
#include "engine/whole_picture.h"
#include "imageio/load_image.h"
#include "imageio/save_image.h"
#include "support/temporary_folder.h"
#include "support/test_pictures.h"

namespace mirellon::cli {
namespace {

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

  [[nodiscard]] std::string Path(const std::string& name) const { return folder_ / name; }

  void Save(const PicBuf& picture, const std::string& name) const {
    imageio::SaveOptions options;
    options.metadata = false;
    ASSERT_FALSE(imageio::WriteImageFile(picture, Path(name), {}, 90, options));
  }

  [[nodiscard]] PicBuf Load(const std::string& name) const {
    imageio::Document document;
    std::filesystem::path path = Path(name);
    EXPECT_FALSE(imageio::LoadImageFile(document, path, true));
    return std::move(document.source);
  }

  test::TemporaryFolder folder_;
  std::ostringstream out_;
  std::ostringstream err_;
  engine::EngineContext engine_;
  Shell shell_{.out = out_, .err = err_, .engine = engine_, .applicationData = folder_ / "settings"};
};

TEST_F(CommandLineTest, WrongUsageIsOneLineAndGivesTwo) {
  const struct {
    std::vector<std::string> arguments;
    const char* line;
  } cases[] = {
      {{}, "no command given; see 'mirellon-cli --help'"},
      {{"frobnicate"}, "'frobnicate': unknown command; see 'mirellon-cli --help'"},
      {{"batch", "."}, "'batch': unknown command; see 'mirellon-cli --help'"},
      {{"--json"}, "'--json': unknown option; see 'mirellon-cli --help'"},
      {{"new\nline"}, "'new?line': unknown command; see 'mirellon-cli --help'"},
      {{"denoise"}, "INPUT is required; see 'mirellon-cli denoise --help'"},
      {{"denoise", "a", "b", "--strength", "60"}, "--strength: 60 is not between 0 and 50"},
      {{"info"}, "INPUT is required; see 'mirellon-cli info --help'"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Run(c.arguments), ExitStatus::kUsage);
    EXPECT_EQ(err_.str(), std::string("mirellon-cli: ") + c.line + "\n");
    EXPECT_EQ(out_.str(), "");
  }
}

TEST_F(CommandLineTest, HelpAndVersionAreResults) {
  const std::vector<std::string> helps[] = {
      {"--help"}, {"-h"}, {"denoise", "--help"}, {"info", "-h"}, {"--version"}};
  for (const auto& arguments : helps) {
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
    engine::DenoiseParameters parameters;
    std::uint32_t quality;
  } cases[] = {
      {3, 8, "a.png", {}, {}, engine::kQualityMedium},
      {1, 16, "b.tif", {"--strength", "20", "--quality", "low"}, {.m_dStrength = 20.0}, engine::kQualityLow},
      {3,
       16,
       "c.png",
       {"--strength=5", "--strength-chroma=7", "--strength-chroma-large=0", "--dynamics=-1.5",
        "--sharp-tiny=2", "--sharp-medium=0.5", "--sharp-rough=3", "--artefacts=strong", "--quality=superior",
        "--threads=3"},
       {.m_dStrength = 5.0,
        .m_dStrengthChroma = 7.0,
        .m_dStrengthChromaLarge = 0.0,
        .m_dDynamics = -1.5,
        .m_dSharp1 = 2.0,
        .m_dSharp2 = 0.5,
        .m_dSharp3 = 3.0,
        .m_iUseMedian = 2},
       engine::kQualitySuperior},
  };
  for (const auto& c : cases) {
    PicBuf source = test::PhotoLikePicture(75, 52, c.components, c.bits, 5);
    Save(source, "photo.tif");
    std::vector<std::string> arguments = {"denoise", Path("photo.tif"), Path(c.target), "--no-metadata"};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    ASSERT_EQ(Run(arguments), ExitStatus::kDone) << err_.str();
    EXPECT_EQ(out_.str() + err_.str(), "");

    PicBuf expected;
    engine::EngineContext context;
    engine::DenoiseRequest request;
    request.destination = &expected.record();
    request.source = &source.record();
    request.strength = c.parameters.m_dStrength;
    request.strengthChroma = c.parameters.m_dStrengthChroma;
    request.strengthChromaLarge = c.parameters.m_dStrengthChromaLarge;
    request.quality = c.quality;
    request.dynamics = c.parameters.m_dDynamics;
    request.pointArtefactMode = c.parameters.m_iUseMedian;
    ASSERT_TRUE(engine::DenoiseWholePicture(context, request, false));
    ASSERT_FALSE(engine::SharpenPicture(expected, c.parameters.m_dSharp1, c.parameters.m_dSharp2,
                                        c.parameters.m_dSharp3));
    EXPECT_TRUE(test::SamePicture(Load(c.target), expected)) << c.target;
  }
}

TEST_F(CommandLineTest, ReportsAreTheOnlyOutput) {
  const PicBuf source = test::PhotoLikePicture(64, 48, 3, 8, 6);
  Save(source, "photo.png");
  ASSERT_EQ(Run({"denoise", Path("photo.png"), Path("out.gif"), "--json", "--threads=2", "--sharp-tiny=2"}),
            ExitStatus::kDone);
  const auto report = nlohmann::json::parse(out_.str());
  EXPECT_EQ(report["input"], Path("photo.png"));
  EXPECT_EQ(report["output"], Path("out.tif"));
  EXPECT_EQ(report["parameters"]["m_dSharp1"], 2.0);
  EXPECT_EQ(report["threads"], 2);
  const auto& ms = report["ms"];
  EXPECT_GE(ms["total"].get<double>() + 0.01, ms["load"].get<double>() + ms["denoise"].get<double>() +
                                                  ms["sharpen"].get<double>() + ms["save"].get<double>());
  EXPECT_GT(ms["denoise"].get<double>(), 0.0);
  // Each warning stands in the report and, unless quiet, on standard error.
  const std::string errors = err_.str();
  EXPECT_EQ(report["warnings"].size(),
            static_cast<std::size_t>(std::count(errors.begin(), errors.end(), '\n')));
  EXPECT_FALSE(report["warnings"].empty());
  EXPECT_EQ(Run({"denoise", Path("photo.png"), Path("o.gif"), "--json", "--quiet"}), ExitStatus::kDone);
  EXPECT_EQ(err_.str(), "");

  ASSERT_EQ(Run({"info", Path("photo.png"), "--json"}), ExitStatus::kDone);
  const auto info = nlohmann::json::parse(out_.str());
  const engine::MeasuredNoise noise = engine::MeasureNoise(source);
  EXPECT_EQ(info["noise"]["luminance"], noise.luminance);
  EXPECT_EQ(info["noise"]["chrominance"], noise.chrominance);
  EXPECT_EQ(info["format"], "PNG");
  EXPECT_EQ(info["width"], 64);
  EXPECT_EQ(info["cameraKey"], "");
}

TEST_F(CommandLineTest, OverwriteReplacesAnExistingTarget) {
  Save(test::PhotoLikePicture(32, 32, 3, 8, 7), "photo.png");
  Save(test::ConstantPicture(8, 8, 1, 8, 3), "out.png");
  const std::vector<std::string> arguments = {"denoise", Path("photo.png"), Path("out.png"), "--no-metadata"};
  EXPECT_EQ(Run(arguments), ExitStatus::kOutput);
  EXPECT_NE(err_.str().find("the file exists already; --overwrite replaces it"), std::string::npos);
  EXPECT_EQ(Load("out.png")->width, 8);
  std::vector<std::string> forced = arguments;
  forced.emplace_back("--overwrite");
  EXPECT_EQ(Run(forced), ExitStatus::kDone);
  EXPECT_EQ(Load("out.png")->width, 32);
}

TEST_F(CommandLineTest, ProgressFollowsItsModeAndTheTerminal) {
  Save(test::PhotoLikePicture(64, 48, 3, 8, 8), "photo.png");
  const struct {
    std::vector<std::string> options;
    bool terminal;
    bool drawn;
  } cases[] = {
      {{}, false, false},
      {{}, true, true},
      {{"--progress", "always"}, false, true},
      {{"--progress", "never"}, true, false},
      {{"--quiet"}, true, false},
      {{"--progress", "always", "--quiet"}, false, false},
  };
  for (const auto& c : cases) {
    shell_.errIsTerminal = c.terminal;
    std::vector<std::string> arguments = {"denoise", Path("photo.png"), Path("out.png"), "--no-metadata",
                                          "--overwrite"};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    ASSERT_EQ(Run(arguments), ExitStatus::kDone) << err_.str();
    EXPECT_EQ(err_.str().find("denoising") != std::string::npos, c.drawn);
    EXPECT_EQ(err_.str().find("written") != std::string::npos, c.drawn);
    EXPECT_EQ(out_.str(), "");
  }
}

TEST_F(CommandLineTest, AnAbortEndsTheRunWithItsSignal) {
  Save(test::PhotoLikePicture(64, 48, 3, 8, 9), "photo.png");
  engine_.control.RequestAbort();
  EXPECT_EQ(Run({"denoise", Path("photo.png"), Path("out.png")}), ExitStatus::kInterrupted);
  shell_.caughtSignal = [] { return SIGTERM; };
  EXPECT_EQ(static_cast<int>(Run({"denoise", Path("photo.png"), Path("out.png")})), 143);
  EXPECT_EQ(static_cast<int>(Run({"info", Path("photo.png")})), 143);
  EXPECT_EQ(out_.str(), "");
  EXPECT_FALSE(std::filesystem::exists(Path("out.png")));
}

}  // namespace
}  // namespace mirellon::cli
