// mirellon [PHOTO]: the desktop program.
#include <cstdlib>
#include <iostream>
#include <span>
#include <string_view>

#include "base/paths.h"
#include "ui/application.h"
#include "ui/model/card_examiner.h"

namespace {

constexpr int kWrongUsage = 2;
constexpr int kNoDisplay = 1;

bool IsSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// The toolkit would end the process without a word that helps.
bool HasDisplay() {
  return IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY") || IsSet("QT_QPA_PLATFORM");
}

void PrintUsage(std::ostream& out) {
  out << "usage: mirellon [PHOTO]\n"
         "\n"
         "Opens the window, and in it the photograph PHOTO.\n"
         "\n"
         "  -h, --help     this text\n"
         "      --version  the program's version\n"
         "\n"
         "mirellon-cli does the same work without a window.\n";
}

}  // namespace

int main(int argc, char** argv) {
  mirellon::ui::StartOptions options;
  bool names = false;  // after "--" everything is a name
  for (const char* argument :
       std::span<char*>(argv, static_cast<std::size_t>(argc)).subspan(argc > 0 ? 1 : 0)) {
    const std::string_view text = argument;
    if (names || text.empty() || text.front() != '-') {
      if (options.photograph.empty()) options.photograph = argument;
    } else if (text == "--") {
      names = true;
    } else if (text == "--help" || text == "-h") {
      PrintUsage(std::cout);
      return 0;
    } else if (text == mirellon::ui::kTrialArgument) {
      mirellon::ui::TryCard();
      std::_Exit(0);  // what a driver does at an ordinary end is no part of the trial
    } else if (text == "--version") {
      std::cout << "mirellon " << MIRELLON_VERSION << '\n';
      return 0;
    } else {
      std::cerr << "mirellon: unknown option " << text << '\n';
      PrintUsage(std::cerr);
      return kWrongUsage;
    }
  }
  if (!HasDisplay()) {
    std::cerr << "mirellon: there is no display (neither DISPLAY nor WAYLAND_DISPLAY is set); "
                 "mirellon-cli works without one\n";
    return kNoDisplay;
  }
  options.applicationData = mirellon::base::ApplicationDataFolder();
  options.resourceFolders = mirellon::base::ResourceFolders();
  int noArguments = 1;  // none of ours are the toolkit's
  QApplication application(noArguments, argv);
  return mirellon::ui::RunApplication(application, options);
}
