// What becomes of user defaults whose files are damaged, foreign, locked or out of reach.

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "Fixture.h"
#include "RawDatabase.h"
#include "WorkerProcess.h"
#include "platform/linux/SqliteUserDefaultsGeneration.h"
#include "support/FileSizeLimit.h"
#include "support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Platform::Value;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAreArray;
using TestSupport::FileSizeLimit;
using TestSupport::ReadFileBytes;

constexpr std::chrono::milliseconds kShort = 50ms;

class SqliteUserDefaultsUnusableFiles : public SqliteUserDefaultsTest {
 protected:
  // The files that were moved aside, without those that belong to them.
  std::vector<std::string> FilesMovedAside() const {
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(Folder())) {
      const std::string name = entry.path().filename();
      if (name.find(".corrupt-") != std::string::npos && !name.ends_with("-wal")) {
        files.push_back(entry.path());
      }
    }
    return files;
  }

  void ExpectTheLineOfAFileMovedAside(const std::string& reason) {
    EXPECT_THAT(log_->TakeLines(),
                ElementsAre(AllOf(StartsWith("Cannot use user defaults \"" + StandardPath() + "\""),
                                  HasSubstr(reason), HasSubstr("standard.db.corrupt-"))));
  }

  void ExpectToWork(Platform::UserDefaults& defaults) {
    defaults.SetObject("works", 1);
    EXPECT_EQ(defaults.ObjectForKey("works"), Value(1));
    EXPECT_EQ(NewStandard()->ObjectForKey("works"), Value(1));
    EXPECT_EQ(RunRawSql(StandardPath(), "PRAGMA integrity_check"), "ok");
  }
};

