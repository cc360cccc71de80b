// Where user defaults lie, and what stays in their files.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "Fixture.h"
#include "QEXCore_iOS/Platform/Date.h"
#include "RawDatabase.h"
#include "platform/linux/SqliteUserDefaultsGeneration.h"
#include "support/ScopedEnvironment.h"
#include "support/StandardErrorRedirection.h"
#include "support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Platform::NumberType;
using Platform::Value;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Generation = Platform::SqliteUserDefaultsGeneration;

class SqliteUserDefaultsFiles : public SqliteUserDefaultsTest {};

TEST_F(SqliteUserDefaultsFiles, KeepEveryValueAcrossARestart) {
  const Value sample = {{"text", "\xC3\xBC"},
                        {"list", Value::Array({1, 2.5, true})},
                        {"date", Value::FromObject(std::make_shared<Platform::Date>(12.5))}};
  {
    const auto defaults = NewStandard();
    defaults->SetObject("sample", sample);
    defaults->SetObject("wide", Value::Number(NumberType::NSInteger, 1));
    defaults->SetObject("gone", 1);
    defaults->RemoveObject("gone");
  }
  const auto defaults = NewStandard();
  EXPECT_EQ(defaults->ObjectForKey("sample"), sample);
  EXPECT_EQ(defaults->ObjectForKey("wide").StorageType(), NumberType::NSInteger);
  EXPECT_THAT(defaults->KeysWithPrefix(""), ElementsAre("sample", "wide"));
}

TEST_F(SqliteUserDefaultsFiles, AreSharedByProvidersThatRunAtTheSameTime) {
  const auto one = NewStandard();
  const auto other = NewStandard();
  for (int count = 0; count < 100; ++count) {
    one->SetObject("k", count);
    ASSERT_EQ(other->ObjectForKey("k"), Value(count));
    other->SetObject("l", count);
    ASSERT_EQ(one->ObjectForKey("l"), Value(count));
    other->RemoveObject("k");
    ASSERT_TRUE(one->ObjectForKey("k").IsAbsent());
  }
  one->SetObject("prefix.k", 1);
  EXPECT_EQ(other->ObjectForKey("prefix.k"), Value(1));
  one->RemoveObjectsWithPrefix("prefix.");
  EXPECT_TRUE(other->ObjectForKey("prefix.k").IsAbsent());
}

TEST_F(SqliteUserDefaultsFiles, GiveOneObjectForOneSuite) {
  const auto provider = NewProvider();
  EXPECT_EQ(provider->OpenSuite("group.shop"), provider->OpenSuite("group.shop"));
  EXPECT_NE(provider->OpenSuite("group.shop"), provider->OpenSuite("group.game"));
}

TEST_F(SqliteUserDefaultsFiles, HaveANameOfTheirOwnForEachSuite) {
  const auto provider = NewProvider();
  const std::vector<std::string> names = {
      "group.shop", "Group.shop", "a/b", "a%2Fb",    "../escape",
      ".hidden",    "..",         "a b", "\xC3\xBC", std::string("nul\0here", 8),
      "*?",         "standard.db"};
  for (std::size_t index = 0; index < names.size(); ++index) {
    const auto suite = provider->OpenSuite(names[index]);
    ASSERT_NE(suite, nullptr) << names[index];
    suite->SetObject("k", index);
  }
  for (std::size_t index = 0; index < names.size(); ++index) {
    EXPECT_EQ(NewProvider()->OpenSuite(names[index])->ObjectForKey("k").AsInt64(),
              static_cast<std::int64_t>(index));
  }
  std::set<std::string> databases;
  for (const auto& entry : fs::recursive_directory_iterator(directory_.Path())) {
    if (entry.path().extension() == ".db") databases.insert(entry.path().filename());
  }
  EXPECT_EQ(databases.size(), names.size());
  EXPECT_TRUE(databases.contains("%2E.%2Fescape.db"));
  EXPECT_TRUE(fs::exists(Folder() + "/group.shop.db"));
}

TEST_F(SqliteUserDefaultsFiles, AreNotMadeForANameThatIsTooLong) {
  const auto provider = NewProvider();
  EXPECT_NE(provider->OpenSuite(std::string(200, 'n')), nullptr);
  EXPECT_EQ(provider->OpenSuite(std::string(201, 'n')), nullptr);
  EXPECT_EQ(provider->OpenSuite(std::string(100, '/')), nullptr);
  EXPECT_EQ(provider->OpenSuite(std::string(10'000'000, 'n')), nullptr);
}

