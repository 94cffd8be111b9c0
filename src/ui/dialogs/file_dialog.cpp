#include "ui/dialogs/file_dialog.h"

#include <QComboBox>
#include <QHeaderView>
#include <QScreen>
#include <QSplitter>
#include <QTreeView>
#include <utility>

#include "ui/plain_list.h"

namespace mirellon::ui {

namespace {

constexpr int kWidth = 132;  // in average characters
constexpr int kHeight = 40;  // in lines
constexpr int kPlaces = 24;  // the list of places, in average characters

QSize UsualSize(const QFileDialog& dialog) {
  const QFontMetrics metrics = dialog.fontMetrics();
  const QSize wanted(kWidth * metrics.averageCharWidth(), kHeight * metrics.lineSpacing());
  return wanted.expandedTo(dialog.sizeHint()).boundedTo(dialog.screen()->availableSize());
}

}  // namespace

void DressFileDialog(QFileDialog& dialog) {
  for (const auto& [list, label] :
       {std::pair("lookInCombo", QFileDialog::LookIn), std::pair("fileTypeCombo", QFileDialog::FileType)}) {
    if (auto* found = dialog.findChild<QComboBox*>(QLatin1String(list)))
      DressList(*found, dialog.labelText(label));
  }
  dialog.resize(UsualSize(dialog));
  if (auto* splitter = dialog.findChild<QSplitter*>(QStringLiteral("splitter"))) {
    const int places = kPlaces * dialog.fontMetrics().averageCharWidth();
    splitter->setSizes({places, dialog.width() - places});
  }
  if (auto* files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"))) {
    files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  }
}

}  // namespace mirellon::ui
