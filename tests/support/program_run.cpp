#include "support/program_run.h"

#include <array>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirellon::test {

namespace {

struct Pipe {
  int reading = -1;
  int writing = -1;

  Pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) std::abort();
    reading = ends[0];
    writing = ends[1];
  }
  ~Pipe() {
    close(reading);
    CloseWriting();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void CloseWriting() {
    if (writing >= 0) close(writing);
    writing = -1;
  }
};

// The child's side, between fork and the program.
[[noreturn]] void Become(const ProgramRun& run, int output, int errors) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_DFL);
  if (chdir(run.folder.c_str()) != 0) _exit(126);
  if (!run.standardOutput.empty()) output = open(run.standardOutput.c_str(), O_WRONLY | O_CLOEXEC);
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  if (run.closeStandardOutput) close(STDOUT_FILENO);
  if (run.fileSizeLimit > 0) {
    const rlimit limit = {run.fileSizeLimit, run.fileSizeLimit};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  for (const std::string& variable : run.environment) {
    const std::size_t equals = variable.find('=');
    setenv(variable.substr(0, equals).c_str(), variable.substr(equals + 1).c_str(), 1);
  }
  std::vector<char*> arguments;
  for (const std::string& argument : run.arguments) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  execv(arguments.front(), arguments.data());
  _exit(127);
}

// Reads what has arrived; false at the end.
bool Drain(int descriptor, std::string& text) {
  std::array<char, 4096> buffer{};
  const ssize_t count = read(descriptor, buffer.data(), buffer.size());
  if (count <= 0) return false;
  text.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

void Collect(const ProgramRun& run, pid_t child, int output, int errors, ProgramResult& result) {
  std::array<pollfd, 2> ends{{{output, POLLIN, 0}, {errors, POLLIN, 0}}};
  while (ends[0].fd >= 0 || ends[1].fd >= 0) {
    if (poll(ends.data(), ends.size(), -1) < 0) continue;
    if (ends[0].revents != 0 && !Drain(output, result.output)) ends[0].fd = -1;
    if (ends[1].revents == 0) continue;
    if (!Drain(errors, result.errors)) {
      ends[1].fd = -1;
    } else if (run.watch) {
      if (const int signal = run.watch(result.errors); signal != 0) kill(child, signal);
    }
  }
}

}  // namespace

ProgramResult Run(const ProgramRun& run) {
  ProgramResult result;
  Pipe output;
  Pipe errors;
  const pid_t child = fork();
  if (child < 0) return result;
  if (child == 0) Become(run, output.writing, errors.writing);
  output.CloseWriting();
  errors.CloseWriting();
  Collect(run, child, output.reading, errors.reading, result);
  int status = 0;
  if (waitpid(child, &status, 0) != child) return result;
  result.killed = WIFSIGNALED(status);
  result.status = result.killed ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return result;
}

}  // namespace mirellon::test
