#include "base/child_session.h"

#include <cerrno>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace mirellon::base {

using Answer = ChildSession::Answer;

// Answers each line on both of its outputs, "out LINE" and the mark.
constexpr const char* kEcho = "while read line; do echo \"out $line\"; echo \"{$line $PWD}\" >&2; done";

TEST(ChildSessionTest, AnswersAsOftenAsAsked) {
  const test::TemporaryFolder folder;
  ChildSession session;
  ASSERT_EQ(session.Start({"sh", "-c", kEcho}, folder.path()), 0);
  std::string answer;
  for (const std::string line : {"1", "2", "3"}) {
    ASSERT_EQ(session.Ask(line + "\n", std::string("{").append(line).append(" "), nullptr, answer),
              Answer::kComplete);
    std::string expected = "out ";
    expected.append(line).append("\n{").append(line).append(" ").append(folder.path()).append("}\n");
    EXPECT_EQ(answer, expected);
  }
  session.Stop();
  EXPECT_FALSE(session.running());
  EXPECT_EQ(session.Ask("4\n", "{4 ", nullptr, answer), Answer::kEnded);
}

TEST(ChildSessionTest, TellsWhenTheProgramIsGone) {
  ChildSession session;
  EXPECT_EQ(session.Start({"/no/such/program"}, "/"), ENOENT);
  EXPECT_EQ(session.Start({"sh"}, "/no/such/folder"), ENOENT);
  EXPECT_FALSE(session.running());
  std::string answer;
  ASSERT_EQ(session.Start({"sh", "-c", "read line; echo \"$line\"; exit 3"}, "/"), 0);
  EXPECT_EQ(session.Ask("x\n", "mark", nullptr, answer), Answer::kEnded);
  EXPECT_EQ(answer, "x\n");
  // More than anybody answers.
  ASSERT_EQ(session.Start({"sh", "-c", "yes"}, "/"), 0);
  EXPECT_EQ(session.Ask("x\n", "mark", nullptr, answer), Answer::kEnded);
  // A program that is gone before the request comes.
  ASSERT_EQ(session.Start({"true"}, "/"), 0);
  EXPECT_EQ(session.Ask(std::string(1U << 20U, 'x'), "mark", nullptr, answer), Answer::kEnded);
}

TEST(ChildSessionTest, WhoNeverAnswersIsGivenUp) {
  ChildSession session;
  std::string answer;
  // The second request is more than the socket takes when nobody reads.
  for (const std::size_t size : {std::size_t{1}, std::size_t{1} << 22U}) {
    ASSERT_EQ(session.Start({"sleep", "100"}, "/"), 0);
    EXPECT_EQ(session.Ask(std::string(size, 'x'), "mark", nullptr, answer, std::chrono::milliseconds(20)),
              Answer::kEnded);
    EXPECT_FALSE(session.running());
  }
}

TEST(ChildSessionTest, AnAbortRequestEndsIt) {
  ChildSession session;
  RunControl control;
  ASSERT_EQ(session.Start({"sh", "-c", "echo ready; sleep 100"}, "/"), 0);
  std::jthread stopper([&control] { control.RequestAbort(); });
  std::string answer;
  EXPECT_EQ(session.Ask("x\n", "mark", &control, answer), Answer::kAborted);
  EXPECT_FALSE(session.running());
}

}  // namespace mirellon::base
