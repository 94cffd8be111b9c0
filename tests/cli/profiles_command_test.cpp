// Stored sets from the command line: kept by 'profiles', used by 'denoise' and 'info'.
#include "cli/profiles_command.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/command_line.h"
#include "engine/noise_estimate.h"
#include "imageio/image_files.h"
#include "profiles/profile_store.h"
#include "support/test_pictures.h"

namespace mirellon::cli {

using nlohmann::json;
using Words = std::vector<std::string>;

class ProfilesCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // The shipped file: two speeds of the catch-all.
    std::filesystem::create_directory(folder_ / "shipped");
    profiles::NoiseProfileStore store({folder_ / "shipped" / profiles::kProfileFileName, {}});
    engine::DenoiseParameters set;
    set.m_dImmerkaerY = set.m_dImmerkaerUV = 0.0;
    set.m_dStrength = 20.0;
    ASSERT_FALSE(store.AddOrReplace(profiles::kUnknownCamera, L"200", set));
    set.m_dImmerkaerY = set.m_dImmerkaerUV = 40.0;
    set.m_dStrength = 40.0;
    ASSERT_FALSE(store.AddOrReplace(profiles::kUnknownCamera, L"6400", set) || store.Save());
    shell_.resourceFolders = {folder_ / "shipped"};
  }

  ExitStatus Run(const Words& arguments) {
    std::vector<const char*> args;
    args.reserve(arguments.size());
    for (const std::string& argument : arguments) args.push_back(argument.c_str());
    out_.str("");
    err_.str("");
    return RunCommandLine(args, shell_);
  }

  // Runs "profiles ..." and gives what it printed, its errors where it failed.
  std::string Profiles(const Words& arguments) {
    Words all = {"profiles"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return Run(all) == ExitStatus::kDone ? out_.str() : err_.str();
  }

  // A photograph of that camera, and what was measured on it.
  engine::MeasuredNoise MakePhoto(const std::string& name, const std::string& make, const std::string& model,
                                  int iso, std::uint32_t seed = 5) {
    std::filesystem::create_directories((folder_ / name).parent_path());
    const picture::PicBuf picture = test::PhotoLikePicture(64, 48, 3, 8, seed);
    EXPECT_FALSE(test::WritePicture(folder_ / name, picture));
    const auto image = Exiv2::ImageFactory::open(Path(name));
    image->exifData()["Exif.Image.Make"] = make;
    image->exifData()["Exif.Image.Model"] = model;
    image->exifData()["Exif.Photo.ISOSpeedRatings"] = static_cast<std::uint16_t>(iso);
    image->writeMetadata();
    return engine::MeasureNoise(picture);
  }

  [[nodiscard]] std::string Path(const std::string& name) const { return folder_ / name; }
  [[nodiscard]] std::filesystem::path UserFile() const {
    return folder_ / "settings/MirellonGPU20/CameraISOSettingX.ini";
  }

  test::TemporaryFolder folder_;
  std::ostringstream out_;
  std::ostringstream err_;
  engine::EngineContext engine_;
  Shell shell_{.out = out_, .err = err_, .engine = engine_, .applicationData = folder_ / "settings"};
};

