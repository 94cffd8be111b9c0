// Another program that stays and answers.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "base/child_process.h"
#include "base/file_descriptor.h"
#include "base/run_control.h"

namespace mirellon::base {

// Holds a child process that reads requests from its standard input and writes its answers to standard output
// or error. It is killed, with its whole group, when the object dies, and when the thread that started it
// ends for whatever reason. Used by one thread.
class ChildSession {
 public:
  ChildSession() = default;
  ~ChildSession() { Stop(); }
  ChildSession(const ChildSession&) = delete;
  ChildSession& operator=(const ChildSession&) = delete;

  // Starts the program, found through PATH, with `folder` as its working folder and `arguments[0]` as its
  // name. Does not wait for it to get ready. 0, or the error number.
  [[nodiscard]] int Start(const std::vector<std::string>& arguments, const std::filesystem::path& folder);
  [[nodiscard]] bool running() const { return child_ > 0; }

  enum class Answer {
    kComplete,  // `answer` holds everything up to the mark and the rest of the mark's line
    kEnded,     // the program is gone, went on without an end, or took longer than the limit
    kAborted,   // on request of the run control; the program was killed
  };
  // Sends the request and takes what comes until a line begins with, or holds, `mark`.
  [[nodiscard]] Answer Ask(std::string_view request, std::string_view mark, const RunControl* control,
                           std::string& answer, std::chrono::milliseconds limit = kChildLimit);

  void Stop();

 private:
  // Why a question ends without an answer.
  struct Patience {
    const RunControl* control;
    std::chrono::steady_clock::time_point deadline;
  };
  [[nodiscard]] std::optional<Answer> Await(short event, const Patience& patience);
  [[nodiscard]] std::optional<Answer> Send(std::string_view request, const Patience& patience);
  [[nodiscard]] std::optional<Answer> Receive(std::string_view mark, const Patience& patience,
                                              std::string& answer);

  pid_t child_ = -1;
  FileDescriptor talk_;  // a socket: writing to it when the child is gone raises no signal
};

}  // namespace mirellon::base
