// Local files as addresses.
#pragma once

#include <QUrl>
#include <filesystem>
#include <vector>

namespace mirellon::ui {

// Byte for byte, whatever encoding a name has.
[[nodiscard]] QUrl UrlOf(const std::filesystem::path& path);
// Empty for an address that is no local file's.
[[nodiscard]] std::filesystem::path PathOf(const QUrl& url);
[[nodiscard]] std::vector<std::filesystem::path> LocalPaths(const QList<QUrl>& urls);

}  // namespace mirellon::ui
