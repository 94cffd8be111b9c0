// The icons of message boxes and of the toolkit's file dialog, in the scheme's colours, too.
#include <QGuiApplication>
#include <QStyleOption>
#include <algorithm>
#include <array>

#include "skin/icon_engine.h"
#include "skin/skin_style.h"

namespace mirellon::skin {

namespace {

struct StandardIcon {
  QStyle::StandardPixmap icon;
  const char* name;
};

constexpr std::array kIcons{StandardIcon{QStyle::SP_MessageBoxInformation, "message-information"},
                            StandardIcon{QStyle::SP_MessageBoxQuestion, "message-question"},
                            StandardIcon{QStyle::SP_MessageBoxWarning, "message-warning"},
                            StandardIcon{QStyle::SP_MessageBoxCritical, "message-error"},
                            StandardIcon{QStyle::SP_FileDialogToParent, "up"},
                            StandardIcon{QStyle::SP_FileDialogNewFolder, "folder-new"},
                            StandardIcon{QStyle::SP_FileDialogListView, "list"},
                            StandardIcon{QStyle::SP_FileDialogDetailedView, "details"},
                            StandardIcon{QStyle::SP_DirIcon, "folder"},
                            StandardIcon{QStyle::SP_DirOpenIcon, "IDP_FOLDER"},
                            StandardIcon{QStyle::SP_DirClosedIcon, "folder"},
                            StandardIcon{QStyle::SP_DirLinkIcon, "folder"},
                            StandardIcon{QStyle::SP_DirHomeIcon, "home"},
                            StandardIcon{QStyle::SP_FileIcon, "file"},
                            StandardIcon{QStyle::SP_FileLinkIcon, "file"},
                            StandardIcon{QStyle::SP_ComputerIcon, "computer"},
                            StandardIcon{QStyle::SP_DesktopIcon, "computer"},
                            StandardIcon{QStyle::SP_DriveHDIcon, "drive"},
                            StandardIcon{QStyle::SP_DriveNetIcon, "drive"}};

}  // namespace

QIcon SkinStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
  // Back is where reading came from.
  const bool leftward =
      (option != nullptr ? option->direction : QGuiApplication::layoutDirection()) == Qt::RightToLeft;
  const char* name = nullptr;
  if (icon == SP_ArrowBack) name = leftward ? "forward" : "back";
  if (icon == SP_ArrowForward) name = leftward ? "back" : "forward";
  if (icon == SP_ArrowLeft) name = "back";
  if (icon == SP_ArrowRight) name = "forward";
  const auto* found = std::find_if(kIcons.begin(), kIcons.end(),
                                   [icon](const StandardIcon& known) { return known.icon == icon; });
  if (found != kIcons.end()) name = found->name;
  if (name == nullptr) return QProxyStyle::standardIcon(icon, option, widget);
  return StrokeIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

}  // namespace mirellon::skin
