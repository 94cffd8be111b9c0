#include "imageio/save_names.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "imageio/save_image.h"

namespace mirellon::imageio {

namespace {

TEST(SaveNamesTest, WrittenName) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"/p/a.jpg", "/p/a.jpg"},
      {"/p/a.JPEG", "/p/a.JPEG"},
      {"/p/a.png", "/p/a.png"},
      {"/p/a.bmp", "/p/a.bmp"},
      {"/p/a.TIFF", "/p/a.TIFF"},
      {"/p/out.gif", "/p/out.tif"},
      {"/p/out.xyz", "/p/out.tif"},
      {"/p/out", "/p/out.tif"},
      {"/p/out.jp", "/p/out.jp.tif"},
      {"a.gif", "a.gif.tif"},
      {"aa.gif", "aa.tif"},
      {"/p/out.html", "/p/out.html.tif"},
      {"aa.b/c", "aa.tif"},
      {"/p/o.\xC3\xA9\xC3\xA9\xC3\xA9", "/p/o.tif"},
      {"\xC3\xA9.gif", "\xC3\xA9.gif.tif"},  // five characters in six bytes
      {"\xE9\xE9.gif", "\xE9\xE9.tif"},      // not UTF-8
  };
  for (const auto& [target, written] : cases) EXPECT_EQ(WrittenName(target).string(), written);
}

TEST(SaveNamesTest, Proposal) {
  struct Case {
    std::string current;
    int bits;
    std::string proposal;
    int index;
    std::string extension;
  };
  const std::vector<Case> cases = {
      {"/pics/IMG_01.v2.JPG", 8, "/pics/IMG_01.v2-denoised", 4, ".jpg"},
      {"/pics/a.bmp", 8, "/pics/a-denoised", 1, ".bmp"},
      {"/pics/a.Tif", 8, "/pics/a-denoised", 2, ".tif"},
      {"/pics/a.png", 8, "/pics/a-denoised", 3, ".png"},
      {"/pics/a.tif", 16, "/pics/a-denoised", 1, ".tif"},
      {"/pics/a.png", 16, "/pics/a-denoised", 1, ".png"},
      {"/pics/a.jpg", 16, "/pics/a-denoised", 1, ""},
      {"/pics/a.jpeg", 8, "/pics/a-denoised", 1, ""},
      {"/pics.d/noext", 8, "", 1, ""},
      {"a.jpg", 8, "", 1, ""},
      {"/pics/.jpg", 8, "/pics/-denoised", 4, ".jpg"},
      {"", 8, "", 1, ""},
  };
  for (const Case& c : cases) {
    const SaveProposal proposal = ProposeSave(c.current, c.bits);
    EXPECT_EQ(proposal.path.string(), c.proposal) << c.current;
    EXPECT_EQ(proposal.filterIndex, c.index) << c.current;
    EXPECT_EQ(proposal.defaultExtension.string(), c.extension) << c.current;
  }
}

TEST(SaveNamesTest, Completion) {
  struct Case {
    std::string chosen;
    int bits;
    int index;
    std::string name;
  };
  const std::vector<Case> cases = {
      {"/p/name", 8, 3, "/p/name.png"},
      {"/p/name.jpeg", 8, 4, "/p/name.jpeg.jpg"},
      {"/p/name.JPG", 8, 1, "/p/name.JPG"},
      {"/p/name.jpg", 16, 1, "/p/name.jpg.tif"},
      {"/p/name.png", 16, 1, "/p/name.png"},
      {"/p/name", 16, 2, "/p/name.png"},
      {"/p/name.gif", 8, 1, "/p/name.gif.bmp"},
      {"png", 8, 2, "png.tif"},
      {"/p/name", 8, 9, "/p/name"},
  };
  for (const Case& c : cases) EXPECT_EQ(CompleteName(c.chosen, c.bits, c.index).string(), c.name) << c.chosen;
}

}  // namespace

}  // namespace mirellon::imageio
