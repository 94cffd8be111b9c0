// The commands as actions of the window.
#pragma once

#include <QAction>
#include <QActionGroup>
#include <QObject>
#include <map>

#include "ui/model/commands.h"
#include "ui/texts.h"

namespace mirellon::ui {

// One QAction per command, with text, tooltip, icon and keys, named "command" and its number.
class Actions : public QObject {
  Q_OBJECT

 public:
  // Actions whose keys are the window's go to `window`; those of arrow and page keys to `view`, so that lists
  // and sliders keep them.
  Actions(const Texts& texts, QWidget* window, QWidget* view);

  [[nodiscard]] QAction* operator[](Command command) const { return actions_.at(command); }

  // Enables what can be used now; the tooltips of the others say why they cannot.
  void Update(const CommandContext& context);

 signals:
  void triggered(mirellon::ui::Command command);

 private:
  Texts texts_;
  QActionGroup modes_;
  QActionGroup schemes_;
  std::map<Command, QAction*> actions_;
  std::map<Command, QString> toolTips_;
};

}  // namespace mirellon::ui