TEST_F(ProfilesCommandTest, SetsAreStoredShownAndRemoved) {
  EXPECT_EQ(Profiles({"path"}), UserFile().string() + "\n");
  EXPECT_EQ(Profiles({"list"}), "<<Unknown Camera>>: 200 6400\n");
  EXPECT_FALSE(std::filesystem::exists(UserFile()));  // nothing to save yet
  EXPECT_EQ(
      Profiles({"set", "Canon / EOS 5D", "400", "--strength=12.5", "--noise-chrominance=3", "--json"}),
      R"({"schema":1,"camera":"Canon / EOS 5D","iso":400,"m_dStrength":12.5,"m_dStrengthChroma":10.0,)"
      R"("m_dStrengthChromaLarge":0.0,"m_dDynamics":0.0,"m_dSharp1":1.0,"m_dSharp2":1.0,"m_dSharp3":1.0,)"
      R"("m_dImmerkaerY":10.0,"m_dImmerkaerUV":3.0,"m_iUseMedian":0})"
      "\n");
  // The same entry by another spelling: what is not given stays.
  json set = json::parse(Profiles({"set", "Canon/EOS5D", "400", "--artefacts=strong", "--json"}));
  EXPECT_TRUE(set["m_dStrength"] == 12.5 && set["m_iUseMedian"] == 2 && set["camera"] == "Canon / EOS 5D");
  EXPECT_EQ(Profiles({"set", "caf\xC3\xA9", "16"}).substr(0, 15), "caf\xC3\xA9, ISO 16\n ");
  EXPECT_EQ(json::parse(Profiles({"list", "--json"})),
            json::parse(R"([{"camera": "<<Unknown Camera>>", "iso": [200, 6400]},
                            {"camera": "Canon / EOS 5D", "iso": [400]}, {"camera": "caf\u00e9", "iso": [16]}])"));
  std::istringstream lines(Profiles({"show", "<<Unknown Camera>>", "--json"}));
  std::string line;
  for (const int iso : {200, 6400}) {
    ASSERT_TRUE(std::getline(lines, line));
    EXPECT_EQ(json::parse(line)["iso"], iso);
  }
  EXPECT_EQ(Profiles({"remove", "<<Unknown Camera>>", "200"}) + Profiles({"remove", "Canon / EOS 5D"}), "");
  EXPECT_EQ(Profiles({"remove", "caf\xC3\xA9", "16"}), "");
  EXPECT_EQ(Profiles({"list"}), "<<Unknown Camera>>: 6400\n");
}

TEST_F(ProfilesCommandTest, RefusalsSayWhatIsWrong) {
  const std::string in = " in '" + UserFile().string() + "'; 'mirellon-cli profiles list' names them";
  const std::pair<Words, std::string> cases[] = {
      {{}, "profiles: no action given; see 'mirellon-cli profiles --help'"},
      {{"drop"}, "profiles: 'drop': unknown action; see 'mirellon-cli profiles --help'"},
      {{"list", "x"}, "'x': one argument too many; see 'mirellon-cli profiles list --help'"},
      {{"show"}, "CAMERA is required; see 'mirellon-cli profiles show --help'"},
      {{"show", ""}, "CAMERA: the camera's name is empty"},
      {{"show", "X"}, "CAMERA: 'X': no such camera" + in},
      {{"show", "<<Unknown Camera>>", "50"},
       "ISO: '<<Unknown Camera>>' has no set for ISO 50, only for 200, 6400"},
      {{"set", "X"}, "ISO is required; see 'mirellon-cli profiles set --help'"},
      {{"set", "X", "15"}, "ISO: 15 is not between 16 and 409600"},
      {{"set", "X", "1e3"}, "ISO: '1e3' is not a whole number between 16 and 409600"},
      {{"set", "X", "100", "--strength=51"}, "--strength: 51 is not between 0 and 50"},
      {{"set", "X", "100", "--noise-luminance=-1"}, "--noise-luminance: -1 is not between 0 and 10000"},
      {{"set", "X]", "100"},
       "CAMERA: 'X]' cannot be stored; names hold no control characters and no ']', and do not begin with "
       "'<<<'"},
      {{"set", std::string(128, 'x'), "100"},
       "CAMERA: '" + std::string(128, 'x') + "' is longer than 127 characters"},
      {{"remove", "X", "100"}, "CAMERA: 'X': no such camera" + in},
      {{"remove", "<<Unknown Camera>>"},
       "CAMERA: '<<Unknown Camera>>' cannot be removed, nor its last ISO speed"},
      {{"measure"}, "PHOTO is required; see 'mirellon-cli profiles measure --help'"}};
  for (const auto& [arguments, line] : cases) {
    EXPECT_EQ(Profiles(arguments), "mirellon-cli: " + line + "\n");
    EXPECT_EQ(out_.str(), "");
  }
  EXPECT_FALSE(std::filesystem::exists(UserFile()));
  for (const char* action : {"--help", "list", "show", "set", "remove", "measure", "path"}) {
    EXPECT_EQ(Run({"profiles", action, "--help"}), ExitStatus::kDone) << action;
  }
}

