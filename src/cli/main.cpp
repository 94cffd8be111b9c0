// mirellon-cli: the process around the command line.
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <span>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "base/paths.h"
#include "cli/command_line.h"
#include "cli/interruption.h"

namespace {

// A standard stream that the caller closed must not come back as the next file opened: its number would
// receive what belongs to the stream. Standard output becomes one that cannot be written.
void HoldStandardStreams() {
  while (true) {
    const int descriptor = open("/dev/null", O_RDONLY);
    if (descriptor < 0) return;
    if (descriptor > STDERR_FILENO) {
      close(descriptor);
      return;
    }
  }
}

int TerminalColumns() {
  winsize size = {};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : 80;
}

std::string FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

int main(int argc, char** argv) {
  HoldStandardStreams();
  mirellon::engine::EngineContext engine;
  mirellon::cli::WatchSignals(engine.control);
  mirellon::cli::Shell shell{.out = std::cout,
                             .err = std::cerr,
                             .engine = engine,
                             .applicationData = mirellon::base::ApplicationDataFolder(),
                             .resourceFolders = mirellon::base::ResourceFolders(),
                             .simdTarget = FromEnvironment("MIRELLON_SIMD"),
                             .errIsTerminal = isatty(STDERR_FILENO) == 1,
                             .columns = TerminalColumns,
                             .caughtSignal = mirellon::cli::CaughtSignal};
  const auto count = static_cast<std::size_t>(argc);
  const std::span<const char* const> args(argv, count);
  return static_cast<int>(mirellon::cli::RunCommandLine(args.subspan(argc > 0 ? 1 : 0), shell));
}
