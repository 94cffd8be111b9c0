// The frame of the application.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "ui/actions.h"
#include "ui/batch_controller.h"
#include "ui/desktop_context.h"
#include "ui/folder_walker.h"
#include "ui/image_view.h"
#include "ui/model/recent_files.h"
#include "ui/start_hint.h"
#include "ui/status_line.h"
#include "ui/workbench.h"
#include "ui/zoom_box.h"

namespace mirellon::ui {

class BatchProgressDialog;
class BatchReportDialog;
class HelpDesk;
class ParameterPanel;

// Owns menus, toolbar, view, panel and status line, and takes every command to where it is done. The work
// itself goes on beside it, in the workbench.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(DesktopContext& context);
  ~MainWindow() override;
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  // False: refused, the window is busy. Whether a result may be lost is not asked.
  bool Open(const std::filesystem::path& photograph);
  // Does a command if it can be used now, whatever its menu item looks like.
  void Do(Command command);

  // What closing does, without any window: for a process that is told to end.
  void EndNow();

  [[nodiscard]] const Workbench& workbench() const { return workbench_; }
  [[nodiscard]] ImageView& view() { return *view_; }
  [[nodiscard]] ParameterPanel& panel() { return *panel_; }

 signals:
  void schemeChosen(int scheme);  // the application changes its colours
  void closed();                  // in order; the window is gone in a moment

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // main_window.cpp: building, and following what happens
  void BuildMenus();
  void BuildToolBar();
  void BuildCentre();
  void Connect();
  void ConnectWorkbench();
  void FollowActivity();
  void UpdateCommands();
  void FollowPhotograph();
  void FollowResult();
  void UpdateHint();
  void UpdateRecentMenu();
  // Changes the list as it is on the disk, where other windows write, too.
  void ChangeRecent(const std::function<void()>& change);
  void RequestPreview();
  void ShowRectangle(bool shown);
  void ApplyScheme(int scheme);
  void FollowColours();  // of the screen that the window is on, and of its user
  void RestorePlace();
  [[nodiscard]] bool Can(Command command) const;
  [[nodiscard]] CommandContext State() const;

  // main_window_batch.cpp
  void AskAndStartBatch();
  void AskOptionsAndStart(const BatchWork& work);
  // A run takes the settings of the cameras from their file.
  void KeepForBatch();
  void StartBatch(const BatchWork& work);
  void ConnectBatch();
  void FinishBatch(const BatchOutcome& outcome);
  // Whether the window may close while a batch has it; asks, and sees to the end of the run.
  [[nodiscard]] bool MayLeaveBatch();
  void TakeDropped(const std::vector<std::filesystem::path>& dropped);

  // main_window_commands.cpp
  void AskAndOpen();
  void SaveAs();
  void AskAndSave();
  // The subject of a question is no longer there.
  void GiveUpSaving();
  void Denoise(std::uint32_t quality);
  void CloseImage();
  void OpenInstead(const std::filesystem::path& photograph);  // asks whether the result may go
  void Step(ui::Step direction);
  void FinishWalk(const std::filesystem::path& reached, ui::Step direction, bool atEnd);
  void ShowMode(ViewMode mode);
  // Opens the options once it is known whether the card may be switched on.
  void ShowOptions();
  void AskOptions(bool cardUsable);
  void CheckCard(std::function<void(bool usable)> answer);
  void ShowAbout();
  void VisitWebSite();
  void ShowLoadFailure(const std::filesystem::path& path, const imageio::LoadReport& report);
  void ShowSaveFailure(const std::filesystem::path& target, const imageio::SaveReport& report);

  // main_window_leave.cpp
  // Whether the present photograph may go; asks when its result is not saved.
  enum class Leave { kNow, kAfterSaving, kNo };
  [[nodiscard]] Leave AskToLeave();
  // Does it now, after a save, or not at all.
  void LeaveThen(std::function<void()> action);
  void SaveThen(std::function<void()> action);
  [[nodiscard]] bool AskToClose();
  void StopForClosing();
  void CloseWhenIdle();
  // Writes the changed camera settings. False: they cannot be, and the window stays.
  [[nodiscard]] bool KeepProfiles();
  void StorePlace();

  DesktopContext& context_;
  Texts texts_;
  Workbench workbench_;
  BatchController batch_;
  QPointer<BatchProgressDialog> batchDialog_;
  QPointer<BatchReportDialog> batchReport_;
  BatchWork batchWork_;
  std::optional<std::uint32_t> batchTotal_;
  ImageView* view_ = nullptr;
  ParameterPanel* panel_ = nullptr;
  StatusLine* status_ = nullptr;
  ZoomBox* zoomBox_ = nullptr;
  StartHint* startHint_ = nullptr;
  Actions* actions_ = nullptr;
  HelpDesk* helpDesk_ = nullptr;
  QMenu* recentMenu_ = nullptr;
  std::vector<QMenu*> busyMenus_;  // those that rest while something runs
  QTimer progressTimer_;
  QTimer commandTimer_;  // a short load does not make the commands flicker
  RecentFiles recent_;
  FolderWalker walker_;
  std::filesystem::path opening_;
  std::filesystem::path walked_;  // where a walk went on to, although it could not be opened
  std::filesystem::path saving_;
  int scheme_;
  std::function<void()> afterSave_;     // what waits for a save to succeed
  std::function<void()> afterDenoise_;  // or for a run
  bool closing_ = false;                // decided; as soon as nothing runs any more
  bool saveFirst_ = false;              // and the result has been saved
  bool asking_ = false;                 // whether to close
  bool optionsAsked_ = false;           // and wait for the card's answer, or for their user
};

}  // namespace mirellon::ui