TEST_F(SqliteUserDefaultsUnusableFiles, AreMovedAsideWhenTheyAreNoDatabases) {
  for (const std::string& contents :
       {std::string("not a database"), std::string(100'000, '\0'), std::string(8192, '\xA5'),
        std::string("SQLite format 3\0", 16) + std::string(4080, '\x33')}) {
    directory_.WriteFile("defaults/standard.db", contents);
    const auto defaults = NewStandard();
    EXPECT_TRUE(defaults->ObjectForKey("k").IsAbsent());
    ASSERT_EQ(FilesMovedAside().size(), 1U);
    EXPECT_EQ(ReadFileBytes(FilesMovedAside().front()), contents);
    ExpectTheLineOfAFileMovedAside("");
    ExpectToWork(*defaults);
    fs::remove_all(Folder());
  }
}

TEST_F(SqliteUserDefaultsUnusableFiles, AreAllKeptWhenOneFollowsAnotherAtOnce) {
  const std::vector<std::string> contents = {"first damage", "second damage", "third damage"};
  for (const std::string& damaged : contents) {
    fs::remove(StandardPath() + "-wal");  // it would repair the file
    directory_.WriteFile("defaults/standard.db", damaged);
    EXPECT_TRUE(NewStandard()->ObjectForKey("k").IsAbsent());
    ExpectTheLineOfAFileMovedAside("file is not a database");
  }
  std::vector<std::string> kept;
  for (const std::string& file : FilesMovedAside()) kept.push_back(ReadFileBytes(file));
  EXPECT_THAT(kept, UnorderedElementsAreArray(contents));
}

TEST_F(SqliteUserDefaultsUnusableFiles, AreMovedAsideWhenTheyAreOtherDatabases) {
  fs::create_directories(Folder());
  RunRawSql(StandardPath(), "CREATE TABLE theirs (x); INSERT INTO theirs VALUES (7)");
  const auto defaults = NewStandard();
  EXPECT_TRUE(defaults->ObjectForKey("k").IsAbsent());
  ExpectTheLineOfAFileMovedAside("it is a database of another kind");
  ASSERT_EQ(FilesMovedAside().size(), 1U);
  EXPECT_EQ(RunRawSql(FilesMovedAside().front(), "SELECT x FROM theirs"), "7");
  ExpectToWork(*defaults);
}

TEST_F(SqliteUserDefaultsUnusableFiles, AreMovedAsideWhenTheirTablesAreNotTheRightOnes) {
  NewStandard()->SetObject("k", 1);
  RunRawSql(StandardPath(), "CREATE TRIGGER t AFTER INSERT ON defaults BEGIN SELECT 1; END");
  const auto defaults = NewStandard();
  EXPECT_TRUE(defaults->ObjectForKey("k").IsAbsent());
  ExpectTheLineOfAFileMovedAside("its tables are of another kind");
  ExpectToWork(*defaults);
}

TEST_F(SqliteUserDefaultsUnusableFiles, AreMovedAsideOnceByAllThatUseThem) {
  const auto one = NewStandard();
  const auto other = NewStandard();
  for (int number = 0; number < 2000; ++number) {
    one->SetObject("k" + std::to_string(number), std::string(100, 'x'));
  }
  RunRawSql(StandardPath(), "PRAGMA wal_checkpoint(TRUNCATE)");
  ASSERT_EQ(WorkerProcess({"scribble", StandardPath()}).Wait(), 0);

  EXPECT_TRUE(other->ObjectForKey("k500").IsAbsent());
  ExpectTheLineOfAFileMovedAside("malformed");
  other->SetObject("of the other", 1);
  EXPECT_EQ(one->ObjectForKey("of the other"), Value(1));
  EXPECT_TRUE(one->ObjectForKey("k500").IsAbsent());
  one->SetObject("of the one", 2);
  EXPECT_EQ(other->ObjectForKey("of the one"), Value(2));
  EXPECT_EQ(FilesMovedAside().size(), 1U);
  ExpectToWork(*one);
}

TEST_F(SqliteUserDefaultsUnusableFiles, AreMovedAsideWhenAWriteFindsThemDamaged) {
  const auto one = NewStandard();
  for (int number = 0; number < 2000; ++number) {
    one->SetObject("k" + std::to_string(number), std::string(100, 'x'));
  }
  RunRawSql(StandardPath(), "PRAGMA wal_checkpoint(TRUNCATE)");
  ASSERT_EQ(WorkerProcess({"scribble", StandardPath()}).Wait(), 0);

  const auto other = NewStandard();
  other->SetObject("k500", "new");
  ExpectTheLineOfAFileMovedAside("malformed");
  EXPECT_EQ(other->ObjectForKey("k500"), Value("new"));
  EXPECT_EQ(one->ObjectForKey("k500"), Value("new"));
  ExpectToWork(*one);
}

// How often the kernel has had to make the thread of this process wait.
long WaitsOf(pid_t thread) {
  std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
  const std::string name = "voluntary_ctxt_switches:";
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name)) return std::stol(line.substr(name.size()));
  }
  return 0;
}

TEST_F(SqliteUserDefaultsUnusableFiles, LoseNoWriteThatWaitsWhileTheyAreReplaced) {
  const auto defaults = NewStandard();
  defaults->SetObject("k", 1);
  WorkerProcess holder({"hold", StandardPath()});
  char line[5];
  ASSERT_TRUE(holder.Read(line, sizeof(line)));
  std::atomic<pid_t> thread{0};
  {
    const std::jthread writer([&] {
      thread = ::gettid();
      defaults->SetObject("k", 2);
    });
    // By then the writer has looked which file it is, and waits for the lock of that.
    ASSERT_TRUE(TestSupport::WaitUntil([&] { return thread != 0 && WaitsOf(thread) > 20; }));
    Platform::SqliteUserDefaultsGeneration generation(StandardPath() + "-generation", 1s);
    for (const char* suffix : {"", "-wal", "-shm"}) {
      fs::rename(StandardPath() + suffix, StandardPath() + ".corrupt-elsewhere" + suffix);
    }
    generation.BeginIncarnation();
    holder.CloseInput();
    EXPECT_EQ(holder.Wait(), 0);
  }
  EXPECT_EQ(NewStandard()->ObjectForKey("k"), Value(2));
  EXPECT_EQ(defaults->ObjectForKey("k"), Value(2));
}

