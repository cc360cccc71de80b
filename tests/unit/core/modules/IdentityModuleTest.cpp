#include <memory>
#include <string>
#include <vector>

#include "unit/core/hub/CoreFixture.h"

namespace {

using TestSupport::LogLevel;

class IdentityModuleTest : public CoreFixture {
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
};

TEST_F(IdentityModuleTest, TellsAnEmptyObjectWhenNothingIsKnown) {
  StartCore();
  EXPECT_EQ(Identities(), "{}");
}

TEST_F(IdentityModuleTest, TellsWhatTheAppHasGiven) {
  StartCore();
  core->SetPushIdentifier("0AB");
  core->SetAdvertisingIdentifier("ad \"quoted\"");
  EXPECT_EQ(Identities(), R"({"advertisingIdentifier":"ad\"quoted\"","pushIdentifier":"0AB"})");
  EXPECT_EQ(StateOf("identity"),
            R"({"advertisingIdentifier":"ad\"quoted\"","pushIdentifier":"0AB"})");
  core->SetPushIdentifier("");
  EXPECT_EQ(Identities(), R"({"advertisingIdentifier":"ad\"quoted\""})");
}

TEST_F(IdentityModuleTest, TellsWhatIsStored) {
  const auto store = services->localStorage->GetDataStore("visitorIDServiceDataStore");
  store->SetString("KORVOMOBILE_PERSISTED_MID", "123");
  store->SetString("KORVOMOBILE_VISITOR_ID", "");
  store->SetString("KORVOMOBILE_VISITORID_IDS", "ids");
  StartCore();
  EXPECT_EQ(Identities(), R"({"linkedIds":"ids","visitorId":"123"})");
}

TEST_F(IdentityModuleTest, AnswersWithoutItsServices) {
  services->localStorage = nullptr;
  services->jsonUtility = nullptr;
  StartCore();
  log.AllowLines(LogLevel::Warning, "Configuration", testing::_);
  log.AllowLines(LogLevel::Error, "Configuration", testing::_);
  log.ExpectLine(LogLevel::Warning, "Identity",
                 "there is no data store; stored identifiers are not known");
  log.ExpectLine(LogLevel::Error, "Identity",
                 "the identifiers cannot be told: there is no JSON service to write with");
  EXPECT_EQ(Identities(), "{}");
}

TEST_F(IdentityModuleTest, ARequestFromOutsideMayBeAnything) {
  StartCore();
  log.ExpectLine(LogLevel::Debug, "Identity", "the request \"odd\" asks for nothing that is known");
  EXPECT_EQ(Dispatch(NewEvent("odd", EventTypes::kIdentity, EventSources::kRequest)), "");
  EXPECT_EQ(Identities(), "{}");
}

}  // namespace
