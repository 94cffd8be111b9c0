#include "base/checked_file.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/small_disk.h"
#include "support/temporary_folder.h"

namespace mirellon::base {

namespace {

namespace fs = std::filesystem;
using Existing = CheckedFile::Existing;
using test::TemporaryFolder;

std::string Content(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::string> Names(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  return names;
}

mode_t ModeOf(const fs::path& file) {
  struct stat status {};
  return stat(file.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

// 0, or the error number.
int Replace(const fs::path& target, const std::string& content, Existing existing = Existing::kReplace) {
  CheckedFile file;
  const bool failed =
      file.Open(target) || file.Write(content.data(), content.size()) || file.Commit(existing);
  return failed ? file.error() : 0;
}

TEST(CheckedFileTest, WritesAnywhereInTheFileAndReadsBack) {
  const TemporaryFolder folder;
  const std::string large(700000, 'x');
  std::string expected = large;
  expected.replace(10, 4, "abcd").replace(699998, 4, "tail");
  {
    CheckedFile file;
    ASSERT_FALSE(file.Open(folder / "new"));
    EXPECT_EQ(ModeOf(file.folder()), 0700U);
    EXPECT_EQ(file.folder().parent_path(), folder.path());
    ASSERT_FALSE(file.Write(large.data(), large.size()));
    file.Seek(10);
    ASSERT_FALSE(file.Write("abcd", 4));
    file.Seek(8);
    std::string back(6, '\0');
    std::size_t got = 0;
    ASSERT_FALSE(file.Read(back.data(), back.size(), got));
    EXPECT_EQ(back.substr(0, got), "xxabcd");
    file.Seek(699998);
    ASSERT_FALSE(file.Write("tail", 4));
    EXPECT_EQ(file.size(), 700002U);
    EXPECT_FALSE(fs::exists(folder / "new"));
    ASSERT_FALSE(file.Commit(Existing::kRefuse));
  }
  EXPECT_EQ(Content(folder / "new"), expected);
  EXPECT_EQ(Names(folder.path()), std::vector<std::string>{"new"});
}

TEST(CheckedFileTest, KeepsPermissionsElseFollowsTheUmask) {
  const TemporaryFolder folder;
  const mode_t before = umask(027);
  EXPECT_EQ(Replace(folder / "new", "a"), 0);
  umask(before);
  EXPECT_EQ(ModeOf(folder / "new"), 0640U);
  ASSERT_EQ(chmod((folder / "new").c_str(), 0604), 0);
  EXPECT_EQ(Replace(folder / "new", "b"), 0);
  EXPECT_EQ(ModeOf(folder / "new"), 0604U);
}

TEST(CheckedFileTest, LinksStayLinks) {
  const TemporaryFolder folder;
  fs::create_directories(folder / "deep");
  fs::create_symlink("deep/second", folder / "first");
  fs::create_symlink("file", folder / "deep/second");
  EXPECT_EQ(Replace(folder / "first", "through a dangling link", Existing::kRefuse), 0);
  EXPECT_EQ(Replace(folder / "first", "again"), 0);
  EXPECT_TRUE(fs::is_symlink(folder / "first") && fs::is_symlink(folder / "deep/second"));
  EXPECT_EQ(Content(folder / "deep/file"), "again");
  EXPECT_EQ(Replace(folder / "first", "no", Existing::kRefuse), EEXIST);
  EXPECT_EQ(Content(folder / "deep/file"), "again");
  EXPECT_EQ(Names(folder / "deep").size(), 2U);
}

TEST(CheckedFileTest, RefusesTargetsBeforehand) {
  const TemporaryFolder folder;
  fs::create_directories(folder / "folder");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  std::ofstream(folder / "file") << "x";
  fs::create_symlink("loop", folder / "loop");
  const std::vector<std::pair<fs::path, int>> cases = {
      {folder / "folder", EISDIR},
      {folder / "folder/", EISDIR},
      {folder / "pipe", EINVAL},
      {"/dev/null", EINVAL},
      {folder / "missing" / "a", ENOENT},
      {folder / "file" / "a", ENOTDIR},
      {folder / "loop", ELOOP},
      {folder / std::string(300, 'n'), ENAMETOOLONG},
      {"", ENOENT},
  };
  for (const auto& [path, error] : cases) {
    EXPECT_EQ(CheckWritable(path), error) << path;
    EXPECT_EQ(Replace(path, "y"), error) << path;
  }
  EXPECT_EQ(Names(folder.path()).size(), 4U);
}

TEST(CheckedFileTest, RefusesWithoutPermission) {
  if (geteuid() == 0) GTEST_SKIP() << "the super-user may write everything";
  const TemporaryFolder folder;
  fs::create_directories(folder / "closed");
  ASSERT_EQ(Replace(folder / "closed/file", "old"), 0);
  ASSERT_EQ(chmod((folder / "closed/file").c_str(), 0444), 0);
  EXPECT_EQ(Replace(folder / "closed/file", "new"), EACCES);
  ASSERT_EQ(chmod((folder / "closed").c_str(), 0555), 0);
  EXPECT_EQ(Replace(folder / "closed/other", "new"), EACCES);
  EXPECT_EQ(Content(folder / "closed/file"), "old");
}

TEST(CheckedFileTest, LeavesNothingBehindWithoutCommit) {
  const TemporaryFolder folder;
  ASSERT_EQ(Replace(folder / "file", "old"), 0);
  {
    CheckedFile file;
    ASSERT_FALSE(file.Open(folder / "file") || file.Write("new", 3) || file.Close());
    // What another program leaves in the folder goes too, but not what its links lead to.
    fs::create_symlink(folder / "file", file.folder() / "link");
    std::ofstream(file.folder() / "left over") << "x";
  }
  EXPECT_EQ(Content(folder / "file"), "old");
  EXPECT_EQ(Names(folder.path()).size(), 1U);
}

TEST(CheckedFileTest, AnAbortRequestFailsTheNextStep) {
  const TemporaryFolder folder;
  RunControl control;
  const std::string content(300000, 'x');
  {
    CheckedFile file;
    ASSERT_FALSE(file.Open(folder / "file", "work", &control) || file.Write(content.data(), content.size()));
    control.RequestAbort();
    EXPECT_TRUE(file.Commit(Existing::kReplace));
    EXPECT_EQ(file.error(), ECANCELED);
  }
  EXPECT_TRUE(Names(folder.path()).empty());
}

TEST(CheckedFileTest, TellsOfAFileThatMayNotGrow) {
  const TemporaryFolder folder;
  ASSERT_EQ(Replace(folder / "file", "old"), 0);
  const int error = test::RunInChild([&folder] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{600000, 600000};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return test::kCannotTest;
    return Replace(folder / "file", std::string(1000000, 'x'));
  });
  EXPECT_EQ(error, EFBIG);
  EXPECT_EQ(Content(folder / "file"), "old");
  EXPECT_EQ(Names(folder.path()).size(), 1U);
}

TEST(CheckedFileTest, TellsOfAFullDisk) {
  const TemporaryFolder folder;
  const int error = test::RunInChild([&folder] {
    if (!test::MountSmallDisk(folder.path(), "512k")) return test::kCannotTest;
    if (Replace(folder / "file", "old") != 0) return 1;
    const int full = Replace(folder / "file", std::string(1000000, 'x'));
    if (Content(folder / "file") != "old" || Names(folder.path()).size() != 1) return 2;
    return full;
  });
  if (error == test::kCannotTest) GTEST_SKIP() << "no file system may be mounted here";
  EXPECT_EQ(error, ENOSPC);
  EXPECT_EQ(ErrorText(ENOSPC), "No space left on device");
}

}  // namespace

}  // namespace mirellon::base
