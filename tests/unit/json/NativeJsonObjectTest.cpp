#include <limits>

#include "JsonFixture.h"
#include "services/json/NativeJsonArray.h"
#include "services/json/NativeJsonObject.h"

namespace Velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class NativeJsonObjectTest : public JsonFixture {
 protected:
  static std::shared_ptr<NativeJsonObject> Parse(const std::string& json) {
    return std::make_shared<NativeJsonObject>(json);
  }
  static std::shared_ptr<NativeJsonObject> Of(const VariantMap& members) {
    return std::make_shared<NativeJsonObject>(members);
  }

  static std::pair<std::string, std::string> ErrorOf(const std::function<void()>& call) {
    return CodeAndMessage("src/services/json/NativeJsonObject", call);
  }

  static std::vector<std::string> KeysOf(const JsonObject& object) {
    std::vector<std::string> keys;
    object.Keys(keys);
    return keys;
  }
};

TEST_F(NativeJsonObjectTest, ParsesAnEmptyObject) {
  EXPECT_EQ(Parse("{}")->Length(), 0U);
  EXPECT_EQ(Parse("{}")->ToString(), "{}");
}

TEST_F(NativeJsonObjectTest, ParsesMembersOfEveryType) {
  const auto object =
      Parse(R"({"s":"x","i":7,"d":3.7,"t":true,"f":false,"n":null,"a":[1],"o":{"k":1}})");
  EXPECT_EQ(object->Length(), 8U);
  EXPECT_EQ(object->GetType("s"), JsonType::String);
  EXPECT_EQ(object->GetType("i"), JsonType::Number);
  EXPECT_EQ(object->GetType("d"), JsonType::Number);
  EXPECT_EQ(object->GetType("t"), JsonType::Boolean);
  EXPECT_EQ(object->GetType("n"), JsonType::Null);
  EXPECT_EQ(object->GetType("a"), JsonType::Array);
  EXPECT_EQ(object->GetType("o"), JsonType::Object);
  EXPECT_EQ(object->GetString("s"), "x");
  EXPECT_EQ(object->GetInt("i"), 7);
  EXPECT_TRUE(object->GetBoolean("t"));
  EXPECT_FALSE(object->GetBoolean("f"));
  EXPECT_EQ(object->GetJsonArray("a")->GetInt(0), 1);
  EXPECT_EQ(object->GetJsonObject("o")->GetInt("k"), 1);
}

TEST_F(NativeJsonObjectTest, ParsesIntegersAsLongsAndOtherNumbersAsDoubles) {
  const auto object = Parse(R"({"i":1,"b":9223372036854775808,"d":1.0})");
  EXPECT_EQ(object->Members().at("i")->GetKind(), VariantKind::Long);
  EXPECT_EQ(object->Members().at("b")->GetKind(), VariantKind::Double);
  EXPECT_EQ(object->Members().at("d")->GetKind(), VariantKind::Double);
}

TEST_F(NativeJsonObjectTest, ThrowsWithTheTextAndTheParsersDescription) {
  for (const std::string text : {"", "not json", "{\"a\":}", "{", "42", "\"text\"", "null"}) {
    EXPECT_THAT(ErrorOf([&] { Parse(text); }),
                Pair("json.serialization_error", "Failed to create json object for string: " +
                                                     text + " error: " + ParserDescription(text)))
        << text;
  }
  EXPECT_THAT(ErrorOf([] { Parse("{\n 1}"); }),
              Pair("json.serialization_error",
                   "Failed to create json object for string: {\n 1} error: Missing member name at "
                   "line 2, column 2"));
}

TEST_F(NativeJsonObjectTest, RefusesTheTextOfAnArray) {
  EXPECT_THAT(
      ErrorOf([] { Parse("[1]"); }),
      Pair("json.serialization_error",
           "Failed to create json object for string: [1] error: The root is not an object"));
}

