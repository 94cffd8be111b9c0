#include "cli/batch_arguments.h"

#include <string>

#include "cli/diagnostics.h"
#include "cli/parameter_arguments.h"
#include "cli/parameter_options.h"
#include "cli/parser.h"
#include "cli/shared_options.h"

namespace mirellon::cli {

namespace {

Parser::Reader PathReader(std::filesystem::path& path) {
  return [&path](std::string_view text) {
    if (text.empty()) return std::string("the file name is empty");
    path = std::filesystem::path(text);
    return std::string();
  };
}

ParseOutcome CheckSource(const BatchArguments& arguments) {
  using Kind = ParseOutcome::Kind;
  if (arguments.folder.empty() == arguments.filesFrom.empty()) {
    const bool none = arguments.folder.empty();
    return {Kind::kWrong, std::string("either FOLDER or --files-from is required") +
                              (none ? "" : ", not both") + "; see '" + kProgramName + " batch --help'"};
  }
  return {Kind::kRun, {}};
}

}  // namespace

ParseOutcome ParseBatchArguments(std::span<const char* const> args, BatchArguments& arguments) {
  Parser parser("batch",
                "Removes the noise of all photographs of a folder and its subfolders, each with the stored\n"
                "values of its own camera; the results go to a folder 'denoised' beside the photographs.");
  bool noMetadata = false;
  parser.AddArgument("FOLDER", "The folder; folders named 'denoised' in it are left out",
                     PathReader(arguments.folder), /*required=*/false);
  parser.AddValue("--files-from", "FILE|-",
                  "Instead of FOLDER, the photographs that the file (-: standard input) names, one a line, "
                  "or with a NUL after each",
                  PathReader(arguments.filesFrom));
  AddQualityOption(parser, "the one in the settings, medium at first",
                   ChoiceReader(kQualityChoices, arguments.quality));
  AddBackendOption(parser, arguments.backend);
  AddThreadsOption(parser, arguments.threads);
  AddJpegQualityOption(parser, arguments.jpegQuality);
  AddPngCompressionOption(parser, arguments.pngCompression);
  parser.AddFlag("--no-metadata", "Do not copy EXIF data and colour profile to the results", noMetadata);
  AddProfilesOption(parser, arguments.profiles);
  parser.AddFlag("--dry-run", "Load and choose values, denoise and write nothing", arguments.dryRun);
  AddProgressOption(parser, arguments.progress);
  parser.AddFlag("--quiet", "Print errors only: no progress, no warnings, no summary", arguments.quiet);
  parser.AddFlag("--json", "Print a line of JSON for each file on standard output", arguments.json);
  ParseOutcome outcome = parser.Parse(args);
  arguments.metadata = !noMetadata;
  return outcome.kind == ParseOutcome::Kind::kRun ? CheckSource(arguments) : outcome;
}

}  // namespace mirellon::cli
