#include "ui/failure_texts.h"

#include "settings/text_table.h"

namespace mirellon::ui {

namespace {

int TextOf(imageio::LoadStatus status) {
  switch (status) {
    case imageio::LoadStatus::kMissing:
      return 295;
    case imageio::LoadStatus::kNotAFile:
      return 296;
    case imageio::LoadStatus::kEmpty:
      return 298;
    case imageio::LoadStatus::kUnknownFormat:
      return 299;
    case imageio::LoadStatus::kDamaged:
      return 300;
    case imageio::LoadStatus::kUnsupportedKind:
      return 301;
    case imageio::LoadStatus::kTooLarge:
      return 302;
    case imageio::LoadStatus::kOutOfMemory:
      return text::kLowMemory;
    case imageio::LoadStatus::kUnreadable:
    case imageio::LoadStatus::kLoaded:
    case imageio::LoadStatus::kCancelled:
      break;
  }
  return 297;
}

int TextOf(imageio::SaveStatus status) {
  switch (status) {
    case imageio::SaveStatus::kUnsupportedDepth:
      return 304;
    case imageio::SaveStatus::kTargetIsSource:
      return text::kIsSource;
    case imageio::SaveStatus::kOutOfMemory:
      return text::kLowMemory;
    case imageio::SaveStatus::kNotWritable:
    case imageio::SaveStatus::kTargetExists:
    case imageio::SaveStatus::kNoPicture:
    case imageio::SaveStatus::kAborted:
    case imageio::SaveStatus::kCancelled:
    case imageio::SaveStatus::kSaved:
      break;
  }
  return text::kNotWritable;
}

}  // namespace

QString Reason(const Texts& texts, int number, const std::string& cause) {
  QString reason = texts(number);
  const bool translated = reason != QString::fromWCharArray(settings::EnglishText(number));
  const QString detail = QString::fromStdString(cause);
  if (cause.empty()) return reason;
  return translated ? QStringLiteral("%1 (%2)").arg(reason, detail) : detail;
}

QString ReasonOf(const Texts& texts, const imageio::LoadReport& report) {
  return Reason(texts, TextOf(report.status), report.cause);
}

QString ReasonOf(const Texts& texts, const imageio::SaveReport& report) {
  return Reason(texts, TextOf(report.status), report.cause);
}

QString WarningOf(const Texts& texts, const std::string& warning) {
  const bool settings = warning == imageio::kQualityNotStored;
  return Reason(texts, settings ? text::kSettingsNotStored : text::kMetadataNotCopied, warning);
}

}  // namespace mirellon::ui
