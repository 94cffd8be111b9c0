// The report at the end of a batch run.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QTreeView>

#include "ui/dialogs/batch_report_model.h"
#include "ui/texts.h"

namespace mirellon::ui {

// The end of the run, and below it what became of each photograph; folders are shown by the desktop.
class BatchReportDialog : public QDialog {
  Q_OBJECT

 public:
  BatchReportDialog(BatchWork work, BatchOutcome outcome, const Texts& texts, QWidget* parent);

 private:
  void BuildList(const Texts& texts);
  void Build(const Texts& texts);
  [[nodiscard]] QString Summary(const Texts& texts) const;
  void CopyLines(const QModelIndexList& rows);
  void CopyAll();

  BatchReportModel* model_;
  QTreeView* list_;
};

}  // namespace mirellon::ui
