// The configuration that belongs to an app id.

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "support/FakeUrlSession.h"
#include "support/TemporaryDirectory.h"
#include "unit/core/hub/CoreFixture.h"

namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::LogLevel;
using TestSupport::WaitUntil;
using Velmora::Variant;
using Session = TestSupport::FakeUrlSession;

class ConfigurationDownloadTest : public CoreFixture {
 protected:
  ConfigurationDownloadTest() {
    host.bundle->SetInfo("VelmoraConfigurationUrl", "https://config.test/apps/{appId}.json");
    log.AllowLines(LogLevel::Debug, "RemoteFileManager: ", testing::_);
    log.AllowLines(LogLevel::Warning,
                   "RemoteFileManager: ", HasSubstr("Invalid Extension on Cache File"));
    log.AllowLines(LogLevel::Debug, "NativeNetworkService", testing::_);
    Serve(R"({"a":1,"b":1})");
  }

  void Serve(const std::string& text, int status = 200) {
    host.urlSession->SetServer(
        [text, status](const Platform::UrlRequest&) { return Session::Respond(status, text); });
  }
  void GoOffline() {
    host.urlSession->SetServer([](const Platform::UrlRequest&) {
      return Session::Fail(Platform::UrlFailure::NotConnected);
    });
  }
  bool WaitForState(const std::string& state) {
    return WaitUntil([&] { return StateOf("configuration") == state; });
  }
  bool WaitForWaits(const std::vector<std::chrono::milliseconds>& waits) const {
    return WaitUntil([&] { return clock->Waits() == waits; });
  }
  std::vector<std::string> Urls() const {
    std::vector<std::string> urls;
    for (const auto& request : host.urlSession->Requests()) urls.push_back(request.url);
    return urls;
  }
  void ExpectWarning(const std::string& message) {
    log.ExpectLine(LogLevel::Warning, "Configuration", message);
  }
};

TEST_F(ConfigurationDownloadTest, IsFetchedFromTheAddressOfTheBundle) {
  StartCore();
  core->ConfigureWithAppId("shop 1/ä");
  EXPECT_TRUE(WaitForState(R"({"a":1,"appId":"shop1/ä","b":1,"privacyStatus":2})"));
  EXPECT_THAT(Urls(), testing::ElementsAre("https://config.test/apps/shop%201%2F%C3%A4.json"));
  EXPECT_THAT(clock->Waits(), IsEmpty());
}

TEST_F(ConfigurationDownloadTest, StandsOverTheFileAndUnderUpdates) {
  StartCore();
  core->UpdateConfiguration({{"b", Variant::FromLong(3)}});
  core->ConfigureWithAppId("shop");
  const TestSupport::TemporaryDirectory directory;
  core->ConfigureWithFileInPath(directory.WriteFile("config.json", R"({"a":2,"b":2,"c":2})"));
  EXPECT_TRUE(WaitForState(R"({"a":1,"appId":"shop","b":3,"c":2,"privacyStatus":2})"));
}

TEST_F(ConfigurationDownloadTest, IsThereAtTheNextStartWithoutANetwork) {
  StartCore();
  core->ConfigureWithAppId("shop");
  const std::string state = R"({"a":1,"appId":"shop","b":1,"privacyStatus":2})";
  ASSERT_TRUE(WaitForState(state));
  GoOffline();
  Restart();
  Settle();
  EXPECT_EQ(StateOf("configuration"), state);
  core->ConfigureWithAppId("shop");
  Settle();
  EXPECT_EQ(StateOf("configuration"), state);
}

TEST_F(ConfigurationDownloadTest, ComesFromTheCacheWhereTheSettingsAreLost) {
  StartCore();
  core->ConfigureWithAppId("shop");
  const std::string state = R"({"a":1,"appId":"shop","b":1,"privacyStatus":2})";
  ASSERT_TRUE(WaitForState(state));
  GoOffline();
  Finish();
  services->localStorage->GetDataStore("KorvoMobile_ConfigState")->RemoveAll();
  StartCore();
  core->ConfigureWithAppId("shop");
  Settle();
  EXPECT_EQ(StateOf("configuration"), state);
}

TEST_F(ConfigurationDownloadTest, OfAnotherAppIdIsForgottenAtOnce) {
  StartCore();
  core->ConfigureWithAppId("shop");
  ASSERT_TRUE(WaitForState(R"({"a":1,"appId":"shop","b":1,"privacyStatus":2})"));
  GoOffline();
  core->ConfigureWithAppId("other");
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"appId":"other","privacyStatus":2})");
}

