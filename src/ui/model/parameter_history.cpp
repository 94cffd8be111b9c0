#include "ui/model/parameter_history.h"

#include <tuple>

namespace mirellon::ui {

namespace {

auto EffectOf(const engine::DenoiseParameters& p) {
  return std::tie(p.m_dStrength, p.m_dStrengthChroma, p.m_dStrengthChromaLarge, p.m_dDynamics, p.m_dSharp1,
                  p.m_dSharp2, p.m_dSharp3, p.m_iUseMedian);
}

}  // namespace

bool SameEffect(const engine::DenoiseParameters& a, const engine::DenoiseParameters& b) {
  return EffectOf(a) == EffectOf(b);
}

void ParameterHistory::Start(const PanelState& state) {
  states_.assign(1, state);
  current_ = 0;
}

void ParameterHistory::Record(const PanelState& state) {
  if (states_.empty()) return Start(state);
  if (SameEffect(states_[current_].parameters, state.parameters)) {
    states_[current_] = state;
    return;
  }
  states_.resize(current_ + 1);
  states_.push_back(state);
  if (states_.size() > kMostStates) states_.erase(states_.begin());
  current_ = states_.size() - 1;
}

std::optional<PanelState> ParameterHistory::Undo() {
  if (!CanUndo()) return std::nullopt;
  return states_[--current_];
}

std::optional<PanelState> ParameterHistory::Redo() {
  if (!CanRedo()) return std::nullopt;
  return states_[++current_];
}

}  // namespace mirellon::ui
