// The status bar's content.
#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>
#include <optional>

#include "ui/model/document_session.h"
#include "ui/texts.h"

namespace mirellon::ui {

// Left a hint or what is being done, with a bar and a button to stop it; right the photograph and the zoom.
class StatusLine : public QStatusBar {
  Q_OBJECT

 public:
  StatusLine(const Texts& texts, QWidget* parent);

  void SetHint(const QString& hint);
  // Shown for a while instead of the hint.
  void Note(const QString& note);
  void ShowPhotograph(const Photograph& photograph);
  void ShowZoom(double zoom);
  // What is being done, once it has taken a moment; nothing with an empty text. `stoppable` shows the button.
  void ShowWork(const QString& work, bool stoppable);
  void ShowProgress(std::optional<int> permille);  // nothing: unknown

 signals:
  void stopRequested();

 private:
  void UpdateHint();

  Texts texts_;
  QLabel* hint_;
  QProgressBar* bar_;
  QPushButton* stop_;
  QLabel* photograph_;
  QLabel* zoom_;
  QTimer noteTimer_;
  QTimer workTimer_;  // short work does not make the line flicker
  QString hintText_;
  QString note_;
  QString work_;
  bool stoppable_ = false;
};

}  // namespace mirellon::ui
