#include "ui/model/document_session.h"

#include "support/test_pictures.h"

namespace mirellon::ui {
namespace {

SharedPicture Picture(unsigned value) {
  return std::make_shared<picture::PicBuf>(test::ConstantPicture(4, 4, 3, 8, value));
}

Photograph PhotographOf(const std::filesystem::path& path) {
  Photograph photograph;
  photograph.source = Picture(1);
  photograph.path = path;
  return photograph;
}

DocumentSession Opened() {
  DocumentSession session;
  EXPECT_TRUE(session.FinishLoad(session.BeginLoad().value(), PhotographOf("/p/a.jpg")));
  return session;
}

TEST(DocumentSessionTest, TheLastLoadWins) {
  DocumentSession session;
  const unsigned first = session.BeginLoad().value();
  const unsigned second = session.BeginLoad().value();
  EXPECT_FALSE(session.FinishLoad(first, PhotographOf("/p/first.jpg")));
  EXPECT_FALSE(session.FailLoad(first));
  EXPECT_EQ(session.activity(), Activity::kLoading);
  EXPECT_TRUE(session.FinishLoad(second, PhotographOf("/p/second.jpg")));
  EXPECT_EQ(session.Title(), L"Mirellon - /p/second.jpg");
  const unsigned third = session.BeginLoad().value();
  EXPECT_TRUE(session.FailLoad(third));
  EXPECT_EQ(session.photograph().path, "/p/second.jpg") << "a failed load changes nothing";
  const unsigned fourth = session.BeginLoad().value();
  EXPECT_TRUE(session.Close());
  EXPECT_FALSE(session.FinishLoad(fourth, PhotographOf("/p/fourth.jpg")));
  EXPECT_FALSE(session.hasImage());
  EXPECT_EQ(session.Title(), L"Mirellon");
}

TEST(DocumentSessionTest, ThePhotographItselfCanBeSavedAtOnce) {
  DocumentSession session = Opened();
  EXPECT_EQ(session.result(), session.photograph().source);
  EXPECT_FALSE(session.unsaved());
  ASSERT_TRUE(session.BeginSave());
  session.FinishSave("/p/b.png", false);
  EXPECT_EQ(session.Title(), L"Mirellon - /p/b.png");
  EXPECT_EQ(session.photograph().path, "/p/a.jpg") << "the source of names and metadata stays";
}

TEST(DocumentSessionTest, KeepsAResultUntilItIsSaved) {
  DocumentSession session = Opened();
  engine::DenoiseParameters parameters;
  ASSERT_TRUE(session.BeginDenoise());
  session.FinishDenoise(std::nullopt);
  EXPECT_FALSE(session.denoised()) << "stopped";
  ASSERT_TRUE(session.BeginDenoise());
  session.FinishDenoise(RunResult{Picture(9), nullptr, parameters, 2});
  EXPECT_TRUE(session.unsaved());
  EXPECT_TRUE(session.ResultIsOf(parameters, 2));
  EXPECT_FALSE(session.ResultIsOf(parameters, 3));
  parameters.m_dSharp2 = 2.0;
  EXPECT_FALSE(session.ResultIsOf(parameters, 2));
  ASSERT_TRUE(session.BeginSave());
  session.FinishSave("/p/b.png", true);
  EXPECT_TRUE(session.unsaved());
  ASSERT_TRUE(session.BeginSave());
  session.FinishSave("/p/b.png", false);
  EXPECT_FALSE(session.unsaved());
  EXPECT_EQ(session.Title(), L"Mirellon - /p/b.png");
  EXPECT_NE(session.result(), session.photograph().source);
  ASSERT_TRUE(session.FinishLoad(session.BeginLoad().value(), PhotographOf("/p/c.jpg")));
  EXPECT_FALSE(session.denoised());
}

TEST(DocumentSessionTest, OneActivityAtATime) {
  DocumentSession empty;
  EXPECT_FALSE(empty.BeginDenoise());
  EXPECT_FALSE(empty.BeginSave());
  DocumentSession session = Opened();
  ASSERT_TRUE(session.BeginDenoise());
  EXPECT_FALSE(session.BeginLoad());
  EXPECT_FALSE(session.BeginSave());
  EXPECT_FALSE(session.BeginBatch());
  EXPECT_FALSE(session.BeginDenoise());
  EXPECT_FALSE(session.Close());
  session.FinishDenoise(std::nullopt);
  ASSERT_TRUE(session.BeginBatch());
  EXPECT_FALSE(session.BeginLoad());
  session.FinishBatch();
  EXPECT_TRUE(session.Close());
}

}  // namespace
}  // namespace mirellon::ui
