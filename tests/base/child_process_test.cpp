#include "base/child_process.h"

#include <cerrno>
#include <csignal>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/file_descriptor.h"
#include "support/temporary_folder.h"

namespace mirellon::base {

using End = ChildResult::End;

TEST(ChildProcessTest, TellsHowItEnded) {
  const test::TemporaryFolder folder;
  struct Case {
    std::vector<std::string> arguments;
    End end;
    int status;
    int error;
    std::string output;
  };
  const std::vector<Case> cases = {
      {{"sh", "-c", "echo out; echo error >&2; exit 3"}, End::kExited, 3, 0, "out\nerror\n"},
      {{"echo", "$HOME", "`id`", "*", "a b\n"}, End::kExited, 0, 0, "$HOME `id` * a b\n\n"},
      {{"cat"}, End::kExited, 0, 0, ""},  // no input
      {{"pwd"}, End::kExited, 0, 0, folder.path().string() + "\n"},
      {{"sh", "-c", "kill -TERM $$"}, End::kKilled, SIGTERM, 0, ""},
      {{"/no/such/program"}, End::kNotStarted, 0, ENOENT, ""},
  };
  for (const Case& c : cases) {
    const ChildResult result = RunChild(c.arguments, folder.path(), nullptr);
    EXPECT_EQ(std::tie(result.end, result.status, result.error, result.output),
              std::tie(c.end, c.status, c.error, c.output))
        << c.arguments.back();
  }
  EXPECT_EQ(RunChild({"sh", "-c", "yes | head -c 1000000"}, "/", nullptr).output.size(), 65536U);
}

TEST(ChildProcessTest, WhoHangsIsKilled) {
  const ChildResult result =
      RunChild({"sh", "-c", "echo x; exec sleep 100"}, "/", nullptr, std::chrono::milliseconds(20));
  EXPECT_EQ(result.end, End::kOverdue);
}

TEST(ChildProcessTest, AnAbortRequestKillsTheWholeGroup) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
  const FileDescriptor fifo(open((folder / "fifo").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  RunControl control;
  // The grandchild tells when it runs, and holds the pipe open as long as it lives.
  pollfd wait{fifo.get(), POLLIN, 0};
  std::jthread stopper([&control, &wait] {
    EXPECT_EQ(poll(&wait, 1, 30000), 1);
    control.RequestAbort();
  });
  const ChildResult result =
      RunChild({"sh", "-c", "(echo x; exec sleep 100) > fifo & wait"}, folder.path(), &control);
  EXPECT_EQ(result.end, End::kAborted);
  stopper.join();
  char text[8];
  EXPECT_EQ(read(fifo.get(), text, sizeof text), 2);
  EXPECT_EQ(poll(&wait, 1, 30000), 1);
  EXPECT_EQ(read(fifo.get(), text, sizeof text), 0) << "somebody still writes";
}

}  // namespace mirellon::base