TEST_F(ProfilesCommandTest, PhotographsGetTheSetOfTheirCamera) {
  MakePhoto("a.png", "Canon", "Canon EOS 5D", 400);
  MakePhoto("b.png", "Canon", "Canon EOS 6D", 800);
  ASSERT_EQ(Run({"profiles", "set", "Canon / EOS 5D", "400", "--strength=7", "--noise-luminance=99"}),
            ExitStatus::kDone);
  ASSERT_EQ(Run({"profiles", "set", "Canon / EOS 6D", "100", "--strength=8"}), ExitStatus::kDone);
  const struct {
    const char* photo;
    const char* profile;
    const char* strength;  // given over the set
    const char* chosen;
    double used;
  } cases[] = {
      {"a.png", "auto", "", R"({"camera": "Canon / EOS 5D", "iso": 400, "rule": "exact"})", 7.0},
      {"a.png", "batch", "", R"({"camera": "Canon / EOS 5D", "iso": 400, "rule": "exact"})", 7.0},
      {"b.png", "auto", "3", R"({"camera": "Canon / EOS 6D", "iso": 100, "rule": "nearest"})", 3.0},
      {"b.png", "batch", "", R"({"camera": "<<Unknown Camera>>", "iso": 200, "rule": "fallback"})", 20.0},
      {"b.png", "none", "", R"({"camera": null, "iso": null, "rule": "none"})", 10.0},
      {"b.png", "<<Unknown Camera>>@6400", "",
       R"({"camera": "<<Unknown Camera>>", "iso": 6400, "rule": "given"})", 40.0}};
  for (const auto& c : cases) {
    Words arguments = {"denoise", Path(c.photo),   Path("out.png"), "--overwrite", "--no-metadata",
                       "--json",  "--quality=low", "--profile",     c.profile};
    if (*c.strength != '\0') arguments.insert(arguments.end(), {"--strength", c.strength});
    ASSERT_EQ(Run(arguments), ExitStatus::kDone) << err_.str();
    const json report = json::parse(out_.str());
    EXPECT_EQ(report["profile"], json::parse(c.chosen)) << c.photo << " " << c.profile;
    EXPECT_EQ(report["parameters"]["m_dStrength"], c.used);
  }
  EXPECT_EQ(Run({"denoise", Path("a.png"), Path("new.png"), "--profile=Canon@400"}), ExitStatus::kUsage);
  EXPECT_TRUE(err_.str().starts_with("mirellon-cli: --profile: 'Canon': no such camera in '")) << err_.str();
  EXPECT_EQ(Run({"denoise", Path("a.png"), Path("new.png"), "--profile=Canon/EOS5D@100"}),
            ExitStatus::kUsage);
  EXPECT_EQ(err_.str(), "mirellon-cli: --profile: 'Canon / EOS 5D' has no set for ISO 100, only for 400\n");

  ASSERT_EQ(Run({"info", Path("b.png"), "--json"}), ExitStatus::kDone);
  const json info = json::parse(out_.str());
  EXPECT_EQ(info["cameraKey"], "Canon / EOS 6D");
  EXPECT_EQ(info["profile"], json::parse(cases[2].chosen));
  EXPECT_EQ(info["batchProfile"], json::parse(R"({"camera": "<<Unknown Camera>>", "iso": 200})"));
}