TEST_F(SqliteUserDefaultsUnusableFiles, OfALaterVersionStayAsTheyAre) {
  NewStandard()->SetObject("k", 1);
  RunRawSql(StandardPath(), "PRAGMA user_version = 2");
  const auto provider = NewProvider();
  provider->Standard()->SetObject("k", 2);
  EXPECT_TRUE(provider->Standard()->ObjectForKey("k").IsAbsent());
  EXPECT_THAT(log_->TakeLines(), ElementsAre(HasSubstr("a later version of this library made it"),
                                             HasSubstr("a later version of this library made it")));
  EXPECT_EQ(provider->OpenSuite("standard"), nullptr);
  EXPECT_THAT(log_->TakeLines(), ElementsAre(StartsWith("Cannot open user defaults")));
  RunRawSql(StandardPath(), "PRAGMA user_version = 1");
  EXPECT_EQ(provider->Standard()->ObjectForKey("k"), Value(1));
}

TEST_F(SqliteUserDefaultsUnusableFiles, HideAnEntryThatIsNotInAKnownForm) {
  const auto defaults = NewStandard();
  defaults->SetObject("good", 1);
  RunRawSql(StandardPath(),
            "INSERT INTO defaults VALUES ('type', 99, x'0101'), "
            "('blob', 3, x'09'), ('text', 3, 'text'), ('empty', 1, x''), "
            "('large', 1, zeroblob(40000000))");
  const auto fresh = NewStandard();
  for (const char* key : {"type", "blob", "text", "empty", "large"}) {
    EXPECT_TRUE(fresh->ObjectForKey(key).IsAbsent()) << key;
  }
  EXPECT_THAT(log_->TakeLines(), ElementsAre(HasSubstr("an entry is not in a known form")));
  EXPECT_EQ(fresh->ObjectForKey("good"), Value(1));
  fresh->SetObject("blob", 2);
  EXPECT_EQ(fresh->ObjectForKey("blob"), Value(2));
  EXPECT_THAT(FilesMovedAside(), IsEmpty());
}

TEST_F(SqliteUserDefaultsUnusableFiles, FindAndChangeNothingWhereAFileIsInTheWayOfTheirFolder) {
  directory_.WriteFile("defaults", "in the way");
  const auto provider = NewProvider();
  const auto defaults = provider->Standard();
  for (int round = 0; round < 3; ++round) {
    defaults->SetObject("k", 1);
    defaults->RemoveObject("k");
    defaults->RemoveObjectsWithPrefix("k");
    EXPECT_TRUE(defaults->ObjectForKey("k").IsAbsent());
    EXPECT_THAT(defaults->KeysWithPrefix(""), IsEmpty());
    EXPECT_EQ(provider->OpenSuite("group.shop"), nullptr);
  }
  const std::string standard = "\"" + StandardPath() + "\": Not a directory.";
  const std::string suite = "\"" + Folder() + "/group.shop.db\": Not a directory.";
  EXPECT_THAT(log_->TakeLines(), ElementsAre("Cannot write user defaults " + standard,
                                             "Cannot read user defaults " + standard,
                                             "Cannot open user defaults " + suite));
  fs::remove(Folder());
  ExpectToWork(*defaults);
  EXPECT_NE(provider->OpenSuite("group.shop"), nullptr);
}

TEST_F(SqliteUserDefaultsUnusableFiles, FindNothingWhereAFolderIsInTheWayOfTheirFile) {
  fs::create_directories(StandardPath());
  const auto defaults = NewStandard();
  EXPECT_TRUE(defaults->ObjectForKey("k").IsAbsent());
  EXPECT_THAT(log_->TakeLines(), ElementsAre(StartsWith("Cannot read user defaults")));
  EXPECT_TRUE(fs::is_directory(StandardPath()));
}