TEST_F(ConfigurationDownloadTest, IsAskedForAgainUntilItComes) {
  GoOffline();
  log.AllowLines(LogLevel::Debug, "Configuration", HasSubstr("did not come"));
  StartCore();
  core->ConfigureWithAppId("shop");
  for (const auto delay : std::vector<std::chrono::milliseconds>{15s, 30s, 60s}) {
    ASSERT_TRUE(WaitForWaits({61s}));
    clock->Advance(61s);
    ASSERT_TRUE(WaitForWaits({delay}));
    clock->Advance(delay);
  }
  ASSERT_TRUE(WaitForWaits({61s}));
  ASSERT_TRUE(WaitUntil([&] { return Urls().size() == 4; }));
  clock->Advance(61s);
  ASSERT_TRUE(WaitForWaits({120s}));
  Serve(R"({"late":true})");
  clock->Advance(120s);
  EXPECT_TRUE(WaitForState(R"({"appId":"shop","late":true,"privacyStatus":2})"));
}

TEST_F(ConfigurationDownloadTest, ThatIsRefusedIsOneWarning) {
  Serve("", 404);
  ExpectWarning(
      "the configuration of the app id cannot be had: remotefilemanager.request_failed: 404");
  StartCore();
  core->ConfigureWithAppId("shop");
  EXPECT_TRUE(WaitUntil([&] { return !Urls().empty() && clock->Waits().empty(); }));
  EXPECT_EQ(StateOf("configuration"), R"({"appId":"shop","privacyStatus":2})");
}

TEST_F(ConfigurationDownloadTest, ThatIsNoJsonObjectIsOneWarningAndChangesNothing) {
  StartCore();
  core->ConfigureWithAppId("shop");
  const std::string state = R"({"a":1,"appId":"shop","b":1,"privacyStatus":2})";
  ASSERT_TRUE(WaitForState(state));
  Serve("[1, 2]");
  ExpectWarning("the configuration of the app id cannot be used: it is no JSON object");
  core->ConfigureWithAppId("shop");
  EXPECT_TRUE(WaitUntil([&] { return Urls().size() == 2 && clock->Waits().empty(); }));
  EXPECT_EQ(StateOf("configuration"), state);
}

TEST_F(ConfigurationDownloadTest, MayBringTheOptOut) {
  Serve(R"({"privacyStatus":1})");
  StartCore();
  core->ConfigureWithAppId("shop");
  EXPECT_TRUE(WaitForState(R"({"appId":"shop","privacyStatus":1})"));
}

TEST_F(ConfigurationDownloadTest, NeedsAnAppIdThatCanBeUsed) {
  StartCore();
  ExpectWarning("an empty app id was ignored");
  core->ConfigureWithAppId("");
  for (const std::string& appId :
       {std::string("."), std::string(".."), std::string("a\nb"), std::string(256, 'x')}) {
    ExpectWarning("an unusable app id was ignored");
    core->ConfigureWithAppId(appId);
  }
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"privacyStatus":2})");
  EXPECT_THAT(Urls(), IsEmpty());
}

TEST_F(ConfigurationDownloadTest, NeedsAnAddressThatCanBeUsed) {
  const std::string prefix = "no configuration can be fetched from \"VelmoraConfigurationUrl\": ";
  StartCore();
  for (const char* address :
       {"http://config.test/{appId}", "https://config.test/", "https://{appId} x", "{appId}"}) {
    host.bundle->SetInfo("VelmoraConfigurationUrl", address);
    ExpectWarning(prefix + "it must be an https URL with \"{appId}\" in it");
    core->ConfigureWithAppId("shop");
    Settle();
  }
  host.bundle->SetInfo("VelmoraConfigurationUrl", Platform::Value());
  ExpectWarning(prefix + "the information dictionary has no such address");
  core->ConfigureWithAppId("shop");
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"appId":"shop","privacyStatus":2})");
  EXPECT_THAT(Urls(), IsEmpty());
}

TEST_F(ConfigurationDownloadTest, NeedsARemoteFileManager) {
  services->remoteFileManager = nullptr;
  StartCore();
  ExpectWarning(
      "no configuration can be fetched from \"VelmoraConfigurationUrl\": there is no remote file "
      "manager");
  core->ConfigureWithAppId("shop");
  Settle();
  EXPECT_EQ(StateOf("configuration"), R"({"appId":"shop","privacyStatus":2})");
}

}  // namespace
