#include "cli/profiles_arguments.h"

#include <algorithm>
#include <array>

#include "cli/diagnostics.h"
#include "cli/parser.h"
#include "profiles/profile_file.h"

namespace mirellon::cli {

namespace {

struct Action {
  std::string_view name;
  const char* usage;
  const char* meaning;
};

// In the order of ProfilesAction.
constexpr std::array<Action, 6> kActions{{
    {"list", "list", "Lists the cameras and their ISO speeds."},
    {"show", "show CAMERA [ISO]", "Shows a camera's sets, or the one of an ISO speed."},
    {"set", "set CAMERA ISO [values]",
     "Stores a set; what is not given stays as it is, or is that of the built-in set."},
    {"remove", "remove CAMERA [ISO]", "Removes a camera, or one of its ISO speeds."},
    {"measure", "measure PHOTO...",
     "Stores a set for the camera and ISO speed of each photograph, with its measured noise and the "
     "strengths "
     "that go with it."},
    {"path", "path", "Tells the profile file's name."},
}};

void AddCamera(Parser& parser, ProfilesArguments& arguments) {
  parser.AddArgument("CAMERA",
                     "The camera's name as 'profiles list' or 'info' tells it; spaces do not matter",
                     [&arguments](std::string_view text) { return ReadCamera(text, arguments.camera); });
}

void AddIso(Parser& parser, ProfilesArguments& arguments, std::uint32_t low, std::uint32_t high,
            bool required) {
  const std::string range = " (" + std::to_string(low) + " to " + std::to_string(high) + ")";
  const auto read = [&arguments, low, high](std::string_view text) {
    return ReadIso(text, low, high, arguments.iso.emplace());
  };
  parser.AddArgument("ISO", "The ISO speed" + range, read, required);
}

}  // namespace

std::optional<ProfilesAction> FindProfilesAction(std::string_view name) {
  const auto* found =
      std::find_if(kActions.begin(), kActions.end(), [name](const Action& row) { return row.name == name; });
  if (found == kActions.end()) return std::nullopt;
  return static_cast<ProfilesAction>(found - kActions.begin());
}

std::string ProfilesHelp() {
  std::string text = "Keeps the sets of values that photographs are denoised with.\n\nUsage:\n";
  for (const Action& row : kActions) {
    text += std::string("  ") + kProgramName + " profiles " + row.usage + "\n      " + row.meaning + "\n";
  }
  return text + "\n'" + kProgramName + " profiles ACTION --help' lists an action's options.\n";
}

ParseOutcome ParseProfilesArguments(ProfilesAction action, std::span<const char* const> args,
                                    ProfilesArguments& arguments) {
  const Action& row = kActions.at(static_cast<std::size_t>(action));
  Parser parser("profiles " + std::string(row.name), row.meaning);
  switch (action) {
    case ProfilesAction::kSet:
      AddCamera(parser, arguments);
      AddIso(parser, arguments, profiles::kLowestAddedIso, profiles::kHighestAddedIso, /*required=*/true);
      AddParameterOptions(parser, arguments.given);
      AddNoiseOptions(parser, arguments.given);
      break;
    case ProfilesAction::kShow:
    case ProfilesAction::kRemove:
      AddCamera(parser, arguments);
      AddIso(parser, arguments, 0, profiles::kHighestStoredIso, /*required=*/false);
      break;
    case ProfilesAction::kMeasure:
      parser.AddFiles("PHOTO", "Photographs; those of one camera and ISO speed are measured together",
                      arguments.photos);
      break;
    case ProfilesAction::kList:
    case ProfilesAction::kPath:
      break;
  }
  AddProfilesOption(parser, arguments.profiles);
  parser.AddFlag("--json", "Print the result as JSON", arguments.json);
  return parser.Parse(args);
}

}  // namespace mirellon::cli
