#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/TemporaryDirectory.h"
#include "unit/core/hub/CoreFixture.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using TestSupport::LogLevel;
using Velmora::MobilePrivacyStatus;
using Velmora::Variant;

class ConfigurationModuleTest : public CoreFixture {
 protected:
  MobilePrivacyStatus Status() {
    TestSupport::Guarded<std::vector<MobilePrivacyStatus>> statuses;
    core->GetPrivacyStatus([&](const MobilePrivacyStatus& status) {
      statuses.With([&](auto& all) { all.push_back(status); });
    });
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return !statuses.Get().empty(); }));
    return statuses.Get().at(0);
  }

  // Configures with a file that cannot be used: one error line names it, and nothing changes.
  void ExpectUnusable(const std::string& path, const std::string& reason) {
    core->UpdateConfiguration({{"kept", Variant::FromString("yes")}});
    core->ConfigureWithFileInPath(path);
    Settle();
    const std::vector<TestSupport::LogLine> lines = log.TakeLines();
    ASSERT_THAT(lines, testing::SizeIs(1));
    EXPECT_EQ(lines[0].level, LogLevel::Error);
    EXPECT_EQ(lines[0].tag, "Configuration");
    EXPECT_THAT(lines[0].message, AllOf(HasSubstr('"' + path + '"'), HasSubstr(reason)));
    EXPECT_EQ(StateOf("configuration"), R"({"kept":"yes","privacyStatus":2})");
  }

  TestSupport::TemporaryDirectory directory;
};

TEST_F(ConfigurationModuleTest, ItsStateIsThereFromTheFirstEventOn) {
  StartCore();
  EXPECT_EQ(StateOf("configuration"), "none");
  core->CollectPii({});
  Settle();
  EXPECT_EQ(StateOf("configuration", NewEvent("")->WithNumber(1)), R"({"privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, ReadsAFile) {
  StartCore();
  core->ConfigureWithFileInPath(
      directory.WriteFile("config.json", " \n{\"a\": {\"b\": [1, 2.5, true]}, \"c\": \"d\"}\n"));
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"a":{"b":[1,2.5,true]},"c":"d","privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, UpdatesMergeAndRemove) {
  StartCore();
  core->ConfigureWithFileInPath(directory.WriteFile("config.json", R"({"a":1,"b":2,"c":3,"d":4})"));
  core->UpdateConfiguration({{"a", Variant::FromString("new")},
                             {"b", nullptr},
                             {"c", Variant::FromNull()},
                             {"e", Variant::FromBoolean(true)},
                             {"never", nullptr}});
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"a":"new","d":4,"e":true,"privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, StatesAreVersionedByTheRequest) {
  StartCore();
  core->UpdateConfiguration({{"a", Variant::FromLong(1)}});
  core->UpdateConfiguration({{"a", Variant::FromLong(2)}});
  Settle();
  std::vector<EventPointer> requests;
  for (const EventPointer& event : listener->Heard()) {
    if (event->GetSource() == EventSources::kRequest) requests.push_back(event);
  }
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_EQ(StateOf("configuration", requests[0]), R"({"a":1,"privacyStatus":2})");
  EXPECT_EQ(StateOf("configuration", requests[1]), R"({"a":2,"privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, UpdatesStandOverTheFileWhicheverCameFirst) {
  StartCore();
  core->UpdateConfiguration({{"a", Variant::FromLong(1)}, {"b", nullptr}});
  core->ConfigureWithFileInPath(directory.WriteFile("config.json", R"({"a":2,"b":2,"c":2})"));
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"a":1,"c":2,"privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, AFileTakesThePlaceOfTheOneBefore) {
  StartCore();
  core->ConfigureWithFileInPath(directory.WriteFile("one.json", R"({"a":1,"b":1})"));
  core->ConfigureWithFileInPath(directory.WriteFile("two.json", R"({"b":2})"));
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"b":2,"privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, TheNextStartBeginsWithWhatWasConfigured) {
  StartCore();
  core->ConfigureWithFileInPath(directory.WriteFile("config.json", R"({"a":1,"b":[{}],"c":3})"));
  core->UpdateConfiguration({{"c", nullptr}, {"d", Variant::FromString("new")}});
  Restart();
  Settle();
  const std::string state = R"({"a":1,"b":[{}],"d":"new","privacyStatus":2})";
  EXPECT_EQ(StateOf("configuration"), state);
  EXPECT_EQ(StateOf("configuration", NewEvent("")->WithNumber(1)), state);
}

TEST_F(ConfigurationModuleTest, AMemberThatWasMadeEmptyStaysSoAtTheNextStart) {
  StartCore();
  core->ConfigureWithFileInPath(directory.WriteFile("config.json", R"({"a":1,"b":2,"c":3})"));
  core->UpdateConfiguration({{"b", Variant::FromString("")}});
  core->UpdateConfiguration({{"", nullptr}, {"c", nullptr}});
  log.ExpectLine(LogLevel::Debug, "Configuration", "a member without a name is ignored");
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"a":1,"privacyStatus":2})");
  Restart();
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"a":1,"privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, IgnoresStoredTextThatIsNoJsonObject) {
  const auto store = services->localStorage->GetDataStore("KorvoMobile_ConfigState");
  store->SetString("FileConfiguration", "[1]");
  store->SetInt("RemoteConfiguration", 7);
  store->SetString("UpdatedConfiguration", R"({"kept":"yes"})");
  log.ExpectLine(LogLevel::Warning, "Configuration",
                 "the stored \"FileConfiguration\" cannot be read and is ignored");
  log.ExpectLine(LogLevel::Warning, "Configuration",
                 "the stored \"RemoteConfiguration\" cannot be read and is ignored");
  StartCore();
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"kept":"yes","privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, BeginsWithNothingWhenWhatIsStoredCannotBeShared) {
  const auto store = services->localStorage->GetDataStore("KorvoMobile_ConfigState");
  store->SetString("FileConfiguration", R"({"list":[null]})");
  log.ExpectLine(LogLevel::Error, "Configuration", HasSubstr("the configuration cannot be shared"));
  StartCore();
  core->UpdateConfiguration({{"new", Variant::FromString("yes")}});
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"new":"yes","privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, WorksWithoutADataStore) {
  services->localStorage = nullptr;
  log.AllowLines(LogLevel::Warning, "Identity", testing::_);
  log.ExpectLine(LogLevel::Warning, "Configuration",
                 "there is no data store; the configuration will not be remembered");
  StartCore();
  core->UpdateConfiguration({{"a", Variant::FromLong(1)}});
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"a":1,"privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, AMissingFileIsOneErrorLine) {
  StartCore();
  ExpectUnusable(directory.PathOf("missing.json"), "cannot be used");
}

