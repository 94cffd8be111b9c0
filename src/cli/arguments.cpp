#include "cli/arguments.h"

#include "cli/diagnostics.h"
#include "cli/parameter_options.h"
#include "cli/parser.h"
#include "cli/shared_options.h"

namespace mirellon::cli {

namespace {

void AddRunOptions(Parser& parser, DenoiseArguments& arguments) {
  AddQualityOption(parser, "medium", ChoiceReader(kQualityChoices, arguments.quality));
  AddBackendOption(parser, arguments.backend);
  AddThreadsOption(parser, arguments.threads);
  AddJpegQualityOption(parser, arguments.jpegQuality);
  AddPngCompressionOption(parser, arguments.pngCompression);
}

void AddReportOptions(Parser& parser, DenoiseArguments& arguments) {
  AddProgressOption(parser, arguments.progress);
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

ParseOutcome ParseGpuArguments(std::span<const char* const> args, GpuArguments& arguments) {
  Parser parser("gpu", "Tells whether the graphics card can be used. Status 0 when it can, 1 when not.");
  parser.AddFlag("--json", "Print it as JSON", arguments.json);
  return parser.Parse(args);
}

}  // namespace mirellon::cli
