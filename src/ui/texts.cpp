#include "ui/texts.h"

#include <QFile>
#include <QTextDocument>
#include <string>

#include "base/text.h"

namespace mirellon::ui {

QString ShownName(const std::filesystem::path& file) {
  const std::filesystem::path name = file.has_filename() ? file.filename() : file;
  return QString::fromStdString(base::PrintableName(name.native()));
}

QString PlainToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()) : text;
}

std::filesystem::path PathOf(const QString& text) {
  return QFile::encodeName(text).toStdString();
}

QString TextOf(const std::filesystem::path& path) {
  return QFile::decodeName(QByteArray::fromStdString(path.native()));
}

}  // namespace mirellon::ui