TEST_F(NativeJsonObjectTest, ReadsATextUpToItsFirstZeroByte) {
  EXPECT_EQ(Parse(std::string("{\"a\":1}\0garbage", 15))->GetInt("a"), 1);
  const std::string cut("{\"a\":\0 1}", 9);
  EXPECT_THAT(ErrorOf([&] { Parse(cut); }),
              Pair("json.serialization_error", "Failed to create json object for string: " + cut +
                                                   " error: " + ParserDescription("{\"a\":")));
}

TEST_F(NativeJsonObjectTest, TakesStringsAndVariants) {
  const NativeJsonObject strings(StringMap{{"b", "2"}, {"a", ""}});
  EXPECT_EQ(strings.Length(), 2U);
  EXPECT_EQ(strings.GetType("a"), JsonType::String);
  EXPECT_EQ(strings.GetString("b"), "2");
  const NativeJsonObject variants(VariantMap{{"a", Variant::FromInteger(1)}, {"n", nullptr}});
  EXPECT_EQ(variants.Length(), 2U);
  EXPECT_EQ(variants.GetInt("a"), 1);
}

TEST_F(NativeJsonObjectTest, CopiesTheMapItIsGiven) {
  VariantMap members{{"a", Variant::FromInteger(1)}};
  const NativeJsonObject object(members);
  members["a"] = Variant::FromInteger(2);
  members["b"] = nullptr;
  EXPECT_EQ(object.GetInt("a"), 1);
  EXPECT_FALSE(object.Contains("b"));
}

TEST_F(NativeJsonObjectTest, ThrowsForAMissingKey) {
  const auto object = Parse(R"({"a":1})");
  const auto missing = Pair("json.key_not_found", "key: missing");
  EXPECT_THAT(ErrorOf([&] { object->GetType("missing"); }), missing);
  EXPECT_THAT(ErrorOf([&] { object->GetJsonObject("missing"); }), missing);
  EXPECT_THAT(ErrorOf([&] { object->GetJsonArray("missing"); }), missing);
  EXPECT_THAT(ErrorOf([&] { object->GetInt("missing"); }), missing);
  EXPECT_THAT(ErrorOf([&] { object->GetLong("missing"); }), missing);
  EXPECT_THAT(ErrorOf([&] { object->GetDouble("missing"); }), missing);
  EXPECT_THAT(ErrorOf([&] { object->GetString("missing"); }), missing);
  EXPECT_THAT(ErrorOf([&] { object->GetBoolean("missing"); }), missing);
  EXPECT_THAT(ErrorOf([&] { object->GetInt(""); }), Pair("json.key_not_found", "key: "));
}

TEST_F(NativeJsonObjectTest, ThrowsForAMemberOfAnotherType) {
  const auto object = Parse(R"({"s":"1","n":1,"b":true,"a":[],"o":{},"z":null})");
  const auto error = [](const char* code, const std::string& key) {
    return Pair(code, "key: " + key);
  };
  for (const std::string key : {"s", "b", "a", "o", "z"}) {
    const auto expected = error("json.value_not_numeric_type", key);
    EXPECT_THAT(ErrorOf([&] { object->GetInt(key); }), expected);
    EXPECT_THAT(ErrorOf([&] { object->GetLong(key); }), expected);
    EXPECT_THAT(ErrorOf([&] { object->GetDouble(key); }), expected);
  }
  for (const std::string key : {"n", "b", "a", "o", "z"}) {
    EXPECT_THAT(ErrorOf([&] { object->GetString(key); }), error("json.value_not_string_type", key));
  }
  for (const std::string key : {"s", "n", "a", "o", "z"}) {
    EXPECT_THAT(ErrorOf([&] { object->GetBoolean(key); }),
                error("json.value_not_boolean_type", key));
  }
  for (const std::string key : {"s", "n", "b", "a", "z"}) {
    EXPECT_THAT(ErrorOf([&] { object->GetJsonObject(key); }),
                error("json.value_not_object_type", key));
  }
  for (const std::string key : {"s", "n", "b", "o", "z"}) {
    EXPECT_THAT(ErrorOf([&] { object->GetJsonArray(key); }),
                error("json.value_not_array_type", key));
  }
}

