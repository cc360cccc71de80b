#include <memory>
#include <string>
#include <vector>

#include "unit/core/modules/AnalyticsFixture.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using TestSupport::LogLevel;
using Velmora::MobilePrivacyStatus;
using Velmora::Variant;

class IdentityModuleTest : public AnalyticsFixture {
 protected:
  // What the core tells, its blanks and line ends taken out.
  std::string Identities() {
    CallLog told;
    core->GetSDKIdentities([&](const std::string& json) { Add(told, json); });
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return !told.Get().empty(); }));
    std::string text = told.Get().at(0);
    std::erase_if(text, [](char byte) { return byte == ' ' || byte == '\n'; });
    return text;
  }
  std::string VisitorId() { return Stored("KORVOMOBILE_PERSISTED_MID"); }

  std::shared_ptr<Velmora::DataStoreInterface> Store() const {
    return services->localStorage->GetDataStore("visitorIDServiceDataStore");
  }
  std::string Stored(const std::string& key) const { return Store()->GetString(key, "none"); }
};

TEST_F(IdentityModuleTest, MakesAVisitorIdOnceAndKeepsIt) {
  StartCore();
  const std::string identities = Identities();
  const std::string id = VisitorId();
  EXPECT_EQ(id.size(), 36U);
  EXPECT_EQ(identities, R"({"visitorId":")" + id + R"("})");
  EXPECT_EQ(StateOf("identity"), identities);
  EXPECT_EQ(StateOf("identity", NewEvent("")->WithNumber(1)), identities) << "from the first on";
  Restart();
  EXPECT_EQ(Identities(), identities);
}

TEST_F(IdentityModuleTest, KeepsTheVisitorIdOfAnEarlierGenerationAndWhatBelongsToIt) {
  Store()->SetString("KORVOMOBILE_PERSISTED_MID", "123");
  Store()->SetString("KORVOMOBILE_VISITOR_ID", "custom");
  Store()->SetString("KORVOMOBILE_VISITORID_IDS", "ids");
  StartCore();
  EXPECT_EQ(Identities(), R"({"customVisitorId":"custom","linkedIds":"ids","visitorId":"123"})");
}

TEST_F(IdentityModuleTest, MakesAVisitorIdWhereTheEarlierGenerationHadNone) {
  Store()->SetString("KORVOMOBILE_PERSISTED_MID", "");
  Store()->SetString("KORVOMOBILE_VISITOR_ID", "");
  StartCore();
  EXPECT_THAT(Identities(), AllOf(HasSubstr("visitorId"), Not(HasSubstr("customVisitorId"))));
  EXPECT_EQ(VisitorId().size(), 36U);
}

TEST_F(IdentityModuleTest, KeepsWhatTheAppGives) {
  Store()->SetString("KORVOMOBILE_PERSISTED_MID", "1");
  StartCore();
  core->SetPushIdentifier("0AB");
  core->SetAdvertisingIdentifier("ad \"quoted\"");
  const std::string identities =
      R"({"advertisingIdentifier":"ad\"quoted\"","pushIdentifier":"0AB","visitorId":"1"})";
  EXPECT_EQ(Identities(), identities);
  EXPECT_EQ(StateOf("identity"), identities);
  EXPECT_TRUE(Store()->GetBoolean("KORVOMOBILE_PUSH_ENABLED", false));
  Restart();
  EXPECT_EQ(Identities(), identities);
  core->SetPushIdentifier("");
  EXPECT_EQ(Identities(), R"({"advertisingIdentifier":"ad\"quoted\"","visitorId":"1"})");
  EXPECT_FALSE(Store()->GetBoolean("KORVOMOBILE_PUSH_ENABLED", true));
  Restart();
  EXPECT_EQ(Identities(), R"({"advertisingIdentifier":"ad\"quoted\"","visitorId":"1"})");
}

TEST_F(IdentityModuleTest, TakesAnAdvertisingIdentifierOfZerosForNone) {
  Store()->SetString("KORVOMOBILE_PERSISTED_MID", "1");
  StartCore();
  core->SetAdvertisingIdentifier("ad");
  core->SetAdvertisingIdentifier("00000000-0000-0000-0000-000000000000");
  EXPECT_EQ(Identities(), R"({"visitorId":"1"})");
}

TEST_F(IdentityModuleTest, IgnoresAnIdentifierThatIsTooLong) {
  Store()->SetString("KORVOMOBILE_PERSISTED_MID", "1");
  StartCore();
  log.ExpectLine(LogLevel::Warning, "Identity",
                 "an identifier of 4097 bytes is too long and was ignored");
  core->SetPushIdentifier(std::string(4097, 'a'));
  EXPECT_EQ(Identities(), R"({"visitorId":"1"})");
}

