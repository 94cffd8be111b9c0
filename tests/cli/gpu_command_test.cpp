// The real program with the card, and on machines where there is none.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/child_process.h"
#include "imageio/image_files.h"
#include "support/test_pictures.h"

namespace mirellon {
namespace {

using nlohmann::json;
using picture::PicBuf;
using Arguments = std::vector<std::string>;

// The driver is told by its own variables to be a card that it is not.
constexpr const char* kNoDriver = "__EGL_VENDOR_LIBRARY_DIRS=/nowhere";

struct Outcome {
  int status;
  json report;
  std::string errors;
};

class GpuCommandTest : public ::testing::Test {
 protected:
  [[nodiscard]] Outcome Run(const Arguments& arguments, const std::string& environment = "A=B",
                            const std::string& errorName = "errors") const {
    const std::string script = "exec 2>\"$1\"; export MIRELLON_CONFIG_HOME=\"$1.d\"; shift; exec env \"$@\"";
    const auto errors = folder_ / errorName;
    Arguments all = {"sh", "-c", script, "sh", errors.string(), environment, MIRELLON_CLI};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.emplace_back("--json");
    const base::ChildResult result = base::RunChild(all, folder_.path(), nullptr);
    return {result.status, json::parse(result.output, nullptr, false), test::ReadBytes(errors)};
  }

  [[nodiscard]] Outcome Denoise(const std::string& output, const std::string& backend,
                                const std::string& environment = "A=B") const {
    return Run({"denoise", "photo.tif", output, "--profile=none", "--strength=30", "--quality=low",
                "--threads=2", "--no-metadata", "--backend", backend},
               environment, output + ".errors");
  }

  [[nodiscard]] double MeanDifference(const std::string& a, const std::string& b) const {
    const PicBuf left = test::ReadPicture(folder_ / a);
    const PicBuf right = test::ReadPicture(folder_ / b);
    EXPECT_TRUE(left->byteSize > 0 && left->byteSize == right->byteSize);
    double sum = 0.0;
    for (int i = 0; i < left->byteSize; ++i) sum += std::abs(left->samples[i] - right->samples[i]);
    return sum / left->byteSize;
  }

  void MakePhoto(int width, int height) const {
    const PicBuf photo = test::PhotoLikePicture(width, height, 3, 8, 5);
    ASSERT_FALSE(test::WritePicture(folder_ / "photo.tif", photo));
  }