TEST_F(ProfilesCommandTest, MeasuredPhotographsBecomeSets) {
  const engine::MeasuredNoise first = MakePhoto("a.png", "Maker", "One", 400, 1);
  const engine::MeasuredNoise second = MakePhoto("b.png", "Maker", "One", 400, 2);
  MakePhoto("c.png", "Maker", "Two", 100);
  ASSERT_FALSE(test::WritePicture(folder_ / "bare.png", test::PhotoLikePicture(32, 32, 3, 8, 1)));
  EXPECT_EQ(Run({"profiles", "measure", Path("bare.png")}), ExitStatus::kInput);
  EXPECT_EQ(err_.str(), "mirellon-cli: '" + Path("bare.png") + "': names no camera\n");
  // The others are stored all the same.
  EXPECT_EQ(Run({"profiles", "measure", Path("a.png"), Path("missing.png"), Path("c.png"), Path("b.png"),
                 "--json"}),
            ExitStatus::kFailed);
  std::istringstream lines(out_.str());
  std::string line;
  ASSERT_TRUE(std::getline(lines, line));
  const json set = json::parse(line);
  EXPECT_TRUE(set["camera"] == "Maker / One" && set["iso"] == 400);
  const double luminance = (first.luminance + second.luminance) / 2.0;
  // What is printed is what is stored, with two decimals.
  EXPECT_NEAR(set["m_dImmerkaerY"], luminance, 0.005001);
  EXPECT_NEAR(set["m_dImmerkaerUV"], (first.chrominance + second.chrominance) / 2.0, 0.005001);
  EXPECT_NEAR(set["m_dStrength"], 20.0 + luminance / 2.0, 0.005001);
  EXPECT_EQ(Profiles({"show", "Maker / One", "400", "--json"}), line + "\n");
  const std::string stored =
      Profiles({"set", "Maker / One", "400", "--strength=12.3456", "--dynamics=-0.001", "--json"});
  EXPECT_NE(stored.find(R"("m_dStrength":12.35,)"), std::string::npos) << stored;
  EXPECT_EQ(Profiles({"show", "Maker / One", "400", "--json"}), stored);
  EXPECT_EQ(Profiles({"list"}), "<<Unknown Camera>>: 200 6400\nMaker / One: 400\nMaker / Two: 100\n");
}

TEST_F(ProfilesCommandTest, AnotherFileTakesThePlaceOfTheUsersOwn) {
  const Words file = {"--profiles", Path("mine.ini")};
  ASSERT_EQ(Run({"profiles", "set", "Mine", "100", file[0], file[1]}), ExitStatus::kDone);
  EXPECT_EQ(Profiles({"list", file[0], file[1]}), "<<Unknown Camera>>: 200 6400\nMine: 100\n");
  EXPECT_FALSE(std::filesystem::exists(UserFile()));

  // What is no profile file is not written over, but does not keep a photograph from being denoised.
  MakePhoto("a.png", "Maker", "One", 400);
  const std::string photo = test::ReadBytes(folder_ / "a.png");
  EXPECT_EQ(Run({"profiles", "set", "X", "100", "--profiles", Path("a.png")}), ExitStatus::kOutput);
  EXPECT_EQ(test::ReadBytes(folder_ / "a.png"), photo);
  EXPECT_EQ(Run({"denoise", Path("a.png"), Path("o.png"), "--no-metadata", "--profiles", Path("a.png")}),
            ExitStatus::kDone);
  EXPECT_EQ(std::ranges::count(err_.str(), '\n'), 2) << err_.str();
  EXPECT_EQ(Run({"profiles", "list", "--profiles", Path("missing.ini")}), ExitStatus::kDone);
  EXPECT_EQ(err_.str(), "mirellon-cli: warning: '" + Path("missing.ini") +
                            "': no such file; the sets shipped with the program stand in\n");

  // A damaged one is kept beside the new one.
  test::WriteBytes(folder_ / "mine.ini", test::ReadBytes(folder_ / "mine.ini").substr(0, 300));
  const std::string damaged = test::ReadBytes(folder_ / "mine.ini");
  EXPECT_EQ(Run({"profiles", "set", "X", "100", file[0], file[1]}), ExitStatus::kDone);
  EXPECT_EQ(test::ReadBytes(folder_ / "mine.ini.bak"), damaged);
  EXPECT_NE(err_.str().find("mine.ini.bak'"), std::string::npos);

  std::filesystem::create_directory(folder_ / "folder.ini");
  EXPECT_EQ(Run({"profiles", "set", "X", "100", "--profiles", Path("folder.ini")}), ExitStatus::kOutput);
  EXPECT_EQ(err_.str(), "mirellon-cli: '" + Path("folder.ini") + "': Is a directory; left as it is\n");
  for (const char* name : {"a.png/x.ini", "no such/x.ini"}) {
    for (Words words : {Words{"profiles", "set", "X", "100"}, Words{"profiles", "measure", Path("a.png")},
                        Words{"profiles", "list"}, Words{"info", Path("a.png")},
                        Words{"denoise", Path("a.png"), Path("new.png")}, Words{"batch", Path("")}}) {
      words.insert(words.end(), {"--profiles", Path(name)});
      EXPECT_EQ(Run(words), ExitStatus::kUsage) << words.front();
      EXPECT_EQ(err_.str(), "mirellon-cli: --profiles: '" + Path(name) + "': its folder does not exist\n");
    }
  }
}

