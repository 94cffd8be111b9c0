#include "batch/folder_walk.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "batch/count_images.h"
#include "support/temporary_folder.h"

namespace mirellon::batch {

namespace fs = std::filesystem;

class FolderWalkTest : public ::testing::Test {
 protected:
  void MakeFiles(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      fs::create_directories((folder_ / name).parent_path());
      test::WriteBytes(folder_ / name, "x");
    }
  }
  // "f name" of files, "d", "o", "g" and "h" of what is left out, with its cause.
  std::vector<std::string> Walk(FolderWalk::Results results = FolderWalk::Results::kLeaveOut) {
    FolderWalk walk(folder_.path(), results);
    std::vector<std::string> seen;
    while (const std::optional<WalkItem> item = walk.Next()) {
      const std::string name = item->path.lexically_relative(folder_.path()).string();
      seen.push_back(std::string(1, "fdogh"[static_cast<int>(item->kind)]) + " " + name +
                     (item->cause.empty() ? "" : ": " + item->cause));
    }
    return seen;
  }
  using Seen = std::vector<std::string>;
  test::TemporaryFolder folder_;
};

TEST_F(FolderWalkTest, GoesThroughEveryFolderInOrder) {
  MakeFiles({"b.jpg", "a/2.jpg", "a/1.jpg", "a/denoised/1.jpg", "c/d/e/x", "B.jpg", "denoised", "Denoised/y",
             "n\xFF\n.jpg", ".hidden"});
  fs::create_directory(folder_ / "empty");
  EXPECT_EQ(Walk(), (Seen{"f .hidden", "f B.jpg", "f Denoised/y", "f a/1.jpg", "f a/2.jpg", "f b.jpg",
                          "f c/d/e/x", "f n\xFF\n.jpg"}));
  EXPECT_EQ(Walk(FolderWalk::Results::kInclude).size(), 10U);
}

TEST_F(FolderWalkTest, EndsWhereLinksLoop) {
  MakeFiles({"a/1.jpg", "b/2.jpg"});
  const std::string met = ": a folder that was met before under another name";
  fs::create_directory_symlink("..", folder_ / "a/up");
  fs::create_directory_symlink("../b", folder_ / "a/side");
  fs::create_symlink("self", folder_ / "self");
  fs::create_symlink("nowhere", folder_ / "lost.jpg");
  fs::create_symlink("a/1.jpg", folder_ / "link.jpg");
  fs::create_symlink(std::string(300, 'x'), folder_ / "hidden.jpg");
  ASSERT_EQ(mkfifo((folder_ / "pipe.jpg").c_str(), 0600), 0);
  EXPECT_EQ(Walk(),
            (Seen{"f a/1.jpg", "f a/side/2.jpg", "d a/up" + met, "d b" + met,
                  "h hidden.jpg: File name too long", "f link.jpg", "g lost.jpg: No such file or directory",
                  "o pipe.jpg: a device, pipe or socket", "g self: Too many levels of symbolic links"}));
  EXPECT_EQ(CountImages(folder_.path()), 3U);
}

TEST_F(FolderWalkTest, LooksIntoNoFolderOfResultsByAnyName) {
  MakeFiles({"a/denoised/1.jpg", "a/1.jpg"});
  fs::create_directory_symlink("denoised", folder_ / "a/best");
  FolderWalk survey(folder_.path(), FolderWalk::Results::kLeaveOut);
  while (survey.Next()) {
  }
  EXPECT_EQ(survey.resultFolders(), Identities{*IdentityOf(folder_ / "a/denoised")});
  FolderWalk walk(folder_.path(), FolderWalk::Results::kLeaveOut, survey.resultFolders());
  const auto first = walk.Next();
  ASSERT_TRUE(first.has_value());
  EXPECT_EQ(first->path, folder_ / "a/1.jpg");
  EXPECT_FALSE(walk.Next().has_value());
  // Except where the user chose it.
  FolderWalk chosen(folder_ / "a/denoised", FolderWalk::Results::kLeaveOut, survey.resultFolders());
  EXPECT_EQ(chosen.Next().value_or(WalkItem{}).path, folder_ / "a/denoised/1.jpg");
}

TEST_F(FolderWalkTest, TellsOfFoldersThatCannotBeRead) {
  MakeFiles({"a/1.jpg", "b/2.jpg"});
  FolderWalk missing(folder_ / "no", FolderWalk::Results::kLeaveOut);
  const auto item = missing.Next();
  ASSERT_TRUE(item.has_value());
  EXPECT_TRUE(item->unreadable && item->cause == "No such file or directory" && !missing.Next());
  chmod((folder_ / "a").c_str(), 0);
  if (access((folder_ / "a").c_str(), R_OK) == 0) GTEST_SKIP() << "may read everything";
  EXPECT_EQ(Walk(), (Seen{"d a: Permission denied", "f b/2.jpg"}));
}

TEST_F(FolderWalkTest, GoesAsDeepAsNamesGo) {
  std::string deep;
  for (int i = 0; i < 500; ++i) deep += "d/";
  MakeFiles({deep + "bottom.png"});
  EXPECT_EQ(Walk(), Seen{"f " + deep + "bottom.png"});
}

TEST_F(FolderWalkTest, CountsByName) {
  MakeFiles({"a.jpg", "b.JPG", "c.Tif", "d.bmp", "e.gif", "f.png", "s/denoised/g.jpg"});
  MakeFiles({"h.jpeg", "i.tiff", "j", "jpg", "k.jpg.txt", "l.jpg ", "m.png/inner", ".bmpx"});
  EXPECT_EQ(CountImages(folder_.path()), 7U);
  EXPECT_EQ(CountImages(folder_ / "missing"), 0U);
  EXPECT_TRUE(HasCountedExtension(".gif"));
  base::RunControl control;
  control.RequestAbort();
  EXPECT_EQ(CountImages(folder_.path(), &control), 0U);
}

}  // namespace mirellon::batch
