#include "ui/application.h"

#include <QIcon>
#include <QTimer>
#include <cstdlib>
#include <iostream>
#include <system_error>

#include "settings/running_mark.h"
#include "skin/install.h"
#include "ui/desktop_card.h"
#include "ui/desktop_context.h"
#include "ui/dialogs/qt_dialogs.h"
#include "ui/failure_texts.h"
#include "ui/main_window.h"
#include "ui/parameter_panel.h"
#include "ui/termination.h"
#include "ui/toolkit_texts.h"

// The macro wants to stand outside of every namespace.
static void InitLinkedResources() {
  Q_INIT_RESOURCE(icons);
  Q_INIT_RESOURCE(skin);
}

namespace mirellon::ui {

namespace {

// Once the window is there, so that it can own the messages.
void TellOfStart(const DesktopContext& context, const Texts& texts, const ParameterPanel& panel) {
  if (context.loaded.crashedLastTime) {
    context.dialogs.ShowMessage(texts(text::kCrashed).toStdWString(), texts(text::kWarning).toStdWString(),
                                base::MessageKind::kInformation);
  }
  if (!context.loaded.warning.empty()) {
    context.dialogs.ShowMessage(
        Reason(texts, text::kSettingsNotStored, context.loaded.warning).toStdWString(),
        texts(text::kWarning).toStdWString(), base::MessageKind::kWarning);
  }
  if (const QString complaint = panel.StoreComplaint(); !complaint.isEmpty()) {
    context.dialogs.ShowMessage(complaint.toStdWString(), texts(text::kWarning).toStdWString(),
                                base::MessageKind::kWarning);
  }
}

// Once the card is open: the stored wish comes into force if the card is what it has to be.
void FollowCard(DesktopContext& context, const Texts& texts) {
  const auto wished = [&context] { return context.settings.GetNumber(settings::Setting::kHwAccel); };
  if (wished() == 0) return;
  if (context.card->status().crashed) {
    context.dialogs.ShowMessage(texts(text::kCardCrashes).toStdWString(),
                                texts(text::kWarning).toStdWString(), base::MessageKind::kWarning);
  }
  context.card->Check([&context, wished](bool usable) {
    context.loaded.hwAccel = settings::EffectiveHwAccel(wished(), [usable] { return usable; });
  });
}

// The list of recent photographs is read in other folders, too.
std::filesystem::path Absolute(const std::filesystem::path& file) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(file, error);
  return error ? file : absolute;
}

// What the event loop runs on, in the order in which it has to go.
int RunWindow(QApplication& application, const StartOptions& options, DesktopContext& context,
              QtDialogs& dialogs, DesktopCard& card) {
  const Texts texts(context.localization);
  MainWindow window(context);
  dialogs.SetOwner(&window);
  QObject::connect(&window, &MainWindow::schemeChosen,
                   [&application](int scheme) { skin::SetColourScheme(application, scheme); });
  const Termination termination;
  QObject::connect(&termination, &Termination::requested, &window, [&window] {
    window.EndNow();
    // quit() would close the windows first, which may ask or wait. Every loop of a dialog ends, too.
    QCoreApplication::exit(0);
  });
  QObject::connect(&card, &DesktopCard::opened, &window, [&] { FollowCard(context, texts); });
  window.show();
  QTimer::singleShot(0, &window, [&] {
    card.Open();
    // What the last run died of may be this photograph.
    TellOfStart(context, texts, window.panel());
    if (!options.photograph.empty()) window.Open(Absolute(options.photograph));
  });
  const int code = QApplication::exec();
  dialogs.SetOwner(nullptr);
  return code;
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
  settings::RunningMark mark(options.applicationData);
  const Texts texts(localization);
  QtDialogs dialogs(texts);
  DesktopCard card(dialogs, options.card, std::cout, std::cerr, {});
  engine.card = &card.filter();
  const settings::CardCheck notYet = [] { return false; };
  DesktopContext context{engine,
                         appSettings,
                         localization,
                         dialogs,
                         options.applicationData,
                         options.resourceFolders,
                         settings::LoadSettings(appSettings, notYet),
                         &card};
  if (mark.othersRan()) context.loaded.crashedLastTime = false;  // the marker is theirs
  localization.LoadLanguages();
  InstallToolkitTexts(localization.CurrentAcronym(), texts);
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/mirellon.svg")));
  skin::InstallSkin(application, context.loaded.colourScheme);
  const int code = RunWindow(application, options, context, dialogs, card);
  skin::RemoveSkin(application);
  // The window's jobs have ended with it: nobody uses the card any more.
  engine.card = nullptr;
  const bool stuck = card.End();
  // The next start then asks needlessly, no more.
  if (mark.Leave()) (void)settings::MarkOrderlyEnd(appSettings);
  if (stuck) {
    // A driver that does not return would keep the process from ending in order, for ever.
    std::cout.flush();
    std::_Exit(code);
  }
  return code;
}

}  // namespace mirellon::ui
