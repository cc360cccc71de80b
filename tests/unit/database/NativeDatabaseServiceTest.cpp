#include <atomic>
#include <filesystem>
#include <thread>

#include "DatabaseFixture.h"
#include "services/database/NativeDatabaseService.h"
#include "services/system/NativeSystemInfoService.h"
#include "support/FailingPorts.h"
#include "support/FakeHost.h"
#include "support/WaitUntil.h"

namespace {

using namespace DatabaseTests;
using namespace std::string_literals;
using TestSupport::FileFault;
using TestSupport::LogCapture;
using TestSupport::LogLevel;
using TestSupport::TemporaryDirectory;
using TestSupport::WaitUntil;
using Type = Velmora::DatabaseInterface::ColumnDataType;
using Velmora::CreateNativeDatabaseService;
using Velmora::Database;
using Velmora::DatabaseInterface;
using Velmora::LoggingMode;
using Velmora::NativeDatabaseService;
using Velmora::Query;
using Velmora::Variant;
namespace ErrorCodes = Velmora::ErrorCodes;
namespace fs = std::filesystem;

class NativeDatabaseServiceTest : public testing::Test {
 protected:
  NativeDatabaseServiceTest() { host_.fileManager->SetCachesDirectory(caches_); }

  bool FileExists(const std::string& name) const { return fs::exists(caches_ + "/" + name); }

  static void MakeTable(DatabaseInterface& database) {
    EXPECT_TRUE(database.CreateTable("t", {"a"}, {Type::Text}, {{}}));
  }

  // "delete" for one beside the file, which survives a process that ends in the middle of a change.
  static std::string JournalOf(DatabaseInterface& database) {
    return database.RunQuery(std::make_shared<Query>("pragma_journal_mode"))->GetString(0);
  }

  void ExpectCannotOpen(const std::string& name, const std::string& shownName) {
    EXPECT_THAT(ErrorOf([&] { service_->OpenDatabase(name); }),
                IsError(ErrorCodes::kDatabaseOpenError, "unable to open database file"));
    log_.ExpectLine(LogLevel::Error, "DatabaseService",
                    "<" + shownName + "> failed to open: unable to open database file");
  }

