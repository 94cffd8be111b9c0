#include "ui/model/batch_outcome.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "settings/text_table.h"
#include "support/temporary_folder.h"

namespace mirellon::ui {
namespace {

using batch::EntryEnd;
using batch::EntryReason;

TEST(BatchOutcomeTest, EveryReasonHasWordsOfItsOwn) {
  std::set<std::wstring> words;
  for (int i = 1; i <= static_cast<int>(EntryReason::kLeftOut); ++i) {
    words.insert(settings::EnglishText(ReasonText(static_cast<EntryReason>(i))));
  }
  EXPECT_EQ(words.size(), static_cast<std::size_t>(EntryReason::kLeftOut));
  EXPECT_FALSE(words.contains(L""));
  EXPECT_EQ(ReasonText(EntryReason::kNone), 0);
}

TEST(BatchOutcomeTest, TellsOfPhotographsAndFailures) {
  struct Case {
    EntryEnd end;
    bool photograph;
    bool told;
  };
  for (const Case& row : {Case{EntryEnd::kDone, true, true}, Case{EntryEnd::kSkipped, true, true},
                          Case{EntryEnd::kSkipped, false, false}, Case{EntryEnd::kFailed, false, true}}) {
    batch::EntryReport report;
    report.end = row.end;
    report.photograph = row.photograph;
    EXPECT_EQ(IsTold(report), row.told) << static_cast<int>(row.end) << row.photograph;
  }
  batch::EntryReport done;
  done.output = "/in/denoised/a.tif";
  done.warnings = {"one", "two"};
  EXPECT_EQ(EntryOf(done).detail, "one; two");
  done.end = EntryEnd::kFailed;
  done.cause = "disk full";
  EXPECT_EQ(EntryOf(done).detail, "disk full");
  EXPECT_TRUE(EntryOf(done).output.empty()) << "there is none";
}

TEST(BatchOutcomeTest, ShowsTheFolderOfTheResults) {
  const test::TemporaryFolder folder;
  std::filesystem::create_directories(folder / "in/sub/denoised");
  const BatchWork work{{folder / "in"}};
  const BatchEntry failed{folder / "in/a.jpg", {}, EntryEnd::kFailed, EntryReason::kUnreadable, {}};
  const BatchEntry done{
      folder / "in/sub/b.jpg", folder / "in/sub/denoised/b.jpg", EntryEnd::kDone, EntryReason::kNone, {}};
  BatchOutcome outcome;
  EXPECT_EQ(FolderToShow(work, outcome), folder / "in") << "nothing was made";
  outcome.entries = {failed, done};
  EXPECT_EQ(FolderToShow(work, outcome), folder / "in/sub/denoised");
  EXPECT_EQ(FolderToShow(failed), folder / "in");
  EXPECT_EQ(FolderToShow(done), folder / "in/sub/denoised");
  std::filesystem::create_directory(folder / "in/denoised");
  EXPECT_EQ(FolderToShow(work, outcome), folder / "in/denoised");
  EXPECT_EQ(FolderToShow({{folder / "in/a.jpg", folder / "b.jpg"}}, {}), folder / "in");

  EXPECT_EQ(NameInReport(RootOf(work), done.input), "sub/b.jpg");
  EXPECT_EQ(NameInReport(RootOf(work), folder / "in"), folder / "in");
  EXPECT_EQ(NameInReport(RootOf({{done.input, failed.input}}), done.input), done.input);
}

}  // namespace
}  // namespace mirellon::ui