  test::TemporaryFolder folder_;
};

TEST_F(GpuCommandTest, TellsWhetherAndWhyNot) {
  const Outcome usable = Run({"gpu"});
  ASSERT_EQ(usable.status, 0) << "these tests need an OpenGL driver (libgl1-mesa-dri, libegl1): "
                              << usable.errors;
  const json& report = usable.report;
  EXPECT_EQ(report["schema"], 1);
  EXPECT_EQ(report["usable"], true);
  EXPECT_EQ(report["refusal"], nullptr);
  EXPECT_FALSE(report["renderer"].get<std::string>().empty() || report["version"].get<std::string>().empty());
  EXPECT_EQ(report["extensions"], (json{{"GL_EXT_framebuffer_object", true},
                                        {"GL_ARB_shading_language_100", true},
                                        {"GL_ARB_texture_non_power_of_two", true}}));
  EXPECT_EQ(report["largestTile"], 1000);
  EXPECT_LE(report["largestDifference"].get<int>(), 5);
  EXPECT_TRUE(usable.errors.starts_with("Status: Using GLEW ")) << usable.errors;

  const std::map<std::string, std::string> refusals = {
      {kNoDriver, "no graphics driver can be opened"},
      {"LIBGL_DRIVERS_PATH=/nowhere", "no graphics driver can be opened"},
      {"MESA_EXTENSION_OVERRIDE=-GL_ARB_texture_non_power_of_two",
       "the graphics driver lacks GL_ARB_texture_non_power_of_two"},
      {"MESA_EXTENSION_OVERRIDE=-GL_ARB_texture_float",
       "the card cannot draw to textures of floating-point numbers"}};
  for (const auto& [environment, refusal] : refusals) {
    const Outcome outcome = Run({"gpu"}, environment);
    EXPECT_EQ(outcome.status, 1) << environment;
    EXPECT_EQ(outcome.report["usable"], false) << environment;
    EXPECT_EQ(outcome.report["refusal"], refusal) << environment;
    EXPECT_EQ(outcome.report["largestDifference"], nullptr) << environment;
  }
}

TEST_F(GpuCommandTest, TellsTheSameInWords) {
  const auto words = [&](const std::string& environment) {
    return base::RunChild({"sh", "-c", "exec env \"$@\" 2>errors", "sh", environment, MIRELLON_CLI, "gpu"},
                          folder_.path(), nullptr)
        .output;
  };
  const std::string usable = words("A=B");
  EXPECT_TRUE(usable.starts_with("Usable:         yes\nRenderer:       ")) << usable;
  for (const char* line : {"\nVendor:         ", "\nOpenGL:         ", "\nGL_EXT_framebuffer_object: yes\n",
                           "\nGL_ARB_shading_language_100: yes\n", "\nGL_ARB_texture_non_power_of_two: yes\n",
                           "\nLargest tile:   1000\n", "\nFormat:         GL_LUMINANCE32F_ARB\n",
                           "\nAgreement test: largest difference "}) {
    EXPECT_NE(usable.find(line), std::string::npos) << line << "\nin\n" << usable;
  }
  const std::string refused = words(kNoDriver);
  EXPECT_TRUE(refused.starts_with("Usable:         no: no graphics driver can be opened\n")) << refused;
  EXPECT_EQ(refused.find("Agreement test: largest"), std::string::npos) << refused;
}

TEST_F(GpuCommandTest, EveryBackendGivesThePhotographAndNamesItself) {
  for (const auto& [width, height] : {std::pair{90, 60}, {1040, 24}}) {
    MakePhoto(width, height);
    std::filesystem::remove(folder_ / "cpu.tif");
    ASSERT_EQ(Denoise("cpu.tif", "cpu").status, 0);
    for (const std::string backend : {"gpu", "fusion"}) {
      std::filesystem::remove(folder_ / (backend + ".tif"));
      const Outcome outcome = Denoise(backend + ".tif", backend);
      ASSERT_EQ(outcome.status, 0) << outcome.errors;
      EXPECT_EQ(outcome.report["backend"], backend);
      EXPECT_EQ(outcome.report["warnings"], json::array());
      EXPECT_LT(MeanDifference(backend + ".tif", "cpu.tif"), 1.5) << backend;
      EXPECT_GT(MeanDifference(backend + ".tif", "photo.tif"), 3.0) << backend;
    }
  }
}

TEST_F(GpuCommandTest, WithoutADriverTheProcessorWorksAndAWarningSaysSo) {
  MakePhoto(90, 60);
  ASSERT_EQ(Denoise("cpu.tif", "cpu").status, 0);
  const Outcome outcome = Denoise("gpu.tif", "gpu", kNoDriver);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.report["backend"], "cpu");
  EXPECT_EQ(outcome.report["warnings"].size(), 1U);
  EXPECT_EQ(outcome.errors,
            "mirellon-cli: warning: Can't Create A GL Device Context.\n"
            "mirellon-cli: warning: the graphics card is not used: no graphics driver can be opened; the "
            "processor does the work\n");
  EXPECT_EQ(MeanDifference("gpu.tif", "cpu.tif"), 0.0);
}

TEST_F(GpuCommandTest, BatchesUseTheCardToo) {
  MakePhoto(90, 60);
  test::WriteBytes(folder_ / "list", "photo.tif\n");
  const Arguments batch = {"batch",         "--files-from=list", "--quality=low",
                           "--no-metadata", "--quiet",           "--backend=fusion"};
  for (const std::string environment : {"A=B", kNoDriver}) {
    std::filesystem::remove(folder_ / "denoised/photo.tif");
    const Outcome outcome = Run(batch, environment);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.report["backend"], environment == kNoDriver ? "cpu" : "fusion");
    EXPECT_EQ(outcome.report["warnings"], json::array());
    EXPECT_TRUE(std::filesystem::exists(folder_ / "denoised/photo.tif"));
  }
}

TEST_F(GpuCommandTest, TwoProcessesShareTheCard) {
  MakePhoto(90, 60);
  ASSERT_EQ(Denoise("alone.tif", "gpu").status, 0);
  std::thread other([&] { EXPECT_EQ(Denoise("a.tif", "gpu").report["backend"], "gpu"); });
  EXPECT_EQ(Denoise("b.tif", "gpu").report["backend"], "gpu");
  other.join();
  EXPECT_EQ(MeanDifference("a.tif", "alone.tif"), 0.0);
  EXPECT_EQ(MeanDifference("b.tif", "alone.tif"), 0.0);
}

}  // namespace
}  // namespace mirellon
