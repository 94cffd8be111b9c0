// The models that take no more than a table each.
#include <tuple>

#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "ui/model/folder_walk.h"
#include "ui/model/parameter_history.h"
#include "ui/model/preview_rectangle.h"
#include "ui/model/recent_files.h"
#include "ui/model/typed_value.h"
#include "ui/model/view_texts.h"
#include "ui/model/window_place.h"

namespace mirellon::ui {
namespace {

TEST(ViewTextsTest, WritesAndReadsZooms) {
  EXPECT_EQ(ZoomText(1.0), "100.0 %");
  EXPECT_EQ(ZoomText(2.0 / 3.0), "66.7 %");
  EXPECT_EQ(ZoomText(6.1917364224), "619.2 %");
  for (const char* text : {"66.7 %", "66.7", " 66,7% "})
    EXPECT_DOUBLE_EQ(ZoomOfText(text).value_or(0), 0.667);
  for (const char* text : {"", "%", "abc", "-5 %", "0", "1 2 x", "nan", "inf"})
    EXPECT_FALSE(ZoomOfText(text));
  EXPECT_DOUBLE_EQ(ZoomOfText("1e9").value_or(0), 32.0);
}

TEST(ViewTextsTest, NamesThePhotographInTheTitle) {
  EXPECT_EQ(WindowTitle({}), L"Mirellon");
  EXPECT_EQ(WindowTitle("/p/\xC3\xA4\n.jpg"), L"Mirellon - /p/\u00E4?.jpg");
}

TEST(PreviewRectangleTest, ResizesByItsEdgesWithinTheLimits) {
  struct Case {
    const char* what;
    unsigned edges;
    int dx, dy;
    PictureRect expected;
  };
  const Case cases[] = {
      {"an edge", kLeftEdge, 10, 99, {310, 200, 500, 300}},
      {"a corner", kRightEdge | kBottomEdge, 20, -30, {300, 200, 520, 270}},
      {"not turned about", kRightEdge, -900, 0, {300, 200, 300 + PreviewRectangle::kLeastSide, 300}},
      {"not turned about", kTopEdge, 0, 900, {300, 300 - PreviewRectangle::kLeastSide, 500, 300}},
      {"not beyond the photograph", kLeftEdge | kBottomEdge, -999, 9999, {0, 200, 500, 800}},
      {"not above the largest side",
       kRightEdge,
       99999,
       0,
       {300, 200, 300 + PreviewRectangle::kMostSide, 300}},
      {"none", kNoEdge, 5, 5, {300, 200, 500, 300}},
  };
  for (const Case& c : cases) {
    PreviewRectangle rectangle;
    rectangle.SetPicture(3000, 800);
    rectangle.PlaceBetween(300, 200, 500, 300);
    rectangle.ResizeBy(c.edges, c.dx, c.dy);
    const PictureRect rect = rectangle.rect().value();
    EXPECT_EQ(std::tie(rect.left, rect.top, rect.right, rect.bottom),
              std::tie(c.expected.left, c.expected.top, c.expected.right, c.expected.bottom))
        << c.what;
  }
  // Smaller than the smallest side, the photograph limits it.
  PreviewRectangle tiny;
  tiny.SetPicture(5, 3);
  tiny.PlaceAt(2, 1);
  tiny.ResizeBy(kLeftEdge | kTopEdge, 4, 4);
  tiny.ResizeBy(kRightEdge | kBottomEdge, -9, 9);
  EXPECT_EQ(tiny.rect()->right - tiny.rect()->left, 5);
  EXPECT_EQ(tiny.rect()->bottom - tiny.rect()->top, 3);
}

TEST(PreviewRectangleTest, FindsTheEdgesUnderThePointer) {
  PreviewRectangle rectangle;
  rectangle.SetPicture(3000, 800);
  EXPECT_EQ(rectangle.EdgesAt(300, 200, 6), kNoEdge) << "there is none";
  rectangle.PlaceBetween(300, 200, 500, 300);
  EXPECT_EQ(rectangle.EdgesAt(297, 204, 6), kLeftEdge | kTopEdge);
  EXPECT_EQ(rectangle.EdgesAt(400, 306, 6), kBottomEdge);
  EXPECT_EQ(rectangle.EdgesAt(494, 250, 6), kRightEdge);
  EXPECT_EQ(rectangle.EdgesAt(400, 250, 6), kNoEdge);
  EXPECT_EQ(rectangle.EdgesAt(300, 320, 6), kNoEdge) << "beside the rectangle";
  EXPECT_EQ(rectangle.EdgesAt(400, 250, 1000), kNoEdge) << "the inside stays for moving";
}

TEST(PreviewRectangleTest, StaysInsideThePhotograph) {
  PreviewRectangle rectangle;
  rectangle.PlaceAt(5, 5);
  EXPECT_FALSE(rectangle.rect()) << "there is no photograph";
  rectangle.SetPicture(2000, 1000);
  const auto is = [&](int left, int top, int right, int bottom) {
    const auto& rect = rectangle.rect();
    return rect && rect->left == left && rect->top == top && rect->right == right && rect->bottom == bottom;
  };
  rectangle.PlaceAt(1000, 500);
  EXPECT_TRUE(is(680, 260, 1320, 740));
  rectangle.MoveBy(-5000, 100);
  EXPECT_TRUE(is(0, 360, 640, 840));
  rectangle.PlaceBetween(1990, 990, 1500, 700);
  EXPECT_TRUE(is(1500, 700, 1990, 990));
  rectangle.PlaceBetween(100, 100, 101, 5000);
  EXPECT_TRUE(is(100, 0, 116, 1000)) << "grown, and held";
  EXPECT_TRUE(rectangle.Contains(100, 0));
  EXPECT_FALSE(rectangle.Contains(116, 0));
  rectangle.SetPicture(10, 7);
  EXPECT_FALSE(rectangle.rect());
  rectangle.PlaceAt(9, 9);
  EXPECT_TRUE(is(0, 0, 10, 7));
}

TEST(TypedValueTest, IsHeldToTheSlider) {
  const profiles::SliderRow& strength = profiles::RowOf(profiles::Slider::kStrength);
  EXPECT_DOUBLE_EQ(TypedValue(strength, "0.2").value_or(-1), 1.0);
  EXPECT_DOUBLE_EQ(TypedValue(strength, "22,5 ").value_or(-1), 22.5);
  EXPECT_DOUBLE_EQ(TypedValue(strength, "+1.5").value_or(-1), 1.5);
  EXPECT_DOUBLE_EQ(TypedValue(profiles::RowOf(profiles::Slider::kDynamics), "-1.5").value_or(-1), -1.5);
  for (const char* text : {"ten", "", "1 2x", "nan", "+", "+-3", "++3"})
    EXPECT_FALSE(TypedValue(strength, text)) << text;
}

TEST(ParameterHistoryTest, TakesBackCompleteChanges) {
  ParameterHistory history;
  PanelState state;
  engine::DenoiseParameters& parameters = state.parameters;
  history.Start(state);
  EXPECT_FALSE(history.CanUndo());
  parameters.m_dImmerkaerY = 3.0;
  history.Record(state);
  EXPECT_FALSE(history.CanUndo()) << "of no effect";
  for (const double strength : {11.0, 12.0, 13.0}) {
    parameters.m_dStrength = strength;
    history.Record(state);
  }
  EXPECT_EQ(history.Undo()->parameters.m_dStrength, 12.0);
  EXPECT_EQ(history.Undo()->parameters.m_dStrength, 11.0);
  EXPECT_EQ(history.Redo()->parameters.m_dStrength, 12.0);
  parameters.m_iUseMedian = 1;
  history.Record(state);
  EXPECT_FALSE(history.CanRedo()) << "what was taken back is gone";
  EXPECT_EQ(history.Undo()->parameters.m_dStrength, 12.0);
  for (int i = 0; i < 1000; ++i) {
    parameters.m_dStrength = i;
    history.Record(state);
  }
  int steps = 0;
  while (history.Undo()) ++steps;
  EXPECT_EQ(steps, static_cast<int>(ParameterHistory::kMostStates) - 1);
}

TEST(RecentFilesTest, KeepsTheNewestOnceAcrossRuns) {
  const test::TemporaryFolder folder;
  const std::filesystem::path ini = folder / "sub" / "settings.txt";
  RecentFiles files;
  for (int i = 0; i < 15; ++i) files.Add("/p/" + std::to_string(i) + ".jpg");
  files.Add("/p/9.jpg");
  files.Add("/p/line\nbreak.jpg");
  files.Add("/p/ \xC3\xA4;=[x].jpg");
  EXPECT_EQ(files.files().size(), RecentFiles::kMost);
  ASSERT_FALSE(files.Store(ini));
  ASSERT_FALSE(StoreWindowPlace(ini, {"abc+/="}));
  RecentFiles again;
  again.Load(ini);
  std::vector<std::filesystem::path> expected = files.files();
  expected.erase(expected.begin() + 1);
  EXPECT_EQ(again.files(), expected) << "all but the one that an ini file cannot hold";
  EXPECT_EQ(expected[1], "/p/9.jpg");
  EXPECT_EQ(LoadWindowPlace(ini).geometry, "abc+/=");
  // Another window's and one's own.
  RecentFiles other;
  other.Load(ini);
  other.Add("/p/other.jpg");
  ASSERT_FALSE(other.Store(ini));
  files.Refresh(ini);
  EXPECT_EQ(files.files()[0], "/p/line\nbreak.jpg");
  EXPECT_EQ(files.files()[1], "/p/other.jpg");
  EXPECT_EQ(files.files().size(), RecentFiles::kMost);
  again.Clear();
  ASSERT_FALSE(again.Store(ini));
  files.Load(ini);
  EXPECT_TRUE(files.files().empty());
}

TEST(RecentFilesTest, KeepsACopyOfWhatItCannotUnderstand) {
  for (const bool place : {false, true}) {
    const test::TemporaryFolder folder;
    const std::filesystem::path ini = folder / "settings.txt";
    test::WriteBytes(ini, "a line of no kind\n");
    RecentFiles files;
    files.Add("/p/a.jpg");
    ASSERT_FALSE(place ? StoreWindowPlace(ini, {"abc"}) : files.Store(ini));
    int others = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      if (entry.path() == ini) continue;
      ++others;
      EXPECT_EQ(test::ReadBytes(entry.path()), "a line of no kind\n");
    }
    EXPECT_EQ(others, 1);
  }
}

TEST(FolderWalkTest, WalksImagesByName) {
  const test::TemporaryFolder folder;
  for (const char* name : {"a.JPG", "b.txt", "c.png", "d.jpeg", "e.Tif", "\xFF.bmp"})
    test::WriteBytes(folder / name, "x");
  std::filesystem::create_directory(folder / "d.png");
  struct Case {
    const char* from;
    const char* next;
    const char* previous;
  };
  for (const Case& c : {Case{"a.JPG", "c.png", nullptr}, Case{"c.png", "e.Tif", "a.JPG"},
                        Case{"d.jpeg", "e.Tif", "c.png"}, Case{"e.Tif", "\xFF.bmp", "c.png"},
                        Case{"\xFF.bmp", nullptr, "e.Tif"}, Case{"gone.jpg", "\xFF.bmp", "e.Tif"}}) {
    const auto expected = [&](const char* name) {
      return name == nullptr ? std::filesystem::path() : folder / name;
    };
    EXPECT_EQ(Neighbour(folder / c.from, Step::kNext), expected(c.next)) << c.from;
    EXPECT_EQ(Neighbour(folder / c.from, Step::kPrevious), expected(c.previous)) << c.from;
  }
  EXPECT_TRUE(Neighbour(folder / "missing" / "a.jpg", Step::kNext).empty());
}

}  // namespace
}  // namespace mirellon::ui
