#include "ui/help_topics.h"

#include <QFileDialog>
#include <QMessageBox>
#include <array>

namespace mirellon::ui {

namespace {

constexpr std::array kTopics = std::to_array<HelpTopic>({
    {"m_dStrength", "strength"},
    {"m_dStrengthChroma", "chroma"},
    {"m_dStrengthChromaLarge", "chroma-large"},
    {"m_dDynamics", "dynamics"},
    {"m_dSharp1", "tiny"},
    {"m_dSharp2", "medium"},
    {"m_dSharp3", "rough"},
    {"artefacts0", "artefacts"},
    {"artefacts1", "artefacts"},
    {"artefacts2", "artefacts"},
    {"qualityList", "quality"},
    {"cameraList", "profiles"},
    {"isoList", "profiles"},
    {"measureSetting", "profiles"},
    {"saveSetting", "profiles"},
    {"deleteSetting", "profiles"},
    {"manualTuning", "profiles"},
    {"parameterPanel", "parameters"},
    {"startHint", "start"},
    {"imageView", "viewing"},
    {"zoomList", "viewing"},
    {"addingDialog", "profiles"},
    {"saveDialog", "saving"},
    {"batchOptionsDialog", "batch"},
    {"batchProgressDialog", "batch"},
    {"batchReportDialog", "batch"},
    {"folderDialog", "batch"},
    {"control1076", "card"},
    {"control1098", "card"},
    {"control1099", "card"},
    {"optionsDialog", "options"},
});

const char* AnchorOf(const QString& name) {
  const QString last = name.section(QLatin1Char('.'), -1);
  for (const HelpTopic& topic : kTopics) {
    if (last == QLatin1String(topic.name)) return topic.anchor;
  }
  return nullptr;
}

}  // namespace

std::span<const HelpTopic> HelpTopics() {
  return kTopics;
}

QString TopicOf(const QWidget* widget) {
  for (; widget != nullptr; widget = widget->parentWidget()) {
    if (const char* anchor = AnchorOf(widget->objectName())) return QLatin1String(anchor);
    if (qobject_cast<const QMessageBox*>(widget) != nullptr) return QStringLiteral("trouble");
    if (qobject_cast<const QFileDialog*>(widget) != nullptr) return QStringLiteral("start");
    if (widget->isWindow()) break;
  }
  return QLatin1String(kHelpStart);
}

}  // namespace mirellon::ui
