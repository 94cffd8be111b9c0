// Batch denoising from the window.
#include <algorithm>
#include <optional>
#include <system_error>

#include "ui/dialogs/batch_progress_dialog.h"
#include "ui/dialogs/batch_report_dialog.h"
#include "ui/main_window.h"
#include "ui/parameter_panel.h"

namespace mirellon::ui {

namespace {

bool IsFolder(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

}  // namespace

// ---- Before the run ----

void MainWindow::AskAndStartBatch() {
  LeaveThen([this] {
    const auto folder =
        context_.dialogs.AskFolder(texts_(71).toStdWString(), context_.settings.GetLatestFolder());
    if (folder && !folder->empty()) AskOptionsAndStart({{*folder}});
  });
}

void MainWindow::TakeDropped(const std::vector<std::filesystem::path>& dropped) {
  const auto first = std::find_if_not(dropped.begin(), dropped.end(), IsFolder);
  if (dropped.size() == 1 && first != dropped.end()) {
    return OpenInstead(*first);
  }
  std::vector<std::wstring> answers{texts_(text::kDenoiseAll).toStdWString()};
  if (first != dropped.end()) answers.push_back(texts_(text::kOpenFirst).toStdWString());
  const std::optional<int> answer = context_.dialogs.AskChoice(texts_(text::kBatchOffer).toStdWString(),
                                                               texts_(text::kBatch).toStdWString(), answers);
  if (!answer) return;
  if (*answer == 0) {
    LeaveThen([this, dropped] { AskOptionsAndStart({dropped}); });
  } else {
    OpenInstead(*first);
  }
}

void MainWindow::AskOptionsAndStart(const BatchWork& work) {
  // Anything may have begun behind the questions. A load gives way, as the photograph that is open.
  if (!Can(Command::kOpen)) return;
  batchTotal_.reset();
  batch_.Count(work);  // while the options are open
  if (!RootOf(work).empty()) {
    (void)context_.settings.SetLatestFolder(work.paths.front());  // asked for anew at worst
  }
  const std::optional<int> quality =
      context_.dialogs.AskBatchOptions(settings::ReadJpegQuality(context_.applicationData));
  if (!quality) return;
  (void)context_.settings.SetNumber(settings::Setting::kJpeg, *quality);  // the one before at worst
  StartBatch(work);
}

void MainWindow::KeepForBatch() {
  if (!panel_->changed()) return;
  const QString complaint = panel_->Finish();
  if (complaint.isEmpty()) return;
  context_.dialogs.ShowMessage(complaint.toStdWString(), texts_(text::kWarning).toStdWString(),
                               base::MessageKind::kWarning);
}

void MainWindow::StartBatch(const BatchWork& work) {
  KeepForBatch();
  workbench_.Close();
  batchWork_ = work;
  const auto run = [this, quality = panel_->quality()] {
    const bool wanted = !closing_ && batchDialog_ && batchDialog_->isVisible();
    if (!wanted) return FinishBatch({});  // stopped while the engine was awaited
    batch_.Start(batchWork_, quality);
  };
  batchDialog_ = new BatchProgressDialog(texts_, this);
  batchDialog_->setAttribute(Qt::WA_DeleteOnClose);
  if (batchTotal_) batchDialog_->SetTotal(*batchTotal_);
  connect(batchDialog_, &QDialog::rejected, this, [this] {
    batch_.Stop();
    status_->ShowWork(texts_(text::kFinishing), false);
  });
  batchDialog_->show();
  if (!workbench_.BeginBatch(run)) delete batchDialog_;
}

// ---- The run ----

void MainWindow::ConnectBatch() {
  connect(&batch_, &BatchController::counted, this, [this](std::uint32_t images) {
    batchTotal_ = images;
    if (batchDialog_) batchDialog_->SetTotal(images);
  });
  connect(&batch_, &BatchController::entryStarted, this, [this](const std::filesystem::path& file) {
    if (batchDialog_) batchDialog_->ShowEntry(file);
  });
  connect(&batch_, &BatchController::loaded, this, [this](const QImage& thumbnail) {
    if (batchDialog_) batchDialog_->ShowBefore(thumbnail);
  });
  connect(&batch_, &BatchController::denoised, this, [this](const QImage& thumbnail) {
    if (batchDialog_) batchDialog_->ShowAfter(thumbnail);
  });
  connect(&batch_, &BatchController::imageDone, this, [this] {
    if (batchDialog_) batchDialog_->ImageDone();
  });
  connect(&batch_, &BatchController::finished, this, &MainWindow::FinishBatch);
}

// ---- Its end ----

void MainWindow::FinishBatch(const BatchOutcome& outcome) {
  if (batchDialog_) {
    batchDialog_->disconnect(this);
    batchDialog_->close();
  }
  if (closing_) return workbench_.FinishBatch();
  status_->ShowWork({}, false);
  // The window stays busy until the report has been read.
  batchReport_ = new BatchReportDialog(batchWork_, outcome, texts_, this);
  batchReport_->setAttribute(Qt::WA_DeleteOnClose);
  connect(batchReport_, &QDialog::finished, &workbench_, &Workbench::FinishBatch);
  batchReport_->open();
}

bool MainWindow::MayLeaveBatch() {
  if (closing_) return false;
  if (batchReport_ == nullptr) {
    asking_ = true;
    const std::optional<int> answer =
        context_.dialogs.AskChoice(texts_(text::kCloseDuringBatch).toStdWString(),
                                   texts_(text::kBatch).toStdWString(), {texts_(text::kYes).toStdWString()});
    asking_ = false;
    if (!answer) return false;
  }
  // The run may have come to its end during the question.
  if (batchReport_ != nullptr) batchReport_->reject();
  if (workbench_.session().activity() != Activity::kBatch) return true;
  closing_ = true;
  if (batchDialog_) batchDialog_->reject();
  batch_.Stop();
  status_->ShowWork(texts_(text::kFinishing), false);
  return false;
}

}  // namespace mirellon::ui
