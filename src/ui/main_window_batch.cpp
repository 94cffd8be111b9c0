// Batch denoising from the window.
#include <algorithm>
#include <optional>

#include "ui/dialogs/batch_progress_dialog.h"
#include "ui/main_window.h"
#include "ui/parameter_panel.h"

namespace mirellon::ui {

namespace {

constexpr std::size_t kMostProblems = 12;  // a message has to fit the screen

}  // namespace

void MainWindow::AskAndStartBatch() {
  LeaveThen([this] {
    const auto folder =
        context_.dialogs.AskFolder(texts_(71).toStdWString(), context_.settings.GetLatestFolder());
    if (!folder || folder->empty()) return;
    (void)context_.settings.SetLatestFolder(*folder);  // asked for anew at worst
    batchTotal_.reset();
    batch_.Count(*folder);  // while the options are open
    const std::optional<int> quality =
        context_.dialogs.AskBatchOptions(settings::ReadJpegQuality(context_.applicationData));
    if (!quality) return;
    (void)context_.settings.SetNumber(settings::Setting::kJpeg, *quality);  // the one before at worst
    StartBatch(*folder);
  });
}

void MainWindow::StartBatch(const std::filesystem::path& folder) {
  workbench_.Close();
  const std::uint32_t quality = panel_->quality();
  if (!workbench_.BeginBatch([this, folder, quality] { batch_.Start(folder, quality); })) return;
  batchDialog_ = new BatchProgressDialog(texts_, this);
  batchDialog_->setAttribute(Qt::WA_DeleteOnClose);
  if (batchTotal_) batchDialog_->SetTotal(*batchTotal_);
  connect(batchDialog_, &QDialog::rejected, this, [this] {
    batch_.Stop();
    status_->ShowWork(texts_(text::kFinishing), false);
  });
  batchDialog_->show();
}

void MainWindow::ConnectBatch() {
  connect(&batch_, &BatchController::counted, this, [this](std::uint32_t images) {
    batchTotal_ = images;
    if (batchDialog_) batchDialog_->SetTotal(images);
  });
  connect(&batch_, &BatchController::entryStarted, this, [this](const std::filesystem::path& file) {
    if (batchDialog_) batchDialog_->ShowEntry(file);
  });
  connect(&batch_, &BatchController::imageDone, this, [this] {
    if (batchDialog_) batchDialog_->ImageDone();
  });
  connect(&batch_, &BatchController::finished, this, &MainWindow::FinishBatch);
}

void MainWindow::FinishBatch(const BatchOutcome& outcome) {
  if (batchDialog_) {
    batchDialog_->disconnect(this);
    batchDialog_->close();
  }
  const bool wasClosing = closing_;
  workbench_.FinishBatch();
  if (wasClosing) return;
  QString report = texts_(88);
  const std::size_t shown = std::min(outcome.problems.size(), kMostProblems);
  for (std::size_t i = 0; i < shown; ++i) {
    const BatchProblem& problem = outcome.problems[i];
    const bool failed = problem.end == batch::EntryEnd::kFailed;
    report += QLatin1String(i == 0 ? "\n\n" : "\n") + texts_(failed ? 162 : 161) + QLatin1Char(' ') +
              ShownName(problem.path) + QStringLiteral(" (%1)").arg(QString::fromStdString(problem.cause));
  }
  if (shown < outcome.problems.size()) {
    report += QLatin1Char('\n') + texts_(text::kAndMore).arg(outcome.problems.size() - shown);
  }
  context_.dialogs.ShowMessage(report.toStdWString(), texts_(27).toStdWString(),
                               base::MessageKind::kInformation);
}

}  // namespace mirellon::ui
