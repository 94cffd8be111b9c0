#include "ui/parameter_panel.h"

#include <QKeyEvent>
#include <QSignalBlocker>

#include "skin/icon_engine.h"
#include "ui/failure_texts.h"

namespace mirellon::ui {

namespace {

QStringList ListOf(const std::vector<std::wstring>& texts) {
  QStringList list;
  for (const std::wstring& entry : texts) list.append(QString::fromStdWString(entry));
  return list;
}

std::wstring InfoText(const imageio::ExifSummary& exif, const settings::Localization& texts) {
  const profiles::ImageInfo labels{texts.Text(132), texts.Text(133), texts.Text(148), texts.Text(250),
                                   texts.Text(134), texts.Text(135), texts.Text(136)};
  return profiles::ImageInfoText(
      {exif.make, exif.model, exif.dimensions, exif.iso, exif.fNumber, exif.exposure, exif.dateTaken},
      labels);
}

// Fills a list without asking for anything.
void Fill(QComboBox& box, const std::vector<std::wstring>& texts, std::uint32_t current) {
  const QSignalBlocker quiet(box);
  box.clear();
  box.addItems(ListOf(texts));
  box.setCurrentIndex(static_cast<int>(current));
}

}  // namespace

ParameterPanel::ParameterPanel(DesktopContext& context, const Texts& texts, QWidget* parent)
    : QWidget(parent),
      context_(context),
      texts_(texts),
      model_(profiles::StandardProfilePaths(context.applicationData, context.resourceFolders)) {
  Build();
  Connect();
  (void)model_.Load();  // what could be read is in use; StoreComplaint() tells of the rest
  ShowNothing();
  manual_->setChecked(true);
  manual_->setChecked(context_.settings.GetNumber(settings::Setting::kShowManualTunning) != 0);
  SetRunning(false, false);
}

// ---- Showing ----

void ParameterPanel::ShowPhotograph(const Photograph& photograph) {
  ++shown_;
  exif_ = photograph.exif;
  model_.ShowPhotograph(photograph);
  pause_.stop();
  const QString info = QString::fromStdWString(InfoText(exif_, context_.localization));
  info_->setText(info.trimmed().isEmpty() ? texts_(33) : info);
  infoBox_->show();
  FollowChoice();
}

void ParameterPanel::ShowNothing() {
  exif_ = {};
  infoBox_->hide();
  ShowCameras();
  ShowIsos();
  ShowParameters();
}

QString ParameterPanel::Finish() {
  if (!model_.Save()) return {};
  return texts_(text::kNotSaved)
      .arg(ShownName(model_.saveCauseFile()), Reason(texts_, text::kNotWritable, model_.saveCause()));
}

QString ParameterPanel::StoreComplaint() const {
  const profiles::NoiseProfileStore& store = model_.store();
  if (store.cause().empty()) return {};
  return texts_(text::kProfilesDamaged)
      .arg(ShownName(store.causeFile()), QString::fromStdString(store.cause()));
}

void ParameterPanel::ShowCameras() {
  Fill(*camera_, model_.CameraNames(), model_.camera());
}

void ParameterPanel::ShowIsos() {
  Fill(*iso_, model_.IsoTexts(), model_.iso());
}

void ParameterPanel::ShowParameters() {
  for (ParameterRow* row : rows_) row->ShowValue(model_.parameters().*row->row().value);
  const std::optional<int> mode = profiles::MedianButton(model_.parameters().m_iUseMedian);
  artefacts_->setExclusive(false);  // a mode that is none of the three checks none
  for (QAbstractButton* button : artefacts_->buttons()) button->setChecked(artefacts_->id(button) == mode);
  artefacts_->setExclusive(true);
}

void ParameterPanel::FollowChoice() {
  ShowCameras();
  ShowIsos();
  ShowParameters();
  UpdateEnabled();
  emit historyChanged();
  emit previewWished();
}

std::uint32_t ParameterPanel::quality() const {
  return static_cast<std::uint32_t>(quality_->currentIndex() + 1);
}

// ---- Changes ----

void ParameterPanel::Commit() {
  for (ParameterRow* row : rows_) row->Commit();
  if (pause_.isActive()) Settle();
}

void ParameterPanel::Settle() {
  pause_.stop();
  model_.Record();
  emit historyChanged();
  emit previewWished();
}

void ParameterPanel::SetDefault() {
  if (running_) return;
  Commit();
  model_.SetDefault();
  ShowParameters();
  emit historyChanged();
  emit previewWished();
}

void ParameterPanel::Undo() {
  Commit();
  if (model_.Undo()) FollowChoice();
}

void ParameterPanel::Redo() {
  Commit();
  if (model_.Redo()) FollowChoice();
}

void ParameterPanel::ChooseQuality(int index) {
  (void)context_.settings.SetNumber(settings::Setting::kQuality, index + 1);  // for this run at least
  emit previewWished();
}

void ParameterPanel::SetManual(bool shown) {
  manualControls_->setVisible(shown);
  setDefault_->setVisible(shown);
  manual_->setIcon(skin::StrokeIcon(
      QStringLiteral(":/icons/SETTINGS_%1.svg").arg(QLatin1String(shown ? "HIDE" : "SHOW"))));
  const int number = shown ? 1 : 0;
  if (context_.settings.GetNumber(settings::Setting::kShowManualTunning) == number) return;
  (void)context_.settings.SetNumber(settings::Setting::kShowManualTunning, number);  // for this run at least
}

// ---- Keeping and deleting ----

void ParameterPanel::Measure() {
  Commit();
  const bool failed = model_.KeepMeasured();
  TellKept(failed);
  if (!failed) emit noted(texts_(text::kMeasured).arg(camera_->currentText(), iso_->currentText()));
}

void ParameterPanel::TellKept(bool failed) {
  if (!failed) return FollowChoice();
  context_.dialogs.ShowMessage(texts_(252).toStdWString(), texts_(text::kWarning).toStdWString(),
                               base::MessageKind::kWarning);
}

void ParameterPanel::Keep() {
  Commit();
  const unsigned subject = shown_;
  const auto name = context_.dialogs.AskProfileName(
      {{camera_->currentText().toStdWString(), iso_->currentText().toStdWString()}, exif_});
  if (name && StillShows(subject)) TellKept(model_.Keep(name->camera, name->iso));
}

bool ParameterPanel::StillShows(unsigned subject) {
  if (subject == shown_) return true;
  context_.dialogs.ShowMessage(texts_(text::kNothingSaved).toStdWString(),
                               texts_(text::kWarning).toStdWString(), base::MessageKind::kWarning);
  return false;
}

void ParameterPanel::Delete() {
  if (!model_.CanDelete()) return;
  const unsigned subject = shown_;
  const QString question =
      QStringLiteral("%1\n\n%2\n%3\n%4").arg(texts_(137), texts_(138), texts_(139), texts_(140));
  const auto answer =
      context_.dialogs.AskCarefully(question.toStdWString(), texts_(text::kWarning).toStdWString(),
                                    {texts_(text::kYes).toStdWString(), texts_(text::kNo).toStdWString()});
  if (!answer || !StillShows(subject)) return;
  if (model_.Delete(*answer == 0 ? PanelModel::Scope::kCamera : PanelModel::Scope::kIso)) {
    context_.dialogs.ShowMessage(texts_(141).toStdWString(), texts_(text::kWarning).toStdWString(),
                                 base::MessageKind::kWarning);
    return;
  }
  FollowChoice();
}

// ---- States ----

void ParameterPanel::SetRunning(bool running, bool denoised) {
  const QWidget* focus = window()->focusWidget();
  // What has the focus is about to be disabled, and the keyboard wants to abort, if anything.
  if (running && !running_ && focus != nullptr && isAncestorOf(focus)) denoise_->setFocus();
  running_ = running;
  const int caption = running ? text::kAbort : denoised ? 144 : text::kDenoise;
  denoise_->setText(texts_(caption));
  denoise_->setCursor(Qt::ArrowCursor);  // it can be used while the window is busy
  progress_->setVisible(running);
  if (!running) progress_->setValue(0);
  UpdateEnabled();
}

// "Abort" has the focus when the run was begun from here.
void ParameterPanel::keyPressEvent(QKeyEvent* event) {
  if (!running_ || event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
  emit abortRequested();
}

void ParameterPanel::SetUsable(bool usable) {
  usable_ = usable;
  UpdateEnabled();
}

void ParameterPanel::ShowProgress(int permille) {
  if (running_) progress_->setValue(permille);
}

void ParameterPanel::SetUse(QWidget* widget, const QString& toolTip, const QString& reason) {
  widget->setEnabled(reason.isEmpty());
  const bool both = !toolTip.isEmpty() && !reason.isEmpty();
  widget->setToolTip(both ? toolTip + QLatin1Char('\n') + reason : toolTip + reason);
}

void ParameterPanel::UpdateEnabled() {
  const QString busy = running_ ? texts_(text::kBusy) : QString();
  for (QWidget* widget : {profileRows_, static_cast<QWidget*>(infoBox_), manualSwitch_, manualControls_,
                          static_cast<QWidget*>(setDefault_)}) {
    SetUse(widget, {}, busy);
  }
  const QString unusable = texts_(infoBox_->isHidden() ? text::kNeedsPhotograph : text::kBusy);
  const QString unmeasurable = usable_ ? texts_(text::kNotMeasurable) : unusable;
  SetUse(measure_, texts_(text::kMeasure),
         !busy.isEmpty() || (usable_ && model_.CanMeasure()) ? busy : unmeasurable);
  SetUse(keep_, texts_(145), !busy.isEmpty() || usable_ ? busy : unusable);
  SetUse(delete_, texts_(146), !busy.isEmpty() || model_.CanDelete() ? busy : texts_(text::kCannotDelete));
  SetUse(denoise_, {}, running_ || usable_ ? QString() : unusable);
}

}  // namespace mirellon::ui