TEST_F(NativeJsonObjectTest, ThrowsForAMemberThatHoldsNothing) {
  const auto object = Of({{"e", nullptr}});
  EXPECT_TRUE(object->Contains("e"));
  EXPECT_THAT(ErrorOf([&] { object->GetType("e"); }), Pair("json.object_unknown", "key: e"));
  EXPECT_THAT(ErrorOf([&] { object->GetJsonObject("e"); }),
              Pair("json.jsonobject_is_null", "key: e"));
  EXPECT_THAT(ErrorOf([&] { object->GetJsonArray("e"); }),
              Pair("json.jsonobject_is_null", "key: e"));
  EXPECT_THAT(ErrorOf([&] { object->GetInt("e"); }), Pair("json.value_not_numeric_type", "key: e"));
  EXPECT_THAT(ErrorOf([&] { object->GetString("e"); }),
              Pair("json.value_not_string_type", "key: e"));
  EXPECT_THAT(ErrorOf([&] { object->GetBoolean("e"); }),
              Pair("json.value_not_boolean_type", "key: e"));
}

TEST_F(NativeJsonObjectTest, ReadsNumbersInEveryWidth) {
  const auto object = Parse(R"({"d":3.7,"i":5,"l":4294967297})");
  EXPECT_EQ(object->GetInt("d"), 3);
  EXPECT_EQ(object->GetLong("d"), 3);
  EXPECT_EQ(object->GetDouble("d"), 3.7);
  EXPECT_EQ(object->GetDouble("i"), 5.0);
  EXPECT_EQ(object->GetLong("l"), 4294967297);
  EXPECT_EQ(object->GetInt("l"), Variant::FromLong(4294967297)->GetInteger());
}

TEST_F(NativeJsonObjectTest, HandsOutNestedObjectsAndArraysAsCopies) {
  const auto object = Parse(R"({"o":{"k":1},"a":[1]})");
  const auto inner = object->GetJsonObject("o");
  inner->PutInt("k", 2)->PutInt("new", 3);
  const auto array = object->GetJsonArray("a");
  array->PutInt(2);
  EXPECT_EQ(object->GetJsonObject("o")->GetInt("k"), 1);
  EXPECT_EQ(object->GetJsonObject("o")->Length(), 1U);
  EXPECT_EQ(object->GetJsonArray("a")->Length(), 1U);

  object->PutJsonObject("o", inner)->PutJsonArray("a", array);
  EXPECT_EQ(object->GetJsonObject("o")->GetInt("k"), 2);
  EXPECT_EQ(object->GetJsonArray("a")->GetInt(1), 2);
}

TEST_F(NativeJsonObjectTest, PutsCopiesOfWhatIsGivenAtThatMoment) {
  const auto object = Parse("{}");
  const auto inner = Parse(R"({"k":1})");
  const auto array = std::make_shared<NativeJsonArray>("[1]");
  object->PutJsonObject("o", inner)->PutJsonArray("a", array);
  inner->PutInt("k", 2);
  array->PutInt(2);
  EXPECT_EQ(object->GetJsonObject("o")->GetInt("k"), 1);
  EXPECT_EQ(object->GetJsonArray("a")->Length(), 1U);
}

TEST_F(NativeJsonObjectTest, CanHoldACopyOfItself) {
  const auto object = Parse(R"({"k":1})");
  object->PutJsonObject("self", object);
  EXPECT_EQ(object->GetJsonObject("self")->Length(), 1U);
  EXPECT_EQ(object->Length(), 2U);
}

