#include "skin/install.h"

#include <QPointer>
#include <QStyleFactory>
#include <QToolTip>
#include <QWidget>

#include "skin/schemes.h"
#include "skin/skin_style.h"

namespace mirellon::skin {

namespace {

// What the application had before; a child of it for as long as it has the skin.
class Before : public QObject {
 public:
  explicit Before(QApplication& application) : QObject(&application) {
    setObjectName(QString::fromLatin1(kName));
  }

  static Before* Of(const QApplication& application) {
    return static_cast<Before*>(
        application.findChild<QObject*>(QString::fromLatin1(kName), Qt::FindDirectChildrenOnly));
  }

  static constexpr const char* kName = "mirellonSkin";
  const QString style = QApplication::style()->name();
  const QPalette toolTips = QToolTip::palette();
  QPointer<SkinStyle> skin;  // the application's
};

void RepaintEverything() {
  for (QWidget* widget : QApplication::allWidgets()) widget->update();
}

void ShowColours(const Scheme& scheme) {
  const QPalette palette = PaletteOf(scheme);
  QApplication::setPalette(palette);
  QToolTip::setPalette(palette);
  RepaintEverything();
}

}  // namespace

void InstallSkin(QApplication& application, int scheme) {
  if (Before::Of(application) != nullptr) return SetColourScheme(application, scheme);
  auto* before = new Before(application);  // the application's
  before->skin = new SkinStyle(SchemeOf(scheme));
  QApplication::setStyle(before->skin);
  ShowColours(SchemeOf(scheme));
}

void SetColourScheme(QApplication& application, int scheme) {
  const Before* before = Before::Of(application);
  if (before == nullptr) return;
  if (before->skin != nullptr) before->skin->SetScheme(SchemeOf(scheme));
  ShowColours(SchemeOf(scheme));
}

void RemoveSkin(QApplication& application) {
  const Before* before = Before::Of(application);
  if (before == nullptr) return;
  QStyle* style = QStyleFactory::create(before->style);
  if (style == nullptr) style = QStyleFactory::create(QStyleFactory::keys().constFirst());
  QApplication::setPalette(QPalette());  // with nothing set, the platform's comes back
  QToolTip::setPalette(before->toolTips);
  QApplication::setStyle(style);
  delete before;
  RepaintEverything();
}

}  // namespace mirellon::skin
