#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelmoraCore/EventFunctions.h"
#include "VelmoraCore/SdkError.h"
#include "services/json/NativeJsonUtilityService.h"
#include "support/LogCapture.h"

namespace Velmora {
namespace {

using testing::A;
using testing::Return;
using testing::Throw;
using TestSupport::LogCapture;
using TestSupport::LogLevel;

using JsonText = const std::string&;
using JsonMembers = const std::map<std::string, std::shared_ptr<Variant>>&;

class MockJsonUtilityService : public Object, public virtual JsonUtilityServiceInterface {
 public:
  using Strings = std::map<std::string, std::string>;
  using Members = std::map<std::string, std::shared_ptr<Variant>>;

  MOCK_METHOD(std::shared_ptr<JsonObject>, CreateJsonObject, (const std::string&), (override));
  MOCK_METHOD(std::shared_ptr<JsonObject>, CreateJsonObject, (const Members&), (override));
  MOCK_METHOD(std::shared_ptr<JsonObject>, CreateJsonObject, (const Strings&), (override));
  MOCK_METHOD(std::shared_ptr<JsonObject>, CreateEmptyJsonObject, (), (override));
  MOCK_METHOD(std::shared_ptr<JsonArray>, CreateJsonArray, (const std::string&), (override));
  MOCK_METHOD(std::shared_ptr<JsonArray>, CreateJsonArray,
              (const std::vector<std::shared_ptr<Variant>>&), (override));
  MOCK_METHOD(std::shared_ptr<JsonArray>, CreateEmptyJsonArray, (), (override));
  MOCK_METHOD(Strings, MapFromJsonObject, (const std::shared_ptr<JsonObject>&), (override));
};

SdkError SerializationError() {
  return {"json.serialization_error", "broken", DebugInfo("src/services/json/NativeJsonObject", 1)};
}

class EventFunctions : public testing::Test {
 protected:
  std::shared_ptr<Event> Broadcast(const std::string& dataJson) const {
    return CreateBroadcastEvent(json_, "name", "type", "source", dataJson);
  }

  std::string CodeOfBroadcast(const std::shared_ptr<JsonUtilityServiceInterface>& service,
                              const std::string& dataJson) const {
    try {
      CreateBroadcastEvent(service, "name", "type", "source", dataJson);
      return "";
    } catch (const SdkError& error) {
      return error.GetCode();
    }
  }

  const std::shared_ptr<JsonUtilityServiceInterface> json_ = CreateNativeJsonUtilityService();
  const std::shared_ptr<MockJsonUtilityService> mockJson_ =
      std::make_shared<testing::StrictMock<MockJsonUtilityService>>();
  LogCapture log_;
};

TEST_F(EventFunctions, MakeAnEventOfNameTypeAndSource) {
  const std::shared_ptr<Event> event = Broadcast("");

  EXPECT_EQ(event->GetName(), "name");
  EXPECT_EQ(GetEventTypeAsString(event), "type");
  EXPECT_EQ(GetEventSourceAsString(event), "source");
  EXPECT_EQ(event->GetNumber(), 0);
}

TEST_F(EventFunctions, DoNotCheckNameTypeAndSource) {
  const std::shared_ptr<Event> event = CreateBroadcastEvent(json_, "", "", "", "");
  EXPECT_EQ(event->GetName() + event->GetType() + event->GetSource(), "");
}

TEST_F(EventFunctions, TakeTheEmptyTextForNoData) {
  EXPECT_EQ(Broadcast("")->GetData(), nullptr);
  EXPECT_EQ(CreateBroadcastEvent(nullptr, "n", "t", "s", "")->GetData(), nullptr);
}

TEST_F(EventFunctions, TellEmptyDataFromNone) {
  const std::shared_ptr<Event> event = Broadcast(" \t\r\n{}");
  ASSERT_NE(event->GetData(), nullptr);
  EXPECT_TRUE(event->GetData()->IsEmpty());
}

TEST_F(EventFunctions, ReadEveryKindOfJsonValue) {
  const auto data =
      Broadcast(
          R"({"s":"text","e":"","t":true,"n":null,"i":5,"d":2.5,"a":[1,[],{"x":"y"}],"o":{}})")
          ->GetData();

  const VariantMap expected = {
      {"s", Variant::FromString("text")},
      {"e", Variant::FromString("")},
      {"t", Variant::FromBoolean(true)},
      {"n", Variant::FromNull()},
      {"i", Variant::FromLong(5)},
      {"d", Variant::FromDouble(2.5)},
      {"a",
       Variant::FromVariantVector({Variant::FromLong(1), Variant::FromVariantVector({}),
                                   Variant::FromVariantMap({{"x", Variant::FromString("y")}})})},
      {"o", Variant::FromVariantMap({})}};
  EXPECT_TRUE(Variant::AreEqual(Variant::FromVariantMap(data->GetAll()),
                                Variant::FromVariantMap(expected)));
}

struct NumberCase {
  const char* text;
  std::shared_ptr<Variant> expected;

