#include "ui/help_desk.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>

#include "base/paths.h"
#include "ui/help_topics.h"

namespace mirellon::ui {

namespace {

bool IsHelpKey(const QEvent& event) {
  if (event.type() != QEvent::KeyPress && event.type() != QEvent::ShortcutOverride) return false;
  const auto& key = static_cast<const QKeyEvent&>(event);
  return key.key() == Qt::Key_F1 && key.modifiers() == Qt::NoModifier;
}

}  // namespace

HelpDesk::HelpDesk(DesktopContext& context, const Texts& texts, const QAction* command, QWidget* mainWindow)
    : QObject(mainWindow), context_(context), texts_(texts), command_(command), mainWindow_(mainWindow) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool HelpDesk::eventFilter(QObject* watched, QEvent* event) {
  if (!IsHelpKey(*event)) return false;
  const auto* widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr || QApplication::activePopupWidget() != nullptr) return false;
  const QWidget* window = widget->window();
  if (qobject_cast<const HelpWindow*>(window) != nullptr) return false;
  if (window == mainWindow_ && !command_->isEnabled()) return false;
  event->accept();
  // A key is offered as a shortcut first; taken from there, it comes again as a key.
  if (event->type() == QEvent::KeyPress) Show(TopicOf(widget));
  return true;
}

void HelpDesk::ShowStart() {
  Show(QLatin1String(kHelpStart));
}

void HelpDesk::Show(const QString& anchor) {
  if (!available_) return;
  const std::filesystem::path file = context_.localization.HelpFile(context_.resourceFolders);
  const std::optional<HelpPage> page =
      file.empty() ? std::nullopt : ReadHelpPage(file, context_.localization);
  if (!page) return SayUnavailable();
  QWidget* modal = QApplication::activeModalWidget();
  HelpWindow* window = WindowFor(modal == nullptr ? mainWindow_ : modal);
  if (window->currentAnchor().isEmpty()) window->ShowPage(file, *page);
  window->show();
  window->raise();
  window->activateWindow();
  window->GoTo(anchor);
}

HelpWindow* HelpDesk::WindowFor(QWidget* owner) {
  auto* window = owner->findChild<HelpWindow*>(QString(), Qt::FindDirectChildrenOnly);
  if (window != nullptr) return window;
  window = new HelpWindow(texts_, base::SettingsFile(context_.applicationData), owner);  // its owner's
  auto* dialog = qobject_cast<QDialog*>(owner);
  if (dialog == nullptr) return window;
  // Only what belongs to a modal dialog can be used beside it. What is being read there stays open after it.
  connect(dialog, &QDialog::finished, this, [this, window] {
    if (!window->isVisible()) return;
    const QString anchor = window->currentAnchor();
    window->close();
    QMetaObject::invokeMethod(
        this, [this, anchor] { Show(anchor); }, Qt::QueuedConnection);
  });
  return window;
}

void HelpDesk::SayUnavailable() {
  available_ = false;
  QString message = texts_(text::kNoHelp);
  for (const std::filesystem::path& folder : context_.resourceFolders) {
    message += QLatin1String(message.contains(QLatin1Char('\n')) ? "\n" : "\n\n") +
               TextOf(folder / "mirellon_*.html");
  }
  context_.dialogs.ShowMessage(message.toStdWString(), texts_(text::kHelpMenu).toStdWString(),
                               base::MessageKind::kInformation);
}

}  // namespace mirellon::ui
