#include "cli/parameter_arguments.h"

#include <span>

#include "base/text.h"
#include "cli/diagnostics.h"
#include "cli/parameter_options.h"
#include "cli/parser.h"
#include "profiles/profile_file.h"

namespace mirellon::cli {

namespace {

void AddNumbers(Parser& parser, std::span<const ParameterOption> rows, GivenValues& given) {
  for (const ParameterOption& row : rows) {
    const std::string range = " (" + NumberText(row.low) + " to " + NumberText(row.high) + ")";
    parser.AddValue(row.option, "X", row.meaning + range, [&row, &given](std::string_view text) {
      double value = 0.0;
      std::string refusal = ReadDecimal(text, row.low, row.high, value);
      if (refusal.empty()) given.numbers.emplace_back(row.value, value);
      return refusal;
    });
  }
}

std::string ReadProfile(std::string_view text, ProfileRequest& request) {
  using Kind = ProfileRequest::Kind;
  constexpr std::pair<std::string_view, Kind> kWords[] = {
      {"auto", Kind::kAuto}, {"batch", Kind::kBatch}, {"none", Kind::kNone}};
  for (const auto& [word, kind] : kWords) {
    if (text != word) continue;
    request.kind = kind;
    return {};
  }
  const std::size_t at = text.rfind('@');
  if (at == std::string_view::npos) return Quoted(text) + " is not one of auto, batch, none, CAMERA@ISO";
  request.kind = Kind::kNamed;
  std::string refusal = ReadCamera(text.substr(0, at), request.camera);
  return refusal.empty() ? ReadIso(text.substr(at + 1), 0, profiles::kHighestStoredIso, request.iso)
                         : refusal;
}

}  // namespace

void GivenValues::Replace(engine::DenoiseParameters& parameters) const {
  for (const auto& [member, value] : numbers) parameters.*member = value;
  if (artefacts) parameters.m_iUseMedian = *artefacts;
}

void AddParameterOptions(Parser& parser, GivenValues& given) {
  AddNumbers(parser, kParameterOptions, given);
  parser.AddValue("--artefacts", JoinWords(kArtefactChoices, "|"), "Removal of single bright or dark points",
                  [&given](std::string_view text) {
                    int value = 0;
                    std::string refusal = ReadChoice(text, kArtefactChoices, value);
                    if (refusal.empty()) given.artefacts = value;
                    return refusal;
                  });
}

void AddNoiseOptions(Parser& parser, GivenValues& given) {
  AddNumbers(parser, kNoiseOptions, given);
}

void AddProfileOption(Parser& parser, ProfileRequest& request) {
  parser.AddValue(
      "--profile", "auto|batch|none|CAMERA@ISO",
      "The stored set that the values start from (default auto: that of the photograph's camera and "
      "ISO speed, else of the nearest noise; batch: as a batch chooses; none: the defaults)",
      [&request](std::string_view text) { return ReadProfile(text, request); });
}

void AddProfilesOption(Parser& parser, std::filesystem::path& file) {
  parser.AddValue("--profiles", "FILE", "The profile file to use (default: the user's)",
                  [&file](std::string_view text) {
                    if (text.empty()) return std::string("the file name is empty");
                    file = std::filesystem::path(text);
                    return std::string();
                  });
}

std::string ReadCamera(std::string_view text, std::wstring& camera) {
  if (text.empty()) return "the camera's name is empty";
  if (!base::IsValidUtf8(text)) return Quoted(text) + " is not UTF-8";
  camera = base::WideFromUtf8(text);
  if (camera.size() < base::kShortTextCapacity) return {};
  return Quoted(text) + " is longer than " + std::to_string(base::kShortTextCapacity - 1) + " characters";
}

std::string ReadIso(std::string_view text, std::uint32_t low, std::uint32_t high, std::uint32_t& iso) {
  std::int64_t value = 0;
  std::string refusal = ReadWhole(text, low, high, value);
  if (refusal.empty()) iso = static_cast<std::uint32_t>(value);
  return refusal;
}

}  // namespace mirellon::cli
