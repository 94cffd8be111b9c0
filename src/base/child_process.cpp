#include "base/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/file_descriptor.h"

namespace mirellon::base {

namespace {

constexpr std::size_t kMostOutput = std::size_t{64} << 10U;
constexpr int kPollMs = 50;  // how soon an abort request is seen

class SpawnSettings {
 public:
  SpawnSettings() {
    ready_ = posix_spawn_file_actions_init(&actions_) == 0 && posix_spawnattr_init(&attributes_) == 0;
  }
  ~SpawnSettings() {
    if (!ready_) return;
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  // 0, or the error number.
  int Prepare(const std::filesystem::path& folder, int output) {
    if (!ready_) return ENOMEM;
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    const std::array<int, 8> results = {
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0),
        posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO),
        posix_spawn_file_actions_adddup2(&actions_, output, STDERR_FILENO),
        posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str()),
        posix_spawnattr_setpgroup(&attributes_, 0),
        posix_spawnattr_setsigmask(&attributes_, &none),
        posix_spawnattr_setsigdefault(&attributes_, &all),
        posix_spawnattr_setflags(&attributes_,
                                 POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF)};
    const auto* failed = std::find_if(results.begin(), results.end(), [](int result) { return result != 0; });
    return failed == results.end() ? 0 : *failed;
  }

  posix_spawn_file_actions_t* actions() { return &actions_; }
  posix_spawnattr_t* attributes() { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
  bool ready_ = false;
};

// Takes what is there; false when nothing more will come.
bool Drain(const FileDescriptor& pipe, std::string& output) {
  std::array<char, 4096> piece{};
  for (;;) {
    const ssize_t got = read(pipe.get(), piece.data(), piece.size());
    if (got < 0) return errno == EINTR || errno == EAGAIN;
    if (got == 0) return false;
    const std::size_t room = kMostOutput - std::min(output.size(), kMostOutput);
    output.append(piece.data(), std::min(room, static_cast<std::size_t>(got)));
  }
}

void TakeStatus(int status, ChildResult& result) {
  if (WIFEXITED(status)) {
    result.end = ChildResult::End::kExited;
    result.status = WEXITSTATUS(status);
  } else if (WIFSIGNALED(status)) {
    result.end = ChildResult::End::kKilled;
    result.status = WTERMSIG(status);
  }
}

// True once the child is gone, and its status taken.
bool Reap(pid_t child, int options, ChildResult& result) {
  int status = 0;
  pid_t ended = 0;
  do {
    ended = waitpid(child, &status, options);
  } while (ended < 0 && errno == EINTR);
  if (ended == child) TakeStatus(status, result);
  return ended != 0;  // below 0: somebody else reaped it, and `end` stays unknown
}

void WaitFor(pid_t child, const FileDescriptor& pipe, const RunControl* control,
             std::chrono::milliseconds limit, ChildResult& result) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  bool open = true;
  while (!Reap(child, WNOHANG, result)) {
    const bool aborted = control != nullptr && control->Aborted();
    if (aborted || std::chrono::steady_clock::now() >= deadline) {
      kill(-child, SIGKILL);
      (void)Reap(child, 0, result);
      result.end = aborted ? ChildResult::End::kAborted : ChildResult::End::kOverdue;
      return;
    }
    pollfd wait{open ? pipe.get() : -1, POLLIN, 0};
    // After the output's end only the exit is left, which follows at once.
    if (poll(&wait, 1, open ? kPollMs : 1) > 0) open = Drain(pipe, result.output);
  }
  if (open) (void)Drain(pipe, result.output);
}

}  // namespace

ChildResult RunChild(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                     const RunControl* control, std::chrono::milliseconds limit) {
  ChildResult result;
  result.end = ChildResult::End::kNotStarted;
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    result.error = errno;
    return result;
  }
  FileDescriptor reading(ends[0]);
  FileDescriptor writing(ends[1]);
  fcntl(reading.get(), F_SETFL, O_NONBLOCK);

  std::vector<std::string> texts = arguments;
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);

  SpawnSettings settings;
  pid_t child = 0;
  result.error = settings.Prepare(folder, writing.get());
  if (result.error == 0) {
    result.error = posix_spawnp(&child, pointers[0], settings.actions(), settings.attributes(),
                                pointers.data(), environ);
  }
  if (result.error != 0) return result;
  (void)writing.Close();
  result.end = ChildResult::End::kUnknown;
  WaitFor(child, reading, control, limit, result);
  return result;
}

}  // namespace mirellon::base
