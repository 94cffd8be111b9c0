// The panel beside the view: which settings, and how strong.
#pragma once

#include <QButtonGroup>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>
#include <QToolButton>
#include <vector>

#include "ui/desktop_context.h"
#include "ui/model/panel_model.h"
#include "ui/parameter_row.h"
#include "ui/texts.h"

namespace mirellon::ui {

// Shows and edits a PanelModel. The work itself is the window's, which the signals ask for.
class ParameterPanel : public QWidget {
  Q_OBJECT

 public:
  ParameterPanel(DesktopContext& context, const Texts& texts, QWidget* parent);

  void ShowPhotograph(const Photograph& photograph);
  void ShowNothing();
  // What was typed or stepped counts from now on, as before everything that reads the parameters.
  void Commit();
  // Writes the profile file, as every way of closing the panel does. Says why it could not; empty: done.
  [[nodiscard]] QString Finish();
  // Sets were added or deleted, and are not in the file.
  [[nodiscard]] bool changed() const { return model_.changed(); }
  // What is wrong with the profile file; empty: nothing.
  [[nodiscard]] QString StoreComplaint() const;

  // A run on the whole photograph is going on. `denoised`: one has been finished.
  void SetRunning(bool running, bool denoised);
  void SetUsable(bool usable);  // a photograph is open, and nothing is done with it
  void ShowProgress(int permille);
  void Undo();
  void Redo();

  [[nodiscard]] const engine::DenoiseParameters& parameters() const { return model_.parameters(); }
  [[nodiscard]] std::uint32_t quality() const;
  [[nodiscard]] bool canUndo() const { return model_.history().CanUndo(); }
  [[nodiscard]] bool canRedo() const { return model_.history().CanRedo(); }

 signals:
  void previewWished();
  void denoiseRequested();
  void abortRequested();
  void noted(const QString& text);  // what was done, for the status line
  void historyChanged();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  // parameter_panel_build.cpp
  void Build();
  [[nodiscard]] QWidget* BuildProfileRows();
  [[nodiscard]] QWidget* BuildManualSwitch();
  [[nodiscard]] QWidget* BuildManualControls();
  [[nodiscard]] QGroupBox* GroupOf(int caption, std::size_t firstRow, std::size_t count);
  void AddArtefacts(QGroupBox* group);
  void AddQuality(QGroupBox* group);
  [[nodiscard]] QWidget* BuildFooter();
  void Connect();
  // As wide as the content needs.
  void FitWidth();

  // parameter_panel.cpp
  void ShowCameras();
  void ShowIsos();
  void ShowParameters();
  void FollowChoice();  // another entry is in work
  void Settle();
  void Measure();
  void Keep();
  void TellKept(bool failed);
  void Delete();
  // Tells otherwise: a load goes on behind a dialog, and chooses other settings.
  [[nodiscard]] bool StillShows(unsigned subject);
  void SetDefault();
  void SetManual(bool shown);
  void ChooseQuality(int index);
  void UpdateEnabled();
  // `reason` is why it cannot be used; empty: it can.
  static void SetUse(QWidget* widget, const QString& toolTip, const QString& reason);

  DesktopContext& context_;
  Texts texts_;
  PanelModel model_;
  imageio::ExifSummary exif_;
  unsigned shown_ = 0;  // photographs until now
  bool usable_ = false;
  bool running_ = false;

  QScrollArea* scroll_ = nullptr;
  QWidget* content_ = nullptr;
  QWidget* footer_ = nullptr;
  QWidget* profileRows_ = nullptr;
  QComboBox* camera_ = nullptr;
  QComboBox* iso_ = nullptr;
  QToolButton* keep_ = nullptr;
  QToolButton* delete_ = nullptr;
  QToolButton* measure_ = nullptr;
  QGroupBox* infoBox_ = nullptr;
  QLabel* info_ = nullptr;
  QWidget* manualSwitch_ = nullptr;
  QToolButton* manual_ = nullptr;
  QWidget* manualControls_ = nullptr;
  std::vector<ParameterRow*> rows_;
  QButtonGroup* artefacts_ = nullptr;
  QComboBox* quality_ = nullptr;
  QPushButton* setDefault_ = nullptr;
  QPushButton* denoise_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QTimer pause_;  // ends a row of steps; a knob that is held still asks for a preview, too
};

}  // namespace mirellon::ui
