// Takes the place of the desktop's file manager.
#pragma once

#include <QDesktopServices>
#include <QObject>
#include <filesystem>
#include <vector>

#include "ui/local_url.h"

namespace mirellon::test {

// Remembers what would be opened while it lives, and opens nothing.
class OpenedFolders : public QObject {
  Q_OBJECT

 public:
  OpenedFolders() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "Open"); }
  ~OpenedFolders() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

  Q_INVOKABLE void Open(const QUrl& url) { folders_.push_back(ui::PathOf(url)); }
  [[nodiscard]] const std::vector<std::filesystem::path>& folders() const { return folders_; }

 private:
  std::vector<std::filesystem::path> folders_;
};

}  // namespace mirellon::test
