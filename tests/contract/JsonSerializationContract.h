#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/JsonSerialization.h"
#include "platform/linux/LinuxJsonSerialization.h"

// What the suites of the JSON port share. Each suite runs over every implementation.
namespace JsonSerializationContract {

using Platform::Error;
using Platform::JsonLayout;
using Platform::JsonSerialization;
using Platform::JsonVisitor;
using Platform::Value;

using Implementations = testing::Types<Platform::LinuxJsonSerialization>;

// Writes down what it hears: "{k:a 1 k:b [s:x d:0.5 true null]}" and so on.
class Transcript : public JsonVisitor {
 public:
  const std::string& Text() const { return text_; }

  void BeginObject() override { Add("{"); }
  void EndObject() override { Add("}"); }
  void BeginArray() override { Add("["); }
  void EndArray() override { Add("]"); }
  void Key(std::string_view key) override { Add("k:" + std::string(key)); }
  void String(std::string_view text) override { Add("s:" + std::string(text)); }
  void Integer(std::int64_t number) override { Add("i:" + std::to_string(number)); }
  void Double(double number) override { Add("d:" + std::to_string(number)); }
  void Boolean(bool value) override { Add(value ? "true" : "false"); }
  void Null() override { Add("null"); }

 private:
  void Add(const std::string& part) { text_ += (text_.empty() ? "" : " ") + part; }

  std::string text_;
};

template <class Implementation>
class Suite : public testing::Test {
 protected:
  // The value of a text that must be good.
  Value Parse(std::string_view text) const {
    Error error;
    Value value = json_.Parse(text, &error);
    EXPECT_EQ(error, Error()) << error.LocalizedDescription();
    EXPECT_FALSE(value.IsAbsent());
    return value;
  }

  // The element of a text of the form "[element]".
  Value ParseElement(const std::string& element) const {
    const Value array = Parse("[" + element + "]");
    EXPECT_EQ(array.Count(), 1U);
    return array.Count() == 1 ? array.At(0) : Value();
  }

  // What both ways to read say is wrong with a text that must be bad.
  std::string Fault(std::string_view text) const {
    Error error;
    EXPECT_TRUE(json_.Parse(text, &error).IsAbsent());
    EXPECT_EQ(error.Domain(), JsonSerialization::kErrorDomain);
    EXPECT_NE(error.LocalizedDescription(), "");
    Transcript transcript;
    Error visitorError;
    EXPECT_FALSE(json_.Parse(text, transcript, &visitorError));
    EXPECT_EQ(visitorError, error);
    return error.LocalizedDescription();
  }

  std::string Compact(const Value& value) const { return Written(value, JsonLayout::Compact); }
  std::string Pretty(const Value& value) const { return Written(value, JsonLayout::Pretty); }

  // What is said of a value that must not be written.
  std::string WritingFault(const Value& value) const {
    Error error;
    EXPECT_EQ(json_.Serialize(value, JsonLayout::Compact, &error), std::nullopt);
    EXPECT_EQ(json_.Serialize(value, JsonLayout::Pretty, nullptr), std::nullopt);
    EXPECT_EQ(error.Domain(), JsonSerialization::kErrorDomain);
    return error.LocalizedDescription();
  }

  const Implementation json_{};

 private:
  std::string Written(const Value& value, JsonLayout layout) const {
    Error error;
    const auto text = json_.Serialize(value, layout, &error);
    EXPECT_TRUE(text.has_value()) << error.LocalizedDescription();
    EXPECT_EQ(error, Error());
    return text.value_or("");
  }
};

}  // namespace JsonSerializationContract
