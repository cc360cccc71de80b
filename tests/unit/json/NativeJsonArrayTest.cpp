#include <limits>

#include "JsonFixture.h"
#include "services/json/NativeJsonArray.h"
#include "services/json/NativeJsonObject.h"

namespace Velmora {
namespace {

using testing::ElementsAre;
using testing::Pair;

class NativeJsonArrayTest : public JsonFixture {
 protected:
  static std::shared_ptr<NativeJsonArray> Parse(const std::string& json) {
    return std::make_shared<NativeJsonArray>(json);
  }
  static std::shared_ptr<NativeJsonArray> Of(const VariantVector& elements) {
    return std::make_shared<NativeJsonArray>(elements);
  }

  static std::pair<std::string, std::string> ErrorOf(const std::function<void()>& call) {
    return CodeAndMessage("src/services/json/NativeJsonArray", call);
  }

  static std::vector<std::int32_t> Integers(const JsonArray& array) {
    std::vector<std::int32_t> integers;
    for (std::uint32_t i = 0; i < array.Length(); ++i) integers.push_back(array.GetInt(i));
    return integers;
  }
};

TEST_F(NativeJsonArrayTest, ParsesElementsOfEveryType) {
  const auto array = Parse(R"([ "x", 7, 3.7, true, null, [1], {"k":1} ])");
  EXPECT_EQ(array->Length(), 7U);
  EXPECT_EQ(array->GetType(0), JsonType::String);
  EXPECT_EQ(array->GetType(1), JsonType::Number);
  EXPECT_EQ(array->GetType(2), JsonType::Number);
  EXPECT_EQ(array->GetType(3), JsonType::Boolean);
  EXPECT_EQ(array->GetType(4), JsonType::Null);
  EXPECT_EQ(array->GetType(5), JsonType::Array);
  EXPECT_EQ(array->GetType(6), JsonType::Object);
  EXPECT_EQ(array->GetString(0), "x");
  EXPECT_EQ(array->GetLong(1), 7);
  EXPECT_EQ(array->GetInt(2), 3);
  EXPECT_EQ(array->GetDouble(2), 3.7);
  EXPECT_TRUE(array->GetBoolean(3));
  EXPECT_EQ(array->GetJsonArray(5)->GetInt(0), 1);
  EXPECT_EQ(array->GetJsonObject(6)->GetInt("k"), 1);
  EXPECT_EQ(Parse("[]")->Length(), 0U);
}

TEST_F(NativeJsonArrayTest, ThrowsWithTheWordingOfObjectsWhenTheTextIsNoJson) {
  for (const std::string text : {"", "[1,]", "[", "7"}) {
    EXPECT_THAT(ErrorOf([&] { Parse(text); }),
                Pair("json.serialization_error", "Failed to create json object for string: " +
                                                     text + " error: " + ParserDescription(text)))
        << text;
  }
}

TEST_F(NativeJsonArrayTest, RefusesTheTextOfAnObject) {
  EXPECT_THAT(ErrorOf([] { Parse("{}"); }),
              Pair("json.serialization_error",
                   "Failed to create json object for string: {} error: The root is not an array"));
}

TEST_F(NativeJsonArrayTest, ReadsATextUpToItsFirstZeroByte) {
  EXPECT_THAT(Integers(*Parse(std::string("[1,2]\0]", 7))), ElementsAre(1, 2));
}

TEST_F(NativeJsonArrayTest, CopiesTheVectorItIsGiven) {
  VariantVector elements{Variant::FromInteger(1)};
  const NativeJsonArray array(elements);
  elements[0] = Variant::FromInteger(2);
  elements.push_back(nullptr);
  EXPECT_THAT(Integers(array), ElementsAre(1));
}

TEST_F(NativeJsonArrayTest, InsertsBeforeAnIndexAndNeverReplaces) {
  const auto array = [] { return Parse("[1,2]"); };
  EXPECT_THAT(Integers(*array()->PutInt(0, 7)), ElementsAre(7, 1, 2));
  EXPECT_THAT(Integers(*array()->PutInt(1, 7)), ElementsAre(1, 7, 2));
  EXPECT_THAT(Integers(*array()->PutInt(2, 7)), ElementsAre(1, 2, 7));
}

TEST_F(NativeJsonArrayTest, IgnoresAnIndexBeyondTheEndAndStillReturnsItself) {
  const auto array = Parse("[1,2]");
  const std::shared_ptr<JsonArray> self = array;
  EXPECT_EQ(array->PutInt(5, 7), self);
  EXPECT_EQ(array->PutLong(3, 7), self);
  EXPECT_EQ(array->PutDouble(3, 7.0), self);
  EXPECT_EQ(array->PutString(3, "x"), self);
  EXPECT_EQ(array->PutBoolean(3, true), self);
  EXPECT_EQ(array->PutJsonObject(3, std::make_shared<NativeJsonObject>("{}")), self);
  EXPECT_EQ(array->PutJsonArray(3, Parse("[]")), self);
  EXPECT_EQ(array->PutInt(std::numeric_limits<std::uint32_t>::max(), 7), self);
  EXPECT_THAT(Integers(*array), ElementsAre(1, 2));
}

TEST_F(NativeJsonArrayTest, AppendsEachType) {
  const auto array = Parse("[]");
  const std::shared_ptr<JsonArray> self = array;
  EXPECT_EQ(array->PutInt(-1), self);
  EXPECT_EQ(array->PutLong(std::numeric_limits<std::int64_t>::min()), self);
  EXPECT_EQ(array->PutDouble(2.0), self);
  EXPECT_EQ(array->PutString("x"), self);
  EXPECT_EQ(array->PutBoolean(false), self);
  EXPECT_EQ(array->PutJsonObject(std::make_shared<NativeJsonObject>(R"({"k":1})")), self);
  EXPECT_EQ(array->PutJsonArray(Parse("[1]")), self);
  const VariantVector& elements = array->Elements();
  ASSERT_EQ(elements.size(), 7U);
  EXPECT_EQ(elements[0]->GetKind(), VariantKind::Integer);
  EXPECT_EQ(elements[1]->GetKind(), VariantKind::Long);
  EXPECT_EQ(elements[2]->GetKind(), VariantKind::Double);
  EXPECT_EQ(elements[3]->GetKind(), VariantKind::String);
  EXPECT_EQ(elements[4]->GetKind(), VariantKind::Boolean);
  EXPECT_EQ(array->GetJsonObject(5)->GetInt("k"), 1);
  EXPECT_EQ(array->GetJsonArray(6)->GetInt(0), 1);
}

TEST_F(NativeJsonArrayTest, InsertsEachType) {
  const auto array = Parse("[true]");
  array->PutLong(0, 1)
      ->PutDouble(0, 2.0)
      ->PutString(0, "x")
      ->PutBoolean(0, false)
      ->PutJsonObject(0, std::make_shared<NativeJsonObject>("{}"))
      ->PutJsonArray(0, Parse("[]"));
  std::vector<JsonType> types;
  for (std::uint32_t i = 0; i < array->Length(); ++i) types.push_back(array->GetType(i));
  EXPECT_THAT(types,
              ElementsAre(JsonType::Array, JsonType::Object, JsonType::Boolean, JsonType::String,
                          JsonType::Number, JsonType::Number, JsonType::Boolean));
}

TEST_F(NativeJsonArrayTest, IgnoresEmptyPointers) {
  const auto array = Parse("[1]");
  const std::shared_ptr<JsonArray> self = array;
  EXPECT_EQ(array->PutJsonObject(nullptr), self);
  EXPECT_EQ(array->PutJsonArray(nullptr), self);
  EXPECT_EQ(array->PutJsonObject(0, nullptr), self);
  EXPECT_EQ(array->PutJsonArray(0, nullptr), self);
  EXPECT_THAT(Integers(*array), ElementsAre(1));
}

TEST_F(NativeJsonArrayTest, CanHoldACopyOfItself) {
  const auto array = Parse("[1]");
  array->PutJsonArray(array);
  array->PutJsonArray(0, array);
  EXPECT_EQ(array->Length(), 3U);
  EXPECT_EQ(array->GetJsonArray(0)->Length(), 2U);
}

TEST_F(NativeJsonArrayTest, ThrowsForAnIndexBeyondTheEnd) {
  const auto array = Parse("[1,2]");
  const auto missing = Pair("json.index_not_found", "index: 2");
  EXPECT_THAT(ErrorOf([&] { array->GetType(2); }), missing);
  EXPECT_THAT(ErrorOf([&] { array->GetJsonObject(2); }), missing);
  EXPECT_THAT(ErrorOf([&] { array->GetJsonArray(2); }), missing);
  EXPECT_THAT(ErrorOf([&] { array->GetInt(2); }), missing);
  EXPECT_THAT(ErrorOf([&] { array->GetLong(2); }), missing);
  EXPECT_THAT(ErrorOf([&] { array->GetDouble(2); }), missing);
  EXPECT_THAT(ErrorOf([&] { array->GetString(2); }), missing);
  EXPECT_THAT(ErrorOf([&] { array->GetBoolean(2); }), missing);
  EXPECT_THAT(ErrorOf([&] { array->GetInt(4294967295U); }),
              Pair("json.index_not_found", "index: 4294967295"));
}

TEST_F(NativeJsonArrayTest, ThrowsForAnElementOfAnotherType) {
  const auto array = Parse(R"(["1", 1, true, [], {}, null])");
  for (const std::uint32_t i : {0U, 2U, 3U, 4U, 5U}) {
    const auto expected = Pair("json.value_not_numeric_type", "index: " + std::to_string(i));
    EXPECT_THAT(ErrorOf([&] { array->GetInt(i); }), expected);
    EXPECT_THAT(ErrorOf([&] { array->GetLong(i); }), expected);
    EXPECT_THAT(ErrorOf([&] { array->GetDouble(i); }), expected);
  }
  EXPECT_THAT(ErrorOf([&] { array->GetString(1); }),
              Pair("json.value_not_string_type", "index: 1"));
  EXPECT_THAT(ErrorOf([&] { array->GetBoolean(1); }),
              Pair("json.value_not_boolean_type", "index: 1"));
  EXPECT_THAT(ErrorOf([&] { array->GetJsonObject(3); }),
              Pair("json.value_not_object_type", "index: 3"));
  EXPECT_THAT(ErrorOf([&] { array->GetJsonArray(4); }),
              Pair("json.value_not_array_type", "index: 4"));
}

TEST_F(NativeJsonArrayTest, ThrowsForAnElementThatHoldsNothing) {
  const auto array = Of({nullptr});
  EXPECT_THAT(ErrorOf([&] { array->GetType(0); }), Pair("json.object_unknown", "index: 0"));
  EXPECT_THAT(ErrorOf([&] { array->GetJsonObject(0); }),
              Pair("json.jsonobject_is_null", "index: 0"));
  EXPECT_THAT(ErrorOf([&] { array->GetJsonArray(0); }),
              Pair("json.jsonobject_is_null", "index: 0"));
  EXPECT_THAT(ErrorOf([&] { array->GetLong(0); }), Pair("json.value_not_numeric_type", "index: 0"));
}

TEST_F(NativeJsonArrayTest, HandsOutNestedObjectsAndArraysAsCopies) {
  const auto array = Parse(R"([{"k":1},[1]])");
  array->GetJsonObject(0)->PutInt("k", 2);
  array->GetJsonArray(1)->PutInt(2);
  EXPECT_EQ(array->GetJsonObject(0)->GetInt("k"), 1);
  EXPECT_EQ(array->GetJsonArray(1)->Length(), 1U);
}

TEST_F(NativeJsonArrayTest, GivesTheFallbackForEveryError) {
  const auto array = Parse(R"(["x", 3.5, true, [1], {"k":1}])");
  EXPECT_EQ(array->OptInt(0, -1), -1);
  EXPECT_EQ(array->OptInt(9, -1), -1);
  EXPECT_EQ(array->OptInt(1, -1), 3);
  EXPECT_EQ(array->OptLong(9, -2), -2);
  EXPECT_EQ(array->OptLong(1, -2), 3);
  EXPECT_EQ(array->OptDouble(0, 0.25), 0.25);
  EXPECT_EQ(array->OptDouble(1, 0.25), 3.5);
  EXPECT_EQ(array->OptString(1, "fallback"), "fallback");
  EXPECT_EQ(array->OptString(0, "fallback"), "x");
  EXPECT_TRUE(array->OptBoolean(0, true));
  EXPECT_TRUE(array->OptBoolean(2, false));
  EXPECT_EQ(array->OptJsonObject(3), nullptr);
  EXPECT_EQ(array->OptJsonObject(9), nullptr);
  EXPECT_EQ(array->OptJsonObject(4)->GetInt("k"), 1);
  EXPECT_EQ(array->OptJsonArray(4), nullptr);
  EXPECT_EQ(array->OptJsonArray(3)->Length(), 1U);
}

TEST_F(NativeJsonArrayTest, PrintsItsElementsWithLineBreaks) {
  EXPECT_EQ(Parse(R"([1, {"b":2,"a":[]}, "x"])")->ToString(),
            "[\n"
            "  1,\n"
            "  {\n"
            "    \"a\": [],\n"
            "    \"b\": 2\n"
            "  },\n"
            "  \"x\"\n"
            "]");
  EXPECT_EQ(Parse("[]")->ToString(), "[]");
}

TEST_F(NativeJsonArrayTest, CannotPrintElementsThatThePlatformHasNoValueFor) {
  const std::string start = "Failed to convert JSON array into a string:";
  for (const auto& array :
       {Parse("[null]"), Parse(R"(["a",""])"), Of({nullptr}), Of({Variant::FromString("\xff")})}) {
    const auto [code, message] = ErrorOf([&] { array->ToString(); });
    EXPECT_EQ(code, "json.serialization_error");
    EXPECT_THAT(message, testing::StartsWith(start));
    ASSERT_GT(message.size(), start.size());
    EXPECT_NE(message[start.size()], ' ');
    EXPECT_GT(array->Length(), 0U);
  }
}

TEST_F(NativeJsonArrayTest, CannotPrintANumberThatIsNone) {
  const auto array = Parse("[]");
  array->PutDouble(std::numeric_limits<double>::infinity());
  EXPECT_THAT(ErrorOf([&] { array->ToString(); }),
              Pair("json.serialization_error",
                   "Failed to convert JSON array into a string:A number is infinite or not a "
                   "number"));
}

}  // namespace
}  // namespace Velmora
