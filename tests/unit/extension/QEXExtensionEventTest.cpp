#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "QEXCore_iOS/QEXExtensionEvent.h"
#include "VelmoraCore/Event.h"
#include "VelmoraCore/EventData.h"
#include "extension/ExtensionEvents.h"
#include "services/json/NativeJsonUtilityService.h"
#include "support/LogCapture.h"

namespace {

using Platform::Error;
using Platform::Value;
using EventPointer = std::shared_ptr<QEXExtensionEvent>;
using Velmora::Event;

const Error kUntouched("untouched", 42);

EventPointer MakeEvent(const Value& data, Error* error = nullptr) {
  return QEXExtensionEvent::extensionEventWithName("name", "type", "source", data, error);
}

Value Nested(int depth) {
  Value value = Value::Array();
  for (int level = 2; level < depth; ++level) value = Value::Array({std::move(value)});
  return {{"deep", std::move(value)}};
}

class QEXExtensionEventTest : public testing::Test {
 protected:
  // What nobody can make an event of, without an error.
  static void ExpectNoEventFrom(const Value& data) {
    Error error = kUntouched;
    EXPECT_EQ(MakeEvent(data, &error), nullptr);
    EXPECT_EQ(error, kUntouched);
    EXPECT_EQ(MakeEvent(data), nullptr);
  }