  friend std::ostream& operator<<(std::ostream& out, const NumberCase& numberCase) {
    return out << numberCase.text;
  }
};

class EventNumbers : public EventFunctions, public testing::WithParamInterface<NumberCase> {};

TEST_P(EventNumbers, AreLongsWhenTheyHaveNoFractionAndFit) {
  const auto data = Broadcast(std::string("{\"n\":") + GetParam().text + "}")->GetData();
  const auto number = data->Get("n");

  EXPECT_TRUE(Variant::AreEqual(number, GetParam().expected));
  EXPECT_EQ(std::signbit(number->GetDouble()), std::signbit(GetParam().expected->GetDouble()));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, EventNumbers,
    testing::Values(NumberCase{"0", Variant::FromLong(0)}, NumberCase{"-1", Variant::FromLong(-1)},
                    NumberCase{"2147483648", Variant::FromLong(2147483648)},
                    NumberCase{"9007199254740993", Variant::FromLong(9007199254740993)},
                    NumberCase{"9223372036854775807",
                               Variant::FromLong(std::numeric_limits<std::int64_t>::max())},
                    NumberCase{"-9223372036854775808",
                               Variant::FromLong(std::numeric_limits<std::int64_t>::min())},
                    NumberCase{"1.0", Variant::FromLong(1)},
                    NumberCase{"-0.0", Variant::FromDouble(-0.0)},
                    NumberCase{"0.1", Variant::FromDouble(0.1)},
                    NumberCase{"-1.5", Variant::FromDouble(-1.5)},
                    NumberCase{"1e300", Variant::FromDouble(1e300)},
                    NumberCase{"-1e300", Variant::FromDouble(-1e300)}));

class EventDataRefused : public EventFunctions, public testing::WithParamInterface<std::string> {};

TEST_P(EventDataRefused, WhenTheTextIsNoJsonObject) {
  EXPECT_EQ(CodeOfBroadcast(json_, GetParam()), "external_module.event_data_not_supported");
}

INSTANTIATE_TEST_SUITE_P(Texts, EventDataRefused,
                         testing::Values("[1]", "5", "null", "\"text\"", "true", " ", "{", "}",
                                         "{\"a\":}", "{} {}", "not json", "{\"a\":\"\xFF\"}",
                                         std::string("\0{}", 3), std::string(10'000'000, '{'),
                                         std::string(10'000'000, ' ')));

TEST_F(EventFunctions, RefuseDataWithoutAJsonService) {
  EXPECT_EQ(CodeOfBroadcast(nullptr, "{}"), "external_module.event_data_not_supported");
}

TEST_F(EventFunctions, RefuseDataThatTheServiceDoesNotRead) {
  EXPECT_CALL(*mockJson_, CreateJsonObject(A<JsonText>())).WillOnce(Return(nullptr));
  EXPECT_EQ(CodeOfBroadcast(mockJson_, "{}"), "external_module.event_data_not_supported");

  EXPECT_CALL(*mockJson_, CreateJsonObject(A<JsonText>())).WillOnce(Throw(SerializationError()));
  EXPECT_EQ(CodeOfBroadcast(mockJson_, "{}"), "external_module.event_data_not_supported");
}

TEST_F(EventFunctions, ReadDataNestedAHundredThousandDeep) {
  std::shared_ptr<Variant> value = Variant::FromLong(1);
  for (int level = 0; level < 50'000; ++level) {
    value = Variant::FromVariantMap({{"m", Variant::FromVariantVector({value})}});
  }
  const VariantMap& members = value->GetVariantMap();
  EXPECT_CALL(*mockJson_, CreateJsonObject(A<JsonText>()))
      .WillOnce(Return(json_->CreateJsonObject(members)));

  const auto event = CreateBroadcastEvent(mockJson_, "n", "t", "s", "{}");

  EXPECT_TRUE(Variant::AreEqual(event->GetData()->Get("m"), members.at("m")));
}

TEST_F(EventFunctions, WriteDataThatReadBackTheSame) {
  const auto data = std::make_shared<EventData>();
  data->PutString("action", "buy \"it\" \xE2\x82\xAC");
  data->PutStringMap("contextdata", {{"sku", "A-17"}});
  data->Put("list", Variant::FromVariantVector({Variant::FromLong(7), Variant::FromDouble(0.5),
                                                Variant::FromBoolean(false)}));
  const auto event = std::make_shared<Event>("n", "t", "s", data);

  const std::string text = GetEventDataAsString(event, json_);

  EXPECT_TRUE(Variant::AreEqual(Variant::FromVariantMap(Broadcast(text)->GetData()->GetAll()),
                                Variant::FromVariantMap(data->GetAll())));
}

TEST_F(EventFunctions, WriteNoTextWithoutDataOrService) {
  EXPECT_EQ(GetEventDataAsString(nullptr, json_), "");
  EXPECT_EQ(GetEventDataAsString(Broadcast(""), json_), "");
  EXPECT_EQ(GetEventDataAsString(Broadcast("{\"a\":1}"), nullptr), "");
}

TEST_F(EventFunctions, WriteEmptyDataAsAnEmptyObject) {
  const auto event = Broadcast(GetEventDataAsString(Broadcast("{}"), json_));
  ASSERT_NE(event->GetData(), nullptr);
  EXPECT_TRUE(event->GetData()->IsEmpty());
}

TEST_F(EventFunctions, LogDataThatCannotBeWritten) {
  EXPECT_CALL(*mockJson_, CreateJsonObject(A<JsonMembers>()))
      .WillOnce(Throw(SerializationError()))
      .WillOnce(Return(nullptr));
  log_.ExpectLine(LogLevel::Error, "Event",
                  "The data of the event name cannot be written as JSON: "
                  "json.serialization_error: broken");

  EXPECT_EQ(GetEventDataAsString(Broadcast("{\"a\":1}"), mockJson_), "");
  EXPECT_EQ(GetEventDataAsString(Broadcast("{\"a\":1}"), mockJson_), "");
}

TEST_F(EventFunctions, LogANameThatHasSeveralLinesAsOne) {
  EXPECT_CALL(*mockJson_, CreateJsonObject(A<JsonMembers>())).WillOnce(Throw(SerializationError()));
  log_.ExpectLine(LogLevel::Error, "Event", testing::Not(testing::HasSubstr("\n")));

  const auto event = CreateBroadcastEvent(json_, "two\nlines", "type", "source", "{\"a\":1}");
  EXPECT_EQ(GetEventDataAsString(event, mockJson_), "");
}

TEST_F(EventFunctions, GiveEmptyTextsWithoutAnEvent) {
  EXPECT_EQ(GetEventTypeAsString(nullptr), "");
  EXPECT_EQ(GetEventSourceAsString(nullptr), "");
}

}  // namespace
}  // namespace Velmora
