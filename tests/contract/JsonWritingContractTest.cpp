#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "QEXCore_iOS/Platform/Date.h"
#include "contract/JsonSerializationContract.h"

namespace JsonSerializationContract {
namespace {

using Platform::NumberType;

template <class Implementation>
class JsonWriting : public Suite<Implementation> {};
TYPED_TEST_SUITE(JsonWriting, Implementations);

TYPED_TEST(JsonWriting, WritesEveryKindOfValue) {
  const Value value = {{"text", "x"},
                       {"integer", -7},
                       {"double", 2.5},
                       {"yes", true},
                       {"no", false},
                       {"none", Value::Null()},
                       {"array", Value::Array({1, Value::Array()})},
                       {"object", Value::Dictionary()}};
  EXPECT_EQ(this->Compact(value),
            R"({"text":"x","integer":-7,"double":2.5,"yes":true,"no":false,"none":null,)"
            R"("array":[1,[]],"object":{}})");
}

TYPED_TEST(JsonWriting, PrettyPrintsOneValueToALine) {
  const Value value = {{"b", Value::Array({1, 2.0})}, {"a", {{"c", "d"}}}, {"e", Value::Array()}};
  EXPECT_EQ(this->Pretty(value),
            "{\n"
            "  \"b\": [\n"
            "    1,\n"
            "    2.0\n"
            "  ],\n"
            "  \"a\": {\n"
            "    \"c\": \"d\"\n"
            "  },\n"
            "  \"e\": []\n"
            "}");
  EXPECT_EQ(this->Pretty(Value::Dictionary()), "{}");
  EXPECT_EQ(this->Pretty(Value::Array()), "[]");
}

TYPED_TEST(JsonWriting, EscapesWhatItMust) {
  std::string all;
  for (int c = 0; c < 0x80; ++c) all += static_cast<char>(c);
  const std::string text = this->Compact(Value::Array({all}));
  EXPECT_EQ(
      text,
      R"(["\u0000\u0001\u0002\u0003\u0004\u0005\u0006\u0007\b\t\n\u000B\f\r\u000E\u000F)"
      R"(\u0010\u0011\u0012\u0013\u0014\u0015\u0016\u0017\u0018\u0019\u001A\u001B\u001C)"
      R"(\u001D\u001E\u001F !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_)"
      "`abcdefghijklmnopqrstuvwxyz{|}~\x7f\"]");
  EXPECT_EQ(this->Parse(text).At(0).AsString(), all);
}

TYPED_TEST(JsonWriting, FindsTheCharacterToEscapeWhereverItStands) {
  for (const char special : {'"', '\\', '\n', '\x1f', '\0'}) {
    for (std::size_t length = 1; length < 40; ++length) {
      for (std::size_t at = 0; at < length; ++at) {
        std::string text(length, '~');
        text[at] = special;
        const Value value = Value::Array({text});
        ASSERT_EQ(this->Parse(this->Compact(value)), value) << length << ' ' << at;
      }
    }
  }
}

TYPED_TEST(JsonWriting, LeavesCharactersBeyondAsciiAsTheyAre) {
  const std::string text = "\u00e9\u20ac\U0001f600\u2028";
  EXPECT_EQ(this->Compact({{text, text}}), "{\"" + text + "\":\"" + text + "\"}");
}

TYPED_TEST(JsonWriting, WritesNumbersByTheirStorageType) {
  const auto written = [this](const Value& number) {
    return this->Compact(Value::Array({number}));
  };
  EXPECT_EQ(written(Value::Number(NumberType::SInt8, -128)), "[-128]");
  EXPECT_EQ(written(Value::Number(NumberType::Char, 65)), "[65]");
  EXPECT_EQ(written(Value::Number(NumberType::NSInteger, 1LL << 40)), "[1099511627776]");
  EXPECT_EQ(written(Value::Number(NumberType::CFIndex, 5)), "[5]");
  EXPECT_EQ(written(std::numeric_limits<std::int64_t>::min()), "[-9223372036854775808]");
  EXPECT_EQ(written(std::numeric_limits<std::int64_t>::max()), "[9223372036854775807]");
  EXPECT_EQ(written(Value::Number(NumberType::Float32, 0.5)), "[0.5]");
  EXPECT_EQ(written(Value::Number(NumberType::CGFloat, 3.0)), "[3.0]");
}

TYPED_TEST(JsonWriting, WritesAWholeDoubleSoThatItReadsBackAsADouble) {
  for (const double number :
       {0.0, -0.0, 1.0, -1.0, 1e6, 1e15, 9007199254740992.0, 1e20, 1e21, 1e22, 1e100, 1e308}) {
    const Value back = this->Parse(this->Compact(Value::Array({number}))).At(0);
    EXPECT_EQ(back.StorageType(), NumberType::Float64) << number;
    EXPECT_EQ(back.AsDouble(), number);
  }
}

TYPED_TEST(JsonWriting, RoundTripsDoublesToTheLastBit) {
  std::mt19937_64 random(20240229);
  std::vector<std::uint64_t> patterns = {1, 0x000FFFFFFFFFFFFF, 0x0010000000000000,
                                         0x7FEFFFFFFFFFFFFF, 0x3FB999999999999A};
  while (patterns.size() < 200'000) patterns.push_back(random());
  for (const std::uint64_t pattern : patterns) {
    double number = 0;
    std::memcpy(&number, &pattern, sizeof number);
    const auto text = this->json_.Serialize(Value::Array({number}), JsonLayout::Compact, nullptr);
    if (!std::isfinite(number)) {
      ASSERT_EQ(text, std::nullopt);
      continue;
    }
    ASSERT_TRUE(text.has_value());
    const double back = this->Parse(*text).At(0).AsDouble();
    ASSERT_EQ(std::memcmp(&back, &number, sizeof number), 0) << *text;
  }
}

TYPED_TEST(JsonWriting, RefusesWhatJsonCannotExpress) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::vector<Value> inexpressible = {
      std::numeric_limits<double>::quiet_NaN(),
      infinity,
      -infinity,
      Value::Number(NumberType::Float32, infinity),
      Value::FromData({1, 2}),
      Value::FromObject(std::make_shared<Platform::Date>(0.0)),
      {{1, "a key that is no string"}},
      {{Value::Null(), 1}},
  };
  for (const Value& item : inexpressible) {
    for (const Value& root : {Value::Array({item}), Value({{"a", Value::Array({1, item})}})}) {
      EXPECT_FALSE(this->json_.IsValidJsonObject(root)) << root.Description();
      EXPECT_NE(this->WritingFault(root), "");
    }
  }
}

TYPED_TEST(JsonWriting, RefusesARootThatIsNoContainer) {
  for (const Value& root : {Value(), Value("a"), Value(1), Value(true), Value::Null(),
                            Value::FromData({}), Value(2.5)}) {
    EXPECT_FALSE(this->json_.IsValidJsonObject(root));
    EXPECT_EQ(this->WritingFault(root), "The root is neither a dictionary nor an array");
  }
}

TYPED_TEST(JsonWriting, RefusesStringsThatAreNotUtf8ThoughTheirKindIsRight) {
  const std::string longText(100, 'a');
  for (const std::string& text :
       {std::string("\xff"), std::string("a\xc3"), std::string("\xed\xa0\x80"),
        std::string("\xc0\x80 and then some"), longText + "\x80", "\x80" + longText}) {
    for (const Value& value : {Value::Array({text}), Value({{text, 1}})}) {
      EXPECT_TRUE(this->json_.IsValidJsonObject(value));
      EXPECT_EQ(this->WritingFault(value), "A string is not UTF-8");
    }
  }
}

TYPED_TEST(JsonWriting, SaysThatAValueIsValidWhenItCanBeWritten) {
  EXPECT_TRUE(this->json_.IsValidJsonObject(Value::Array()));
  EXPECT_TRUE(this->json_.IsValidJsonObject(Value::Dictionary()));
  EXPECT_TRUE(this->json_.IsValidJsonObject(
      {{"a", Value::Array({1, 2.5, "x", true, Value::Null(), Value::Dictionary()})}, {"", ""}}));
}

TYPED_TEST(JsonWriting, WritesWhatIsToldPartByPart) {
  const auto tell = [](JsonVisitor& visitor) {
    visitor.BeginObject();
    visitor.Key("b");
    visitor.BeginArray();
    visitor.Integer(1);
    visitor.Double(0.5);
    visitor.Null();
    visitor.EndArray();
    visitor.Key("a");
    visitor.String("x");
    visitor.Key("a");
    visitor.Boolean(true);
    visitor.EndObject();
  };
  EXPECT_EQ(this->json_.Write(tell, JsonLayout::Compact, nullptr),
            R"({"b":[1,0.5,null],"a":"x","a":true})");
}

TYPED_TEST(JsonWriting, RefusesPartsThatDoNotNest) {
  using Tell = std::function<void(JsonVisitor&)>;
  const Tell tells[] = {
      [](JsonVisitor&) {},
      [](JsonVisitor& v) { v.BeginObject(); },
      [](JsonVisitor& v) { v.BeginArray(), v.EndObject(); },
      [](JsonVisitor& v) { v.BeginObject(), v.EndArray(); },
      [](JsonVisitor& v) { v.EndArray(); },
      [](JsonVisitor& v) { v.EndObject(); },
      [](JsonVisitor& v) { v.Key("a"); },
      [](JsonVisitor& v) { v.BeginArray(), v.Key("a"), v.EndArray(); },
      [](JsonVisitor& v) { v.BeginObject(), v.Integer(1), v.EndObject(); },
      [](JsonVisitor& v) { v.BeginObject(), v.BeginArray(), v.EndArray(), v.EndObject(); },
      [](JsonVisitor& v) { v.BeginObject(), v.Key("a"), v.EndObject(); },
      [](JsonVisitor& v) { v.BeginObject(), v.Key("a"), v.Key("b"), v.Null(), v.EndObject(); },
      [](JsonVisitor& v) { v.BeginArray(), v.EndArray(), v.BeginArray(), v.EndArray(); },
      [](JsonVisitor& v) { v.BeginArray(), v.EndArray(), v.EndArray(); },
      [](JsonVisitor& v) { v.BeginArray(), v.EndArray(), v.Null(); },
  };
  for (const Tell& tell : tells) {
    Error error;
    EXPECT_EQ(this->json_.Write(tell, JsonLayout::Pretty, &error), std::nullopt);
    EXPECT_EQ(error.Domain(), JsonSerialization::kErrorDomain);
    EXPECT_EQ(error.LocalizedDescription(), "The parts do not nest");
  }
}

TYPED_TEST(JsonWriting, RefusesToldPartsThatCannotBeWritten) {
  const auto faultOf = [this](const std::function<void(JsonVisitor&)>& tell) {
    Error error;
    EXPECT_EQ(this->json_.Write(tell, JsonLayout::Compact, &error), std::nullopt);
    return error.LocalizedDescription();
  };
  EXPECT_EQ(faultOf([](JsonVisitor& v) { v.String("a"); }),
            "The root is neither a dictionary nor an array");
  EXPECT_EQ(faultOf([](JsonVisitor& v) { v.BeginArray(), v.Double(NAN), v.EndArray(); }),
            "A number is infinite or not a number");
  EXPECT_EQ(faultOf([](JsonVisitor& v) { v.BeginArray(), v.String("\xff"), v.EndArray(); }),
            "A string is not UTF-8");
  EXPECT_EQ(
      faultOf([](JsonVisitor& v) { v.BeginObject(), v.Key("\xff"), v.Null(), v.EndObject(); }),
      "A string is not UTF-8");
}

TYPED_TEST(JsonWriting, LetsThroughWhatIsThrownWhileTelling) {
  const auto tell = [](JsonVisitor& visitor) {
    visitor.BeginArray();
    throw std::runtime_error("enough");
  };
  EXPECT_THROW(this->json_.Write(tell, JsonLayout::Compact, nullptr), std::runtime_error);
  EXPECT_EQ(this->Compact(Value::Array({1})), "[1]");
}

}  // namespace
}  // namespace JsonSerializationContract