  TestSupport::LogCapture log;
};

TEST_F(QEXExtensionEventTest, HoldsNameTypeSourceAndData) {
  const Value data = {{"text", "a\"b\n\xC3\xA4"},
                      {"count", 2},
                      {"price", 19.5},
                      {"gift", true},
                      {"list", Value::Array({1, "two"})}};
  Error error = kUntouched;
  const EventPointer event = QEXExtensionEvent::extensionEventWithName("added to cart", "shop.cart",
                                                                       "shop.app", data, &error);
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(event->eventName(), "added to cart");
  EXPECT_EQ(event->eventType(), "shop.cart");
  EXPECT_EQ(event->eventSource(), "shop.app");
  const Value read = event->eventData();
  EXPECT_EQ(read.Count(), 5U);
  EXPECT_EQ(read.Get("text").AsString(), "a\"b\n\xC3\xA4");
  EXPECT_EQ(read.Get("count").AsInt64(), 2);
  EXPECT_EQ(read.Get("price").AsDouble(), 19.5);
  EXPECT_TRUE(read.Get("gift").IsBoolean());
  EXPECT_EQ(read.Get("list").Count(), 2U);
  EXPECT_EQ(error, kUntouched);
  EXPECT_EQ(event->getInternalEvent()->GetData()->Get("count")->GetLong(), 2);
}

TEST_F(QEXExtensionEventTest, WithoutDataItsDataAreAbsent) {
  const EventPointer event = MakeEvent({});
  ASSERT_NE(event, nullptr);
  EXPECT_TRUE(event->eventData().IsAbsent());
  EXPECT_EQ(event->getInternalEvent()->GetData(), nullptr);
}

TEST_F(QEXExtensionEventTest, EmptyDataAreNotAbsent) {
  const EventPointer event = MakeEvent(Value::Dictionary());
  ASSERT_NE(event, nullptr);
  EXPECT_TRUE(event->eventData().IsDictionary());
  EXPECT_EQ(event->eventData().Count(), 0U);
}

TEST_F(QEXExtensionEventTest, AbsentTextsAreEmptyAndComeBackAbsent) {
  const EventPointer event = QEXExtensionEvent::extensionEventWithName(std::nullopt, std::nullopt,
                                                                       std::nullopt, {}, nullptr);
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(event->getInternalEvent()->GetName(), "");
  EXPECT_EQ(event->eventName(), std::nullopt);
  EXPECT_EQ(event->eventType(), std::nullopt);
  EXPECT_EQ(event->eventSource(), std::nullopt);
}

TEST_F(QEXExtensionEventTest, NamesAreNotCheckedAndEndAtTheirFirstZeroByte) {
  const EventPointer event = QEXExtensionEvent::extensionEventWithName(
      std::string("na\0me", 5), "type with blanks", std::string(10'000'000, 's'), {}, nullptr);
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(event->eventName(), "na");
  EXPECT_EQ(event->eventType(), "type with blanks");
  EXPECT_EQ(event->eventSource()->size(), 10'000'000U);
}

TEST_F(QEXExtensionEventTest, DataThatAreNoJsonObjectGiveNoEventAndLeaveTheErrorAlone) {
  ExpectNoEventFrom({{"when", Value::FromObject(std::make_shared<Platform::Date>(0.0))}});
  ExpectNoEventFrom({{"bytes", Value::FromData({1, 2})}});
  ExpectNoEventFrom({{"nan", std::numeric_limits<double>::quiet_NaN()}});
  ExpectNoEventFrom({{"endless", std::numeric_limits<double>::infinity()}});
  ExpectNoEventFrom({{7, "a key that is no text"}});
  ExpectNoEventFrom({{Value::Null(), "another"}});
  ExpectNoEventFrom({{"deep", Value::Array({Value({{"bytes", Value::FromData({})}})})}});
}

TEST_F(QEXExtensionEventTest, DataThatAreNoDictionaryGiveNoEvent) {
  ExpectNoEventFrom("text");
  ExpectNoEventFrom(5);
  ExpectNoEventFrom(true);
  ExpectNoEventFrom(Value::Null());
  ExpectNoEventFrom(Value::Array({1, 2}));
}

TEST_F(QEXExtensionEventTest, AFailureOfTheSerialiserIsToldInItsOwnDomain) {
  const Value data = {{"text", "\xFF"}};
  Error error = kUntouched;
  EXPECT_EQ(MakeEvent(data, &error), nullptr);
  EXPECT_EQ(error.Domain(), Platform::JsonSerialization::kErrorDomain);
  EXPECT_EQ(MakeEvent(data), nullptr);
}

TEST_F(QEXExtensionEventTest, DataThatAreTooDeepGiveNoEventAndLeaveTheErrorAlone) {
  ExpectNoEventFrom(Nested(1'025));
  ExpectNoEventFrom(Nested(100'000));
}

TEST_F(QEXExtensionEventTest, DataMayBeDeepAndHuge) {
  const EventPointer deep = MakeEvent(Nested(1'000));
  ASSERT_NE(deep, nullptr);
  EXPECT_EQ(deep->eventData(), Nested(1'000));
  const EventPointer huge = MakeEvent({{"huge", std::string(10'000'000, 'x')}});
  ASSERT_NE(huge, nullptr);
  EXPECT_EQ(huge->eventData().Get("huge").AsString().size(), 10'000'000U);
}

TEST_F(QEXExtensionEventTest, NullsAndEmptyTextsReachTheCoreButDoNotComeBack) {
  const EventPointer event = MakeEvent({{"null", Value::Null()}, {"empty", ""}, {"text", "x"}});
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(event->getInternalEvent()->GetData()->GetAll().size(), 3U);
  EXPECT_EQ(event->eventData(), Value({{"text", "x"}}));
}

TEST_F(QEXExtensionEventTest, DataWithSuchElementsInAnArrayCannotBeRead) {
  for (const Value& element : {Value::Null(), Value("")}) {
    const EventPointer event = MakeEvent({{"list", Value::Array({element})}});
    ASSERT_NE(event, nullptr);
    EXPECT_TRUE(event->eventData().IsAbsent());
    log.ExpectLine(TestSupport::LogLevel::Error, "Event", testing::HasSubstr("cannot be written"));
  }
}

TEST_F(QEXExtensionEventTest, TextsInDataEndAtTheirFirstZeroByte) {
  const EventPointer event = MakeEvent({{"zero", std::string("a\0b", 3)}});
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(event->eventData().Get("zero").AsString(), "a");
}

TEST_F(QEXExtensionEventTest, EventsAreNewEachTime) {
  EXPECT_NE(MakeEvent({})->getInternalEvent()->GetId(), MakeEvent({})->getInternalEvent()->GetId());
}

TEST_F(QEXExtensionEventTest, WrapsAnEventOfTheCore) {
  const auto data = std::make_shared<Velmora::EventData>();
  data->PutString("key", "value");
  const auto internal = std::make_shared<Event>("n", "t", "s", data);
  const EventPointer event = Velmora::CreateQEXExtensionEventFromEvent(internal);
  EXPECT_EQ(event->getInternalEvent(), internal);
  EXPECT_EQ(Velmora::GetEventFromQEXExtensionEvent(event), internal);
  EXPECT_EQ(event->eventName(), "n");
  EXPECT_EQ(event->eventData().Get("key").AsString(), "value");
}

TEST_F(QEXExtensionEventTest, WhatCannotBeReadIsAbsent) {
  const auto internal = std::make_shared<Event>("", "t", "s");
  const auto withoutService = QEXExtensionEvent::newInternal(
      std::make_shared<Event>("n", "t", "s", std::make_shared<Velmora::EventData>()), nullptr);
  EXPECT_TRUE(withoutService->eventData().IsAbsent());
  const EventPointer empty = Velmora::CreateQEXExtensionEventFromEvent(nullptr);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty->getInternalEvent(), nullptr);
  EXPECT_EQ(empty->eventName(), std::nullopt);
  EXPECT_EQ(empty->eventType(), std::nullopt);
  EXPECT_EQ(empty->eventSource(), std::nullopt);
  EXPECT_TRUE(empty->eventData().IsAbsent());
}

TEST_F(QEXExtensionEventTest, AnAbsentEventIsAnEmptyPointer) {
  EXPECT_EQ(Velmora::GetEventFromQEXExtensionEvent(nullptr), nullptr);
}

TEST_F(QEXExtensionEventTest, MayBeReadOnTwoThreads) {
  const EventPointer event = MakeEvent({{"count", 2}});
  const auto read = [&event] {
    for (int round = 0; round < 500; ++round) {
      EXPECT_EQ(event->eventData().Get("count").AsInt64(), 2);
      EXPECT_EQ(event->eventName(), "name");
    }
  };
  std::thread other(read);
  read();
  other.join();
}

}  // namespace
