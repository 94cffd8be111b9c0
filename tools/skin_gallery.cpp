// Draws every control in every state: mirellon-skin-gallery FOLDER writes one picture for each colour scheme
// at each of three scales. Needs no screen.
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cstdio>

#include "skin/install.h"
#include "skin/schemes.h"
#include "skin/skin_style.h"
#include "skin_specimens.h"

// The macro wants to stand outside of every namespace.
static void InitLinkedResources() {
  Q_INIT_RESOURCE(icons);
  Q_INIT_RESOURCE(skin);
}

namespace {

using namespace mirellon;

constexpr int kGap = 16;
constexpr int kNameWidth = 168;
constexpr int kColumnWidth = 148;
constexpr int kNameHeight = 28;
constexpr std::array kPoses{specimens::Pose::kNormal, specimens::Pose::kHot, specimens::Pose::kFocused,
                            specimens::Pose::kPressed, specimens::Pose::kDisabled};
constexpr std::array kPoseNames{"normal", "hot", "focus", "pressed", "disabled"};

constexpr int kHalf = kNameWidth + static_cast<int>(kPoses.size()) * kColumnWidth + kGap;
constexpr int kHeight = 860;
constexpr int kRoomBelow = 120;  // for the highest specimen

void DrawHeads(QPainter& painter, const QPoint& at) {
  for (std::size_t i = 0; i < kPoses.size(); ++i) {
    painter.drawText(at + QPoint(kNameWidth + static_cast<int>(i) * kColumnWidth, 12),
                     QString::fromLatin1(kPoseNames.at(i)));
  }
}

// How high the row is.
int DrawRow(QPainter& painter, const specimens::Specimen& specimen, const QPoint& at, qreal scale) {
  int high = 0;
  int left = at.x() + kNameWidth;
  for (std::size_t i = 0; i < kPoses.size(); ++i) {
    const auto& poses = specimen.poses;
    if (std::find(poses.begin(), poses.end(), kPoses.at(i)) == poses.end()) continue;
    const std::unique_ptr<QWidget> widget = specimen.make(QStringLiteral("Text here"));
    specimens::SetPose(*widget, kPoses.at(i));
    left = std::max(left, at.x() + kNameWidth + static_cast<int>(i) * kColumnWidth);
    painter.drawImage(QPoint(left, at.y()), specimens::Picture(*widget, scale));
    left += widget->width() + kGap;
    high = std::max(high, widget->height());
  }
  const QRect name(at, QSize(kNameWidth, std::clamp(high, kGap, kNameHeight)));
  painter.drawText(name, Qt::AlignVCenter, QString::fromStdString(specimen.name));
  return high;
}

// In two halves, side by side.
QImage Gallery(const skin::Scheme& scheme, qreal scale) {
  QImage image(QSize(2 * kHalf + 4 * kGap, kHeight) * scale, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(scheme.window);
  QPainter painter(&image);
  painter.setPen(scheme.text);
  QPoint at(kGap, kGap);
  DrawHeads(painter, at);
  at.ry() += kNameHeight;
  for (const specimens::Specimen& specimen : specimens::Specimens()) {
    if (at.y() > kHeight - kRoomBelow && at.x() == kGap) {
      at = QPoint(kGap + kHalf, kGap);
      DrawHeads(painter, at);
      at.ry() += kNameHeight;
    }
    at.ry() += DrawRow(painter, specimen, at, scale) + kGap / 2;
  }
  return image;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: mirellon-skin-gallery FOLDER\n", stderr);
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  InitLinkedResources();
  const QDir folder(QString::fromLocal8Bit(argv[1]));
  for (const int number : {skin::kSchemeLight, skin::kSchemeDark, skin::kSchemeContrast}) {
    const skin::Scheme& scheme = skin::SchemeOf(number);
    QApplication::setStyle(new specimens::PosingStyle(new skin::SkinStyle(scheme)));  // the application's
    QApplication::setPalette(skin::PaletteOf(scheme));
    for (const qreal scale : {1.0, 1.5, 2.0}) {
      const QString name = QStringLiteral("gallery-%1-%2.png").arg(number).arg(qRound(scale * 100));
      if (!Gallery(scheme, scale).save(folder.filePath(name))) {
        std::fprintf(stderr, "Cannot write %s\n", qPrintable(folder.filePath(name)));
        return 1;
      }
      std::puts(qPrintable(folder.filePath(name)));
    }
  }
  return 0;
}
