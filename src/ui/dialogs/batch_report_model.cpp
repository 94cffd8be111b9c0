#include "ui/dialogs/batch_report_model.h"

#include <QCollator>
#include <QTextDocument>
#include <algorithm>
#include <utility>
#include <vector>

#include "base/text.h"

namespace mirellon::ui {

namespace {

QString Printable(const std::filesystem::path& path) {
  return QString::fromStdString(base::PrintableName(path.native()));
}

QString Detail(const BatchEntry& entry) {
  return QString::fromStdString(base::PrintableName(entry.detail));
}

// What a name is sorted by: numbers in it count by their value, as people count.
QString SortedAs(const QString& name) {
  constexpr qsizetype kDigits = 20;
  QString key;
  for (qsizetype i = 0; i < name.size();) {
    qsizetype end = i;
    while (end < name.size() && name[end].isDigit()) ++end;
    if (end == i) {
      key += name[i++].toCaseFolded();
    } else {
      key += name.mid(i, end - i).rightJustified(kDigits, u'0');
      i = end;
    }
  }
  return key;
}

}  // namespace

BatchReportModel::BatchReportModel(BatchWork work, BatchOutcome outcome, const Texts& texts, QObject* parent)
    : QAbstractTableModel(parent),
      work_(std::move(work)),
      root_(RootOf(work_)),
      outcome_(std::move(outcome)),
      texts_(texts) {
  Arrange(kState, Qt::AscendingOrder);
}

int BatchReportModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(outcome_.entries.size());
}

int BatchReportModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant BatchReportModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const BatchEntry& entry = Entry(index.row());
  if (role == Qt::DisplayRole) return Cell(entry, index.column());
  // A name may look like markup.
  if (role == Qt::ToolTipRole) return Qt::convertFromPlainText(Explanation(entry));
  return {};
}

QVariant BatchReportModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  if (section == kFile) return texts_(text::kFile);
  return texts_(section == kState ? text::kResult : text::kReason);
}

QString BatchReportModel::Cell(const BatchEntry& entry, int column) const {
  if (column == kFile) return Printable(NameInReport(root_, entry.input));
  if (column == kState) return texts_(StateText(entry.end));
  if (const int reason = ReasonText(entry.reason); reason != 0) return texts_(reason);
  return Detail(entry);  // warnings
}

QString BatchReportModel::Explanation(const BatchEntry& entry) {
  QString text = Printable(entry.input);
  if (!entry.output.empty()) text += QStringLiteral(" → ") + Printable(entry.output);
  if (!entry.detail.empty()) text += u'\n' + Detail(entry);
  return text;
}

QString BatchReportModel::Line(int row) const {
  const BatchEntry& entry = Entry(row);
  QStringList cells{Printable(entry.input), Cell(entry, kState)};
  for (const QString& text : {Cell(entry, kReason), Detail(entry)}) {
    if (!text.isEmpty() && cells.last() != text) cells += text;
  }
  return cells.join(u'\t');
}

std::vector<int> BatchReportModel::Arrange(int column, Qt::SortOrder order) {
  struct Key {
    int worst;     // by state
    QString cell;  // by reason
    QCollatorSortKey name;
    std::size_t entry;
  };
  const QCollator names;
  std::vector<Key> keys;
  keys.reserve(outcome_.entries.size());
  for (std::size_t i = 0; i < outcome_.entries.size(); ++i) {
    const BatchEntry& entry = outcome_.entries[i];
    keys.push_back({column == kState ? -static_cast<int>(entry.end) : 0,
                    column == kReason ? Cell(entry, kReason) : QString(),
                    names.sortKey(SortedAs(Cell(entry, kFile))), i});
  }
  const bool down = order == Qt::DescendingOrder;
  std::stable_sort(keys.begin(), keys.end(), [down, column](const Key& a, const Key& b) {
    if (a.worst != b.worst) return down ? b.worst < a.worst : a.worst < b.worst;
    if (const int byCell = a.cell.compare(b.cell); byCell != 0) return down ? byCell > 0 : byCell < 0;
    const bool byName = down && column == kFile;
    return byName ? b.name < a.name : a.name < b.name;
  });
  std::vector<int> rowOf(keys.size());
  std::vector<BatchEntry> sorted;
  sorted.reserve(keys.size());
  for (std::size_t row = 0; row < keys.size(); ++row) {
    rowOf[keys[row].entry] = static_cast<int>(row);
    sorted.push_back(std::move(outcome_.entries[keys[row].entry]));
  }
  outcome_.entries = std::move(sorted);
  return rowOf;
}

void BatchReportModel::sort(int column, Qt::SortOrder order) {
  emit layoutAboutToBeChanged();
  const std::vector<int> rowOf = Arrange(column, order);
  // What is selected stays so.
  const QModelIndexList before = persistentIndexList();
  for (const QModelIndex& old : before) {
    changePersistentIndex(old, index(rowOf[static_cast<std::size_t>(old.row())], old.column()));
  }
  emit layoutChanged();
}

}  // namespace mirellon::ui
