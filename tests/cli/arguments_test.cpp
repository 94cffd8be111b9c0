#include "cli/arguments.h"

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/parameter_options.h"

namespace mirellon::cli {

using Kind = ParseOutcome::Kind;
using Words = std::vector<const char*>;

// Why these arguments are refused.
std::string RefusalOf(const Words& args) {
  DenoiseArguments arguments;
  const ParseOutcome outcome = ParseDenoiseArguments(args, arguments);
  EXPECT_EQ(outcome.kind, Kind::kWrong) << outcome.text;
  return outcome.text;
}

// The same after two good names.
std::string Refusal(const Words& options) {
  Words args = {"in.jpg", "out.jpg"};
  args.insert(args.end(), options.begin(), options.end());
  return RefusalOf(args);
}

TEST(ArgumentsTest, EveryOptionReachesItsOwnValue) {
  DenoiseArguments arguments;
  std::istringstream line(
      "--profile=EOS@5D@400 --profiles=p.ini --strength 1.5 in.jpg --strength-chroma=50 "
      "--strength-chroma-large 0 --dynamics -2 "
      "--sharp-tiny 4 --sharp-medium .25 --sharp-rough 2e0 --artefacts strong --quality superior "
      "--backend fusion --threads 256 --jpeg-quality 1 --png-compression 9 --no-metadata out.jpg --overwrite "
      "--overwrite "
      "--progress never --quiet --json");
  const std::vector<std::string> words{std::istream_iterator<std::string>(line), {}};
  Words args;
  for (const std::string& word : words) args.push_back(word.c_str());
  const ParseOutcome outcome = ParseDenoiseArguments(args, arguments);
  ASSERT_EQ(outcome.kind, Kind::kRun) << outcome.text;
  engine::DenoiseParameters parameters;
  arguments.given.Replace(parameters);
  const double expected[] = {1.5, 50.0, 0.0, -2.0, 4.0, 0.25, 2.0};
  for (std::size_t i = 0; i < kParameterOptions.size(); ++i) {
    EXPECT_EQ(parameters.*kParameterOptions[i].value, expected[i]) << kParameterOptions[i].option;
  }
  EXPECT_EQ(parameters.m_iUseMedian, 2);
  EXPECT_EQ(arguments.profile.kind, ProfileRequest::Kind::kNamed);
  EXPECT_EQ(arguments.profile.camera, L"EOS@5D");
  EXPECT_EQ(arguments.profile.iso, 400U);
  EXPECT_EQ(arguments.profiles, "p.ini");
  EXPECT_EQ(arguments.quality, engine::kQualitySuperior);
  EXPECT_EQ(arguments.backend, Backend::kFusion);
  EXPECT_EQ(arguments.threads, 256U);
  EXPECT_EQ(arguments.jpegQuality, 1);
  EXPECT_EQ(arguments.pngCompression, 9);
  EXPECT_TRUE(!arguments.metadata && arguments.overwrite && arguments.quiet && arguments.json);
  EXPECT_EQ(arguments.progress, ProgressMode::kNever);
}

TEST(ArgumentsTest, NumbersAreRefusedWithTheirRange) {
  const struct {
    const char* option;
    const char* below;
    const char* above;
    const char* range;
  } cases[] = {{"--strength", "-0.01", "60", "0 and 50"},
               {"--strength-chroma", "-1", "50.5", "0 and 50"},
               {"--strength-chroma-large", "-1", "1e9", "0 and 50"},
               {"--dynamics", "-2.5", "2.001", "-2 and 2"},
               {"--sharp-tiny", "-1", "4.1", "0 and 4"},
               {"--sharp-medium", "-1", "5", "0 and 4"},
               {"--sharp-rough", "-1", "5", "0 and 4"},
               {"--threads", "0", "257", "1 and 256"},
               {"--threads", "-4", "99999999999999999999", "1 and 256"},
               {"--jpeg-quality", "0", "101", "1 and 100"},
               {"--png-compression", "0", "10", "1 and 9"}};
  const Words malformed = {"",   "x",  "1e", "1,5",   "0x10", "nan",   "inf",   "-inf",
                           "1 ", " 1", "+1", "1.2.3", "--",   "1e999", "--json"};
  for (const auto& c : cases) {
    const std::string start = std::string(c.option) + ": ";
    const bool whole = c.range[0] == '1';
    for (const char* value : {c.below, c.above}) {
      EXPECT_EQ(Refusal({c.option, value}), start + value + " is not between " + c.range);
    }
    Words refused = malformed;
    if (whole) refused.insert(refused.end(), {"1.0", "1e1"});
    for (const char* value : refused) {
      EXPECT_EQ(Refusal({c.option, value}),
                start + "'" + value + "' is not a " + (whole ? "whole " : "") + "number between " + c.range);
    }
  }
}

TEST(ArgumentsTest, RefusalsNameTheOptionAndTheReason) {
  const std::string help = "; see 'mirellon-cli denoise --help'";
  const std::vector<std::pair<Words, std::string>> cases = {
      {{"--artefacts", "weak"}, "--artefacts: 'weak' is not one of none, common, strong"},
      {{"--quality", "Low"}, "--quality: 'Low' is not one of low, medium, superior"},
      {{"--progress", ""}, "--progress: '' is not one of auto, always, never"},
      {{"--backend", "gpus"}, "--backend: 'gpus' is not one of cpu, gpu, fusion"},
      {{"--profile", "x"}, "--profile: 'x' is not one of auto, batch, none, CAMERA@ISO"},
      {{"--profile", "@100"}, "--profile: the camera's name is empty"},
      {{"--profile", "A@1e2"}, "--profile: '1e2' is not a whole number between 0 and 1000000"},
      {{"--profile", "A\xff@100"}, "--profile: 'A\xef\xbf\xbd' is not UTF-8"},
      {{"--profiles", ""}, "--profiles: the file name is empty"},
      {{"--strength", "1", "--strength", "2"}, "--strength: given more than once"},
      {{"--overwrite=false"}, "--overwrite: takes no value"},
      {{"--json="}, "--json: takes no value"},
      {{"--help=no"}, "--help: takes no value"},
      {{"--stren", "3"}, "'--stren': unknown option" + help},
      {{"--", "-third"}, "'-third': one argument too many" + help}};
  for (const auto& [options, refusal] : cases) EXPECT_EQ(Refusal(options), refusal);
  for (const char* option : {"--profile", "--profiles", "--strength", "--artefacts", "--quality", "--backend",
                             "--threads", "--jpeg-quality", "--progress"}) {
    EXPECT_EQ(Refusal({option}), std::string(option) + ": a value is missing");
    EXPECT_EQ(Refusal({(std::string(option) + "=").c_str(), "1"}),
              std::string(option) + ": a value is missing");
  }
  EXPECT_EQ(RefusalOf({}), "INPUT is required" + help);
  EXPECT_EQ(RefusalOf({"in"}), "OUTPUT is required" + help);
  EXPECT_EQ(RefusalOf({"in", "--jsno"}), "'--jsno': unknown option" + help);
  EXPECT_EQ(RefusalOf({"", "out"}), "INPUT: the file name is empty");
  EXPECT_EQ(RefusalOf({"in", ""}), "OUTPUT: the file name is empty");
}

TEST(ArgumentsTest, HelpListsEveryOptionWithItsRange) {
  DenoiseArguments arguments;
  const ParseOutcome outcome = ParseDenoiseArguments(Words{"--help"}, arguments);
  ASSERT_EQ(outcome.kind, Kind::kHelp);
  for (const ParameterOption& row : kParameterOptions) {
    const std::string range = NumberText(row.low) + " to " + NumberText(row.high) + ")";
    EXPECT_NE(outcome.text.find(range, outcome.text.find(row.option)), std::string::npos) << row.option;
  }
  InfoArguments info;
  EXPECT_EQ(ParseInfoArguments(Words{"--json", "x.jpg", "--profiles=p"}, info).kind, Kind::kRun);
  EXPECT_TRUE(info.input == "x.jpg" && info.profiles == "p" && info.json);
  EXPECT_EQ(ParseInfoArguments(Words{"x.jpg", "--strength=1"}, info).text,
            "'--strength=1': unknown option; see 'mirellon-cli info --help'");
}

}  // namespace mirellon::cli
