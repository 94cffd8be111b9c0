#include "settings/options_state.h"

namespace mirellon::settings {

namespace {

constexpr int kLightScheme = 1;
constexpr int kDarkScheme = 2;
constexpr int kRestartCaption = 63;
constexpr int kRestartText = 64;

}  // namespace

OptionsState::OptionsState(AppSettings& settings, Localization& localization, const CardCheck& cardUsable,
                           int colourScheme)
    : settings_(settings),
      localization_(localization),
      colourScheme_(colourScheme),
      cardUsable_(cardUsable && cardUsable()),
      hardware_(cardUsable_ && settings.GetNumber(Setting::kHwAccel) != 0),
      fusion_(settings.GetNumber(Setting::kGpuCpuFusion) != 0),
      language_(localization.current()),
      languageAtOpening_(language_),
      darkScheme_(colourScheme >= kDarkScheme) {}

OptionsOutcome OptionsState::Accept() {
  OptionsOutcome outcome;
  outcome.hwAccel = hardware_ ? 1 : 0;
  outcome.fusion = fusion_ ? 1 : 0;
  const auto store = [&](Setting setting, int number) {
    if (settings_.SetNumber(setting, number))
      outcome.warning = "the settings cannot be stored: " + settings_.cause();
  };
  if (localization_.ChooseLanguage(language_)) outcome.warning = "the language cannot be stored";
  store(Setting::kHwAccel, outcome.hwAccel);
  // There is no control for it, so it is always off.
  store(Setting::kAdvancedDenoise, outcome.advancedDenoise);
  store(Setting::kGpuCpuFusion, outcome.fusion);
  if (language_ != languageAtOpening_) {
    outcome.restart = {localization_.TextIn(language_, kRestartCaption),
                       localization_.TextIn(language_, kRestartText)};
  }
  const bool wasDark = colourScheme_ >= kDarkScheme;
  if (darkScheme_ != wasDark) {
    outcome.colourScheme = darkScheme_ ? kDarkScheme : kLightScheme;
    store(Setting::kColourScheme, *outcome.colourScheme);
  }
  return outcome;
}

}  // namespace mirellon::settings
