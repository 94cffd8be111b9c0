// The user-visible texts for widgets.
#pragma once

#include <QString>
#include <filesystem>

#include "settings/localization.h"

namespace mirellon::ui {

// Numbers of the text table, named where the number alone would say nothing.
namespace text {
inline constexpr int kOpenHint = 1;
inline constexpr int kFile = 2;
inline constexpr int kDenoiseMenu = 3;
inline constexpr int kHelpMenu = 4;
inline constexpr int kViewHint = 18;
inline constexpr int kError = 29;
inline constexpr int kFormatNotSupported = 30;
inline constexpr int kAbout = 31;
inline constexpr int kPreviewHint = 34;
inline constexpr int kDenoise = 38;
inline constexpr int kAbort = 43;
inline constexpr int kCompareHint = 44;
inline constexpr int kJpegQuality = 50;
inline constexpr int kOpenTitle = 55;
inline constexpr int kSaveTitle = 56;
inline constexpr int kOk = 59;
inline constexpr int kCancel = 60;
inline constexpr int kBatch = 73;
inline constexpr int kWarning = 81;
inline constexpr int kCrashed = 85;
// Texts of this program alone.
inline constexpr int kViewMenu = 201;
inline constexpr int kRecentFiles = 204;
inline constexpr int kColours = 205;
inline constexpr int kResult = 206;
inline constexpr int kOpening = 216;
inline constexpr int kSaving = 217;
inline constexpr int kDenoising = 218;
inline constexpr int kPreviewing = 219;
inline constexpr int kSaved = 220;
inline constexpr int kNotOpened = 221;
inline constexpr int kNotSaved = 222;
inline constexpr int kNoMemory = 223;
inline constexpr int kUnsavedQuestion = 224;
inline constexpr int kSave = 225;
inline constexpr int kDiscard = 226;
inline constexpr int kStaleQuestion = 227;
inline constexpr int kDenoiseAndSave = 228;
inline constexpr int kSaveAsItIs = 229;
inline constexpr int kOpenButton = 230;
inline constexpr int kDropHint = 231;
inline constexpr int kNeedsPhotograph = 232;
inline constexpr int kBusy = 233;
inline constexpr int kNoHelp = 234;
inline constexpr int kFirstOfFolder = 235;
inline constexpr int kLastOfFolder = 236;
inline constexpr int kNoise = 237;
inline constexpr int kBits = 238;
inline constexpr int kOverwriteQuestion = 239;
inline constexpr int kClearList = 240;
inline constexpr int kAboutText = 241;
inline constexpr int kLowMemory = 242;
inline constexpr int kNoWebPage = 243;
inline constexpr int kWhyNot = 244;
inline constexpr int kYes = 253;
inline constexpr int kNo = 254;
inline constexpr int kFinishing = 255;
inline constexpr int kProfileUnusable = 258;
inline constexpr int kCardFailed = 259;
inline constexpr int kCard = 265;
inline constexpr int kCardOff = 266;
inline constexpr int kCardRefused = 267;
inline constexpr int kCardExamined = 268;
inline constexpr int kCardCrashes = 269;
inline constexpr int kRemaining = 270;
inline constexpr int kBefore = 271;
inline constexpr int kAfter = 272;
inline constexpr int kReason = 274;
inline constexpr int kOpenFolder = 275;
inline constexpr int kCopyList = 276;
inline constexpr int kBatchWithoutFolder = 277;
inline constexpr int kCloseDuringBatch = 278;
inline constexpr int kBatchOffer = 279;
inline constexpr int kDenoiseAll = 280;
inline constexpr int kOpenFirst = 281;
inline constexpr int kToolBar = 290;
inline constexpr int kPhotograph = 291;
inline constexpr int kNotWritable = 303;
inline constexpr int kIsSource = 305;
inline constexpr int kSettingsNotStored = 306;
inline constexpr int kMetadataNotCopied = 307;
inline constexpr int kOriginal = 330;
inline constexpr int kDenoised = 331;
inline constexpr int kCannotDelete = 340;
inline constexpr int kProgress = 341;
inline constexpr int kNothingSaved = 350;
inline constexpr int kRunQuestion = 351;
inline constexpr int kStopAndClose = 352;
inline constexpr int kProfilesDamaged = 353;
inline constexpr int kSettingsLost = 354;
inline constexpr int kCloseAnyway = 355;
inline constexpr int kMeasure = 360;
inline constexpr int kNotMeasurable = 361;
inline constexpr int kMeasured = 362;
inline constexpr int kLicences = 363;
inline constexpr int kLicence = 364;
}  // namespace text

class Texts {
 public:
  explicit Texts(const settings::Localization& localization) : localization_(&localization) {}

  [[nodiscard]] QString operator()(int number) const {
    return QString::fromStdWString(localization_->Text(number));
  }

 private:
  const settings::Localization* localization_;
};

// A file's name for messages, and its whole path for the system. Names need not be UTF-8.
[[nodiscard]] QString ShownName(const std::filesystem::path& file);
// A tooltip shows it as it is, even where it looks like rich text.
[[nodiscard]] QString PlainToolTip(const QString& text);
[[nodiscard]] std::filesystem::path PathOf(const QString& text);
[[nodiscard]] QString TextOf(const std::filesystem::path& path);

}  // namespace mirellon::ui