TEST_F(NativeJsonObjectTest, ReturnsItselfFromEverySetter) {
  const auto object = Parse("{}");
  const std::shared_ptr<JsonObject> self = object;
  EXPECT_EQ(object->PutInt("i", 1), self);
  EXPECT_EQ(object->PutLong("l", 2), self);
  EXPECT_EQ(object->PutDouble("d", 0.5), self);
  EXPECT_EQ(object->PutString("s", "x"), self);
  EXPECT_EQ(object->PutBoolean("b", true), self);
  EXPECT_EQ(object->PutJsonObject("o", Parse("{}")), self);
  EXPECT_EQ(object->PutJsonArray("a", std::make_shared<NativeJsonArray>("[]")), self);
  EXPECT_EQ(object->PutJsonObject("no", nullptr), self);
  EXPECT_EQ(object->PutJsonArray("no", nullptr), self);
  EXPECT_THAT(KeysOf(*object), ElementsAre("a", "b", "d", "i", "l", "o", "s"));
}

TEST_F(NativeJsonObjectTest, StoresEachTypeAsItsVariant) {
  const auto object = Parse("{}");
  object->PutInt("i", std::numeric_limits<std::int32_t>::min())
      ->PutLong("l", std::numeric_limits<std::int64_t>::max())
      ->PutDouble("d", 2.0)
      ->PutString("s", "")
      ->PutBoolean("b", false);
  const auto kind = [&](const char* key) { return object->Members().at(key)->GetKind(); };
  EXPECT_EQ(kind("i"), VariantKind::Integer);
  EXPECT_EQ(kind("l"), VariantKind::Long);
  EXPECT_EQ(kind("d"), VariantKind::Double);
  EXPECT_EQ(kind("s"), VariantKind::String);
  EXPECT_EQ(kind("b"), VariantKind::Boolean);
  EXPECT_EQ(object->GetInt("i"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(object->GetLong("l"), std::numeric_limits<std::int64_t>::max());
}

TEST_F(NativeJsonObjectTest, ReplacesAMemberOfAnyType) {
  const auto object = Parse(R"({"a":"text"})");
  object->PutInt("a", 1);
  EXPECT_EQ(object->GetInt("a"), 1);
  EXPECT_EQ(object->Length(), 1U);
}

TEST_F(NativeJsonObjectTest, KeepsAMemberWhenAnEmptyPointerIsPut) {
  const auto object = Parse(R"({"a":1})");
  object->PutJsonObject("a", nullptr)->PutJsonArray("a", nullptr);
  EXPECT_EQ(object->GetInt("a"), 1);
}

TEST_F(NativeJsonObjectTest, GivesTheFallbackForEveryError) {
  const auto object = Parse(R"({"s":"x","n":3.5,"b":true,"a":[1],"o":{"k":1}})");
  EXPECT_EQ(object->OptInt("s", -1), -1);
  EXPECT_EQ(object->OptInt("missing", -1), -1);
  EXPECT_EQ(object->OptInt("n", -1), 3);
  EXPECT_EQ(object->OptLong("s", -2), -2);
  EXPECT_EQ(object->OptLong("n", -2), 3);
  EXPECT_EQ(object->OptDouble("missing", 0.25), 0.25);
  EXPECT_EQ(object->OptDouble("n", 0.25), 3.5);
  EXPECT_EQ(object->OptString("n", "fallback"), "fallback");
  EXPECT_EQ(object->OptString("s", "fallback"), "x");
  EXPECT_TRUE(object->OptBoolean("n", true));
  EXPECT_TRUE(object->OptBoolean("b", false));
  EXPECT_EQ(object->OptJsonObject("a"), nullptr);
  EXPECT_EQ(object->OptJsonObject("missing"), nullptr);
  EXPECT_EQ(object->OptJsonObject("o")->GetInt("k"), 1);
  EXPECT_EQ(object->OptJsonArray("o"), nullptr);
  EXPECT_EQ(object->OptJsonArray("a")->Length(), 1U);
  EXPECT_EQ(Of({{"e", nullptr}})->OptJsonObject("e"), nullptr);
}

TEST_F(NativeJsonObjectTest, ListsKeysInByteOrderBehindWhatTheListHolds) {
  const auto object = Parse(R"({"b":1,"\u00e9":2,"B":3,"a":4,"":5})");
  object->PutInt("aa", 6);
  std::vector<std::string> keys = {"before"};
  object->Keys(keys);
  EXPECT_THAT(keys, ElementsAre("before", "", "B", "a", "aa", "b", "\u00e9"));
}

TEST_F(NativeJsonObjectTest, RemovesMembers) {
  const auto object = Parse(R"({"a":1,"b":2})");
  object->Remove("a");
  object->Remove("a");
  object->Remove("missing");
  EXPECT_THAT(KeysOf(*object), ElementsAre("b"));
  EXPECT_FALSE(object->Contains("a"));
  object->Remove("b");
  EXPECT_THAT(KeysOf(*object), IsEmpty());
}

TEST_F(NativeJsonObjectTest, IsUnchangedByAFailedCall) {
  const auto object = Parse(R"({"a":1,"l":[null]})");
  EXPECT_THROW(object->GetString("a"), SdkError);
  EXPECT_THROW(object->ToString(), SdkError);
  EXPECT_THAT(KeysOf(*object), ElementsAre("a", "l"));
  EXPECT_EQ(object->GetInt("a"), 1);
}

TEST_F(NativeJsonObjectTest, PrintsItsMembersInByteOrderWithLineBreaks) {
  EXPECT_EQ(Parse(R"({"b":[1,2.0,"x"],"a":{"c":true}})")->ToString(),
            "{\n"
            "  \"a\": {\n"
            "    \"c\": true\n"
            "  },\n"
            "  \"b\": [\n"
            "    1,\n"
            "    2.0,\n"
            "    \"x\"\n"
            "  ]\n"
            "}");
}

TEST_F(NativeJsonObjectTest, LeavesMembersOutThatThePlatformHasNoValueFor) {
  const auto object = Parse(R"({"null":null,"empty":"","kept":1,"inner":{"null":null}})");
  object->PutString("", "empty key");
  EXPECT_EQ(object->ToString(), "{\n  \"inner\": {},\n  \"kept\": 1\n}");
  EXPECT_EQ(Of({{"e", nullptr}})->ToString(), "{}");
}

TEST_F(NativeJsonObjectTest, CutsTextsAtAZeroByteWhenItPrints) {
  const auto object = Parse("{}");
  object->PutString("value", std::string("a\0b", 3))->PutString(std::string("key\0x", 5), "y");
  EXPECT_EQ(object->ToString(), "{\n  \"key\": \"y\",\n  \"value\": \"a\"\n}");
}

TEST_F(NativeJsonObjectTest, CannotPrintAnArrayThatHoldsNothing) {
  const std::string start = "Failed to convert JSON Object into a string:";
  for (const char* const text : {R"({"a":[null]})", R"({"a":[""]})", R"({"a":{"b":[1,[null]]}})"}) {
    const auto [code, message] = ErrorOf([&] { Parse(text)->ToString(); });
    EXPECT_EQ(code, "json.serialization_error");
    EXPECT_THAT(message, testing::StartsWith(start));
    ASSERT_GT(message.size(), start.size());
    EXPECT_NE(message[start.size()], ' ');
  }
}

TEST_F(NativeJsonObjectTest, CannotPrintANumberThatIsNone) {
  for (const double number :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    const auto object = Parse("{}");
    object->PutDouble("n", number);
    EXPECT_THAT(ErrorOf([&] { object->ToString(); }),
                Pair("json.serialization_error",
                     "Failed to convert JSON Object into a string:A number is infinite or not a "
                     "number"));
  }
}

TEST_F(NativeJsonObjectTest, PrintsTextThatReadsBackTheSame) {
  const auto object = Parse(
      R"({"s":"\u00e9\"\\\n","i":-9223372036854775808,"d":0.1,"w":1.0,"b":true,"a":[[1],{}],"o":{"k":"v"}})");
  EXPECT_TRUE(AreEqual(Parse(object->ToString())->Members(), object->Members()));
}

}  // namespace
}  // namespace Velmora
