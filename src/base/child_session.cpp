#include "base/child_session.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirellon::base {

namespace {

constexpr std::size_t kMostAnswer = std::size_t{1} << 20U;
constexpr int kPollMs = 50;  // how soon an abort request is seen

// In the new process: nothing here may allocate, as other threads may have held the heap's lock.
[[noreturn]] void BecomeProgram(char* const* arguments, const char* folder, int talk, int report,
                                pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);  // it died before the line above
  setpgid(0, 0);
  for (int signal = 1; signal < NSIG; ++signal) (void)std::signal(signal, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const bool ready = chdir(folder) == 0 && dup2(talk, STDIN_FILENO) >= 0 && dup2(talk, STDOUT_FILENO) >= 0 &&
                     dup2(talk, STDERR_FILENO) >= 0;
  if (ready) execvp(arguments[0], arguments);
  const int error = errno;
  [[maybe_unused]] const ssize_t ignored = write(report, &error, sizeof error);
  _exit(127);
}

// The error number that the new process reports; nothing comes when its program started.
int ReadStartError(const FileDescriptor& report) {
  int error = 0;
  ssize_t got = 0;
  do {
    got = read(report.get(), &error, sizeof error);
  } while (got < 0 && errno == EINTR);
  return got == static_cast<ssize_t>(sizeof error) ? error : 0;
}

bool EndsWithMarkedLine(std::string_view answer, std::string_view mark) {
  const std::size_t at = answer.rfind(mark);
  return at != std::string_view::npos && answer.find('\n', at) != std::string_view::npos;
}

}  // namespace

int ChildSession::Start(const std::vector<std::string>& arguments, const std::filesystem::path& folder) {
  Stop();
  std::array<int, 2> talk{};
  std::array<int, 2> report{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, talk.data()) != 0) return errno;
  FileDescriptor ours(talk[0]);
  FileDescriptor theirs(talk[1]);
  if (pipe2(report.data(), O_CLOEXEC) != 0) return errno;
  const FileDescriptor reading(report[0]);
  FileDescriptor writing(report[1]);
  std::vector<std::string> texts = arguments;
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);

  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) return errno;
  if (child == 0) BecomeProgram(pointers.data(), folder.c_str(), theirs.get(), writing.get(), parent);
  child_ = child;
  talk_ = std::move(ours);
  (void)theirs.Close();
  (void)writing.Close();
  const int error = ReadStartError(reading);
  if (error != 0) Stop();
  return error;
}

// Nothing once the socket is ready.
std::optional<ChildSession::Answer> ChildSession::Await(short event, const Patience& patience) {
  while (true) {
    if (patience.control != nullptr && patience.control->Aborted()) return Answer::kAborted;
    if (std::chrono::steady_clock::now() >= patience.deadline) return Answer::kEnded;
    pollfd wait{talk_.get(), event, 0};
    if (poll(&wait, 1, kPollMs) > 0) return std::nullopt;
  }
}

std::optional<ChildSession::Answer> ChildSession::Send(std::string_view request, const Patience& patience) {
  while (!request.empty()) {
    const std::optional<Answer> end = Await(POLLOUT, patience);
    if (end) return end;
    const ssize_t sent = send(talk_.get(), request.data(), request.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (sent <= 0) return Answer::kEnded;
    request.remove_prefix(static_cast<std::size_t>(sent));
  }
  return std::nullopt;
}

std::optional<ChildSession::Answer> ChildSession::Receive(std::string_view mark, const Patience& patience,
                                                          std::string& answer) {
  while (!EndsWithMarkedLine(answer, mark)) {
    const std::optional<Answer> end = Await(POLLIN, patience);
    if (end) return end;
    std::array<char, 4096> piece{};
    const ssize_t got = recv(talk_.get(), piece.data(), piece.size(), MSG_DONTWAIT);
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (got <= 0 || answer.size() > kMostAnswer) return Answer::kEnded;
    answer.append(piece.data(), static_cast<std::size_t>(got));
  }
  return std::nullopt;
}

ChildSession::Answer ChildSession::Ask(std::string_view request, std::string_view mark,
                                       const RunControl* control, std::string& answer,
                                       std::chrono::milliseconds limit) {
  answer.clear();
  if (!running()) return Answer::kEnded;
  const Patience patience{control, std::chrono::steady_clock::now() + limit};
  std::optional<Answer> end = Send(request, patience);
  if (!end) end = Receive(mark, patience, answer);
  if (!end) return Answer::kComplete;
  Stop();
  return *end;
}

void ChildSession::Stop() {
  if (child_ > 0) {
    // The group is there once the child made it; until then the child alone is.
    if (kill(-child_, SIGKILL) != 0) kill(child_, SIGKILL);
    while (waitpid(child_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  child_ = -1;
  (void)talk_.Close();
}

}  // namespace mirellon::base
