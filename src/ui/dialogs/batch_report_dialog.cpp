#include "ui/dialogs/batch_report_dialog.h"

#include <QAction>
#include <QClipboard>
#include <QDesktopServices>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLayout>
#include <QPushButton>
#include <QStyle>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "base/text.h"
#include "batch/folder_walk.h"
#include "ui/local_url.h"
#include "ui/mnemonics.h"

namespace mirellon::ui {

namespace {

constexpr int kIcon = 32;
constexpr int kWidth = 720;
constexpr int kMostRows = 14;  // seen without scrolling
constexpr int kRowGap = 8;
constexpr int kGroupGap = 8;  // beside the spacing
constexpr int kFileWidth = 280;
constexpr int kStateWidth = 110;

class RoomyRows : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(kRowGap, kRowGap);
  }
};

// As high as its rows, within limits; and the key that opens a row must not press a button of the dialog.
class ReportList : public QTreeView {
 public:
  using QTreeView::QTreeView;

  [[nodiscard]] QSize sizeHint() const override {
    const int rows = std::clamp(model()->rowCount(), 3, kMostRows);
    const int frames = 2 * frameWidth() + kRowGap;
    return {kWidth, std::max(header()->minimumHeight(), header()->sizeHint().height()) +
                        rows * sizeHintForRow(0) + frames};
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    QTreeView::keyPressEvent(event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) event->accept();
  }
};

void OpenFolder(const std::filesystem::path& folder) {
  if (!folder.empty()) QDesktopServices::openUrl(UrlOf(folder));
}

QLabel* PlainLabel(const QString& text, const char* name, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(QLatin1String(name));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

}  // namespace

BatchReportDialog::BatchReportDialog(BatchWork work, BatchOutcome outcome, const Texts& texts,
                                     QWidget* parent)
    : QDialog(parent),
      model_(new BatchReportModel(std::move(work), std::move(outcome), texts, this)),
      list_(new ReportList(this)) {
  setObjectName(QStringLiteral("batchReportDialog"));
  setWindowTitle(texts(27));
  BuildList(texts);
  Build(texts);
  const int width = std::max(kWidth, layout()->totalMinimumSize().width());
  resize(width, layout()->totalHeightForWidth(width));
}

void BatchReportDialog::BuildList(const Texts& texts) {
  list_->setObjectName(QStringLiteral("reportList"));
  list_->setAccessibleName(texts(27));
  list_->setModel(model_);
  list_->setItemDelegate(new RoomyRows(list_));
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAllColumnsShowFocus(true);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setTextElideMode(Qt::ElideMiddle);
  list_->setTabKeyNavigation(false);
  list_->header()->setMinimumHeight(fontMetrics().height() + 2 * kRowGap);
  list_->header()->setSortIndicator(BatchReportModel::kState, Qt::AscendingOrder);
  list_->setSortingEnabled(true);
  list_->header()->resizeSection(BatchReportModel::kFile, kFileWidth);
  list_->header()->resizeSection(BatchReportModel::kState, kStateWidth);
  list_->setVisible(model_->rowCount() > 0);
  connect(list_, &QTreeView::activated, this,
          [this](const QModelIndex& index) { OpenFolder(FolderToShow(model_->Entry(index.row()))); });
  auto* copy = new QAction(texts(text::kCopyList), list_);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, [this] { CopyLines(list_->selectionModel()->selectedRows()); });
  list_->addAction(copy);
}

void BatchReportDialog::Build(const Texts& texts) {
  auto* icon = new QLabel(this);
  icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(kIcon));
  Mnemonics mnemonics;
  auto* buttons = new QHBoxLayout;
  const auto button = [&](int number, const char* name) {
    auto* added = new QPushButton(mnemonics(texts(number)), this);
    added->setObjectName(QLatin1String(name));
    buttons->addWidget(added);
    return added;
  };
  buttons->setSpacing(8);
  QPushButton* open = button(text::kOpenFolder, "openFolder");
  QPushButton* copy = button(text::kCopyList, "copyList");
  buttons->addStretch(1);
  QPushButton* close = button(7, "close");
  copy->setEnabled(model_->rowCount() > 0);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  connect(copy, &QPushButton::clicked, this, &BatchReportDialog::CopyAll);
  connect(open, &QPushButton::clicked, this,
          [this] { OpenFolder(FolderToShow(model_->work(), model_->outcome())); });
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(16, 16, 16, 16);
  grid->setHorizontalSpacing(16);
  grid->setVerticalSpacing(8);
  grid->addWidget(icon, 0, 0, Qt::AlignTop);
  grid->addWidget(PlainLabel(texts(88), "reportText", this), 0, 1);
  grid->addWidget(PlainLabel(Summary(texts), "reportSummary", this), 1, 1);
  grid->setRowMinimumHeight(2, kGroupGap);
  grid->addWidget(list_, 3, 0, 1, 2);
  grid->setRowMinimumHeight(4, kGroupGap);
  grid->addLayout(buttons, 5, 0, 1, 2);
  grid->setColumnStretch(1, 1);
  grid->setRowStretch(3, 1);
  close->setDefault(true);
  close->setFocus();
}

QString BatchReportDialog::Summary(const Texts& texts) const {
  QStringList parts;
  for (const batch::EntryEnd end :
       {batch::EntryEnd::kDone, batch::EntryEnd::kSkipped, batch::EntryEnd::kFailed}) {
    const auto& entries = model_->outcome().entries;
    const auto count =
        std::count_if(entries.begin(), entries.end(), [end](const BatchEntry& e) { return e.end == end; });
    if (count > 0 || end == batch::EntryEnd::kDone) {
      parts += QStringLiteral("%1: %2").arg(texts(StateText(end))).arg(count);
    }
  }
  QString summary = parts.join(QStringLiteral("  ·  "));
  if (model_->outcome().summary.end != batch::BatchSummary::End::kNoOutputFolder) return summary;
  for (const BatchEntry& entry : model_->outcome().entries) {
    if (entry.reason != batch::EntryReason::kNoFolder) continue;
    const auto folder = entry.input.parent_path() / batch::kResultFolder;
    const QString name = QString::fromStdString(base::PrintableName(folder.native()));
    return texts(text::kBatchWithoutFolder).arg(name) + QStringLiteral("\n\n") + summary;
  }
  return summary;
}

void BatchReportDialog::CopyLines(const QModelIndexList& rows) {
  std::vector<int> numbers;
  for (const QModelIndex& index : rows) numbers.push_back(index.row());
  std::sort(numbers.begin(), numbers.end());
  QString text;
  for (const int row : numbers) text += model_->Line(row) + u'\n';
  if (!text.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

void BatchReportDialog::CopyAll() {
  QModelIndexList rows;
  for (int row = 0; row < model_->rowCount(); ++row) rows += model_->index(row, 0);
  CopyLines(rows);
}

}  // namespace mirellon::ui