TEST_F(SqliteUserDefaultsUnusableFiles, FindNothingWhereNoFolderCanBeMade) {
  const Platform::SqliteUserDefaultsProvider::Folders folders{"/proc/self/none", "/proc/self/none"};
  Platform::SqliteUserDefaultsProvider provider(folders, log_);
  EXPECT_TRUE(provider.Standard()->ObjectForKey("k").IsAbsent());
  EXPECT_EQ(provider.OpenSuite("group.shop"), nullptr);
  EXPECT_THAT(log_->TakeLines(), ElementsAre(StartsWith("Cannot read user defaults"),
                                             StartsWith("Cannot open user defaults")));
}

TEST_F(SqliteUserDefaultsUnusableFiles, StayReadableWhileAnotherProcessKeepsThemLocked) {
  const auto defaults = NewProvider(kShort)->Standard();
  defaults->SetObject("k", 1);
  for (int round = 0; round < 2; ++round) {
    WorkerProcess holder({"hold", StandardPath()});
    char line[5];
    ASSERT_TRUE(holder.Read(line, sizeof(line)));
    const auto start = std::chrono::steady_clock::now();
    defaults->SetObject("k", 2);
    defaults->RemoveObject("k");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_THAT(log_->TakeLines(), ElementsAre("Cannot write user defaults \"" + StandardPath() +
                                               "\": database is locked."));
    EXPECT_EQ(defaults->ObjectForKey("k"), Value(1));
    EXPECT_EQ(NewStandard()->ObjectForKey("k"), Value(1));
    holder.CloseInput();
    EXPECT_EQ(holder.Wait(), 0);
    defaults->SetObject("k", 1);
  }
  defaults->SetObject("k", 3);
  EXPECT_EQ(defaults->ObjectForKey("k"), Value(3));
}

TEST_F(SqliteUserDefaultsUnusableFiles, AreWaitedForOnlySoLongToOpen) {
  NewStandard()->SetObject("k", 1);
  const auto provider = NewProvider(kShort);
  {
    const Platform::SqliteUserDefaultsGeneration generation(StandardPath() + "-generation", 1s);
    const Platform::SqliteUserDefaultsGeneration::Lock lock(generation, 1s);
    EXPECT_TRUE(provider->Standard()->ObjectForKey("k").IsAbsent());
    EXPECT_THAT(log_->TakeLines(), ElementsAre(HasSubstr("another process keeps it locked")));
    // It is there, so nobody must look for another in its place.
    EXPECT_NE(provider->OpenSuite("standard"), nullptr);
    EXPECT_THAT(log_->TakeLines(), ElementsAre(StartsWith("Cannot open user defaults")));
  }
  EXPECT_EQ(provider->Standard()->ObjectForKey("k"), Value(1));
}

TEST_F(SqliteUserDefaultsUnusableFiles, KeepWhatTheyHaveWhileThereIsNoRoomForMore) {
  const auto defaults = NewStandard();
  defaults->SetObject("k", "before");
  {
    const FileSizeLimit limit(200'000);
    for (int round = 0; round < 3; ++round) {
      defaults->SetObject("k", std::string(500'000, 'x'));
      EXPECT_EQ(defaults->ObjectForKey("k"), Value("before"));
    }
  }
  EXPECT_THAT(log_->TakeLines(), ElementsAre(StartsWith("Cannot write user defaults")));
  EXPECT_EQ(NewStandard()->ObjectForKey("k"), Value("before"));
  defaults->SetObject("k", std::string(500'000, 'x'));
  EXPECT_EQ(NewStandard()->ObjectForKey("k"), Value(std::string(500'000, 'x')));
  ExpectToWork(*defaults);
}

TEST_F(SqliteUserDefaultsUnusableFiles, AreNotMadeWhereThereIsNoRoom) {
  const auto defaults = NewStandard();
  {
    const FileSizeLimit limit(1000);
    defaults->SetObject("k", 1);
    EXPECT_TRUE(defaults->ObjectForKey("k").IsAbsent());
  }
  EXPECT_THAT(log_->TakeLines(), ElementsAre(StartsWith("Cannot write user defaults"),
                                             StartsWith("Cannot read user defaults")));
  ExpectToWork(*defaults);
}

}  // namespace
