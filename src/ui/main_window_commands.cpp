// What the window's commands do.
#include <QApplication>
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
#include "ui/parameter_panel.h"

namespace mirellon::ui {

namespace {

std::wstring Wide(const QString& text) {
  return text.toStdWString();
}

}  // namespace

void MainWindow::Do(Command command) {
  if (!Can(command)) {
    // The click has changed what these show.
    (*actions_)[Command::kPicker]->setChecked(view_->picking());
    (*actions_)[Command::kShowOriginal]->setChecked(view_->holdsOriginal());
    return;
  }
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
      return ShowMode(ViewMode::kSingle);
    case Command::kViewSplit:
      return ShowMode(ViewMode::kSplit);
    case Command::kViewSideBySide:
      return ShowMode(ViewMode::kSideBySide);
    case Command::kViewRemovedNoise:
      return ShowMode(ViewMode::kNoise);
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

void MainWindow::OpenInstead(const std::filesystem::path& photograph) {
  if (!Can(Command::kOpen)) return;
  LeaveThen([this, photograph] { Open(photograph); });
}

void MainWindow::Step(ui::Step direction) {
  // A key held down walks on from the photograph on its way, and past one that could not be opened.
  const bool loading = workbench_.session().activity() == Activity::kLoading;
  const std::filesystem::path& shown = workbench_.session().photograph().path;
  const std::filesystem::path& from = loading ? opening_ : walked_.empty() ? shown : walked_;
  if (!from.empty()) walker_.Go(from, direction);
}

void MainWindow::FinishWalk(const std::filesystem::path& reached, ui::Step direction, bool atEnd) {
  // Anything may have begun meanwhile, a question with a window of its own among it.
  if (!Can(Command::kNextImage) || QApplication::activeModalWidget() != nullptr) return;
  if (atEnd) status_->Note(texts_(direction == Step::kNext ? text::kLastOfFolder : text::kFirstOfFolder));
  if (reached.empty()) return;
  LeaveThen([this, reached] {
    if (Open(reached)) walked_ = reached;
  });
}

void MainWindow::ShowLoadFailure(const std::filesystem::path& path, const imageio::LoadReport& report) {
  ChangeRecent([&] { recent_.Remove(path); });
  const QString why = texts_(text::kNotOpened).arg(ShownName(path), ReasonOf(texts_, report));
  context_.dialogs.ShowMessage(Wide(texts_(text::kFormatNotSupported) + QStringLiteral("\n\n") + why), L"",
                               base::MessageKind::kPlain);
}

void MainWindow::CloseImage() {
  afterSave_ = nullptr;
  walker_.Drop();
  workbench_.Close();
}

void MainWindow::ShowMode(ViewMode mode) {
  view_->SetMode(mode);
  UpdateHint();
}

// ---- Denoising and saving ----

void MainWindow::Denoise(std::uint32_t quality) {
  panel_->Commit();
  const RunWish wish{panel_->parameters(), quality, context_.loaded.hwAccel != 0,
                     context_.loaded.fusion != 0};
  if (!workbench_.Denoise(wish)) afterDenoise_ = nullptr;
}

void MainWindow::SaveAs() {
  panel_->Commit();
  const DocumentSession& session = workbench_.session();
  const SharedPicture subject = session.result();
  const bool current = session.ResultIsOf(panel_->parameters(), panel_->quality()) ||
                       session.ResultIsOf(panel_->parameters(), engine::kQualityLow);
  if (current) return AskAndSave();
  const int reason = session.denoised() ? text::kStaleQuestion : text::kWhyNot;
  const std::optional<int> answer =
      context_.dialogs.AskChoice(Wide(texts_(reason)), Wide(texts_(text::kSaveTitle)),
                                 {Wide(texts_(text::kDenoiseAndSave)), Wide(texts_(text::kSaveAsItIs))});
  if (!answer) return;
  if (session.result() != subject) return GiveUpSaving();
  if (*answer == 1) return AskAndSave();
  afterDenoise_ = [this] { AskAndSave(); };
  Denoise(panel_->quality());
}

void MainWindow::AskAndSave() {
  // A run's or a dialog's end may find another photograph than its beginning, or none.
  const DocumentSession& session = workbench_.session();
  const SharedPicture subject = session.result();
  if (subject == nullptr || session.activity() != Activity::kIdle) return GiveUpSaving();
  SaveQuestion question;
  question.source = session.photograph().path;
  question.title = Wide(texts_(text::kSaveTitle));
  question.bitsPerComponent = subject->record().bitsPerComponent;
  question.proposal = imageio::ProposeSave(session.photograph().path, question.bitsPerComponent);
  question.jpegQuality = settings::ReadJpegQuality(context_.applicationData);
  const std::optional<SaveAnswer> answer = context_.dialogs.AskSave(question);
  if (!answer) {
    afterSave_ = nullptr;
    return;
  }
  saving_ = answer->path;
  if (session.result() != subject || !workbench_.Save(answer->path, answer->jpegQuality)) GiveUpSaving();
}

void MainWindow::GiveUpSaving() {
  afterSave_ = nullptr;
  context_.dialogs.ShowMessage(Wide(texts_(text::kNothingSaved)), Wide(texts_(text::kError)),
                               base::MessageKind::kError);
}

void MainWindow::ShowSaveFailure(const std::filesystem::path& target, const imageio::SaveReport& report) {
  afterSave_ = nullptr;
  closing_ = false;  // there is something to lose again
  if (report.status == imageio::SaveStatus::kAborted) return;
  context_.dialogs.ShowMessage(Wide(texts_(text::kNotSaved).arg(ShownName(target), ReasonOf(texts_, report))),
                               Wide(texts_(text::kError)), base::MessageKind::kError);
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
  if (!Can(Command::kOptions)) return;
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
