// The per-user settings file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "settings/setting_table.h"

namespace mirellon::settings {

// Reads and writes single settings. Nothing is held in memory: every access creates the folder first (unless
// told to leave the disk alone) and reads the file anew, so that several programs agree. Unknown keys and
// sections survive a write; a file that cannot be understood counts as empty, and is kept beside the new one
// when that is written (base::KeepCopy).
class AppSettings {
 public:
  enum class Reading { kMakesFolder, kMakesNothing };

  // `applicationData` is base::ApplicationDataFolder(); the file is base::SettingsFile of it.
  explicit AppSettings(std::filesystem::path applicationData, Reading reading = Reading::kMakesFolder)
      : folder_(std::move(applicationData)), reading_(reading) {}

  // A number, held to the row's range if it has one; the row's initial value when the key is missing. Text
  // that is no number is 0.
  [[nodiscard]] int GetNumber(Setting setting) const;
  [[nodiscard]] std::wstring GetText(Setting setting) const;

  // True = failed. A file that already says so is not touched.
  [[nodiscard]] bool SetNumber(Setting setting, int number);
  [[nodiscard]] bool SetText(Setting setting, const std::wstring& text);

  // "Latest Folder" as a path, empty when there is none. A folder whose name no text file can hold (not
  // UTF-8, line breaks, over 1023 characters) is not remembered: that is a failure too.
  [[nodiscard]] std::filesystem::path GetLatestFolder() const;
  [[nodiscard]] bool SetLatestFolder(const std::filesystem::path& folder);

  // Why the last write failed, in English, without a full stop; and what kept the old content, if it had to
  // be kept.
  [[nodiscard]] const std::string& cause() const { return cause_; }
  [[nodiscard]] const std::filesystem::path& keptCopy() const { return keptCopy_; }

 private:
  std::filesystem::path folder_;
  Reading reading_;
  std::string cause_;
  std::filesystem::path keptCopy_;
};

// Key "jpeg" as stored (not held to any range), and back; the number is written as unsigned ("%u").
[[nodiscard]] int ReadJpegQuality(const std::filesystem::path& applicationData);
[[nodiscard]] bool WriteJpegQuality(const std::filesystem::path& applicationData, int quality);

// Whether a graphics card has what it takes and passed its self-test.
using CardCheck = std::function<bool()>;

// The flag in force for a stored one: the card is asked only when it is wanted, and without it the flag is 0.
[[nodiscard]] int EffectiveHwAccel(int stored, const CardCheck& cardUsable);

// What the desktop program holds in memory after its start.
struct LoadedSettings {
  int hwAccel = 0;  // in force, see above; the stored number may differ
  int fusion = 0;
  int advancedDenoise = 0;
  bool crashedLastTime = false;
  int jpegQuality = 0;
  std::uint32_t quality = 0;  // 1 to 3, the engine's codes
  int colourScheme = 0;       // 1 to 3
  std::string warning;        // the settings cannot be written; empty when they can
};

// The start: reads all of it, then sets the crash marker. MarkOrderlyEnd takes it away; true = failed.
[[nodiscard]] LoadedSettings LoadSettings(AppSettings& settings, const CardCheck& cardUsable);
[[nodiscard]] bool MarkOrderlyEnd(AppSettings& settings);

}  // namespace mirellon::settings