TEST_F(ConfigurationModuleTest, AnEmptyPathIsOneErrorLine) {
  StartCore();
  ExpectUnusable("", "the path is empty");
}

TEST_F(ConfigurationModuleTest, ADirectoryIsOneErrorLine) {
  StartCore();
  ExpectUnusable(directory.Path().string(), "it is a directory");
}

TEST_F(ConfigurationModuleTest, TextThatIsNoJsonObjectIsOneErrorLine) {
  StartCore();
  int count = 0;
  for (const std::string& text :
       {std::string(), std::string("  \n"), std::string("not json"), std::string("[1, 2]"),
        std::string("\"text\""), std::string("17"), std::string("null"), std::string("{"),
        std::string("{\"a\": 1,}"), std::string("{\"a\": 1} x"), std::string("{\"a\": \0}", 9),
        std::string(100'000, '{'), "{\"a\":" + std::string(100'000, '[')}) {
    SCOPED_TRACE(text.substr(0, 20));
    const std::string name = "bad" + std::to_string(++count) + ".json";
    ExpectUnusable(directory.WriteFile(name, text), "it does not hold a JSON object");
  }
}

TEST_F(ConfigurationModuleTest, AFileThatIsNoTextIsOneErrorLine) {
  StartCore();
  ExpectUnusable(directory.WriteFile("bad.json", "{\"a\": \"\xFF\xFE\"}"), "cannot be used");
}

TEST_F(ConfigurationModuleTest, AFileThatIsTooLongIsOneErrorLine) {
  StartCore();
  ExpectUnusable(directory.WriteFile("long.json", std::string(17 * 1024 * 1024, ' ')),
                 "it is too long");
}

TEST_F(ConfigurationModuleTest, ReadsALongFile) {
  StartCore();
  core->ConfigureWithFileInPath(
      directory.WriteFile("long.json", "{\"a\":\"" + std::string(10'000'000, 'x') + "\"}"));
  Settle();
  EXPECT_GT(StateOf("configuration").size(), 10'000'000U);
}

TEST_F(ConfigurationModuleTest, MissingServicesAreOneErrorLine) {
  services->fileSystem = nullptr;
  StartCore();
  ExpectUnusable("/some/file", "there is no file system service");
}

TEST_F(ConfigurationModuleTest, AnUpdateThatCannotBeWrittenChangesNothing) {
  StartCore();
  core->UpdateConfiguration({{"kept", Variant::FromString("yes")}});
  core->UpdateConfiguration(
      {{"bad", Variant::FromDouble(std::numeric_limits<double>::quiet_NaN())}});
  Settle();
  EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "Configuration", HasSubstr("cannot be shared")));
  EXPECT_EQ(StateOf("configuration"), R"({"kept":"yes","privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, AnUpdateTooLongToBeSharedIsRefusedAndAnOptOutStillIsShared) {
  StartCore();
  core->UpdateConfiguration({{"kept", Variant::FromString("yes")}});
  core->UpdateConfiguration({{"huge", Variant::FromString(std::string(17'000'000, 'x'))}});
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  Settle();
  EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "Configuration",
                              "the configuration cannot be shared: it is too long"));
  EXPECT_EQ(StateOf("configuration"), R"({"kept":"yes","privacyStatus":1})");
}