TEST_F(IdentityModuleTest, ErasesEveryIdentifierAtAnOptOutAndMakesANewVisitorIdAfterIt) {
  for (const char* key :
       {"KORVOMOBILE_PERSISTED_MID", "KORVOMOBILE_PERSISTED_MID_HINT",
        "KORVOMOBILE_PERSISTED_MID_BLOB", "KORVOMOBILE_VISITOR_ID", "KORVOMOBILE_VISITORID_IDS"}) {
    Store()->SetString(key, "old");
  }
  StartCore();
  core->SetPushIdentifier("0AB");
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  core->SetAdvertisingIdentifier("ad");
  EXPECT_EQ(Identities(), "{}");
  EXPECT_EQ(StateOf("identity"), "{}");
  for (const char* key : {"KORVOMOBILE_PERSISTED_MID", "KORVOMOBILE_PERSISTED_MID_HINT",
                          "KORVOMOBILE_PERSISTED_MID_BLOB", "KORVOMOBILE_VISITOR_ID",
                          "KORVOMOBILE_VISITORID_IDS", "KORVOMOBILE_PUSH_IDENTIFIER",
                          "KORVOMOBILE_ADVERTISING_IDENTIFIER", "KORVOMOBILE_PUSH_ENABLED"}) {
    EXPECT_FALSE(Store()->Contains(key)) << key;
  }
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedIn);
  const std::string identities = Identities();
  EXPECT_EQ(VisitorId().size(), 36U);
  EXPECT_EQ(identities, R"({"advertisingIdentifier":"ad","pushIdentifier":"0AB","visitorId":")" +
                            VisitorId() + R"("})");
}

TEST_F(IdentityModuleTest, StaysWithoutIdentifiersAfterARestart) {
  StartCore();
  core->SetPrivacyStatus(MobilePrivacyStatus::OptedOut);
  Restart();
  EXPECT_EQ(Identities(), "{}");
  EXPECT_FALSE(Store()->Contains("KORVOMOBILE_PERSISTED_MID"));
}

TEST_F(IdentityModuleTest, GivesHitsTheVisitorId) {
  StartSending();
  Track("early");
  ASSERT_TRUE(WaitForNumbers({0, 1, 0}));
  EXPECT_THAT(Posted(EventKeys::kVisitorId), testing::ElementsAre(VisitorId()));
}

TEST_F(IdentityModuleTest, AnswersWithoutItsServices) {
  services->localStorage = nullptr;
  services->jsonUtility = nullptr;
  services->crypto = nullptr;
  log.AllowLines(LogLevel::Warning, "Configuration", testing::_);
  log.AllowLines(LogLevel::Error, "Configuration", testing::_);
  log.ExpectLine(LogLevel::Warning, "Identity",
                 "there is no data store; identifiers will not be remembered");
  log.ExpectLine(LogLevel::Error, "Identity",
                 "the identifiers cannot be told: there is no JSON service to write with");
  StartCore();
  EXPECT_EQ(Identities(), "{}");
}

TEST_F(IdentityModuleTest, HasNoVisitorIdWithoutACryptoService) {
  services->crypto = nullptr;
  log.ExpectLine(LogLevel::Warning, "Identity",
                 "there is no crypto service to make a visitor id with");
  StartCore();
  core->SetPushIdentifier("0AB");
  EXPECT_EQ(Identities(), R"({"pushIdentifier":"0AB"})");
}

TEST_F(IdentityModuleTest, RemembersForThisRunWithoutADataStore) {
  services->localStorage = nullptr;
  log.AllowLines(LogLevel::Warning, "Configuration", testing::_);
  log.ExpectLine(LogLevel::Warning, "Identity",
                 "there is no data store; identifiers will not be remembered");
  StartCore();
  const std::string identities = Identities();
  EXPECT_THAT(identities, HasSubstr("visitorId"));
  EXPECT_EQ(Identities(), identities);
}

TEST_F(IdentityModuleTest, ARequestFromOutsideMayBeAnything) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Identity", "the request \"odd\" asks for nothing that is known");
  const std::string identities = Identities();
  EXPECT_EQ(Dispatch(NewEvent("odd", EventTypes::kIdentity, EventSources::kRequest)), "");
  EXPECT_EQ(Identities(), identities);
}

}  // namespace
