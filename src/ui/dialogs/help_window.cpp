#include "ui/dialogs/help_window.h"

#include <QTextBrowser>
#include <QUrl>

#include "ui/texts.h"

namespace mirellon::ui {

void ShowHelpWindow(const std::filesystem::path& page, QWidget* owner) {
  const QString name = QStringLiteral("helpWindow");
  auto* browser = owner->findChild<QTextBrowser*>(name);
  if (browser == nullptr) {
    browser = new QTextBrowser(owner);  // its owner's
    browser->setObjectName(name);
    browser->setWindowFlag(Qt::Window);
    browser->setOpenExternalLinks(true);
    browser->resize(760, 640);
  }
  browser->setSource(QUrl::fromLocalFile(TextOf(page)));
  browser->setWindowTitle(browser->documentTitle());
  browser->show();
  browser->raise();
  browser->activateWindow();
}

}  // namespace mirellon::ui
