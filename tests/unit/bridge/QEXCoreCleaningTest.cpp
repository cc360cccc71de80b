#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BridgeFixture.h"
#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/QEXCore.h"
#include "VelmoraCore/Log.h"

namespace {

using Platform::Value;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::StartsWith;
using TestSupport::LogLevel;
using TestSupport::RecordingCore;
using Velmora::StringMap;

constexpr char kAnalyticsWarning[] =
    "Context Data requires NSDictionary<NSString*, NSString*>.  Invalid entries have been "
    "removed: ";

class QEXCoreCleaning : public TestSupport::BridgeFixture {
 protected:
  static RecordingCore::Call LastCall() {
    const auto calls = RecordingCore::Calls();
    return calls.empty() ? RecordingCore::Call() : calls.back();
  }

  // The context data of the last tracking, as a string map.
  static StringMap LastContextData() {
    StringMap strings;
    const auto call = LastCall();
    if (!call.eventData || !call.eventData->Get("contextdata")) {
      ADD_FAILURE() << "no context data";
      return strings;
    }
    for (const auto& [key, value] : call.eventData->Get("contextdata")->GetVariantMap()) {
      strings[key] = value->GetString();
    }
    return strings;
  }

  const Value mixed = {{"sku", "A-17"}, {"count", 2}};
};

TEST_F(QEXCoreCleaning, TrackActionDropsWhatIsNoTextWithOneWarning) {
  QEXCore::trackAction("addToCart", mixed);
  log.ExpectLine(LogLevel::Warning, "Analytics",
                 AllOf(StartsWith(kAnalyticsWarning), HasSubstr("count"), Not(HasSubstr("sku"))));
  EXPECT_EQ(LastCall().operation, "Track");
  EXPECT_EQ(LastCall().eventData->Get("action")->GetString(), "addToCart");
  EXPECT_EQ(LastCall().eventData->Get("state"), nullptr);
  EXPECT_EQ(LastCall().eventData->GetAll().size(), 2U);
  EXPECT_THAT(LastContextData(), ElementsAre(Pair("sku", "A-17")));
}

TEST_F(QEXCoreCleaning, TrackStateDropsWhatIsNoTextWithOneWarning) {
  QEXCore::trackState("cart", mixed);
  log.ExpectLine(LogLevel::Warning, "Analytics", StartsWith(kAnalyticsWarning));
  EXPECT_EQ(LastCall().operation, "Track");
  EXPECT_EQ(LastCall().eventData->Get("state")->GetString(), "cart");
  EXPECT_EQ(LastCall().eventData->Get("action"), nullptr);
  EXPECT_THAT(LastContextData(), ElementsAre(Pair("sku", "A-17")));
}

TEST_F(QEXCoreCleaning, CollectPiiDropsWhatIsNoTextWithOneWarning) {
  QEXCore::collectPii(mixed);
  log.ExpectLine(
      LogLevel::Warning, "Collect PII",
      AllOf(StartsWith("found invalid entries in PII data, removing (requires <NSString*, "
                       "NSString*>): "),
            HasSubstr("count")));
  EXPECT_EQ(LastCall().operation, "CollectPii");
  EXPECT_THAT(LastCall().strings, ElementsAre(Pair("sku", "A-17")));
}

TEST_F(QEXCoreCleaning, LifecycleStartDropsWhatIsNoTextWithOneWarning) {
  QEXCore::lifecycleStart(mixed);
  log.ExpectLine(
      LogLevel::Warning, "Lifecycle Start",
      AllOf(StartsWith("found invalid entries in context data, removing (requires <NSString*, "
                       "NSString*>): "),
            HasSubstr("count")));
  EXPECT_EQ(LastCall().operation, "LifecycleStart");
  EXPECT_THAT(LastCall().strings, ElementsAre(Pair("sku", "A-17")));
}

TEST_F(QEXCoreCleaning, TheWarningEndsWithADescriptionOfWhatWasDropped) {
  const Value dropped = {{"count", 2}, {"100%s", true}};
  QEXCore::trackAction("a", {{"count", 2}, {"sku", "A-17"}, {"100%s", true}});
  log.ExpectLine(LogLevel::Warning, "Analytics",
                 std::string(kAnalyticsWarning) + dropped.Description());
}

TEST_F(QEXCoreCleaning, EveryKindButTextIsDropped) {
  Value data = {{"text", ""},
                {"flag", true},
                {"none", Value::Null()},
                {"list", Value::Array({"a"})},
                {"inner", {{"a", "b"}}},
                {"bytes", Value::FromData({1})},
                {"date", Value::FromObject(std::make_shared<Platform::Date>(1.0))}};
  data.Set("", "empty key");
  data.Set(7, "key of another kind");
  QEXCore::collectPii(data);
  log.ExpectLine(LogLevel::Warning, "Collect PII", EndsWith("}"));
  EXPECT_THAT(LastCall().strings, ElementsAre(Pair("text", "")));
}

TEST_F(QEXCoreCleaning, AnAbsentOrEmptyDictionaryStillCallsTheCoreAndLogsNothing) {
  for (const Value& nothing : {Value(), Value::Dictionary()}) {
    RecordingCore::TakeCalls();
    QEXCore::collectPii(nothing);
    EXPECT_EQ(LastCall().operation, "CollectPii");
    EXPECT_THAT(LastCall().strings, IsEmpty());
    QEXCore::lifecycleStart(nothing);
    EXPECT_EQ(LastCall().operation, "LifecycleStart");
    EXPECT_THAT(LastCall().strings, IsEmpty());
    QEXCore::trackAction("a", nothing);
    EXPECT_EQ(LastCall().operation, "Track");
    EXPECT_THAT(LastContextData(), IsEmpty());
    QEXCore::trackState("s", nothing);
    EXPECT_THAT(LastContextData(), IsEmpty());
  }
}

TEST_F(QEXCoreCleaning, AnAbsentOrEmptyNameIsTrackedAsAnEmptyText) {
  QEXCore::trackAction(std::nullopt, {{"k", "v"}});
  EXPECT_EQ(LastCall().eventData->Get("action")->GetString(), "");
  QEXCore::trackState("", {});
  EXPECT_EQ(LastCall().eventData->Get("state")->GetString(), "");
}

TEST_F(QEXCoreCleaning, TheCallersDictionaryStaysAsItIs) {
  Value data = mixed;
  QEXCore::collectPii(data);
  log.ExpectLine(LogLevel::Warning, "Collect PII", HasSubstr("count"));
  EXPECT_EQ(data, mixed);
}

TEST_F(QEXCoreCleaning, WritesNoWarningWhenOnlyErrorsAreLogged) {
  QEXCore::setLogLevel(QEXMobileLogLevel::error);
  QEXCore::collectPii(mixed);
  EXPECT_THAT(LastCall().strings, ElementsAre(Pair("sku", "A-17")));
}

TEST_F(QEXCoreCleaning, WarnsOnlyOnceTheCoreHasTakenOverTheLog) {
  std::size_t linesBefore = 99;
  RecordingCore::OnCreate([&] { linesBefore = log.TakeLines().size(); });
  const std::pair<std::string, void (*)(const Value&)> operations[] = {
      {"Collect PII", QEXCore::collectPii},
      {"Lifecycle Start", QEXCore::lifecycleStart},
      {"Analytics", [](const Value& data) { QEXCore::trackAction("a", data); }},
      {"Analytics", [](const Value& data) { QEXCore::trackState("s", data); }},
  };
  for (const auto& [tag, operation] : operations) {
    linesBefore = 99;
    operation(mixed);
    EXPECT_EQ(linesBefore, 0U) << tag;
    log.WaitForLine(LogLevel::Warning, tag, HasSubstr("count"));
    Velmora::VelmoraCoreBridge::ResetInstance();
  }
}

TEST_F(QEXCoreCleaning, HugeAndMalformedEntriesPassThrough) {
  const std::string huge(10 << 20, 'x');
  const std::string malformed = "\xFF\xFE";
  QEXCore::collectPii({{"huge", huge}, {malformed, malformed}, {"nul", std::string("a\0b", 3)}});
  const auto call = LastCall();
  EXPECT_EQ(call.strings.size(), 3U);
  EXPECT_TRUE(call.strings.at("huge") == huge);
  EXPECT_EQ(call.strings.at(malformed), malformed);
  EXPECT_EQ(call.strings.at("nul"), "a");
}

TEST_F(QEXCoreCleaning, DescribesDeepNestingWithoutHarm) {
  Value deep = 1;
  for (int i = 0; i < 100'000; ++i) deep = Value::Array({deep});
  QEXCore::trackAction("a", {{"deep", deep}});
  log.ExpectLine(LogLevel::Warning, "Analytics", HasSubstr("deep"));
  EXPECT_THAT(LastContextData(), IsEmpty());
}

}  // namespace