TEST_F(ProfilesCommandTest, LookingWritesNothingAndWorkingTheFirstRunsSet) {
  shell_.resourceFolders.clear();
  MakePhoto("in/a.png", "Maker", "One", 400);
  const Words named = {"--profiles", Path("mine.ini")};
  for (const Words& look : {Words{"profiles", "list"}, Words{"profiles", "show", "<<Unknown Camera>>"},
                            Words{"info", Path("in/a.png")}, Words{"batch", Path("in"), "--dry-run"}}) {
    EXPECT_EQ(Run(look), ExitStatus::kDone) << err_.str();
    Words words = look;
    words.insert(words.end(), named.begin(), named.end());
    EXPECT_EQ(Run(words), ExitStatus::kDone);
    EXPECT_TRUE(err_.str().starts_with("mirellon-cli: warning: '" + Path("mine.ini") +
                                       "': no such file; the built-in set stands in\n"))
        << err_.str();
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "settings"));
  Words denoise = {"denoise", Path("in/a.png"), Path("o.png"), "--no-metadata", "--overwrite"};
  denoise.insert(denoise.end(), named.begin(), named.end());
  EXPECT_EQ(Run(denoise), ExitStatus::kDone);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "mine.ini"));
  denoise.resize(denoise.size() - named.size());
  EXPECT_EQ(Run(denoise), ExitStatus::kDone);
  EXPECT_EQ(err_.str(), "");
  EXPECT_TRUE(std::filesystem::exists(UserFile()));
  test::WriteBytes(folder_ / "in the way", "");
  shell_.applicationData = folder_ / "in the way";
  EXPECT_EQ(Run(denoise), ExitStatus::kDone);
  EXPECT_NE(err_.str().find("': the folder cannot be made\n"), std::string::npos) << err_.str();
}

TEST_F(ProfilesCommandTest, ANameThatNoFileCanHoldIsTheReasonGiven) {
  test::WriteBytes(folder_ / "odd.ini",
                   "[General]\nNo Of Cameras=2\n[Camera_1]\nm_wcsCameraName=Maker / O]ne\n");
  const Words file = {"--profiles", Path("odd.ini")};
  MakePhoto("a.png", "Maker", "O]ne", 400);
  for (const Words& words : {Words{"set", "Maker/O]ne", "100"}, Words{"measure", Path("a.png")}}) {
    Words all = words;
    all.insert(all.end(), file.begin(), file.end());
    EXPECT_NE(Profiles(all).find("cannot be stored"), std::string::npos) << err_.str();
    EXPECT_EQ(err_.str().find("memory"), std::string::npos);
  }
}

TEST_F(ProfilesCommandTest, SetsStoredAtOnceAreAllKept) {
  {
    std::vector<std::jthread> programs;
    programs.reserve(8);
    for (int i = 0; i < 8; ++i) {
      programs.emplace_back([this, i] {
        std::ostringstream out;
        std::ostringstream err;
        engine::EngineContext engine;
        Shell shell{.out = out, .err = err, .engine = engine, .applicationData = shell_.applicationData};
        const std::string camera = "Camera " + std::to_string(i);
        const std::vector<const char*> args = {"profiles", "set", camera.c_str(), "100"};
        EXPECT_EQ(RunCommandLine(args, shell), ExitStatus::kDone) << err.str();
      });
    }
  }
  EXPECT_EQ(json::parse(Profiles({"list", "--json"})).size(), 9U);
}

TEST_F(ProfilesCommandTest, PathsThatAreNotUtf8ComeTwice) {
  shell_.applicationData = folder_ / "\xFF";
  const json paths = json::parse(Profiles({"path", "--json"}));
  EXPECT_TRUE(paths.contains("userFileBase64"));
  EXPECT_EQ(paths["defaultFile"], Path("shipped/CameraISOSettingX.ini"));
  EXPECT_FALSE(paths.contains("defaultFileBase64"));
}

}  // namespace mirellon::cli
