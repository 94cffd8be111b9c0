#include "cli/report.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/diagnostics.h"

namespace mirellon::cli {
namespace {

template <typename Report>
nlohmann::ordered_json Parsed(const Report& report) {
  std::ostringstream out;
  PrintJson(out, report);
  EXPECT_EQ(out.str().back(), '\n');
  return nlohmann::ordered_json::parse(out.str());
}

std::vector<std::string> Keys(const nlohmann::ordered_json& object) {
  std::vector<std::string> keys;
  for (const auto& item : object.items()) keys.push_back(item.key());
  return keys;
}

DenoiseReport SampleRun() {
  DenoiseReport report;
  report.input = "in.jpg";
  report.output = "out.tif";
  report.geometry = {3000, 2000, 3, 16};
  report.parameters.m_dDynamics = -1.25;
  report.parameters.m_dSharp3 = 2.5;
  report.parameters.m_iUseMedian = 1;
  report.quality = engine::kQualitySuperior;
  report.simd = "avx2";
  report.threads = 7;
  report.warnings = {"first", "second"};
  report.milliseconds = {1.0, 2.25, 3.0, 4.0, 10.3333333};
  return report;
}

TEST(ReportTest, DenoiseObjectHoldsWhatWasDone) {
  const nlohmann::ordered_json object = Parsed(SampleRun());
  EXPECT_EQ(Keys(object), (std::vector<std::string>{"schema", "input", "output", "width", "height",
                                                    "components", "bits", "parameters", "quality", "profile",
                                                    "backend", "simd", "threads", "warnings", "ms"}));
  EXPECT_EQ(object["schema"], 1);
  EXPECT_EQ(object["width"], 3000);
  EXPECT_EQ(object["height"], 2000);
  EXPECT_EQ(object["bits"], 16);
  EXPECT_EQ(Keys(object["parameters"]),
            (std::vector<std::string>{"m_dStrength", "m_dStrengthChroma", "m_dStrengthChromaLarge",
                                      "m_dDynamics", "m_dSharp1", "m_dSharp2", "m_dSharp3", "m_iUseMedian"}));
  EXPECT_EQ(object["parameters"]["m_dDynamics"], -1.25);
  EXPECT_EQ(object["parameters"]["m_dSharp3"], 2.5);
  EXPECT_EQ(object["parameters"]["m_iUseMedian"], 1);
  EXPECT_EQ(object["quality"], "superior");
  EXPECT_EQ(object["profile"]["rule"], "none");
  EXPECT_EQ(object["simd"], "avx2");
  EXPECT_EQ(object["threads"], 7);
  EXPECT_EQ(object["warnings"].size(), 2U);
  EXPECT_EQ(Keys(object["ms"]), (std::vector<std::string>{"load", "denoise", "sharpen", "save", "total"}));
  EXPECT_EQ(object["ms"]["denoise"], 2.25);
  EXPECT_EQ(object["ms"]["total"], 10.333);
}

TEST(ReportTest, NamesThatAreNotUtf8ComeWithTheirBytes) {
  DenoiseReport report = SampleRun();
  report.input = "caf\xe9\xff.jpg";
  report.output = "t\xc3\xa9\n\"q\".jpg";
  report.warnings = {"about \xff"};
  const nlohmann::ordered_json object = Parsed(report);
  EXPECT_EQ(object["input"], "caf\xef\xbf\xbd\xef\xbf\xbd.jpg");
  EXPECT_EQ(object["inputBase64"], "Y2Fm6f8uanBn");
  EXPECT_EQ(object["output"], "t\xc3\xa9\n\"q\".jpg");
  EXPECT_FALSE(object.contains("outputBase64"));
}

TEST(ReportTest, Base64IsPadded) {
  const char* const cases[][2] = {{"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
                                  {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"\xff\xff\xbe", "//++"}};
  for (const auto& c : cases) EXPECT_EQ(Base64(c[0]), c[1]);
}

InfoReport SamplePhotograph() {
  InfoReport report;
  report.file = "a\tb.jpg";
  report.format = "JPEG";
  report.geometry = {640, 480, 1, 8};
  report.exif.make = L"Caf\u00e9 ";
  report.exif.iso = L"800";
  report.cameraKey = L"Caf\u00e9  / ";
  report.noise = {3.14159, 2.5, false};
  return report;
}

TEST(ReportTest, InfoObjectHoldsWhatIsKnown) {
  const nlohmann::ordered_json object = Parsed(SamplePhotograph());
  EXPECT_EQ(Keys(object),
            (std::vector<std::string>{"schema", "file", "format", "width", "height", "components", "bits",
                                      "exif", "cameraKey", "noise", "profile", "batchProfile"}));
  EXPECT_EQ(Keys(object["exif"]), (std::vector<std::string>{"fNumber", "exposure", "dimensions", "iso",
                                                            "make", "model", "dateTaken"}));
  EXPECT_EQ(object["exif"]["make"], "Caf\xc3\xa9 ");
  EXPECT_EQ(object["exif"]["model"], "");
  EXPECT_EQ(object["noise"]["luminance"], 3.14159);
  EXPECT_EQ(object["noise"]["chrominance"], 2.5);
  EXPECT_TRUE(object["profile"].is_null() && object["batchProfile"].is_null());
}

TEST(ReportTest, InfoTextIsOneLineAValue) {
  std::ostringstream out;
  PrintText(out, SamplePhotograph());
  const std::string text = out.str();
  for (const char* line :
       {"File:           a?b.jpg\n", "Size:           640 x 480\n", "ISO:            800\n",
        "Model:          -\n", "Camera key:     Caf\xc3\xa9  / \n",
        "Noise:          luminance 3.14, chrominance 2.50\n", "Profile:        not available\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
}

TEST(DiagnosticsTest, AMessageIsOneLineWhateverItsNameHolds) {
  std::ostringstream err;
  PrintError(err, About("a\nb\x1b[31m", "no such file"));
  PrintWarning(err, "line\r\nbreak");
  EXPECT_EQ(err.str(), "mirellon-cli: 'a?b?[31m': no such file\nmirellon-cli: warning: line??break\n");
}

}  // namespace
}  // namespace mirellon::cli
