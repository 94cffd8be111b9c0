#include "ui/local_url.h"

#include <string>
#include <utility>

namespace mirellon::ui {

QUrl UrlOf(const std::filesystem::path& path) {
  const QByteArray bytes = QByteArray::fromStdString(path.native());
  return QUrl::fromEncoded("file://" + bytes.toPercentEncoding("/"));
}

std::filesystem::path PathOf(const QUrl& url) {
  if (!url.isLocalFile()) return {};
  // The toolkit's own way replaces what is not UTF-8.
  return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toUtf8()).toStdString();
}

std::vector<std::filesystem::path> LocalPaths(const QList<QUrl>& urls) {
  std::vector<std::filesystem::path> paths;
  for (const QUrl& url : urls) {
    if (std::filesystem::path path = PathOf(url); !path.empty()) paths.push_back(std::move(path));
  }
  return paths;
}

}  // namespace mirellon::ui
