#include "imageio/save_names.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "imageio/save_image.h"

namespace mirellon::imageio {

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
      {"\xC3\xA9.gif", "\xC3\xA9.gif.tif"},
      {"\xE9\xE9.gif", "\xE9\xE9.tif"}};
  for (const auto& [target, written] : cases) EXPECT_EQ(WrittenName(target).string(), written);
}

struct Case {
  const char* given;
  int bits;
  int index;
  const char* result;
};

TEST(SaveNamesTest, Proposal) {
  const std::vector<Case> cases = {{"/pics/IMG_01.v2.JPG", 8, 4, "/pics/IMG_01.v2-denoised|.jpg"},
                                   {"/p/a.bmp", 8, 1, "/p/a-denoised|.bmp"},
                                   {"/p/a.Tif", 8, 2, "/p/a-denoised|.tif"},
                                   {"/p/a.png", 8, 3, "/p/a-denoised|.png"},
                                   {"/p/a.tif", 16, 1, "/p/a-denoised|.tif"},
                                   {"/p/a.png", 16, 1, "/p/a-denoised|.png"},
                                   {"/p/a.jpg", 16, 1, "/p/a-denoised|"},
                                   {"/p/a.jpeg", 8, 1, "/p/a-denoised|"},
                                   {"/pics.d/noext", 8, 1, "|"},
                                   {"a.jpg", 8, 1, "|"}};
  for (const Case& c : cases) {
    const SaveProposal proposal = ProposeSave(c.given, c.bits);
    EXPECT_EQ(proposal.path.string() + "|" + proposal.defaultExtension.string(), c.result);
    EXPECT_EQ(proposal.filterIndex, c.index) << c.given;
  }
}

TEST(SaveNamesTest, Completion) {
  const std::vector<Case> cases = {{"/p/name", 8, 3, "/p/name.png"},
                                   {"/p/name.jpeg", 8, 4, "/p/name.jpeg.jpg"},
                                   {"/p/name.JPG", 8, 1, "/p/name.JPG"},
                                   {"/p/name.jpg", 16, 1, "/p/name.jpg.tif"},
                                   {"/p/name", 16, 2, "/p/name.png"},
                                   {"/p/name.gif", 8, 1, "/p/name.gif.bmp"},
                                   {"png", 8, 2, "png.tif"}};
  for (const Case& c : cases) EXPECT_EQ(CompleteName(c.given, c.bits, c.index).string(), c.result) << c.given;
}

}  // namespace mirellon::imageio
