// What the window's commands do.
#include <QDesktopServices>
#include <QUrl>
#include <utility>

#include "base/text.h"
#include "skin/schemes.h"
#include "ui/dialogs/about_dialog.h"
#include "ui/dialogs/options_dialog.h"
#include "ui/failure_texts.h"
#include "ui/help_desk.h"
#include "ui/main_window.h"
#include "ui/model/folder_walk.h"
#include "ui/parameter_panel.h"

namespace mirellon::ui {

namespace {

std::wstring Wide(const QString& text) {
  return text.toStdWString();
}

}  // namespace

void MainWindow::Do(Command command) {
  switch (command) {
    case Command::kOpen:
      return AskAndOpen();
    case Command::kSaveAs:
      return SaveAs();
    case Command::kClose:
      return LeaveThen([this] { CloseImage(); });
    case Command::kExit:
      close();
      return;
    case Command::kOptions:
      return ShowOptions();
    case Command::kDenoise:
      return Denoise(panel_->quality());
    case Command::kDenoiseFast:
      return Denoise(engine::kQualityLow);
    case Command::kBatch:
      return AskAndStartBatch();
    case Command::kHelp:
      return helpDesk_->ShowStart();
    case Command::kVisitWebSite:
      return VisitWebSite();
    case Command::kAbout:
      return ShowAbout();
    case Command::kPreviousImage:
      return Step(Step::kPrevious);
    case Command::kNextImage:
      return Step(Step::kNext);
    case Command::kZoomIn:
      view_->ZoomIn();
      view_->setFocus();
      return;
    case Command::kZoomOut:
      view_->ZoomOut();
      view_->setFocus();
      return;
    case Command::kZoom100:
      view_->SetZoom(1.0);
      view_->setFocus();
      return;
    case Command::kZoomFit:
      view_->Fit();
      view_->setFocus();
      return;
    case Command::kMoveLeft:
      return view_->Move(Direction::kLeft);
    case Command::kMoveRight:
      return view_->Move(Direction::kRight);
    case Command::kMoveUp:
      return view_->Move(Direction::kUp);
    case Command::kMoveDown:
      return view_->Move(Direction::kDown);
    case Command::kPicker:
      ShowRectangle(true);
      view_->SetPicking(!view_->picking());
      view_->setFocus();
      return;
    case Command::kUndo:
      return panel_->Undo();
    case Command::kRedo:
      return panel_->Redo();
    case Command::kShowOriginal:
      return view_->HoldOriginal((*actions_)[Command::kShowOriginal]->isChecked());
    case Command::kViewSingle:
      return view_->SetMode(ViewMode::kSingle);
    case Command::kViewSplit:
      return view_->SetMode(ViewMode::kSplit);
    case Command::kViewSideBySide:
      return view_->SetMode(ViewMode::kSideBySide);
    case Command::kViewRemovedNoise:
      return view_->SetMode(ViewMode::kNoise);
    case Command::kSchemeLight:
      return ApplyScheme(skin::kSchemeLight);
    case Command::kSchemeDark:
      return ApplyScheme(skin::kSchemeDark);
    case Command::kSchemeContrast:
      return ApplyScheme(skin::kSchemeContrast);
    case Command::kColourManagement:
      // For this run at least.
      (void)context_.settings.SetNumber(settings::Setting::kColourManagement,
                                        (*actions_)[Command::kColourManagement]->isChecked() ? 1 : 0);
      return FollowColours();
  }
}

// ---- Opening ----

void MainWindow::AskAndOpen() {
  LeaveThen([this] {
    const auto path = context_.dialogs.AskOpenPath(Wide(texts_(text::kOpenTitle)));
    if (path && !path->empty()) Open(*path);
  });
}

void MainWindow::Step(ui::Step direction) {
  // A key held down walks on from the photograph on its way.
  const bool loading = workbench_.session().activity() == Activity::kLoading;
  const std::filesystem::path& from = loading ? opening_ : workbench_.session().photograph().path;
  if (from.empty()) return;
  const std::filesystem::path next = Neighbour(from, direction);
  if (next.empty()) {
    status_->Note(texts_(direction == Step::kNext ? text::kLastOfFolder : text::kFirstOfFolder));
    return;
  }
  LeaveThen([this, next] { Open(next); });
}

void MainWindow::ShowLoadFailure(const std::filesystem::path& path, const imageio::LoadReport& report) {
  ChangeRecent([&] { recent_.Remove(path); });
  const QString why = texts_(text::kNotOpened).arg(ShownName(path), ReasonOf(texts_, report));
  context_.dialogs.ShowMessage(Wide(texts_(text::kFormatNotSupported) + QStringLiteral("\n\n") + why), L"",
                               base::MessageKind::kPlain);
}

void MainWindow::CloseImage() {
  workbench_.Close();
}

// ---- Denoising and saving ----

void MainWindow::Denoise(std::uint32_t quality) {
  panel_->Commit();
  workbench_.Denoise(
      {panel_->parameters(), quality, context_.loaded.hwAccel != 0, context_.loaded.fusion != 0});
}

void MainWindow::SaveAs() {
  panel_->Commit();
  const DocumentSession& session = workbench_.session();
  if (!session.hasImage()) return;
  const bool current = session.ResultIsOf(panel_->parameters(), panel_->quality()) ||
                       session.ResultIsOf(panel_->parameters(), engine::kQualityLow);
  if (current) return AskAndSave();
  const int reason = session.denoised() ? text::kStaleQuestion : text::kWhyNot;
  const std::optional<int> answer =
      context_.dialogs.AskChoice(Wide(texts_(reason)), Wide(texts_(text::kSaveTitle)),
                                 {Wide(texts_(text::kDenoiseAndSave)), Wide(texts_(text::kSaveAsItIs))});
  if (!answer) return;
  if (*answer == 1) return AskAndSave();
  afterDenoise_ = [this] { AskAndSave(); };
  Denoise(panel_->quality());
}

void MainWindow::AskAndSave() {
  const DocumentSession& session = workbench_.session();
  SaveQuestion question;
  question.source = session.photograph().path;
  question.title = Wide(texts_(text::kSaveTitle));
  question.bitsPerComponent = session.result()->record().bitsPerComponent;
  question.proposal = imageio::ProposeSave(session.photograph().path, question.bitsPerComponent);
  question.jpegQuality = settings::ReadJpegQuality(context_.applicationData);
  const std::optional<SaveAnswer> answer = context_.dialogs.AskSave(question);
  if (!answer) {
    afterSave_ = nullptr;
    return;
  }
  saving_ = answer->path;
  workbench_.Save(answer->path, answer->jpegQuality);
}

void MainWindow::ShowSaveFailure(const std::filesystem::path& target, const imageio::SaveReport& report) {
  afterSave_ = nullptr;
  if (report.status == imageio::SaveStatus::kAborted) return;
  context_.dialogs.ShowMessage(Wide(texts_(text::kNotSaved).arg(ShownName(target), ReasonOf(texts_, report))),
                               Wide(texts_(text::kError)), base::MessageKind::kError);
}

MainWindow::Leave MainWindow::AskToLeave() {
  if (!workbench_.session().unsaved()) return Leave::kNow;
  const std::optional<int> answer =
      context_.dialogs.AskChoice(Wide(texts_(text::kUnsavedQuestion)), Wide(texts_(text::kWarning)),
                                 {Wide(texts_(text::kSave)), Wide(texts_(text::kDiscard))});
  if (!answer) return Leave::kNo;
  return *answer == 0 ? Leave::kAfterSaving : Leave::kNow;
}

void MainWindow::LeaveThen(std::function<void()> action) {
  switch (AskToLeave()) {
    case Leave::kNow:
      return action();
    case Leave::kAfterSaving:
      afterSave_ = std::move(action);
      return AskAndSave();
    case Leave::kNo:
      return;
  }
}

// ---- Dialogs ----

void MainWindow::CheckCard(std::function<void(bool usable)> answer) {
  if (context_.card == nullptr) return answer(false);
  context_.card->Check([window = QPointer(this), answer = std::move(answer)](bool usable) {
    if (window) answer(usable);
  });
}

void MainWindow::ShowOptions() {
  if (std::exchange(optionsAsked_, true)) return;
  CheckCard([this](bool usable) {
    AskOptions(usable);
    optionsAsked_ = false;
  });
}

void MainWindow::AskOptions(bool cardUsable) {
  // Something else may have begun while the card was asked.
  if (!(*actions_)[Command::kOptions]->isEnabled()) return;
  settings::OptionsState state(
      context_.settings, context_.localization, [cardUsable] { return cardUsable; }, scheme_);
  const QString about = CardText(context_.card, context_.loaded.hwAccel != 0, texts_);
  OptionsDialog dialog(state, context_.localization, texts_, about, this);
  if (dialog.exec() != QDialog::Accepted) return;
  const settings::OptionsOutcome outcome = state.Accept();
  // Off until the card has been asked again, for it was used or left alone meanwhile.
  context_.loaded.hwAccel = 0;
  if (outcome.hwAccel != 0) {
    CheckCard([this, wished = outcome.hwAccel](bool usable) {
      context_.loaded.hwAccel = settings::EffectiveHwAccel(wished, [usable] { return usable; });
    });
  }
  context_.loaded.fusion = outcome.fusion;
  if (!outcome.warning.empty()) status_->Note(Reason(texts_, text::kSettingsNotStored, outcome.warning));
  if (outcome.restart) {
    context_.dialogs.ShowMessage(outcome.restart->text, outcome.restart->caption,
                                 base::MessageKind::kInformation);
  }
  if (outcome.colourScheme) ApplyScheme(*outcome.colourScheme);
}

void MainWindow::ShowAbout() {
  AboutDialog(texts_, CardText(context_.card, context_.loaded.hwAccel != 0, texts_), this).exec();
}

void MainWindow::VisitWebSite() {
  const QString page = QStringLiteral(MIRELLON_WEB_PAGE);
  if (page.isEmpty()) return status_->Note(texts_(text::kNoWebPage));
  QDesktopServices::openUrl(QUrl(page));
}

}  // namespace mirellon::ui
