#include "ui/actions.h"

#include <QKeySequence>
#include <QWidget>
#include <array>
#include <string_view>

#include "settings/text_table.h"
#include "skin/icon_engine.h"
#include "ui/mnemonics.h"

namespace mirellon::ui {

namespace {

enum class Keys { kWindow, kView };
enum class Kind { kPlain, kCheck, kModeGroup, kSchemeGroup };

struct Row {
  Command command;
  int text;
  int toolTip;                      // 0: the text
  const char* icon;                 // null: none
  std::array<const char*, 3> keys;  // null: none
  Keys scope = Keys::kWindow;
  Kind kind = Kind::kPlain;
};

constexpr std::array kRows{
    Row{Command::kOpen, 5, 19, "IDP_FOLDER", {"Ctrl+O"}},
    Row{Command::kSaveAs, 6, 20, "IDP_SAVE", {"Ctrl+S"}},
    Row{Command::kClose, 7, 0, nullptr, {"Ctrl+W"}},
    Row{Command::kOptions, 8, 0, nullptr, {}},
    Row{Command::kExit, 9, 0, nullptr, {"Ctrl+Q"}},
    Row{Command::kDenoise, 10, 21, "denoise", {"Ctrl+D"}},
    Row{Command::kDenoiseFast, 109, 110, "fast", {"Ctrl+Shift+D"}},
    Row{Command::kBatch, 11, 0, "IDP_DENOISEBATCH", {"Ctrl+B"}},
    Row{Command::kHelp, 12, 0, nullptr, {"F1"}},
    Row{Command::kVisitWebSite, 13, 0, nullptr, {}},
    Row{Command::kAbout, 16, 0, nullptr, {"Alt+/", "Alt+?"}},
    Row{Command::kZoomIn, 247, 22, "IDP_ZOOMIN", {"+", "Ctrl++"}},
    Row{Command::kZoomOut, 248, 23, "IDP_ZOOMOUT", {"-", "Ctrl+-"}},
    Row{Command::kZoom100, 83, 83, "IDP_ZOOM100", {"Ctrl+1"}},
    Row{Command::kZoomFit, 24, 24, "IDP_ZOOMFIT", {"Ctrl+0"}},
    Row{Command::kPicker, 213, 0, "IDP_PICKER", {"Ctrl+R"}, Keys::kWindow, Kind::kCheck},
    Row{Command::kUndo, 202, 0, "undo", {"Ctrl+Z"}},
    Row{Command::kRedo, 203, 0, "redo", {"Ctrl+Shift+Z", "Ctrl+Y"}},
    Row{Command::kShowOriginal, 214, 0, "compare", {"Ctrl+E"}, Keys::kWindow, Kind::kCheck},
    Row{Command::kViewSingle, 206, 0, "view-single", {"1"}, Keys::kView, Kind::kModeGroup},
    Row{Command::kViewSplit, 207, 0, "view-split", {"2"}, Keys::kView, Kind::kModeGroup},
    Row{Command::kViewSideBySide, 208, 0, "view-side-by-side", {"3"}, Keys::kView, Kind::kModeGroup},
    Row{Command::kViewRemovedNoise, 209, 0, "view-noise", {"4"}, Keys::kView, Kind::kModeGroup},
    Row{Command::kSchemeLight, 210, 0, nullptr, {}, Keys::kWindow, Kind::kSchemeGroup},
    Row{Command::kSchemeDark, 211, 0, nullptr, {}, Keys::kWindow, Kind::kSchemeGroup},
    Row{Command::kSchemeContrast, 212, 0, nullptr, {}, Keys::kWindow, Kind::kSchemeGroup},
    Row{Command::kColourManagement, 257, 0, nullptr, {}, Keys::kWindow, Kind::kCheck},
    Row{Command::kPreviousImage, 245, 0, nullptr, {"PgUp"}, Keys::kView},
    Row{Command::kNextImage, 246, 0, nullptr, {"PgDown"}, Keys::kView},
    Row{Command::kMoveLeft, 0, 0, nullptr, {"Left"}, Keys::kView},
    Row{Command::kMoveRight, 0, 0, nullptr, {"Right"}, Keys::kView},
    Row{Command::kMoveUp, 0, 0, nullptr, {"Up"}, Keys::kView},
    Row{Command::kMoveDown, 0, 0, nullptr, {"Down"}, Keys::kView},
};

QList<QKeySequence> KeysOf(const Row& row) {
  QList<QKeySequence> keys;
  for (const char* key : row.keys) {
    if (key != nullptr) keys.append(QKeySequence(QString::fromLatin1(key), QKeySequence::PortableText));
  }
  return keys;
}

// Some texts end in their key, which the menu shows by itself.
QString WithoutKey(QString text, const Row& row) {
  for (const char* key : row.keys) {
    if (key != nullptr && text.endsWith(QLatin1String(key)) && text.size() > 3) {
      text.chop(QLatin1String(key).size());
    }
  }
  return text.trimmed();
}

QAction* MakeAction(const Row& row, const Texts& texts, QObject* parent) {
  auto* action = new QAction(WithoutKey(texts(row.text), row), parent);
  action->setObjectName(QStringLiteral("command%1").arg(static_cast<int>(row.command)));
  action->setIconText(action->text());  // stays as it is when the menu marks a letter
  action->setProperty(kEnglishProperty, QString::fromWCharArray(settings::EnglishText(row.text)));
  if (row.icon != nullptr) {
    action->setIcon(skin::StrokeIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(row.icon))));
  }
  action->setShortcuts(KeysOf(row));
  action->setCheckable(row.kind != Kind::kPlain);
  action->setShortcutContext(row.scope == Keys::kView ? Qt::WidgetWithChildrenShortcut : Qt::WindowShortcut);
  return action;
}

}  // namespace

Actions::Actions(const Texts& texts, QWidget* window, QWidget* view)
    : QObject(window), texts_(texts), modes_(this), schemes_(this) {
  for (const Row& row : kRows) {
    QAction* action = MakeAction(row, texts, this);
    if (row.kind == Kind::kModeGroup) modes_.addAction(action);
    if (row.kind == Kind::kSchemeGroup) schemes_.addAction(action);
    const QString key = action->shortcut().toString(QKeySequence::NativeText);
    QString toolTip = row.toolTip == 0 ? action->text().remove(QLatin1String("...")) : texts(row.toolTip);
    if (!key.isEmpty() && !toolTip.contains(QLatin1Char('('))) toolTip += QStringLiteral(" (%1)").arg(key);
    toolTips_[row.command] = toolTip;
    actions_[row.command] = action;
    (row.scope == Keys::kView ? view : window)->addAction(action);
    connect(action, &QAction::triggered, this, [this, command = row.command] { emit triggered(command); });
  }
  actions_.at(Command::kViewSingle)->setChecked(true);
  // Where the platform keeps these elsewhere, they stay where the menus say.
  for (const auto& [command, action] : actions_) action->setMenuRole(QAction::NoRole);
}

void Actions::Update(const CommandContext& context) {
  for (const auto& [command, action] : actions_) {
    const bool enabled = CommandEnabled(command, context);
    action->setEnabled(enabled);
    QString toolTip = toolTips_.at(command);
    if (!enabled) {
      const bool busy = context.activity != Activity::kIdle;
      if (busy || !context.image)
        toolTip += QLatin1Char('\n') + texts_(busy ? text::kBusy : text::kNeedsPhotograph);
    }
    action->setToolTip(toolTip);
  }
}

}  // namespace mirellon::ui
