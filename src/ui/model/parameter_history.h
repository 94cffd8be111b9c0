// Taking back changes of the parameters.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/parameters.h"

namespace mirellon::ui {

// Equal in all that a run depends on; the noise of the photograph and the ISO speed do not count.
[[nodiscard]] bool SameEffect(const engine::DenoiseParameters& a, const engine::DenoiseParameters& b);

// Parameters and where they were copied from; the ISO speed is theirs.
struct PanelState {
  engine::DenoiseParameters parameters;
  std::wstring camera;
};

// The states that a photograph's parameters went through.
class ParameterHistory {
 public:
  static constexpr std::size_t kMostStates = 200;  // the oldest are forgotten

  // A new photograph.
  void Start(const PanelState& state);
  // A change that is complete (a slider let go, not each of its positions). One without effect takes the
  // place of the present state; after any other, what was taken back is forgotten.
  void Record(const PanelState& state);

  [[nodiscard]] bool CanUndo() const { return current_ > 0; }
  [[nodiscard]] bool CanRedo() const { return current_ + 1 < states_.size(); }
  // The state to return to; nothing when there is none.
  [[nodiscard]] std::optional<PanelState> Undo();
  [[nodiscard]] std::optional<PanelState> Redo();

 private:
  std::vector<PanelState> states_;
  std::size_t current_ = 0;
};

}  // namespace mirellon::ui
