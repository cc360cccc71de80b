#include <atomic>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/linux/PendingNotifications.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::DesktopNotification;
using Platform::DeviceError;
using Platform::PendingNotifications;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

DesktopNotification Notification(const std::string& key, double dueAt = 100) {
  return {.key = key,
          .dueAt = dueAt,
          .body = "Body",
          .sound = "bell",
          .isSilent = true,
          .category = "news",
          .userInfo = {{"a", Platform::Value::Array({1, "b"})}}};
}

class PendingNotificationsTest : public testing::Test {
 protected:
  std::string FilePath() const { return folder_.PathOf("app/pending-notifications.json"); }

  TestSupport::TemporaryDirectory folder_;
  PendingNotifications pending_{folder_.PathOf("app")};
};

TEST_F(PendingNotificationsTest, KeepsThemForTheNextProcess) {
  pending_.Put(Notification("a", 1e9 + 0.5));
  DesktopNotification plain;
  plain.key = "b";
  pending_.Put(plain);
  EXPECT_THAT(PendingNotifications(folder_.PathOf("app")).All(),
              ElementsAre(Notification("a", 1e9 + 0.5), plain));
}

TEST_F(PendingNotificationsTest, PutsOneInThePlaceOfAnotherOfItsKey) {
  pending_.Put(Notification("a", 1));
  pending_.Put(Notification("b", 2));
  pending_.Put(Notification("a", 3));
  EXPECT_THAT(pending_.All(), ElementsAre(Notification("b", 2), Notification("a", 3)));
}

TEST_F(PendingNotificationsTest, GivesEachToOneTakerOnly) {
  pending_.Put(Notification("a", 1));
  EXPECT_FALSE(pending_.Take("a", 2));
  EXPECT_FALSE(pending_.Take("b", 1));
  EXPECT_TRUE(pending_.Take("a", 1));
  EXPECT_FALSE(pending_.Take("a", 1));
}

TEST_F(PendingNotificationsTest, HasNoFileWhenNothingWaits) {
  EXPECT_FALSE(pending_.MayExist());
  EXPECT_THAT(pending_.All(), IsEmpty());
  pending_.Put(Notification("a"));
  EXPECT_TRUE(pending_.MayExist());
  pending_.Remove("a");
  pending_.Remove("a");
  EXPECT_FALSE(pending_.MayExist());
}

TEST_F(PendingNotificationsTest, LetsNobodyElseReadThem) {
  pending_.Put(Notification("a"));
  struct stat status = {};
  ASSERT_EQ(::stat(FilePath().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 077U, 0U);
}

TEST_F(PendingNotificationsTest, LeavesOutWhatItDidNotWrite) {
  folder_.WriteFile(
      "app/pending-notifications.json",
      R"([1, null, {}, {"key":1}, {"key":"a","dueAt":"x","body":"","sound":"","isSilent":true,)"
      R"("category":""}, {"key":"b","dueAt":1,"body":"","sound":"","isSilent":false,)"
      R"("category":""}, {"key":"c","dueAt":1,"body":"","sound":"","isSilent":false,)"
      R"("category":"","userInfo":"text"}])");
  const auto all = pending_.All();
  ASSERT_THAT(all, SizeIs(1));
  EXPECT_EQ(all[0].key, "b");
}

TEST_F(PendingNotificationsTest, TakesADamagedFileForAnEmptyOne) {
  for (const std::string& text :
       {std::string(), std::string("{"), std::string("\xFF\0", 2), std::string("{\"key\":1}"),
        std::string(100'000, '['), std::string(PendingNotifications::kLargestFile + 1, ' ')}) {
    folder_.WriteFile("app/pending-notifications.json", text);
    EXPECT_THAT(pending_.All(), IsEmpty());
    pending_.Put(Notification("a"));
    EXPECT_THAT(pending_.All(), ElementsAre(Notification("a")));
  }
}

TEST_F(PendingNotificationsTest, RefusesWhatCannotBeWritten) {
  pending_.Put(Notification("a"));
  DesktopNotification bad = Notification("b");
  bad.body = "\xFF";
  EXPECT_THROW(pending_.Put(bad), DeviceError);
  bad.body = std::string(PendingNotifications::kLargestFile, 'x');
  EXPECT_THROW(pending_.Put(bad), DeviceError);
  EXPECT_THAT(pending_.All(), ElementsAre(Notification("a")));
}

TEST_F(PendingNotificationsTest, RefusesMoreThanItKeeps) {
  std::string items;
  for (std::size_t i = 0; i < PendingNotifications::kMost; ++i) {
    items += (i == 0 ? "" : ",") + (R"({"key":")" + std::to_string(i)) +
             R"(","dueAt":1,"body":"","sound":"","isSilent":false,"category":""})";
  }
  folder_.WriteFile("app/pending-notifications.json", "[" + items + "]");
  EXPECT_THROW(pending_.Put(Notification("one more")), DeviceError);
  EXPECT_NO_THROW(pending_.Put(Notification("0")));
}

TEST_F(PendingNotificationsTest, FailsWithoutAFolder) {
  PendingNotifications nowhere("");
  EXPECT_THROW(nowhere.Put(Notification("a")), DeviceError);
  EXPECT_FALSE(nowhere.MayExist());
  EXPECT_THAT(nowhere.All(), IsEmpty());
  EXPECT_FALSE(nowhere.Take("a", 100));
  folder_.WriteFile("file", "");
  EXPECT_THROW(PendingNotifications(folder_.PathOf("file/in")).Put(Notification("a")), DeviceError);
}

TEST_F(PendingNotificationsTest, LosesNothingBetweenThreads) {
  std::vector<std::thread> threads;
  std::atomic<int> taken{0};
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      for (int j = 0; j < 10; ++j) {
        pending_.Put(Notification(std::to_string(i) + "/" + std::to_string(j)));
        pending_.Put(Notification("shared"));
        if (pending_.Take("shared", 100)) ++taken;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_GE(taken, 1);
  pending_.Take("shared", 100);
  EXPECT_THAT(pending_.All(), SizeIs(40));
}

}  // namespace
