// The parameter panel without its widgets.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/parameters.h"
#include "profiles/profile_select.h"
#include "profiles/profile_store.h"
#include "ui/model/document_session.h"
#include "ui/model/parameter_history.h"
#include "ui/model/profile_edits.h"

namespace mirellon::ui {

// The chosen camera and ISO speed, and the parameters in work, which are copied from their entry and edited.
class PanelModel {
 public:
  explicit PanelModel(profiles::ProfilePaths paths) : store_(std::move(paths)) {}

  // ---- The store ----
  // Reads the profile file; camera and ISO entry 0 are chosen. True = failed, and what there is is in use.
  bool Load();
  // Makes the panel's additions and deletions on what the file holds now, and writes that, under the
  // file's lock; so what another program has stored meanwhile stays, and is in use here from then on. True =
  // failed: nothing was written, saveCause() and saveCauseFile() say why.
  bool Save();
  [[nodiscard]] const std::string& saveCause() const { return saveCause_; }
  [[nodiscard]] const std::filesystem::path& saveCauseFile() const { return saveCauseFile_; }
  [[nodiscard]] const profiles::NoiseProfileStore& store() const { return store_; }
  // There are additions or deletions that the file does not hold.
  [[nodiscard]] bool changed() const { return !edits_.empty(); }

  // ---- Choosing ----
  // As the panel chooses for a photograph just opened. The store is read anew, changes saved before.
  void ShowPhotograph(const Photograph& photograph);
  void SelectCamera(std::uint32_t camera);
  void SelectIso(std::uint32_t entry);
  [[nodiscard]] std::uint32_t camera() const { return camera_; }
  [[nodiscard]] std::uint32_t iso() const { return iso_; }
  [[nodiscard]] std::vector<std::wstring> CameraNames() const;
  [[nodiscard]] std::vector<std::wstring> IsoTexts() const;  // of the chosen camera

  // ---- Keeping and deleting ----
  // The parameters in work, with the photograph's noise, under that name; the entry is chosen then. True =
  // refused or out of memory.
  bool Keep(const std::wstring& camera, const std::wstring& iso);
  // A set for the photograph's own camera and ISO speed, made from its measured noise, in place of what
  // is stored for them; it is chosen then. True = refused or out of memory.
  [[nodiscard]] bool CanMeasure() const;
  bool KeepMeasured();
  [[nodiscard]] bool CanDelete() const { return camera_ != 0 || iso_ != 0; }
  enum class Scope { kCamera, kIso };
  // True = refused.
  bool Delete(Scope scope);

  // ---- The parameters in work ----
  [[nodiscard]] const engine::DenoiseParameters& parameters() const { return parameters_; }
  // One number; Record() makes the change one that can be taken back.
  void SetValue(double engine::DenoiseParameters::*field, double value) { parameters_.*field = value; }
  void SetArtefacts(std::int32_t mode) { parameters_.m_iUseMedian = mode; }
  // The values of "Set Default"; artefacts and noise stay.
  void SetDefault();
  void Record() { history_.Record(State()); }
  // Camera and ISO speed come back, too. False: nothing to take back.
  bool Undo();
  bool Redo();
  [[nodiscard]] const ParameterHistory& history() const { return history_; }

 private:
  [[nodiscard]] PanelState State() const;
  [[nodiscard]] bool Return(const std::optional<PanelState>& state);
  void Choose(const profiles::ProfileChoice& choice);
  void CopyEntry();
  [[nodiscard]] bool FailSave(const std::filesystem::path& file, const std::string& cause);
  // Takes a store that was read anew; what was chosen stays chosen where it still is.
  void Adopt(profiles::NoiseProfileStore store);

  profiles::NoiseProfileStore store_;
  std::uint32_t camera_ = 0;
  std::uint32_t iso_ = 0;
  profiles::PhotoIdentity photo_;
  engine::MeasuredNoise noise_;
  engine::DenoiseParameters parameters_;
  ParameterHistory history_;
  ProfileEdits edits_;  // since the store was read or written
  std::string saveCause_;
  std::filesystem::path saveCauseFile_;
};

}  // namespace mirellon::ui
