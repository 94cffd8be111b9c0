#include "ui/main_window.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QToolBar>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/paths.h"
#include "base/text.h"
#include "settings/text_table.h"
#include "skin/schemes.h"
#include "ui/dialogs/batch_progress_dialog.h"
#include "ui/dialogs/batch_report_dialog.h"
#include "ui/failure_texts.h"
#include "ui/focus_frame.h"
#include "ui/help_desk.h"
#include "ui/local_url.h"
#include "ui/measures.h"
#include "ui/mnemonics.h"
#include "ui/model/view_texts.h"
#include "ui/model/window_place.h"
#include "ui/parameter_panel.h"
#include "ui/screen_profile.h"

namespace mirellon::ui {

namespace {

constexpr int kProgressMs = 60;
constexpr int kCommandDelayMs = 250;
constexpr QSize kSmallest(960, 640);
constexpr QSize kUsual(1280, 820);
constexpr int kToolBarIcon = 20;

Command CommandOfScheme(int scheme) {
  if (scheme == skin::kSchemeLight) return Command::kSchemeLight;
  return scheme == skin::kSchemeContrast ? Command::kSchemeContrast : Command::kSchemeDark;
}

// The toolkit takes "[*]" for the place of a mark.
QString FrameTitle(const std::wstring& title) {
  return QString::fromStdWString(title).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}

// "3 name - folder", the folder shortened; the number is its letter.
QString RecentText(std::size_t index, const std::filesystem::path& file, const QFontMetrics& metrics) {
  constexpr int kCharacters = 48;
  const QString folder = QString::fromStdString(base::PrintableName(file.parent_path().native()));
  const auto fit = [&](const QString& text) {
    QString shown = metrics.elidedText(text, Qt::ElideMiddle, metrics.averageCharWidth() * kCharacters);
    return shown.replace(QLatin1Char('&'), QLatin1String("&&"));
  };
  return QStringLiteral("&%1  %2  \u2013  %3")
      .arg(QString::number((index + 1) % 10), fit(ShownName(file)), fit(folder));
}

}  // namespace

// ---- Building ----

MainWindow::MainWindow(DesktopContext& context)
    : context_(context),
      texts_(context.localization),
      workbench_(context.engine, context.applicationData),
      batch_(context),
      scheme_(context.loaded.colourScheme) {
  setObjectName(QStringLiteral("mainWindow"));
  setWindowTitle(QString::fromStdWString(WindowTitle({})));
  setAcceptDrops(true);
  BuildCentre();
  BuildMenus();
  BuildToolBar();
  Connect();
  ConnectWorkbench();
  ConnectBatch();
  recent_.Load(base::SettingsFile(context_.applicationData));
  UpdateRecentMenu();
  if (!recent_.files().empty()) context_.dialogs.LookBeside(recent_.files().front());
  (*actions_)[CommandOfScheme(scheme_)]->setChecked(true);
  (*actions_)[Command::kColourManagement]->setChecked(
      context_.settings.GetNumber(settings::Setting::kColourManagement) != 0);
  FollowColours();
  view_->SetBackground(skin::SchemeOf(scheme_).view);
  UpdateCommands();
  UpdateHint();
  setMinimumSize(kSmallest.boundedTo(screen()->availableSize()).expandedTo(minimumSizeHint()));
  RestorePlace();
  setTabOrder(zoomBox_, startHint_->focusProxy());
  startHint_->setFocus();
}

MainWindow::~MainWindow() = default;

void MainWindow::BuildCentre() {
  auto* centre = new QWidget(this);
  view_ = new ImageView(centre);
  view_->SetLabels({texts_(text::kOriginal), texts_(text::kDenoised), texts_(209)});
  view_->setAccessibleName(texts_(text::kPhotograph));
  panel_ = new ParameterPanel(context_, texts_, centre);
  startHint_ = new StartHint(texts_, view_);
  new FocusFrame(view_);  // the view's now
  auto* row = new QHBoxLayout(centre);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addWidget(view_, 1);
  row->addWidget(panel_);
  setCentralWidget(centre);
  status_ = new StatusLine(texts_, this);
  setStatusBar(status_);
  actions_ = new Actions(texts_, this, view_);
  helpDesk_ = new HelpDesk(context_, texts_, (*actions_)[Command::kHelp], this);
}

void MainWindow::BuildMenus() {
  const Actions& a = *actions_;
  const auto add = [this](auto* parent, int text) {
    QMenu* menu = parent->addMenu(texts_(text));
    menu->menuAction()->setProperty(kEnglishProperty, QString::fromWCharArray(settings::EnglishText(text)));
    return menu;
  };
  QMenu* file = add(menuBar(), text::kFile);
  file->setObjectName(QStringLiteral("fileMenu"));
  file->addAction(a[Command::kOpen]);
  recentMenu_ = add(file, text::kRecentFiles);
  recentMenu_->setObjectName(QStringLiteral("recentMenu"));
  file->addActions({a[Command::kSaveAs], a[Command::kClose]});
  file->addSeparator();
  file->addActions({a[Command::kPreviousImage], a[Command::kNextImage]});
  file->addSeparator();
  file->addAction(a[Command::kOptions]);
  file->addSeparator();
  file->addAction(a[Command::kExit]);
  QMenu* denoise = add(menuBar(), text::kDenoiseMenu);
  denoise->addActions({a[Command::kDenoiseFast], a[Command::kDenoise], a[Command::kBatch]});
  denoise->addSeparator();
  denoise->addActions({a[Command::kUndo], a[Command::kRedo]});
  QMenu* view = add(menuBar(), text::kViewMenu);
  view->addActions({a[Command::kZoomIn], a[Command::kZoomOut], a[Command::kZoom100], a[Command::kZoomFit]});
  view->addSeparator();
  view->addActions({a[Command::kViewSingle], a[Command::kViewSplit], a[Command::kViewSideBySide],
                    a[Command::kViewRemovedNoise]});
  view->addActions({a[Command::kShowOriginal], a[Command::kPicker]});
  view->addSeparator();
  QMenu* colours = add(view, text::kColours);
  colours->addActions({a[Command::kSchemeLight], a[Command::kSchemeDark], a[Command::kSchemeContrast]});
  view->addAction(a[Command::kColourManagement]);
  menuBar()->addSeparator();  // Help stands at the other end
  QMenu* help = add(menuBar(), text::kHelpMenu);
  help->addActions({a[Command::kHelp], a[Command::kVisitWebSite], a[Command::kAbout]});
  busyMenus_ = {file, denoise, help};
  GiveMnemonics(*menuBar());
  for (QMenu* menu : {file, denoise, view, colours, help}) GiveMnemonics(*menu);
}

void MainWindow::BuildToolBar() {
  const Actions& a = *actions_;
  QToolBar* bar = addToolBar(texts_(text::kToolBar));
  bar->setObjectName(QStringLiteral("toolBar"));
  bar->setMovable(false);
  bar->setIconSize(IconSize(*bar, kToolBarIcon));
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  bar->addActions({a[Command::kOpen], a[Command::kSaveAs]});
  bar->addSeparator();
  bar->addActions({a[Command::kDenoise], a[Command::kDenoiseFast], a[Command::kBatch]});
  bar->addSeparator();
  bar->addActions({a[Command::kUndo], a[Command::kRedo]});
  bar->addSeparator();
  bar->addActions({a[Command::kZoomOut], a[Command::kZoomIn], a[Command::kZoom100], a[Command::kZoomFit]});
  zoomBox_ = new ZoomBox(texts_(84), bar);
  bar->addWidget(zoomBox_);
  bar->addSeparator();
  bar->addActions({a[Command::kViewSingle], a[Command::kViewSplit], a[Command::kViewSideBySide],
                   a[Command::kViewRemovedNoise]});
  bar->addSeparator();
  bar->addActions({a[Command::kShowOriginal], a[Command::kPicker]});
}

void MainWindow::Connect() {
  connect(actions_, &Actions::triggered, this, &MainWindow::Do);
  connect(startHint_, &StartHint::openRequested, this, [this] { Do(Command::kOpen); });
  connect(zoomBox_, &ZoomBox::zoomChosen, this, [this](double zoom) {
    view_->SetZoom(zoom);
    view_->setFocus();
  });
  connect(view_, &ImageView::zoomChanged, this, [this](double zoom) {
    zoomBox_->ShowZoom(zoom);
    status_->ShowZoom(zoom);
  });
  connect(view_, &ImageView::rectangleMoving, this, [this] { view_->ShowPatch(std::nullopt); });
  connect(view_, &ImageView::rectangleChanged, this, &MainWindow::RequestPreview);
  connect(view_, &ImageView::pickingChanged, (*actions_)[Command::kPicker], &QAction::setChecked);
  connect(view_, &ImageView::originalHeld, (*actions_)[Command::kShowOriginal], &QAction::setChecked);
  connect(panel_, &ParameterPanel::previewWished, this, &MainWindow::RequestPreview);
  connect(panel_, &ParameterPanel::denoiseRequested, this, [this] { Do(Command::kDenoise); });
  connect(panel_, &ParameterPanel::noted, status_, &StatusLine::Note);
  connect(panel_, &ParameterPanel::abortRequested, &workbench_, &Workbench::Abort);
  connect(panel_, &ParameterPanel::historyChanged, this, &MainWindow::UpdateCommands);
  connect(view_, &ImageView::stopRequested, &workbench_, &Workbench::Abort);
  connect(status_, &StatusLine::stopRequested, &workbench_, &Workbench::Abort);
  progressTimer_.setInterval(kProgressMs);
  connect(&progressTimer_, &QTimer::timeout, this, [this] {
    const std::optional<int> permille =
        batch_.running() ? batch_.progressPermille() : workbench_.progressPermille();
    status_->ShowProgress(permille);
    panel_->ShowProgress(permille.value_or(0));
  });
  commandTimer_.setSingleShot(true);
  commandTimer_.setInterval(kCommandDelayMs);
  connect(&commandTimer_, &QTimer::timeout, this, &MainWindow::UpdateCommands);
  connect(&walker_, &FolderWalker::arrived, this, &MainWindow::FinishWalk);
}

void MainWindow::ConnectWorkbench() {
  connect(&workbench_, &Workbench::activityChanged, this, &MainWindow::FollowActivity);
  connect(&workbench_, &Workbench::previewStateChanged, this, &MainWindow::FollowActivity);
  connect(&workbench_, &Workbench::photographChanged, this, &MainWindow::FollowPhotograph);
  connect(&workbench_, &Workbench::resultChanged, this, &MainWindow::FollowResult);
  connect(&workbench_, &Workbench::coloursChanged, this, [this] {
    view_->ShowAnew(workbench_.session().photograph().display, workbench_.session().resultDisplay());
    RequestPreview();
  });
  connect(&workbench_, &Workbench::previewReady, this,
          [this](const PictureRect& rect, const SharedDisplay& preview) {
            view_->ShowPatch(ViewRenderer::Patch{rect, preview});
          });
  connect(&workbench_, &Workbench::loadFailed, this, &MainWindow::ShowLoadFailure);
  connect(&workbench_, &Workbench::saveFailed, this, &MainWindow::ShowSaveFailure);
  connect(&workbench_, &Workbench::saved, this, [this](const imageio::SaveReport& report) {
    setWindowTitle(FrameTitle(workbench_.session().Title()));
    QString note = texts_(text::kSaved).arg(ShownName(report.written));
    for (const std::string& warning : report.warnings)
      note += QStringLiteral(" · ") + WarningOf(texts_, warning);
    status_->Note(note);
    if (auto next = std::exchange(afterSave_, nullptr)) next();
  });
  connect(&workbench_, &Workbench::previewFailed, this, [this] { view_->ShowPatch(std::nullopt); });
  // The run took the place of a preview that was wished for.
  connect(&workbench_, &Workbench::denoiseAborted, this, &MainWindow::RequestPreview);
  connect(&workbench_, &Workbench::denoiseFailed, this, [this] {
    RequestPreview();
    context_.dialogs.ShowMessage(texts_(text::kNoMemory).toStdWString(), texts_(text::kError).toStdWString(),
                                 base::MessageKind::kError);
  });
}

// ---- Following what happens ----

void MainWindow::FollowActivity() {
  const Activity activity = workbench_.session().activity();
  const bool denoising = activity == Activity::kDenoising;
  view_->SetLocked(denoising);
  if (denoising || activity == Activity::kBatch) {
    setCursor(Qt::WaitCursor);
  } else {
    unsetCursor();
  }
  panel_->SetRunning(denoising, workbench_.session().denoised());
  if (activity == Activity::kLoading) {
    commandTimer_.start();
    status_->ShowWork(texts_(text::kOpening).arg(ShownName(opening_)), true);
  } else if (activity == Activity::kSaving) {
    status_->ShowWork(texts_(text::kSaving).arg(ShownName(saving_)), true);
  } else if (denoising) {
    status_->ShowWork(texts_(text::kDenoising), false);
  } else if (activity == Activity::kBatch) {
    status_->ShowWork(texts_(text::kBatch), false);
  } else {
    status_->ShowWork(workbench_.previewing() ? texts_(text::kPreviewing) : QString(), false);
  }
  if (activity != Activity::kLoading) UpdateCommands();
  if (workbench_.idle()) {
    progressTimer_.stop();
  } else if (!progressTimer_.isActive()) {
    progressTimer_.start();
  }
  if (activity == Activity::kIdle) afterDenoise_ = nullptr;  // taken by then, or stopped
  if (closing_) CloseWhenIdle();
}

CommandContext MainWindow::State() const {
  const DocumentSession& session = workbench_.session();
  return {session.hasImage(), session.activity(), panel_->canUndo(), panel_->canRedo()};
}

bool MainWindow::Can(Command command) const {
  return !closing_ && CommandEnabled(command, State());
}

void MainWindow::UpdateCommands() {
  commandTimer_.stop();
  const DocumentSession& session = workbench_.session();
  actions_->Update(State());
  const bool usable =
      CommandEnabled(Command::kZoomIn, {session.hasImage(), session.activity(), false, false});
  zoomBox_->setEnabled(usable);
  const QString why = texts_(session.hasImage() ? text::kBusy : text::kNeedsPhotograph);
  zoomBox_->setToolTip(usable ? texts_(84) : texts_(84) + QLatin1Char('\n') + why);
  const bool open = (*actions_)[Command::kOpen]->isEnabled();
  for (QMenu* menu : busyMenus_) menu->setEnabled(open);
  startHint_->setEnabled(open);
  recentMenu_->setEnabled(open && !recent_.files().empty());
  panel_->SetUsable(session.hasImage() && session.activity() == Activity::kIdle);
}

void MainWindow::FollowPhotograph() {
  const Photograph& photograph = workbench_.session().photograph();
  walked_.clear();
  setWindowTitle(FrameTitle(workbench_.session().Title()));
  startHint_->setVisible(photograph.source == nullptr);
  view_->ShowPhotograph(photograph.display);
  status_->ShowPhotograph(photograph);
  if (photograph.source == nullptr) {
    zoomBox_->ShowNothing();
    panel_->ShowNothing();
    startHint_->setFocus();
  } else {
    status_->ShowZoom(view_->geometry().zoom());
    ChangeRecent([&] { recent_.Add(photograph.path); });
    context_.dialogs.LookBeside(photograph.path);
    view_->PlaceRectangle();
    view_->SetRectangleShown(true);
    panel_->ShowPhotograph(photograph);
    view_->setFocus();
    if (photograph.profileUse == ProfileUse::kUnusable) status_->Note(texts_(text::kProfileUnusable));
  }
  UpdateHint();
}

void MainWindow::FollowResult() {
  view_->ShowPatch(std::nullopt);
  view_->ShowResult(workbench_.session().resultDisplay());
  ShowRectangle(false);  // nothing in it would differ
  if (workbench_.session().cardFault() != engine::CardFault::kNone) status_->Note(texts_(text::kCardFailed));
  // After everybody knows of the result.
  if (auto next = std::exchange(afterDenoise_, nullptr)) QTimer::singleShot(0, this, next);
}

void MainWindow::UpdateHint() {
  const DocumentSession& session = workbench_.session();
  const bool outlined = view_->rectangleShown() && view_->mode() != ViewMode::kNoise;
  int hint = session.denoised() ? text::kCompareHint : text::kViewHint;
  if (outlined) hint = text::kPreviewHint;
  if (!session.hasImage()) hint = text::kOpenHint;
  status_->SetHint(texts_(hint));
}

void MainWindow::UpdateRecentMenu() {
  recentMenu_->clear();
  for (std::size_t i = 0; i < recent_.files().size(); ++i) {
    const std::filesystem::path file = recent_.files()[i];
    QAction* action = recentMenu_->addAction(RecentText(i, file, recentMenu_->fontMetrics()));
    connect(action, &QAction::triggered, this, [this, file] { OpenInstead(file); });
  }
  recentMenu_->addSeparator();
  connect(recentMenu_->addAction(texts_(text::kClearList)), &QAction::triggered, this, [this] {
    ChangeRecent([this] { recent_.Clear(); });
    UpdateCommands();
  });
}

void MainWindow::ChangeRecent(const std::function<void()>& change) {
  const std::filesystem::path file = base::SettingsFile(context_.applicationData);
  recent_.Refresh(file);
  change();
  (void)recent_.Store(file);  // forgotten at worst
  UpdateRecentMenu();
}

void MainWindow::ShowRectangle(bool shown) {
  view_->SetRectangleShown(shown);
  UpdateHint();
}

void MainWindow::RequestPreview() {
  const std::optional<PictureRect>& rect = view_->rectangle().rect();
  if (!rect || closing_ || workbench_.session().activity() == Activity::kDenoising) return;
  // What the whole run has made is shown as long as nothing differs from it.
  if (workbench_.session().ResultIsOf(panel_->parameters(), panel_->quality())) {
    workbench_.DropPreview();
    view_->ShowPatch(std::nullopt);
    return;
  }
  ShowRectangle(true);
  workbench_.WishPreview({*rect, panel_->parameters(), panel_->quality()});
}

void MainWindow::ApplyScheme(int scheme) {
  scheme_ = scheme;
  (void)context_.settings.SetNumber(settings::Setting::kColourScheme, scheme);  // for this run at least
  (*actions_)[CommandOfScheme(scheme)]->setChecked(true);
  view_->SetBackground(skin::SchemeOf(scheme).view);
  emit schemeChosen(scheme);
}

void MainWindow::FollowColours() {
  const bool managed = (*actions_)[Command::kColourManagement]->isChecked();
  workbench_.SetColours({managed, ScreenProfile(screen())});
}

// ---- Window ----

bool MainWindow::Open(const std::filesystem::path& photograph) {
  if (!workbench_.CanLoad()) return false;
  afterSave_ = nullptr;
  walker_.Drop();
  walked_.clear();
  opening_ = photograph;
  return workbench_.Load(photograph);
}

void MainWindow::RestorePlace() {
  resize(kUsual.boundedTo(screen()->availableSize()));
  const WindowPlace place = LoadWindowPlace(base::SettingsFile(context_.applicationData));
  if (!place.geometry.empty())
    restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(place.geometry)));
}

void MainWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  connect(windowHandle(), &QWindow::screenChanged, this, &MainWindow::FollowColours, Qt::UniqueConnection);
  FollowColours();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  const bool free = (*actions_)[Command::kOpen]->isEnabled();
  if (free && !LocalPaths(event->mimeData()->urls()).empty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const std::vector<std::filesystem::path> dropped = LocalPaths(event->mimeData()->urls());
  if (dropped.empty()) return;
  event->acceptProposedAction();
  // The dragging program waits for the end of this call: questions come after it.
  QTimer::singleShot(0, this, [this, dropped] { TakeDropped(dropped); });
}

}  // namespace mirellon::ui
