// Stored settings, as the core sees them, where the device refuses: fallbacks, one clear line for
// reading and one for writing, and never an exception.

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "Fixture.h"
#include "WorkerProcess.h"
#include "platform/linux/SqliteUserDefaultsGeneration.h"
#include "services/datastore/NativeLocalStorageService.h"
#include "support/FakeHost.h"
#include "support/ForkedProcess.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using TestSupport::AsStranger;
using TestSupport::OnSmallDisk;
using Velmora::DataStoreInterface;

constexpr std::chrono::milliseconds kShort = 50ms;

// Everything that a store can keep, once as it is stored and once as it is asked for in vain.
struct Settings {
  std::int32_t number = 0;
  std::int64_t large = 0;
  double precise = 0;
  float rough = 0;
  bool flag = false;
  std::string text;
  std::vector<std::string> list;
  std::map<std::string, std::string> map;

  bool operator==(const Settings&) const = default;
};

const Settings kStored{1, 2, 3.5, 4.5F, true, "five", {"six"}, {{"seven", "eight"}}};
const Settings kOther{-1, -2, -3.5, -4.5F, true, "other", {"another"}, {{"one", "more"}}};
const Settings kFallback{-7, -8, -9.5, -10.5F, false, "fallback", {}, {}};

void Store(DataStoreInterface& store, const Settings& settings) {
  store.SetInt("number", settings.number);
  store.SetLong("large", settings.large);
  store.SetDouble("precise", settings.precise);
  store.SetFloat("rough", settings.rough);
  store.SetBoolean("flag", settings.flag);
  store.SetString("text", settings.text);
  store.SetVector("list", settings.list);
  store.SetMap("map", settings.map);
}

Settings Ask(DataStoreInterface& store) {
  return {store.GetInt("number", kFallback.number),
          store.GetLong("large", kFallback.large),
          store.GetDouble("precise", kFallback.precise),
          store.GetFloat("rough", kFallback.rough),
          store.GetBoolean("flag", kFallback.flag),
          store.GetString("text", kFallback.text),
          store.GetVector("list"),
          store.GetMap("map")};
}

class DataStoreFaults : public SqliteUserDefaultsTest {
 protected:
  // The core's store, over files that nobody has open yet.
  std::shared_ptr<DataStoreInterface> NewStore(
      std::chrono::milliseconds patience =
          Platform::SqliteUserDefaultsProvider::kDefaultPatience) const {
    Platform::Host host = host_.Copy();
    host.userDefaults = NewProvider(patience);
    Platform::Host::Install(host);
    return Velmora::CreateNativeLocalStorageService()->GetDataStore("settings");
  }

  // Nothing can be read or changed, and each is said once, with this reason.
  void ExpectOutOfReach(DataStoreInterface& store, const std::string& reason) const {
    for (int round = 0; round < 2; ++round) {
      EXPECT_EQ(Ask(store), kFallback);
      EXPECT_FALSE(store.Contains("number"));
      ChangeEverything(store);
      EXPECT_EQ(Ask(store), kFallback);
    }
    EXPECT_THAT(log_->TakeLines(), ElementsAre(LineOf("read", reason), LineOf("write", reason)));
  }

  // What is there can be read and not changed, which is said once, with this reason.
  void ExpectUnchangeable(DataStoreInterface& store, const std::string& reason) const {
    for (int round = 0; round < 2; ++round) {
      EXPECT_EQ(Ask(store), kStored);
      EXPECT_FALSE(store.Contains("missing"));
      ChangeEverything(store);
      EXPECT_EQ(Ask(store), kStored);
    }
    EXPECT_THAT(log_->TakeLines(), ElementsAre(LineOf("write", reason)));
  }

  static void ChangeEverything(DataStoreInterface& store) {
    EXPECT_NO_THROW(Store(store, kOther));
    EXPECT_NO_THROW(store.Remove("number"));
    EXPECT_NO_THROW(store.RemoveAll());
  }

  std::string LineOf(const std::string& action, const std::string& reason) const {
    return "Cannot " + action + " user defaults \"" + StandardPath() + "\": " + reason + ".";
  }

  // Takes the right to write from the folder and from all that is in it, or gives it back.
  void PermitWriting(bool isPermitted) const {
    ::chmod(directory_.Path().c_str(), 0755);
    for (const auto& entry : fs::directory_iterator(Folder())) {
      ::chmod(entry.path().c_str(), isPermitted ? 0644 : 0444);
    }
    ::chmod(Folder().c_str(), isPermitted ? 0755 : 0555);
  }

  std::string Filler() const { return Folder() + "/filler"; }

  // Leaves so many bytes on a disk of less than two megabytes.
  void FillDisk(std::uintmax_t room = 0) const {
    std::ofstream(Filler()) << std::string(2 << 20, 'x');
    fs::resize_file(Filler(), fs::file_size(Filler()) - room);
  }

  const TestSupport::FakeHost host_;
};

TEST_F(DataStoreFaults, GiveFallbacksInAFolderThatIsReadOnly) {
  Store(*NewStore(), kStored);
  PermitWriting(false);
  EXPECT_TRUE(AsStranger([&] {
    ExpectOutOfReach(*NewStore(), "Permission denied");
    return true;
  }));
  PermitWriting(true);
  EXPECT_EQ(Ask(*NewStore()), kStored);
}