  const TestSupport::FakeHost host_;
  const TemporaryDirectory folder_;
  const std::string caches_ = folder_.PathOf("Caches");
  LogCapture log_{LoggingMode::Debug};
  const std::shared_ptr<Velmora::DatabaseServiceInterface> service_ =
      CreateNativeDatabaseService(Velmora::CreateNativeSystemInfoService());
};

TEST_F(NativeDatabaseServiceTest, NeedsASystemInformationService) {
  EXPECT_THAT(ErrorOf([] { CreateNativeDatabaseService(nullptr); }),
              IsError(ErrorCodes::kPlatformServicesMissingService, "SystemInfo Service"));
}

TEST_F(NativeDatabaseServiceTest, OpensAFileInTheCacheDirectory) {
  MakeTable(*service_->OpenDatabase("hits.db"));
  EXPECT_TRUE(FileExists("hits.db"));
}

TEST_F(NativeDatabaseServiceTest, GivesTheSameDatabaseForTheSameName) {
  const auto database = service_->OpenDatabase("a");
  EXPECT_EQ(service_->OpenDatabase("a"), database);
  EXPECT_NE(service_->OpenDatabase("b"), database);
}

TEST_F(NativeDatabaseServiceTest, GivesTheSameDatabaseForNamesOfTheSameFile) {
  const auto database = service_->OpenDatabase("a/b");
  EXPECT_EQ(service_->OpenDatabase("a_b"), database);
  EXPECT_EQ(service_->OpenDatabase("a\\b"), database);
  EXPECT_EQ(service_->OpenDatabase("a/../b"), database);
}

TEST_F(NativeDatabaseServiceTest, KeepsEveryDatabaseInsideTheCacheDirectory) {
  MakeTable(*service_->OpenDatabase("../x"));
  EXPECT_TRUE(FileExists("_x"));
  MakeTable(*service_->OpenDatabase("/etc/y"));
  EXPECT_TRUE(FileExists("_etc_y"));
  EXPECT_FALSE(fs::exists(folder_.PathOf("x")));
}

TEST(RemoveRelativePathComponent, ReplacesInOnePassEach) {
  const auto clean = NativeDatabaseService::RemoveRelativePathComponent;
  EXPECT_EQ(clean("plain.db"), "plain.db");
  EXPECT_EQ(clean("a\\b/c"), "a_b_c");
  EXPECT_EQ(clean("../x"), "_x");
  EXPECT_EQ(clean("..\\..\\x"), "_x");
  EXPECT_EQ(clean("..../x"), "_x");
  EXPECT_EQ(clean("..."), ".");
  EXPECT_EQ(clean("____"), "__");
  EXPECT_EQ(clean("___"), "__");
  EXPECT_EQ(clean("//"), "_");
  EXPECT_EQ(clean(".."), "");
  EXPECT_EQ(clean(""), "");
  EXPECT_EQ(clean("\0/"s), "\0_"s);
}

TEST_F(NativeDatabaseServiceTest, KeepsDatabasesOpenWhileItLives) {
  std::weak_ptr<DatabaseInterface> database = service_->OpenDatabase("a");
  EXPECT_FALSE(database.expired());
  service_->OpenDatabase("a")->Close();
  EXPECT_FALSE(database.expired());
}

TEST_F(NativeDatabaseServiceTest, LetsGoOfItsDatabasesWhenItGoes) {
  auto service = CreateNativeDatabaseService(Velmora::CreateNativeSystemInfoService());
  std::weak_ptr<DatabaseInterface> released = service->OpenDatabase("a");
  const auto held = service->OpenDatabase("b");
  service.reset();
  EXPECT_TRUE(released.expired());
  MakeTable(*held);
}

TEST_F(NativeDatabaseServiceTest, TwoServicesOpenTheFileEachForItself) {
  const auto other = CreateNativeDatabaseService(Velmora::CreateNativeSystemInfoService());
  const auto database = service_->OpenDatabase("a");
  MakeTable(*database);
  EXPECT_NE(other->OpenDatabase("a"), database);
  EXPECT_EQ(other->OpenDatabase("a")->RunQuery(std::make_shared<Query>("t"))->GetCount(), 0);
}

TEST_F(NativeDatabaseServiceTest, ThrowsWhereTheFileCannotBeOpenedAndKeepsNothing) {
  fs::create_directories(caches_ + "/a");
  ExpectCannotOpen("a", "a");
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  fs::remove(caches_ + "/a");
  MakeTable(*service_->OpenDatabase("a"));
}

TEST_F(NativeDatabaseServiceTest, OpensNothingUnderANameOfWhichNothingIsLeft) {
  ExpectCannotOpen("", "");
  ExpectCannotOpen("..", "");
  ExpectCannotOpen(".", ".");
  EXPECT_TRUE(fs::is_empty(caches_));
}

TEST_F(NativeDatabaseServiceTest, OpensNothingUnderANameThatNoFileCanHave) {
  ExpectCannotOpen("a\0b"s, "a");
  ExpectCannotOpen(std::string(10'000'000, '\\'), std::string(5'000'000, '_'));
  EXPECT_TRUE(fs::is_empty(caches_));
}

TEST_F(NativeDatabaseServiceTest, WithoutACacheDirectoryOpensTemporaryDatabases) {
  host_.fileManager->SetCachesDirectory("");
  const auto database = service_->OpenDatabase("a");
  MakeTable(*database);
  EXPECT_EQ(service_->OpenDatabase("a"), database);
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  EXPECT_NE(service_->OpenDatabase("a"), database);
}

TEST_F(NativeDatabaseServiceTest, DeletesTheFileAndForgetsTheDatabase) {
  auto database = service_->OpenDatabase("a/b");
  MakeTable(*database);
  const std::weak_ptr<DatabaseInterface> watched = database;
  database.reset();
  EXPECT_TRUE(service_->DeleteDatabase("a_b"));
  EXPECT_FALSE(FileExists("a_b"));
  EXPECT_TRUE(watched.expired());
  EXPECT_FALSE(service_->DeleteDatabase("a_b"));
}

TEST_F(NativeDatabaseServiceTest, OpensANewDatabaseAfterDeletingOne) {
  const auto former = service_->OpenDatabase("a");
  MakeTable(*former);
  EXPECT_TRUE(service_->DeleteDatabase("a"));
  const auto database = service_->OpenDatabase("a");
  EXPECT_NE(database, former);
  EXPECT_FALSE(std::dynamic_pointer_cast<Database>(database)->TableExistQuery("t"));
}

TEST_F(NativeDatabaseServiceTest, LeavesADeletedDatabaseToWhoeverHoldsIt) {
  const auto database = service_->OpenDatabase("a");
  MakeTable(*database);
  EXPECT_TRUE(database->Insert("t", {{"a", Variant::FromString("x")}}));
  EXPECT_TRUE(service_->DeleteDatabase("a"));
  EXPECT_EQ(database->RunQuery(std::make_shared<Query>("t"))->GetString(0), "x");
  EXPECT_TRUE(database->Insert("t", {{"a", Variant::FromString("y")}}));
  EXPECT_TRUE(database->Delete("t", "a = ?", {"'x'"}));
  EXPECT_EQ(database->RunQuery(std::make_shared<Query>("t"))->GetString(0), "y");
  EXPECT_EQ(JournalOf(*database), "memory");
  EXPECT_FALSE(FileExists("a"));
}

TEST_F(NativeDatabaseServiceTest, DeletesOnlyWhatItOpened) {
  fs::create_directories(caches_);
  folder_.WriteFile("Caches/a", "");
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  EXPECT_TRUE(FileExists("a"));
  CreateNativeDatabaseService(Velmora::CreateNativeSystemInfoService())->OpenDatabase("a");
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  EXPECT_TRUE(FileExists("a"));
}

TEST_F(NativeDatabaseServiceTest, DeletesNothingWithoutAName) {
  EXPECT_FALSE(service_->DeleteDatabase(""));
  EXPECT_FALSE(service_->DeleteDatabase(".."));
}

TEST_F(NativeDatabaseServiceTest, ForgetsTheDatabaseWhereItsFileIsGone) {
  const auto database = service_->OpenDatabase("a");
  fs::remove(caches_ + "/a");
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  EXPECT_NE(service_->OpenDatabase("a"), database);
}

TEST_F(NativeDatabaseServiceTest, ForgetsTheDatabaseWhereItsFileCannotBeRemoved) {
  const auto database = service_->OpenDatabase("a");
  MakeTable(*database);
  host_.fileManager->Fail(FileFault::RemoveItem);
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  host_.fileManager->Heal();
  EXPECT_TRUE(FileExists("a"));
  EXPECT_EQ(JournalOf(*database), "delete");
  EXPECT_NE(service_->OpenDatabase("a"), database);
}

TEST_F(NativeDatabaseServiceTest, ForgetsTheDatabaseWhereTheDeviceThrows) {
  const auto database = service_->OpenDatabase("a");
  MakeTable(*database);
  Platform::Host failing = host_.Copy();
  failing.fileManager = std::make_shared<TestSupport::FailingFileManager>();
  Platform::Host::Install(failing);
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  Platform::Host::Install(host_.Copy());
  EXPECT_TRUE(FileExists("a"));
  EXPECT_EQ(JournalOf(*database), "delete");
  EXPECT_NE(service_->OpenDatabase("a"), database);
  EXPECT_TRUE(service_->DeleteDatabase("a"));
}

TEST_F(NativeDatabaseServiceTest, NeverRemovesADirectory) {
  service_->OpenDatabase("a");
  fs::remove(caches_ + "/a");
  folder_.WriteFile("Caches/a/file", "x");
  EXPECT_FALSE(service_->DeleteDatabase("a"));
  EXPECT_TRUE(FileExists("a/file"));

  host_.fileManager->SetCachesDirectory("");
  service_->OpenDatabase("..");
  service_->OpenDatabase(".");
  host_.fileManager->SetCachesDirectory(caches_);
  EXPECT_FALSE(service_->DeleteDatabase(".."));
  EXPECT_FALSE(service_->DeleteDatabase("."));
  EXPECT_TRUE(FileExists("a/file"));
}

TEST_F(NativeDatabaseServiceTest, DeletesFromACacheDirectoryThatEndsWithSlashes) {
  host_.fileManager->SetCachesDirectory(folder_.Path().string() + "//");
  service_->OpenDatabase("a");
  EXPECT_TRUE(fs::exists(folder_.PathOf("a")));
  EXPECT_TRUE(service_->DeleteDatabase("a"));
  EXPECT_FALSE(fs::exists(folder_.PathOf("a")));
}

TEST_F(NativeDatabaseServiceTest, OpensANameOnceForSixteenThreads) {
  constexpr int kThreads = 16;
  std::vector<std::shared_ptr<DatabaseInterface>> opened(kThreads);
  std::atomic<int> waiting{kThreads};
  {
    std::vector<std::jthread> threads;
    for (auto& mine : opened) {
      threads.emplace_back([&] {
        --waiting;
        EXPECT_TRUE(WaitUntil([&] { return waiting == 0; }));
        mine = service_->OpenDatabase("a");
      });
    }
  }
  EXPECT_THAT(opened, testing::Each(testing::AllOf(testing::NotNull(), opened.front())));
}

TEST_F(NativeDatabaseServiceTest, MayOpenAndDeleteOnManyThreadsAtOnce) {
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([this, thread] {
      for (int round = 0; round < 20; ++round) {
        const std::string name(1, static_cast<char>('a' + (thread + round) % 3));
        EXPECT_NE(service_->OpenDatabase(name), nullptr);
        service_->DeleteDatabase(name);
      }
    });
  }
}

TEST_F(NativeDatabaseServiceTest, IsAnObjectOfTheCore) {
  EXPECT_EQ(Velmora::ObjectToSharedPtr(*service_), service_);
}

}  // namespace
