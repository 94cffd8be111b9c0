// The program from its start to its end, in this process.
#include "ui/application.h"

#include <QMessageBox>
#include <QTimer>
#include <csignal>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "base/paths.h"
#include "imageio/save_image.h"
#include "settings/app_settings.h"
#include "settings/running_mark.h"
#include "support/temporary_folder.h"
#include "support/test_pictures.h"
#include "ui/main_window.h"
#include "ui/model/recent_files.h"

namespace mirellon::ui {
namespace {

constexpr int kStuck = 99;

// What the user does: a step is looked at again and again until it returns true, then the next.
using Step = std::function<bool(MainWindow& window)>;

QMessageBox* OpenBox() {
  return qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
}

class ApplicationTest : public ::testing::Test {
 protected:
  ApplicationTest() : settings(folder / "config") {
    QApplication::setQuitOnLastWindowClosed(true);
    options.applicationData = folder / "config";
    // A driver of its own is no matter of these tests.
    options.card.trial = [](const base::RunControl&) { return CardExaminer::Trial::kCrashed; };
  }
  ~ApplicationTest() override { QApplication::setQuitOnLastWindowClosed(false); }

  // The exit code.
  int Run(std::vector<Step> steps) {
    std::size_t next = 0;
    int ticks = 0;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, [&] {
      for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<MainWindow*>(widget);
        if (window != nullptr && next < steps.size() && steps[next](*window)) ++next;
      }
      if (++ticks > 3000) QCoreApplication::exit(kStuck);
    });
    user.start(10);
    const int code = RunApplication(*qobject_cast<QApplication*>(QApplication::instance()), options);
    EXPECT_EQ(next, steps.size());
    return code;
  }
  // Reads a message box and closes it.
  Step Read() {
    return [this](MainWindow&) {
      QMessageBox* box = OpenBox();
      if (box == nullptr) return false;
      boxes.push_back(box->text().toStdString());
      box->accept();
      return true;
    };
  }
  static bool Close(MainWindow& window) {
    if (OpenBox() != nullptr || !window.workbench().idle()) return false;
    window.close();
    return true;
  }
  static bool Terminate(MainWindow& /*window*/) { return std::raise(SIGTERM) == 0; }
  static bool Denoise(MainWindow& window) {
    if (!window.workbench().idle() || !window.workbench().session().hasImage()) return false;
    window.Do(Command::kDenoise);
    return true;
  }
  void WritePhotograph(int width, int height) {
    options.photograph = folder / "a.png";
    ASSERT_FALSE(imageio::WriteImageFile(test::PhotoLikePicture(width, height, 3, 8, 11), options.photograph,
                                         {}, 95, {}));
  }
  [[nodiscard]] int Marker() const { return settings.GetNumber(settings::Setting::kCrashedLastTime); }

  test::TemporaryFolder folder;
  settings::AppSettings settings;
  StartOptions options;
  std::vector<std::string> boxes;
};

TEST_F(ApplicationTest, TellsOfACrashOnceAndBeforeAnythingIsOpened) {
  ASSERT_FALSE(settings.SetNumber(settings::Setting::kCrashedLastTime, 1));
  options.photograph = folder / "bad.jpg";
  test::WriteBytes(options.photograph, "no picture");
  const auto untouched = [](MainWindow& window) {
    if (OpenBox() == nullptr) return false;
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.workbench().session().activity(), Activity::kIdle);
    return true;
  };
  const auto marked = [this](MainWindow&) {
    EXPECT_EQ(Marker(), 1);
    return true;
  };
  EXPECT_EQ(Run({untouched, Read(), Read(), marked, Close}), 0);
  ASSERT_EQ(boxes.size(), 2U);
  EXPECT_NE(boxes[0].find("crashed last time"), std::string::npos);
  EXPECT_NE(boxes[1].find("bad.jpg"), std::string::npos);
  EXPECT_EQ(Marker(), 0);
  EXPECT_EQ(Run({Read(), Close}), 0);
  EXPECT_NE(boxes.back().find("bad.jpg"), std::string::npos) << "the end was orderly";
}

TEST_F(ApplicationTest, TellsOnceOfAProfileFileThatCannotBeUsed) {
  std::filesystem::create_directories(folder / "config/MirellonGPU20");
  test::WriteBytes(folder / "config/MirellonGPU20/CameraISOSettingX.ini", "somebody's letter\n");
  EXPECT_EQ(Run({Read(), Close}), 0);
  EXPECT_NE(boxes[0].find("CameraISOSettingX.ini"), std::string::npos);
  EXPECT_EQ(Run({Close}), 0);
}

TEST_F(ApplicationTest, AnotherInstanceIsNoCrash) {
  ASSERT_FALSE(settings.SetNumber(settings::Setting::kCrashedLastTime, 1));
  {
    const settings::RunningMark other(options.applicationData);
    EXPECT_EQ(Run({Close}), 0);
    EXPECT_EQ(Marker(), 1) << "the other one's";
  }
  EXPECT_EQ(Run({Read(), Close}), 0) << "which has died since";
  EXPECT_EQ(Marker(), 0);
}

TEST_F(ApplicationTest, RemembersAPhotographByItsWholePath) {
  WritePhotograph(60, 40);
  const std::filesystem::path whole = options.photograph;
  options.photograph = std::filesystem::relative(whole);
  ASSERT_TRUE(options.photograph.is_relative());
  const auto opened = [](MainWindow& window) { return window.workbench().session().hasImage(); };
  EXPECT_EQ(Run({opened, Close}), 0);
  RecentFiles recent;
  recent.Load(base::SettingsFile(options.applicationData));
  ASSERT_EQ(recent.files().size(), 1U);
  EXPECT_TRUE(recent.files().front().is_absolute());
  EXPECT_TRUE(std::filesystem::equivalent(recent.files().front(), whole));
}

TEST_F(ApplicationTest, ASignalEndsItWithoutAQuestion) {
  WritePhotograph(300, 200);
  const auto unsaved = [](MainWindow& window) { return window.workbench().session().unsaved(); };
  EXPECT_EQ(Run({Denoise, unsaved, Terminate}), 0);
  EXPECT_EQ(Marker(), 0);
  const auto ask = [](MainWindow& window) {
    QTimer::singleShot(0, &window, [&window] { window.close(); });
    return true;
  };
  const auto asked = [](MainWindow&) { return OpenBox() != nullptr; };
  EXPECT_EQ(Run({Denoise, unsaved, ask, asked, Terminate}), 0);
  EXPECT_EQ(Marker(), 0);
}

TEST_F(ApplicationTest, ASignalEndsARun) {
  ASSERT_FALSE(settings.SetNumber(settings::Setting::kQuality, 3));
  WritePhotograph(1500, 1200);
  EXPECT_EQ(Run({Denoise, Terminate}), 0);
  EXPECT_EQ(Marker(), 0);
}

}  // namespace
}  // namespace mirellon::ui