TEST_F(SqliteUserDefaultsFiles, LieInAFolderThatOnlyItsOwnerMayEnter) {
  NewStandard()->SetObject("k", 1);
  struct stat status {};
  ASSERT_EQ(::stat(Folder().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(SqliteUserDefaultsFiles, LieBelowTheDataFolderOfTheUser) {
  const TestSupport::ScopedEnvironment data("XDG_DATA_HOME", directory_.PathOf("data"));
  Platform::SqliteUserDefaultsProvider provider;
  provider.Standard()->SetObject("k", 1);
  ASSERT_NE(provider.OpenSuite("group.shop"), nullptr);
  EXPECT_TRUE(
      fs::exists(directory_.PathOf("data/user_defaults_integration/user-defaults/standard.db")));
  EXPECT_TRUE(fs::exists(directory_.PathOf("data/user-defaults/group.shop.db")));
}

TEST_F(SqliteUserDefaultsFiles, LieBelowTheHomeFolderWhereTheDataFolderIsNotAbsolute) {
  const TestSupport::ScopedEnvironment data("XDG_DATA_HOME", "relative");
  const TestSupport::ScopedEnvironment home("HOME", directory_.PathOf("home"));
  Platform::SqliteUserDefaultsProvider provider;
  ASSERT_NE(provider.OpenSuite("group.shop"), nullptr);
  EXPECT_TRUE(fs::exists(directory_.PathOf("home/.local/share/user-defaults/group.shop.db")));
}

TEST_F(SqliteUserDefaultsFiles, AreNowhereWithoutAnyFolderOfTheUser) {
  const TestSupport::ScopedEnvironment data("XDG_DATA_HOME", std::nullopt);
  const TestSupport::ScopedEnvironment home("HOME", std::nullopt);
  const TestSupport::StandardErrorCapture standardError;
  Platform::SqliteUserDefaultsProvider provider;
  provider.Standard()->SetObject("k", 1);
  EXPECT_TRUE(provider.Standard()->ObjectForKey("k").IsAbsent());
  EXPECT_EQ(provider.OpenSuite("group.shop"), nullptr);
  EXPECT_THAT(standardError.Text(), HasSubstr("neither XDG_DATA_HOME nor HOME names a folder"));
}

TEST_F(SqliteUserDefaultsFiles, ServeReadsWhileAWriterThatDiedIsNotYetForgotten) {
  const auto defaults = NewStandard();
  defaults->SetObject("k", 1);
  EXPECT_EQ(defaults->ObjectForKey("k"), Value(1));
  Generation generation(StandardPath() + "-generation", 1s);
  const Generation::Write abandoned = generation.BeginWrite();

  EXPECT_EQ(defaults->ObjectForKey("k"), Value(1));
  EXPECT_EQ(NewStandard()->ObjectForKey("k"), Value(1));

  // The second read that finds the same write gives it up for lost.
  EXPECT_EQ(defaults->ObjectForKey("k"), Value(1));
  EXPECT_EQ(generation.Load(), abandoned.odd + 1);
  defaults->SetObject("k", 2);
  EXPECT_EQ(defaults->ObjectForKey("k"), Value(2));
}

TEST_F(SqliteUserDefaultsFiles, TakeWritesBehindAWriterThatDied) {
  const auto one = NewStandard();
  const auto other = NewStandard();
  one->SetObject("k", 1);
  EXPECT_EQ(other->ObjectForKey("k"), Value(1));
  Generation generation(StandardPath() + "-generation", 1s);
  generation.BeginWrite();
  one->SetObject("k", 2);
  EXPECT_TRUE(Generation::IsEven(generation.Load()));
  EXPECT_EQ(one->ObjectForKey("k"), Value(2));
  EXPECT_EQ(other->ObjectForKey("k"), Value(2));
}

TEST_F(SqliteUserDefaultsFiles, AreMadeAnewSoonAfterSomebodyRemovedThem) {
  const auto defaults = NewStandard();
  defaults->SetObject("k", 1);
  fs::remove_all(Folder());
  EXPECT_TRUE(TestSupport::WaitUntil([&] {
    defaults->SetObject("k", 2);
    return fs::exists(StandardPath());
  }));
  EXPECT_EQ(defaults->ObjectForKey("k"), Value(2));
  EXPECT_EQ(NewStandard()->ObjectForKey("k"), Value(2));
}

TEST_F(SqliteUserDefaultsFiles, AreReadableForTheDatabaseTool) {
  NewStandard()->SetObject("k", "text");
  EXPECT_EQ(RunRawSql(StandardPath(), "SELECT key FROM defaults"), "k");
  EXPECT_EQ(RunRawSql(StandardPath(), "PRAGMA integrity_check"), "ok");
  EXPECT_EQ(RunRawSql(StandardPath(), "PRAGMA journal_mode"), "wal");
}

}  // namespace
