#include "cli/shared_options.h"

#include <array>
#include <span>
#include <utility>

#include "cli/parameter_options.h"

namespace mirellon::cli {

namespace {

constexpr std::array<Choice, 3> kProgressChoices{{{"auto", static_cast<int>(ProgressMode::kAuto)},
                                                  {"always", static_cast<int>(ProgressMode::kAlways)},
                                                  {"never", static_cast<int>(ProgressMode::kNever)}}};

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

}  // namespace

std::string RangeText(std::string_view low, std::string_view high, std::string_view fallback) {
  std::string text = " (" + std::string(low) + " to " + std::string(high);
  if (!fallback.empty()) text += "; default " + std::string(fallback);
  return text + ")";
}

void AddQualityOption(Parser& parser, std::string_view fallback, Parser::Reader reader) {
  parser.AddValue("--quality", JoinWords(kQualityChoices, "|"),
                  "Search window of 7x7, 13x13 or 21x21 pixels (default " + std::string(fallback) + ")",
                  std::move(reader));
}

void AddBackendOption(Parser& parser, Backend& backend) {
  parser.AddValue("--backend", JoinWords(kBackendChoices, "|"),
                  "What computes: the processor, the graphics card, or both side by side (default cpu)",
                  ChoiceReader(kBackendChoices, backend));
}

void AddThreadsOption(Parser& parser, std::optional<std::uint32_t>& threads) {
  parser.AddValue("--threads", "N",
                  "Threads" + RangeText(std::to_string(kMinThreads), std::to_string(kMaxThreads),
                                        "as many as there are processors"),
                  WholeReader(kMinThreads, kMaxThreads, threads));
}

void AddJpegQualityOption(Parser& parser, std::optional<int>& quality) {
  parser.AddValue("--jpeg-quality", "N",
                  "Quality of a JPEG result, percent" + RangeText(std::to_string(kMinJpegQuality),
                                                                  std::to_string(kMaxJpegQuality),
                                                                  "the one in the settings, 85 at first"),
                  WholeReader(kMinJpegQuality, kMaxJpegQuality, quality));
}

void AddPngCompressionOption(Parser& parser, std::optional<int>& compression) {
  parser.AddValue("--png-compression", "N",
                  "Compression of a PNG result, quick to small" +
                      RangeText(std::to_string(kMinPngCompression), std::to_string(kMaxPngCompression),
                                std::to_string(kUsualPngCompression)),
                  WholeReader(kMinPngCompression, kMaxPngCompression, compression));
}

void AddProgressOption(Parser& parser, ProgressMode& progress) {
  parser.AddValue("--progress", JoinWords(kProgressChoices, "|"),
                  "Progress bar on standard error (default auto: on a terminal)",
                  ChoiceReader(kProgressChoices, progress));
}

}  // namespace mirellon::cli