TEST_F(DataStoreFaults, GiveFallbacksWhereNoFolderCanBeMade) {
  ::chmod(directory_.Path().c_str(), 0555);
  EXPECT_TRUE(AsStranger([&] {
    ExpectOutOfReach(*NewStore(), "Permission denied");
    return true;
  }));
}

TEST_F(DataStoreFaults, KeepWhatTheyHaveOnAFullDisk) {
  fs::create_directories(Folder());
  const auto result = OnSmallDisk(Folder(), [&] {
    const auto store = NewStore();
    Store(*store, kStored);
    FillDisk();
    ExpectUnchangeable(*store, "database or disk is full");
    fs::remove(Filler());
    Store(*store, kOther);
    EXPECT_EQ(Ask(*NewStore()), kOther);
    return true;
  });
  if (!result) GTEST_SKIP() << "no file system may be mounted here";
  EXPECT_TRUE(*result);
}

TEST_F(DataStoreFaults, GiveFallbacksWhereADiskIsFullFromTheStart) {
  fs::create_directories(Folder());
  const auto result = OnSmallDisk(Folder(), [&] {
    FillDisk();
    ExpectOutOfReach(*NewStore(), "No space left on device");
    fs::remove(Filler());
    Store(*NewStore(), kStored);
    EXPECT_EQ(Ask(*NewStore()), kStored);
    return true;
  });
  if (!result) GTEST_SKIP() << "no file system may be mounted here";
  EXPECT_TRUE(*result);
}

TEST_F(DataStoreFaults, StoreAllOfASettingOrNothingHoweverLittleRoomIsLeft) {
  fs::create_directories(Folder());
  for (std::uintmax_t room = 0; room <= 160 * 1024; room += 4096) {
    const auto result = OnSmallDisk(Folder(), [&] {
      FillDisk(room);
      const auto store = NewStore();
      EXPECT_NO_THROW(Store(*store, kStored));
      const Settings found = Ask(*store);
      EXPECT_TRUE(found == kStored || !(log_->TakeLines().empty())) << room;
      EXPECT_TRUE(found.text == kStored.text || found.text == kFallback.text) << room;
      fs::remove(Filler());
      EXPECT_EQ(Ask(*NewStore()), found) << room;
      Store(*store, kOther);
      EXPECT_EQ(Ask(*NewStore()), kOther) << room;
      return true;
    });
    if (!result) GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_TRUE(*result) << room;
  }
}

TEST_F(DataStoreFaults, KeepWhatTheyHaveWhileAnotherProcessLocksTheFile) {
  const auto store = NewStore(kShort);
  Store(*store, kStored);
  WorkerProcess holder({"hold", StandardPath()});
  char line[5];
  ASSERT_TRUE(holder.Read(line, sizeof(line)));
  ExpectUnchangeable(*store, "database is locked");
  holder.CloseInput();
  EXPECT_EQ(holder.Wait(), 0);
  Store(*store, kOther);
  EXPECT_EQ(Ask(*NewStore()), kOther);
}

TEST_F(DataStoreFaults, GiveFallbacksWhileTheFileCannotBeOpenedForALock) {
  Store(*NewStore(), kStored);
  const auto store = NewStore(kShort);
  {
    const Platform::SqliteUserDefaultsGeneration generation(StandardPath() + "-generation", 1s);
    const Platform::SqliteUserDefaultsGeneration::Lock lock(generation, 1s);
    ExpectOutOfReach(*store, "another process keeps it locked");
  }
  EXPECT_EQ(Ask(*store), kStored);
}

TEST_F(DataStoreFaults, StartAnewWhenTheFileIsBroken) {
  for (const std::string& contents : {std::string("not a database"), std::string(8192, '\xA5')}) {
    directory_.WriteFile("defaults/standard.db", contents);
    const auto store = NewStore();
    EXPECT_EQ(Ask(*store), kFallback);
    EXPECT_THAT(
        log_->TakeLines(),
        ElementsAre(AllOf(StartsWith("Cannot use user defaults \"" + StandardPath()),
                          HasSubstr("file is not a database"), HasSubstr("standard.db.corrupt-"))));
    Store(*store, kStored);
    EXPECT_EQ(Ask(*NewStore()), kStored);
    fs::remove_all(Folder());
  }
}

TEST_F(DataStoreFaults, StartAnewWhenTheFileBreaksUnderThem) {
  {
    const auto store = NewStore();
    Store(*store, kStored);
    for (int number = 0; number < 500; ++number) {
      store->SetString(std::to_string(number), std::string(400, 'x'));
    }
  }
  ASSERT_EQ(WorkerProcess({"scribble", StandardPath()}).Wait(), 0);
  const auto store = NewStore();
  EXPECT_EQ(store->GetString("7", kFallback.text), kFallback.text);
  EXPECT_THAT(log_->TakeLines(),
              ElementsAre(AllOf(StartsWith("Cannot use user defaults \"" + StandardPath()),
                                HasSubstr("malformed"), HasSubstr("standard.db.corrupt-"))));
  Store(*store, kStored);
  EXPECT_EQ(Ask(*NewStore()), kStored);
}

}  // namespace
