// The external tool exiftool, started once for many photographs.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/child_process.h"
#include "base/child_session.h"
#include "base/run_control.h"

namespace mirellon::imageio {

// Starting the tool costs several times what its work on a photograph does. It waits in a private folder of
// the system's temporary one, where a link of a fixed name leads it to each photograph's folder, so that no
// name of the user's is ever part of a request. Used by one thread.
class MetadataTool {
 public:
  MetadataTool() = default;
  ~MetadataTool();
  MetadataTool(const MetadataTool&) = delete;
  MetadataTool& operator=(const MetadataTool&) = delete;

  // Starts it, if it does not run, without waiting for it to get ready. Not needed, but saves time.
  void Prepare();

  // Copies tags and colour profile between two files of `folder`, given by their plain names. `end` of the
  // result is kExited when the tool answered, kAborted, or kUnknown: then it is as if nothing was asked, but
  // the target may be half changed.
  [[nodiscard]] base::ChildResult Copy(const std::filesystem::path& folder, const std::string& source,
                                       const std::string& target, const base::RunControl* control);

 private:
  base::ChildSession session_;
  std::filesystem::path home_;  // empty: not made yet
  unsigned requests_ = 0;
  bool unusable_ = false;  // it does not start, or not as expected
};

// What the tool is told, whichever way it is started.
[[nodiscard]] std::vector<std::string> CopyArguments(const std::string& source, const std::string& target);

}  // namespace mirellon::imageio
