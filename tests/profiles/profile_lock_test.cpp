#include "profiles/profile_lock.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "profiles/profile_store.h"
#include "support/temporary_folder.h"

namespace mirellon::profiles {

using std::chrono::milliseconds;

constexpr milliseconds kLong{60000};

TEST(ProfileLockTest, NothingThatProgramsStoreAtOnceIsLost) {
  const test::TemporaryFolder folder;
  const std::filesystem::path file = folder / "settings" / kProfileFileName;
  constexpr int kWriters = 8;
  constexpr int kRounds = 5;
  {
    std::vector<std::jthread> writers;
    writers.reserve(kWriters);
    for (int i = 0; i < kWriters; ++i) {
      writers.emplace_back([&file, i] {
        for (int k = 0; k < kRounds; ++k) {
          ProfileLock lock;
          NoiseProfileStore store({file, {}});
          EXPECT_FALSE(lock.Acquire(file, kLong)) << lock.cause();
          EXPECT_FALSE(store.Load() || store.AddOrReplace(std::to_wstring(i), std::to_wstring(100 + k), {}) ||
                       store.Save());
        }
      });
    }
  }
  NoiseProfileStore store({file, {}});
  ASSERT_FALSE(store.Load());
  ASSERT_EQ(store.cameraCount(), 1U + kWriters);
  for (std::uint32_t i = 1; i <= kWriters; ++i) EXPECT_EQ(store.cameras()[i].isoValues.size(), 1U * kRounds);
  EXPECT_EQ(test::FilesIn(folder / "settings"), 1U) << "no lock file stays";
}

TEST(ProfileLockTest, WaitingEndsWithAReason) {
  const test::TemporaryFolder folder;
  const std::filesystem::path file = folder / "p.ini";
  ProfileLock lock;
  ASSERT_FALSE(lock.Acquire(file, milliseconds(0)));
  std::filesystem::create_symlink(file, folder / "link.ini");
  ProfileLock late;
  for (const char* name : {"p.ini", "link.ini"}) {
    EXPECT_TRUE(late.Acquire(folder / name, milliseconds(20))) << name;
    EXPECT_EQ(late.cause(), "another program is changing it; try again when that is done");
  }
  base::RunControl control;
  control.RequestAbort();
  EXPECT_TRUE(late.Acquire(file, kLong, &control));
  lock.Release();
  EXPECT_FALSE(late.Acquire(folder / "link.ini", milliseconds(0)));
  late.Release();

  std::filesystem::create_directory(folder / "p.ini.lock");
  EXPECT_TRUE(late.Acquire(file, kLong));
  EXPECT_EQ(late.cause(), "its lock file cannot be opened: Is a directory");
  // What cannot be written is not the lock's to refuse.
  std::filesystem::create_directory(folder / "folder.ini");
  EXPECT_FALSE(late.Acquire(folder / "folder.ini", milliseconds(0)));
  EXPECT_FALSE(std::filesystem::exists(folder / "folder.ini.lock"));
}

}  // namespace mirellon::profiles
