#include "cli/arguments.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/parameter_options.h"

namespace mirellon::cli {
namespace {

using Kind = ParseOutcome::Kind;

ParseOutcome Parse(const std::vector<const char*>& args, DenoiseArguments& arguments) {
  return ParseDenoiseArguments(args, arguments);
}

// The refusal of one more option after two good names.
std::string Refusal(const std::vector<const char*>& options) {
  std::vector<const char*> args = {"in.jpg", "out.jpg"};
  args.insert(args.end(), options.begin(), options.end());
  DenoiseArguments arguments;
  const ParseOutcome outcome = Parse(args, arguments);
  EXPECT_EQ(outcome.kind, Kind::kWrong) << options.front();
  return outcome.text;
}

TEST(ArgumentsTest, WithoutOptionsEverythingHasItsDefault) {
  DenoiseArguments arguments;
  ASSERT_EQ(Parse({"in.jpg", "out.tif"}, arguments).kind, Kind::kRun);
  const engine::DenoiseParameters defaults;
  for (const ParameterOption& row : kParameterOptions) {
    EXPECT_EQ(arguments.parameters.*row.value, defaults.*row.value) << row.option;
  }
  EXPECT_EQ(arguments.input, "in.jpg");
  EXPECT_EQ(arguments.output, "out.tif");
  EXPECT_EQ(arguments.quality, engine::kQualityMedium);
  EXPECT_FALSE(arguments.threads || arguments.jpegQuality || arguments.overwrite || arguments.quiet ||
               arguments.json);
  EXPECT_TRUE(arguments.metadata);
  EXPECT_EQ(arguments.progress, ProgressMode::kAuto);
}

TEST(ArgumentsTest, EveryOptionReachesItsOwnValue) {
  DenoiseArguments arguments;
  const ParseOutcome outcome = Parse({"--profile=none",
                                      "--strength",
                                      "1.5",
                                      "in.jpg",
                                      "--strength-chroma=50",
                                      "--strength-chroma-large",
                                      "0",
                                      "--dynamics",
                                      "-2",
                                      "--sharp-tiny",
                                      "4",
                                      "--sharp-medium",
                                      ".25",
                                      "--sharp-rough",
                                      "2e0",
                                      "--artefacts",
                                      "strong",
                                      "--quality",
                                      "superior",
                                      "--backend",
                                      "cpu",
                                      "--threads",
                                      "256",
                                      "--jpeg-quality",
                                      "1",
                                      "--no-metadata",
                                      "out.jpg",
                                      "--overwrite",
                                      "--progress",
                                      "never",
                                      "--quiet",
                                      "--json"},
                                     arguments);
  ASSERT_EQ(outcome.kind, Kind::kRun) << outcome.text;
  const double expected[] = {1.5, 50.0, 0.0, -2.0, 4.0, 0.25, 2.0};
  for (std::size_t i = 0; i < kParameterOptions.size(); ++i) {
    EXPECT_EQ(arguments.parameters.*kParameterOptions[i].value, expected[i]) << kParameterOptions[i].option;
  }
  EXPECT_EQ(arguments.parameters.m_iUseMedian, 2);
  EXPECT_EQ(arguments.quality, engine::kQualitySuperior);
  EXPECT_EQ(arguments.threads, 256U);
  EXPECT_EQ(arguments.jpegQuality, 1);
  EXPECT_FALSE(arguments.metadata);
  EXPECT_TRUE(arguments.overwrite && arguments.quiet && arguments.json);
  EXPECT_EQ(arguments.progress, ProgressMode::kNever);
}

TEST(ArgumentsTest, NumbersOutsideTheirRangeAreRefusedWithIt) {
  struct Range {
    const char* option;
    const char* below;
    const char* above;
    const char* range;
  };
  const Range ranges[] = {
      {"--strength", "-0.01", "60", "0 and 50"},
      {"--strength-chroma", "-1", "50.5", "0 and 50"},
      {"--strength-chroma-large", "-1", "1e9", "0 and 50"},
      {"--dynamics", "-2.5", "2.001", "-2 and 2"},
      {"--sharp-tiny", "-1", "4.1", "0 and 4"},
      {"--sharp-medium", "-1", "5", "0 and 4"},
      {"--sharp-rough", "-1", "5", "0 and 4"},
      {"--threads", "0", "257", "1 and 256"},
      {"--threads", "-4", "99999999999999999999", "1 and 256"},
      {"--jpeg-quality", "0", "101", "1 and 100"},
  };
  for (const Range& range : ranges) {
    for (const char* value : {range.below, range.above}) {
      EXPECT_EQ(Refusal({range.option, value}),
                std::string(range.option) + ": " + value + " is not between " + range.range);
      const std::string joined = std::string(range.option) + "=" + value;
      EXPECT_EQ(Refusal({joined.c_str()}), Refusal({range.option, value}));
    }
  }
}

TEST(ArgumentsTest, MalformedNumbersAreRefusedByName) {
  const std::vector<const char*> neverNumbers = {"",   "x",  "1e", "1,5",   "0x10", "nan",   "inf",   "-inf",
                                                 "1 ", " 1", "+1", "1.2.3", "--",   "1e999", "--json"};
  for (const ParameterOption& row : kParameterOptions) {
    for (const char* value : neverNumbers) {
      EXPECT_EQ(Refusal({row.option, value}), std::string(row.option) + ": '" + value +
                                                  "' is not a number between " + NumberText(row.low) +
                                                  " and " + NumberText(row.high));
    }
  }
  std::vector<const char*> neverWhole = neverNumbers;
  neverWhole.insert(neverWhole.end(), {"1.0", "1e1", "4.5"});
  for (const char* value : neverWhole) {
    EXPECT_EQ(Refusal({"--threads", value}),
              std::string("--threads: '") + value + "' is not a whole number between 1 and 256");
    EXPECT_EQ(Refusal({"--jpeg-quality", value}),
              std::string("--jpeg-quality: '") + value + "' is not a whole number between 1 and 100");
  }
}

TEST(ArgumentsTest, WordsOutsideTheirListAreRefusedWithIt) {
  const struct {
    std::vector<const char*> options;
    const char* refusal;
  } cases[] = {
      {{"--artefacts", "weak"}, "--artefacts: 'weak' is not one of none, common, strong"},
      {{"--artefacts", "1"}, "--artefacts: '1' is not one of none, common, strong"},
      {{"--quality", "Low"}, "--quality: 'Low' is not one of low, medium, superior"},
      {{"--quality", ""}, "--quality: '' is not one of low, medium, superior"},
      {{"--progress", "on"}, "--progress: 'on' is not one of auto, always, never"},
      {{"--backend", "card"}, "--backend: 'card' is not one of cpu, gpu, fusion"},
      {{"--backend", "gpu"}, "--backend: 'gpu': the graphics card is not available yet; only cpu is"},
      {{"--backend", "fusion"}, "--backend: 'fusion': the graphics card is not available yet; only cpu is"},
      {{"--profile", "x"}, "--profile: 'x' is not one of auto, batch, none, CAMERA@ISO"},
      {{"--profile", "auto"}, "--profile: 'auto': noise profiles are not available yet; only none is"},
      {{"--profile", "A\nB@100"}, "--profile: 'A?B@100': noise profiles are not available yet; only none is"},
  };
  for (const auto& c : cases) EXPECT_EQ(Refusal(c.options), c.refusal);
}

TEST(ArgumentsTest, ValueOptionsStandOnceAndHaveAValue) {
  for (const char* option : {"--profile", "--strength", "--strength-chroma", "--strength-chroma-large",
                             "--dynamics", "--sharp-tiny", "--sharp-medium", "--sharp-rough", "--artefacts",
                             "--quality", "--backend", "--threads", "--jpeg-quality", "--progress"}) {
    EXPECT_EQ(Refusal({option}), std::string(option) + ": a value is missing");
    EXPECT_EQ(Refusal({(std::string(option) + "=").c_str(), "1"}),
              std::string(option) + ": a value is missing");
  }
  EXPECT_EQ(Refusal({"--strength", "1", "--strength", "2"}), "--strength: given more than once");
  EXPECT_EQ(Refusal({"--quality", "low", "--quality=low"}), "--quality: given more than once");
  EXPECT_EQ(Refusal({"--overwrite=false"}), "--overwrite: takes no value");
  EXPECT_EQ(Refusal({"--json="}), "--json: takes no value");
  EXPECT_EQ(Refusal({"--help=no"}), "--help: takes no value");
  DenoiseArguments arguments;
  EXPECT_EQ(Parse({"a", "b", "--json", "--json", "--overwrite", "--overwrite"}, arguments).kind, Kind::kRun);
}

TEST(ArgumentsTest, UnknownAndSurplusArgumentsAreNamed) {
  const std::string help = "; see 'mirellon-cli denoise --help'";
  EXPECT_EQ(Refusal({"--stren", "3"}), "'--stren': unknown option" + help);
  EXPECT_EQ(Refusal({"-x"}), "'-x': unknown option" + help);
  EXPECT_EQ(Refusal({"third"}), "'third': one argument too many" + help);
  EXPECT_EQ(Refusal({"--", "-third"}), "'-third': one argument too many" + help);
  DenoiseArguments arguments;
  EXPECT_EQ(Parse({}, arguments).text, "INPUT is required" + help);
  EXPECT_EQ(Parse({"in"}, arguments).text, "OUTPUT is required" + help);
  EXPECT_EQ(Parse({"in", "--jsno"}, arguments).text, "'--jsno': unknown option" + help);
  EXPECT_EQ(Parse({"", "out"}, arguments).text, "INPUT: the file name is empty");
  EXPECT_EQ(Parse({"in", ""}, arguments).text, "OUTPUT: the file name is empty");
}

TEST(ArgumentsTest, NamesAreTakenAsTheyAre) {
  const struct {
    std::vector<const char*> args;
    const char* input;
    const char* output;
  } cases[] = {
      {{"--", "-in", "--json"}, "-in", "--json"}, {{"./-in", "-"}, "./-in", "-"},
      {{"@list", "[a,b]"}, "@list", "[a,b]"},     {{"{}", "%%"}, "{}", "%%"},
      {{"\"q\"", "'$HOME'"}, "\"q\"", "'$HOME'"}, {{"info", "denoise"}, "info", "denoise"},
      {{"a\nb", "\xff\xfe"}, "a\nb", "\xff\xfe"}, {{"a=b", "!c"}, "a=b", "!c"},
  };
  for (const auto& c : cases) {
    DenoiseArguments arguments;
    const ParseOutcome outcome = Parse(c.args, arguments);
    EXPECT_EQ(outcome.kind, Kind::kRun) << outcome.text;
    EXPECT_EQ(arguments.input.native(), c.input);
    EXPECT_EQ(arguments.output.native(), c.output);
    EXPECT_FALSE(arguments.json);
  }
}

TEST(ArgumentsTest, HelpListsEveryOptionWithItsRange) {
  DenoiseArguments arguments;
  const ParseOutcome outcome = Parse({"--help"}, arguments);
  ASSERT_EQ(outcome.kind, Kind::kHelp);
  for (const ParameterOption& row : kParameterOptions) {
    EXPECT_NE(outcome.text.find(row.option), std::string::npos) << row.option;
    EXPECT_NE(outcome.text.find(NumberText(row.low) + " to " + NumberText(row.high) + "; default "),
              std::string::npos);
  }
  InfoArguments info;
  const std::vector<const char*> args = {"--json", "x.jpg"};
  EXPECT_EQ(ParseInfoArguments(args, info).kind, Kind::kRun);
  EXPECT_EQ(info.input, "x.jpg");
  EXPECT_TRUE(info.json);
  const std::vector<const char*> foreign = {"x.jpg", "--strength=1"};
  EXPECT_EQ(ParseInfoArguments(foreign, info).text,
            "'--strength=1': unknown option; see 'mirellon-cli info --help'");
}

}  // namespace
}  // namespace mirellon::cli
