// Brings up the help where it is asked for.
#pragma once

#include <QAction>
#include <QObject>
#include <QPointer>

#include "ui/desktop_context.h"
#include "ui/dialogs/help_window.h"
#include "ui/texts.h"

namespace mirellon::ui {

// F1 opens the section on what has the focus, in the main window and in every dialog; the menu opens the help
// at its start. Where no page is installed, that is said once, and help does nothing for the rest of the run.
class HelpDesk : public QObject {
  Q_OBJECT

 public:
  // `command` is the main window's help command: while it is disabled, so is the key there. All of it
  // outlives the desk.
  HelpDesk(DesktopContext& context, const Texts& texts, const QAction* command, QWidget* mainWindow);

  void ShowStart();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Show(const QString& anchor);
  [[nodiscard]] HelpWindow* WindowFor(QWidget* owner);
  void SayUnavailable();

  DesktopContext& context_;
  Texts texts_;
  const QAction* command_;
  QWidget* mainWindow_;
  bool available_ = true;
};

}  // namespace mirellon::ui
