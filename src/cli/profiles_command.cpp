#include "cli/profiles_command.h"

#include <string>

#include "base/text.h"
#include "cli/command_support.h"
#include "cli/diagnostics.h"
#include "cli/profile_support.h"
#include "cli/profiles_arguments.h"
#include "cli/profiles_measure.h"
#include "cli/profiles_report.h"
#include "profiles/interpolate.h"
#include "profiles/profile_lock.h"

namespace mirellon::cli {

namespace {

using profiles::NoiseProfileStore;

// One action on the stored sets. Each function prints what goes wrong and gives the status to end with.
class ProfilesRun {
 public:
  ProfilesRun(const ProfilesArguments& arguments, Shell& shell) : arguments_(arguments), shell_(shell) {}

  ExitStatus Run(ProfilesAction action) {
    if (action == ProfilesAction::kPath) {
      PrintPaths(shell_.out, ChosenProfilePaths(arguments_.profiles, shell_), arguments_.json);
      return ExitStatus::kDone;
    }
    if (action == ProfilesAction::kMeasure) return Measure();
    const bool changes = action == ProfilesAction::kSet || action == ProfilesAction::kRemove;
    const ExitStatus status = changes ? OpenForChange() : Open();
    if (status != ExitStatus::kDone) return status;
    switch (action) {
      case ProfilesAction::kShow:
        return Show();
      case ProfilesAction::kSet:
        return Set();
      case ProfilesAction::kRemove:
        return Remove();
      default:
        break;
    }
    PrintCameras(shell_.out, store_, arguments_.json);
    return ExitStatus::kDone;
  }

 private:
  // Nothing is written but what the action asks for.
  ExitStatus Open() {
    std::vector<std::string> warnings;
    const ExitStatus status =
        OpenProfiles(store_, arguments_.profiles, profiles::FirstRun::kLeave, shell_, warnings);
    for (const std::string& warning : warnings) PrintWarning(shell_.err, warning);
    return status;
  }

  // From here to the end nobody else changes the file.
  ExitStatus OpenForChange() {
    if (RefusesProfilesFolder(arguments_.profiles, shell_)) return ExitStatus::kUsage;
    const std::filesystem::path file = ChosenProfilePaths(arguments_.profiles, shell_).userFile;
    if (lock_.Acquire(file, kLongestProfilesWait, &shell_.engine.control)) {
      if (shell_.engine.control.Aborted()) return Interrupted(file, shell_);
      PrintError(shell_.err, About(file.native(), lock_.cause()));
      return ExitStatus::kOutput;
    }
    std::vector<std::string> warnings;
    const ExitStatus status =
        OpenProfiles(store_, arguments_.profiles, profiles::FirstRun::kLeave, shell_, warnings);
    if (status != ExitStatus::kDone) return status;
    // A photograph given as profile file by mistake, or somebody's letters: nothing to write over.
    if (!store_.understood() && store_.source() == profiles::ProfileSource::kUserFile) {
      PrintError(shell_.err, About(store_.causeFile().native(), store_.cause() + "; left as it is"));
      return ExitStatus::kOutput;
    }
    if (warned_) return ExitStatus::kDone;
    for (const std::string& warning : warnings) PrintWarning(shell_.err, warning);
    return ExitStatus::kDone;
  }

  ExitStatus Refuse(const std::string& why) {
    PrintError(shell_.err, why);
    return ExitStatus::kUsage;
  }

  ExitStatus Save() {
    const bool failed = store_.Save();
    if (!store_.keptCopy().empty()) {
      PrintNote(shell_.err, About(store_.paths().userFile.native(),
                                  "the old file is kept as " + Quoted(store_.keptCopy().native())));
    }
    if (!failed) return ExitStatus::kDone;
    PrintError(shell_.err, About(store_.causeFile().native(), store_.cause()));
    return ExitStatus::kOutput;
  }

  void Print(std::uint32_t camera, std::uint32_t entry) {
    PrintSet(shell_.out, store_.cameras()[camera], entry, arguments_.json);
  }

  // Finds the camera and, where one was given, the speed. True when refused, with the status set.
  bool Find(std::uint32_t& camera, std::optional<std::uint32_t>& entry, ExitStatus& refused) {
    const std::optional<std::uint32_t> found = FindStoredCamera(store_, arguments_.camera);
    if (!found) {
      refused = Refuse("CAMERA: " + NoSuchCamera(store_, arguments_.camera));
      return true;
    }
    camera = *found;
    if (!arguments_.iso) return false;
    entry = FindStoredEntry(store_, camera, *arguments_.iso);
    if (entry) return false;
    refused = Refuse("ISO: " + NoSuchSpeed(store_, camera, *arguments_.iso));
    return true;
  }

