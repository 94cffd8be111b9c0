#include "cli/arguments.h"

#include <array>

#include "cli/diagnostics.h"
#include "cli/parameter_options.h"
#include "cli/parser.h"

namespace mirellon::cli {

namespace {

constexpr std::array<Choice, 3> kProgressChoices{{{"auto", static_cast<int>(ProgressMode::kAuto)},
                                                  {"always", static_cast<int>(ProgressMode::kAlways)},
                                                  {"never", static_cast<int>(ProgressMode::kNever)}}};

std::string Range(std::string_view low, std::string_view high, std::string_view fallback) {
  std::string text = " (" + std::string(low) + " to " + std::string(high);
  if (!fallback.empty()) text += "; default " + std::string(fallback);
  return text + ")";
}

std::string ReadBackend(std::string_view text) {
  if (text == "cpu") return {};
  if (text == "gpu" || text == "fusion") {
    return Quoted(text) + ": the graphics card is not available yet; only cpu is";
  }
  return Quoted(text) + " is not one of cpu, gpu, fusion";
}

// A reader of whole numbers that keeps them as an optional of any integer type.
template <typename T>
Parser::Reader WholeReader(std::int64_t low, std::int64_t high, std::optional<T>& target) {
  return [low, high, &target](std::string_view text) {
    std::int64_t value = 0;
    std::string refusal = ReadWhole(text, low, high, value);
    if (refusal.empty()) target = static_cast<T>(value);
    return refusal;
  };
}

// A reader of one word of a list into an integer or enumeration.
template <typename T>
Parser::Reader ChoiceReader(std::span<const Choice> choices, T& target) {
  return [choices, &target](std::string_view text) {
    int value = 0;
    std::string refusal = ReadChoice(text, choices, value);
    if (refusal.empty()) target = static_cast<T>(value);
    return refusal;
  };
}

void AddRunOptions(Parser& parser, DenoiseArguments& arguments) {
  parser.AddValue("--quality", JoinWords(kQualityChoices, "|"),
                  "Search window of 7x7, 13x13 or 21x21 pixels (default medium)",
                  ChoiceReader(kQualityChoices, arguments.quality));
  parser.AddValue("--backend", "cpu|gpu|fusion",
                  "What computes (default cpu; the others wait for graphics-card support)", ReadBackend);
  parser.AddValue("--threads", "N",
                  "Threads" + Range(std::to_string(kMinThreads), std::to_string(kMaxThreads),
                                    "as many as there are processors"),
                  WholeReader(kMinThreads, kMaxThreads, arguments.threads));
  parser.AddValue("--jpeg-quality", "N",
                  "Quality of a JPEG result, percent" + Range(std::to_string(kMinJpegQuality),
                                                              std::to_string(kMaxJpegQuality),
                                                              "the one in the settings, 85 at first"),
                  WholeReader(kMinJpegQuality, kMaxJpegQuality, arguments.jpegQuality));
}

void AddReportOptions(Parser& parser, DenoiseArguments& arguments) {
  parser.AddValue("--progress", JoinWords(kProgressChoices, "|"),
                  "Progress bar on standard error (default auto: on a terminal)",
                  ChoiceReader(kProgressChoices, arguments.progress));
  parser.AddFlag("--quiet", "Print errors only: no progress, no warnings", arguments.quiet);
  parser.AddFlag("--json", "Print a report as JSON on standard output", arguments.json);
}

}  // namespace

ParseOutcome ParseDenoiseArguments(std::span<const char* const> args, DenoiseArguments& arguments) {
  Parser parser("denoise", "Removes the noise of one photograph.");
  bool noMetadata = false;
  parser.AddFile("INPUT", "The photograph: JPEG, TIFF, PNG, BMP or GIF, grey or colour, 8 or 16 bits",
                 arguments.input);
  parser.AddFile("OUTPUT", "The result; its extension chooses the format: JPEG, TIFF, PNG, BMP",
                 arguments.output);
  AddProfileOption(parser, arguments.profile);
  AddProfilesOption(parser, arguments.profiles);
  AddParameterOptions(parser, arguments.given);
  AddRunOptions(parser, arguments);
  parser.AddFlag("--no-metadata", "Do not copy EXIF data and colour profile to the result", noMetadata);
  parser.AddFlag("--overwrite", "Replace an existing OUTPUT (never INPUT itself)", arguments.overwrite);
  AddReportOptions(parser, arguments);
  ParseOutcome outcome = parser.Parse(args);
  arguments.metadata = !noMetadata;
  return outcome;
}

ParseOutcome ParseInfoArguments(std::span<const char* const> args, InfoArguments& arguments) {
  Parser parser("info", "Tells what is known about a photograph: picture, camera, measured noise.");
  parser.AddFile("INPUT", "The photograph", arguments.input);
  AddProfilesOption(parser, arguments.profiles);
  parser.AddFlag("--json", "Print it as JSON", arguments.json);
  return parser.Parse(args);
}

}  // namespace mirellon::cli
