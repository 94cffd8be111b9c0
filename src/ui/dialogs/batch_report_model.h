// The entries of a batch run as a table.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "ui/model/batch_outcome.h"
#include "ui/texts.h"

namespace mirellon::ui {

class BatchReportModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kFile, kState, kReason, kColumns };

  // Worst first: what failed, what was skipped, what is done; within each by name.
  BatchReportModel(BatchWork work, BatchOutcome outcome, const Texts& texts, QObject* parent);

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  // Equal ones by name.
  void sort(int column, Qt::SortOrder order) override;

  [[nodiscard]] const BatchEntry& Entry(int row) const {
    return outcome_.entries[static_cast<std::size_t>(row)];
  }
  [[nodiscard]] const BatchOutcome& outcome() const { return outcome_; }
  [[nodiscard]] const BatchWork& work() const { return work_; }
  // One line: whole path, state, reason and detail, parted by tabs.
  [[nodiscard]] QString Line(int row) const;

 private:
  [[nodiscard]] QString Cell(const BatchEntry& entry, int column) const;
  [[nodiscard]] static QString Explanation(const BatchEntry& entry);
  // Sorts the entries; the new row of each old one.
  std::vector<int> Arrange(int column, Qt::SortOrder order);

  BatchWork work_;
  std::filesystem::path root_;
  BatchOutcome outcome_;
  Texts texts_;
};

}  // namespace mirellon::ui
