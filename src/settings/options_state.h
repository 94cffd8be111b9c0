// The options dialog without its window.
#pragma once

#include <optional>
#include <string>

#include "settings/app_settings.h"
#include "settings/localization.h"

namespace mirellon::settings {

// What has to happen once OK was clicked. The language's texts change at the next start only.
struct OptionsOutcome {
  int hwAccel = 0;  // in force from now on
  int fusion = 0;
  int advancedDenoise = 0;
  struct Message {
    std::wstring caption;
    std::wstring text;
  };
  std::optional<Message> restart;   // to be shown, in the language just chosen
  std::optional<int> colourScheme;  // to be switched to
  std::string warning;              // something could not be stored; empty when all was
};

// Made when the dialog opens, which reads the settings; the dialog shows what it says, tells it of clicks,
// and calls Accept for OK. Without Accept nothing was written: that is Cancel. `settings` and `localization`
// outlive it.
class OptionsState {
 public:
  // `colourScheme` is the one shown now.
  OptionsState(AppSettings& settings, Localization& localization, const CardCheck& cardUsable,
               int colourScheme);

  [[nodiscard]] bool hardwareChecked() const { return hardware_; }      // check box 1076
  [[nodiscard]] bool hardwareEnabled() const { return cardUsable_; }    // and whether it can be clicked
  [[nodiscard]] bool fusionEnabled() const { return hardware_; }        // radio buttons 1098 and 1099
  [[nodiscard]] bool fusionChosen() const { return fusion_; }           // 1098, else 1099
  [[nodiscard]] int language() const { return language_; }              // list 1074
  [[nodiscard]] bool darkSchemeChecked() const { return darkScheme_; }  // hidden check box 1085

  void CheckHardware(bool checked) { hardware_ = checked && cardUsable_; }
  void ChooseFusion(bool fusion) { fusion_ = fusion; }
  void ChooseLanguage(int language) { language_ = language; }
  void CheckDarkScheme(bool checked) { darkScheme_ = checked; }

  [[nodiscard]] OptionsOutcome Accept();

 private:
  AppSettings& settings_;
  Localization& localization_;
  int colourScheme_;
  bool cardUsable_;
  bool hardware_;
  bool fusion_;
  int language_;
  int languageAtOpening_;
  bool darkScheme_;
};

}  // namespace mirellon::settings
