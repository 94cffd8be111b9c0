#include "ui/application.h"

#include <QIcon>
#include <QTimer>

#include "skin/skin_style.h"
#include "ui/desktop_context.h"
#include "ui/dialogs/qt_dialogs.h"
#include "ui/main_window.h"
#include "ui/termination.h"

// The macro wants to stand outside of every namespace.
static void InitLinkedResources() {
  Q_INIT_RESOURCE(icons);
}

namespace mirellon::ui {

namespace {

// Once the window is there, so that it can own the message.
void TellOfStart(const DesktopContext& context, const Texts& texts) {
  if (context.loaded.crashedLastTime) {
    context.dialogs.ShowMessage(texts(text::kCrashed).toStdWString(), texts(text::kWarning).toStdWString(),
                                base::MessageKind::kInformation);
  }
  if (!context.loaded.warning.empty()) {
    context.dialogs.ShowMessage(QString::fromStdString(context.loaded.warning).toStdWString(),
                                texts(text::kWarning).toStdWString(), base::MessageKind::kWarning);
  }
}

}  // namespace

void InitResources() {
  InitLinkedResources();
}

int RunApplication(QApplication& application, const StartOptions& options) {
  InitResources();
  engine::EngineContext engine;
  engine.processorCount = engine::CountProcessors();
  settings::Localization localization =
      settings::LoadLocalization(settings::LanguagePaths::Of(options.applicationData));
  settings::AppSettings appSettings(options.applicationData);
  const Texts texts(localization);
  QtDialogs dialogs(texts);
  const settings::CardCheck cardUsable = [] { return false; };
  DesktopContext context{engine,
                         appSettings,
                         localization,
                         dialogs,
                         options.applicationData,
                         options.resourceFolders,
                         settings::LoadSettings(appSettings, cardUsable),
                         cardUsable};
  localization.LoadLanguages();
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/mirellon.svg")));
  skin::ApplyScheme(application, context.loaded.colourScheme);

  MainWindow window(context);
  dialogs.SetOwner(&window);
  QObject::connect(&window, &MainWindow::schemeChosen,
                   [&application](int scheme) { skin::ApplyScheme(application, scheme); });
  const Termination termination;
  QObject::connect(&termination, &Termination::requested, &window, [&window] {
    window.EndNow();
    QApplication::quit();
  });
  window.show();
  QTimer::singleShot(0, &window, [&] {
    if (!options.photograph.empty()) window.Open(options.photograph);
    TellOfStart(context, texts);
  });
  const int code = QApplication::exec();
  (void)settings::MarkOrderlyEnd(appSettings);  // the next start then asks needlessly, no more
  return code;
}

}  // namespace mirellon::ui
