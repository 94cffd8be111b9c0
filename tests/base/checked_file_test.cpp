#include "base/checked_file.h"

#include <cerrno>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/temporary_folder.h"

namespace mirellon::base {

namespace fs = std::filesystem;
using Existing = CheckedFile::Existing;

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
  const test::TemporaryFolder folder;
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
    EXPECT_FALSE(fs::exists(folder / "new"));
    ASSERT_FALSE(file.Commit(Existing::kRefuse));
  }
  EXPECT_EQ(test::ReadBytes(folder / "new"), expected);
  EXPECT_EQ(test::FilesIn(folder.path()), 1U);
}

TEST(CheckedFileTest, KeepsPermissionsElseFollowsTheUmask) {
  const test::TemporaryFolder folder;
  const mode_t before = umask(027);
  EXPECT_EQ(Replace(folder / "new", "a"), 0);
  umask(before);
  EXPECT_EQ(ModeOf(folder / "new"), 0640U);
  ASSERT_EQ(chmod((folder / "new").c_str(), 0604), 0);
  EXPECT_EQ(Replace(folder / "new", "b"), 0);
  EXPECT_EQ(ModeOf(folder / "new"), 0604U);
}

TEST(CheckedFileTest, LinksStayLinks) {
  const test::TemporaryFolder folder;
  fs::create_directories(folder / "deep");
  fs::create_symlink("deep/second", folder / "first");
  fs::create_symlink("file", folder / "deep/second");
  EXPECT_EQ(Replace(folder / "first", "through a dangling link", Existing::kRefuse), 0);
  EXPECT_EQ(Replace(folder / "first", "again"), 0);
  EXPECT_TRUE(fs::is_symlink(folder / "first") && fs::is_symlink(folder / "deep/second"));
  EXPECT_EQ(Replace(folder / "first", "no", Existing::kRefuse), EEXIST);
  EXPECT_EQ(test::ReadBytes(folder / "deep/file"), "again");
  EXPECT_EQ(test::FilesIn(folder / "deep"), 2U);
}

TEST(CheckedFileTest, RefusesTargetsBeforehand) {
  const test::TemporaryFolder folder;
  fs::create_directories(folder / "folder");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  test::WriteBytes(folder / "file", "x");
  fs::create_symlink("loop", folder / "loop");
  const std::vector<std::pair<const char*, int>> cases = {{"folder", EISDIR},  {"folder/", EISDIR},
                                                          {"pipe", EINVAL},    {"no/a", ENOENT},
                                                          {"file/a", ENOTDIR}, {"loop", ELOOP}};
  for (const auto& [name, error] : cases) {
    EXPECT_EQ(CheckWritable(folder / name), error) << name;
    EXPECT_EQ(Replace(folder / name, "y"), error) << name;
  }
  EXPECT_EQ(Replace("/dev/null", "y"), EINVAL);
  EXPECT_EQ(Replace("", "y"), ENOENT);
  EXPECT_EQ(test::FilesIn(folder.path()), 4U);
  if (geteuid() == 0) return;  // the super-user may write everything
  ASSERT_EQ(chmod((folder / "file").c_str(), 0444), 0);
  EXPECT_EQ(Replace(folder / "file", "y"), EACCES);
  ASSERT_EQ(chmod((folder / "folder").c_str(), 0555), 0);
  EXPECT_EQ(Replace(folder / "folder/new", "y"), EACCES);
}

TEST(CheckedFileTest, LeavesNothingBehindWithoutCommit) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(Replace(folder / "file", "old"), 0);
  {
    CheckedFile file;
    ASSERT_FALSE(file.Open(folder / "file") || file.Write("new", 3) || file.Close());
    // What another program leaves in the folder goes too, but not what its links lead to.
    fs::create_symlink(folder / "file", file.folder() / "link");
    test::WriteBytes(file.folder() / "left over", "x");
  }
  EXPECT_EQ(test::ReadBytes(folder / "file"), "old");
  EXPECT_EQ(test::FilesIn(folder.path()), 1U);
}

}  // namespace mirellon::base
