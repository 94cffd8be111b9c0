// What is asked before work is lost, and closing the window.
#include <QCloseEvent>
#include <iostream>
#include <utility>

#include "base/paths.h"
#include "ui/main_window.h"
#include "ui/model/window_place.h"
#include "ui/parameter_panel.h"

namespace mirellon::ui {

MainWindow::Leave MainWindow::AskToLeave() {
  const DocumentSession& session = workbench_.session();
  // What was left for a photograph that is on its way was given up then.
  if (!session.unsaved() || session.activity() == Activity::kLoading) return Leave::kNow;
  const std::optional<int> answer = context_.dialogs.AskChoice(
      texts_(text::kUnsavedQuestion).toStdWString(), texts_(text::kWarning).toStdWString(),
      {texts_(text::kSave).toStdWString(), texts_(text::kDiscard).toStdWString()});
  if (!answer) return Leave::kNo;
  return *answer == 0 ? Leave::kAfterSaving : Leave::kNow;
}

void MainWindow::LeaveThen(std::function<void()> action) {
  switch (AskToLeave()) {
    case Leave::kNow:
      return action();
    case Leave::kAfterSaving:
      return SaveThen(std::move(action));
    case Leave::kNo:
      return;
  }
}

void MainWindow::SaveThen(std::function<void()> action) {
  afterSave_ = std::move(action);
  AskAndSave();
}

// ---- Closing ----

bool MainWindow::AskToClose() {
  asking_ = true;
  bool decided = true;
  if (workbench_.session().activity() == Activity::kDenoising) {
    // It goes on meanwhile, and may come to its end.
    decided = context_.dialogs
                  .AskChoice(texts_(text::kRunQuestion).toStdWString(), texts_(text::kWarning).toStdWString(),
                             {texts_(text::kStopAndClose).toStdWString()})
                  .has_value();
  }
  const Leave leave = decided ? AskToLeave() : Leave::kNo;
  asking_ = false;
  saveFirst_ = leave == Leave::kAfterSaving;
  return leave != Leave::kNo;
}

void MainWindow::StopForClosing() {
  // Nothing is torn: what runs is stopped, and a save is waited for.
  workbench_.DropPreview();
  if (workbench_.session().activity() != Activity::kSaving) workbench_.Abort();
  CloseWhenIdle();
}

void MainWindow::CloseWhenIdle() {
  // After everybody has been told what came to its end.
  QTimer::singleShot(0, this, [this] {
    if (closing_ && workbench_.idle()) close();
  });
}

bool MainWindow::KeepProfiles() {
  const QString complaint = panel_->Finish();
  if (complaint.isEmpty()) return true;
  const std::wstring caption = texts_(text::kWarning).toStdWString();
  if (!panel_->changed()) {
    context_.dialogs.ShowMessage(complaint.toStdWString(), caption, base::MessageKind::kWarning);
    return true;
  }
  const QString question = complaint + QStringLiteral("\n\n") + texts_(text::kSettingsLost);
  asking_ = true;
  const bool closes =
      context_.dialogs
          .AskChoice(question.toStdWString(), caption, {texts_(text::kCloseAnyway).toStdWString()})
          .has_value();
  asking_ = false;
  return closes;
}

void MainWindow::StorePlace() {
  const WindowPlace place{saveGeometry().toBase64().toStdString()};
  (void)StoreWindowPlace(base::SettingsFile(context_.applicationData), place);  // the usual one at worst
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (asking_) return;
  if (workbench_.session().activity() == Activity::kBatch && !MayLeaveBatch()) return;
  // Whatever waited for a save or a run: closing comes instead.
  afterSave_ = nullptr;
  afterDenoise_ = nullptr;
  if (!closing_) {
    // What is being saved may go as soon as it is.
    closing_ = workbench_.session().activity() == Activity::kSaving || AskToClose();
    if (!closing_) return;
  }
  if (!workbench_.idle()) return StopForClosing();
  closing_ = false;
  if (std::exchange(saveFirst_, false)) return SaveThen([this] { close(); });
  if (!KeepProfiles()) return;
  walker_.Drop();
  StorePlace();
  event->accept();
  emit closed();
}

void MainWindow::EndNow() {
  StorePlace();
  const QString complaint = panel_->Finish();
  if (!complaint.isEmpty()) std::cerr << "mirellon: " << complaint.toStdString() << '\n';
}

}  // namespace mirellon::ui
