#include "cli/report.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace mirellon::cli {

template <typename Report>
std::string Printed(const Report& report) {
  std::ostringstream out;
  PrintJson(out, report);
  return out.str();
}

TEST(ReportTest, DenoiseObjectHoldsWhatWasDone) {
  DenoiseReport report;
  report.input = "caf\xe9\xff.jpg";
  report.output = "t\xc3\xa9\n\"q\".jpg";
  report.geometry = {3000, 2000, 3, 16};
  report.parameters = {.m_dDynamics = -1.25, .m_dSharp3 = 2.5, .m_iUseMedian = 1};
  report.profile = {L"K / \u00e9", 400, "nearest"};
  report.quality = engine::kQualitySuperior;
  report.simd = "avx2";
  report.threads = 7;
  report.warnings = {"first", "about \xff"};
  report.milliseconds = {1.0, 2.25, 3.0, 4.0, 10.3333333};
  const auto expected = nlohmann::ordered_json::parse(R"({
    "schema": 1, "input": "caf\ufffd\ufffd.jpg", "inputBase64": "Y2Fm6f8uanBn", "output": "t\u00e9\n\"q\".jpg",
    "width": 3000, "height": 2000, "components": 3, "bits": 16,
    "parameters": {"m_dStrength": 10.0, "m_dStrengthChroma": 10.0, "m_dStrengthChromaLarge": 10.0,
      "m_dDynamics": -1.25, "m_dSharp1": 1.0, "m_dSharp2": 1.0, "m_dSharp3": 2.5, "m_iUseMedian": 1},
    "quality": "superior", "profile": {"camera": "K / \u00e9", "iso": 400, "rule": "nearest"}, "backend": "cpu",
    "simd": "avx2", "threads": 7, "warnings": ["first", "about \ufffd"],
    "ms": {"load": 1.0, "denoise": 2.25, "sharpen": 3.0, "save": 4.0, "total": 10.333}})");
  EXPECT_EQ(Printed(report), expected.dump(2) + "\n");
}

TEST(ReportTest, Base64IsPadded) {
  const char* const cases[][2] = {{"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
                                  {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"\xff\xff\xbe", "//++"}};
  for (const auto& c : cases) EXPECT_EQ(Base64(c[0]), c[1]);
}

TEST(ReportTest, InfoHoldsWhatIsKnown) {
  InfoReport report;
  report.file = "a\tb.jpg";
  report.format = "JPEG";
  report.geometry = {640, 480, 1, 8};
  report.exif.make = L"Caf\u00e9 ";
  report.exif.iso = L"800";
  report.cameraKey = L"Caf\u00e9  / ";
  report.noise = {3.14159, 2.5, false};
  report.batchProfile = {L"<<Unknown Camera>>", 100, "fallback"};
  const auto expected = nlohmann::ordered_json::parse(R"({
    "schema": 1, "file": "a\tb.jpg", "format": "JPEG", "width": 640, "height": 480, "components": 1, "bits": 8,
    "exif": {"fNumber": "", "exposure": "", "dimensions": "", "iso": "800", "make": "Caf\u00e9 ", "model": "",
      "dateTaken": ""},
    "cameraKey": "Caf\u00e9  / ", "noise": {"luminance": 3.14159, "chrominance": 2.5},
    "profile": {"camera": null, "iso": null, "rule": "none"},
    "batchProfile": {"camera": "<<Unknown Camera>>", "iso": 100}})");
  EXPECT_EQ(Printed(report), expected.dump(2) + "\n");

  std::ostringstream text;
  PrintText(text, report);
  for (const char* line :
       {"File:           a?b.jpg\n", "Size:           640 x 480\n", "ISO:            800\n",
        "Model:          -\n", "Camera key:     Caf\xc3\xa9  / \n",
        "Noise:          luminance 3.14, chrominance 2.50\n", "Profile:        none\n",
        "Batch profile:  <<Unknown Camera>>, ISO 100 (fallback)\n"}) {
    EXPECT_NE(text.str().find(line), std::string::npos) << line;
  }
}

}  // namespace mirellon::cli