  ExitStatus Show() {
    ExitStatus refused = ExitStatus::kDone;
    std::uint32_t camera = 0;
    std::optional<std::uint32_t> entry;
    if (Find(camera, entry, refused)) return refused;
    if (entry) {
      Print(camera, *entry);
      return ExitStatus::kDone;
    }
    for (std::uint32_t i = 0; store_.Entry(camera, i) != nullptr; ++i) Print(camera, i);
    return ExitStatus::kDone;
  }

  ExitStatus Set() {
    const std::uint32_t iso = arguments_.iso.value_or(0);
    const std::optional<std::uint32_t> camera = FindStoredCamera(store_, arguments_.camera);
    const std::optional<std::uint32_t> entry = camera ? FindStoredEntry(store_, *camera, iso) : std::nullopt;
    engine::DenoiseParameters set = entry ? *store_.Entry(*camera, *entry) : profiles::BuiltInParameters();
    arguments_.given.Replace(set);
    // A damaged file may hold names that no file should.
    const std::wstring name = camera ? store_.cameras()[*camera].name : arguments_.camera;
    if (!profiles::IsStorableName(name)) return Refuse("CAMERA: " + NotStorable(name));
    if (store_.AddOrReplace(name, std::to_wstring(iso), profiles::AsStored(set))) {
      return NoMemory(store_.paths().userFile, shell_);
    }
    return SaveAndPrint({{name, iso}});
  }

  ExitStatus Remove() {
    ExitStatus refused = ExitStatus::kDone;
    std::uint32_t camera = 0;
    std::optional<std::uint32_t> entry;
    if (Find(camera, entry, refused)) return refused;
    const bool failed = entry ? store_.DeleteIso(camera, *entry) : store_.DeleteCamera(camera);
    if (failed) {
      return Refuse("CAMERA: " + Quoted(base::Utf8FromWide(store_.cameras()[camera].name)) +
                    " cannot be removed, nor its last ISO speed");
    }
    return Save();
  }

  ExitStatus Measure() {
    // What would be refused in the end is refused before the work; others need not wait for that.
    ExitStatus status = OpenForChange();
    lock_.Release();
    warned_ = true;
    if (status != ExitStatus::kDone) return status;
    NoiseByCamera measured;
    const ExitStatus complete = MeasurePhotos(arguments_.photos, measured, shell_);
    if (measured.empty()) return complete;
    status = OpenForChange();
    if (status != ExitStatus::kDone) return status;
    std::vector<StoredSet> stored;
    const ExitStatus added = AddMeasured(measured, profiles::CatchAllSets(store_), store_, stored, shell_);
    if (added == ExitStatus::kMemory || stored.empty()) return added;
    status = SaveAndPrint(stored);
    if (status != ExitStatus::kDone) return status;
    return added == ExitStatus::kDone ? complete : ExitStatus::kFailed;
  }

  ExitStatus SaveAndPrint(const std::vector<StoredSet>& sets) {
    const ExitStatus status = Save();
    if (status != ExitStatus::kDone) return status;
    for (const auto& [name, iso] : sets) {
      const std::optional<std::uint32_t> camera = FindStoredCamera(store_, name);
      const std::optional<std::uint32_t> entry =
          camera ? FindStoredEntry(store_, *camera, iso) : std::nullopt;
      if (entry) Print(*camera, *entry);
    }
    return ExitStatus::kDone;
  }

  const ProfilesArguments& arguments_;
  Shell& shell_;
  NoiseProfileStore store_;
  profiles::ProfileLock lock_;
  bool warned_ = false;  // what is wrong with the file has been told already
};

ExitStatus WrongAction(const std::string& text, Shell& shell) {
  PrintError(shell.err, text + "; see '" + kProgramName + " profiles --help'");
  return ExitStatus::kUsage;
}

}  // namespace

ExitStatus RunProfiles(std::span<const char* const> args, Shell& shell) {
  if (args.empty()) return WrongAction("profiles: no action given", shell);
  const std::string_view name = args.front();
  if (name == "--help" || name == "-h") {
    shell.out << ProfilesHelp();
    return ExitStatus::kDone;
  }
  const std::optional<ProfilesAction> action = FindProfilesAction(name);
  if (!action) return WrongAction("profiles: " + Quoted(name) + ": unknown action", shell);
  ProfilesArguments arguments;
  const std::optional<ExitStatus> concluded =
      Conclude(ParseProfilesArguments(*action, args.subspan(1), arguments), shell);
  if (concluded) return *concluded;
  return ProfilesRun(arguments, shell).Run(*action);
}

}  // namespace mirellon::cli
