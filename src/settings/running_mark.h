// Telling whether the program runs more than once.
#pragma once

#include <filesystem>

#include "base/file_descriptor.h"

namespace mirellon::settings {

// A lock on a file beside the settings, which the system takes away from a process that dies. Of several
// instances that run at once, a start must not take the marker of the others for a crash, and only the last
// end may take the marker away. Where nothing can be locked, every instance believes that it is alone.
class RunningMark {
 public:
  // `applicationData` is base::ApplicationDataFolder().
  explicit RunningMark(const std::filesystem::path& applicationData);

  // Another instance ran when this one began.
  [[nodiscard]] bool othersRan() const { return othersRan_; }
  // This one ends. True: the last one.
  [[nodiscard]] bool Leave();

 private:
  [[nodiscard]] bool OthersRun() const;

  base::FileDescriptor file_;
  bool othersRan_ = false;
};

}  // namespace mirellon::settings