TEST_F(ConfigurationModuleTest, ARequestFromOutsideMayBeAnything) {
  StartCore();
  log.AllowLines(LogLevel::Debug, "Configuration",
                 testing::EndsWith("asks for nothing that is known"));
  for (const char* key : {EventKeys::kAppId, EventKeys::kFilePath, EventKeys::kUpdate,
                          EventKeys::kPrivacyStatus, "other"}) {
    for (const auto& value :
         {Variant::FromVariantVector({}), Variant::FromNull(), std::shared_ptr<Variant>()}) {
      Velmora::EventData data;
      data.Put(key, value);
      EXPECT_EQ(Dispatch(std::make_shared<Velmora::Event>(
                    "odd", EventTypes::kConfiguration, EventSources::kRequest,
                    std::make_shared<Velmora::EventData>(data))),
                "");
    }
  }
  EXPECT_EQ(Dispatch(NewEvent("empty", EventTypes::kConfiguration, EventSources::kRequest)), "");
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"privacyStatus":2})");
}

TEST_F(ConfigurationModuleTest, ThePrivacyStatusIsUnknownUntilItIsSet) {
  StartCore();
  EXPECT_EQ(Status(), MobilePrivacyStatus::Unknown);
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  EXPECT_EQ(Status(), MobilePrivacyStatus::OptedOut);
  EXPECT_EQ(StateOf("configuration"), R"({"privacyStatus":1})");
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  EXPECT_EQ(Status(), MobilePrivacyStatus::OptedIn);
  core->SetPrivacyStatus(static_cast<MobilePrivacyStatus>(9));
  EXPECT_EQ(Status(), MobilePrivacyStatus::Unknown);
}

TEST_F(ConfigurationModuleTest, ThePrivacyStatusMayComeWithTheConfiguration) {
  StartCore();
  core->ConfigureWithFileInPath(directory.WriteFile("config.json", R"({"privacyStatus":1})"));
  EXPECT_EQ(Status(), MobilePrivacyStatus::OptedOut);
  core->UpdateConfiguration({{EventKeys::kPrivacyStatus, Variant::FromString("out")}});
  EXPECT_EQ(Status(), MobilePrivacyStatus::Unknown);
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  core->UpdateConfiguration({{EventKeys::kPrivacyStatus, Variant::FromLong(1)}});
  EXPECT_EQ(Status(), MobilePrivacyStatus::OptedIn) << "what was set stands over it";
}

TEST_F(ConfigurationModuleTest, ThePrivacyStatusOutlivesARestart) {
  StartCore();
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  Restart();
  EXPECT_EQ(Status(), MobilePrivacyStatus::OptedOut);
  EXPECT_EQ(StateOf("configuration"), R"({"privacyStatus":1})");
}

}  // namespace
