#include <limits>

#include "JsonFixture.h"
#include "services/json/NativeJsonArray.h"
#include "services/json/NativeJsonObject.h"
#include "services/json/NativeJsonUtilityService.h"

namespace Velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class NativeJsonUtilityServiceTest : public JsonFixture {
 protected:
  const std::shared_ptr<JsonUtilityServiceInterface> service_ = CreateNativeJsonUtilityService();
};

TEST_F(NativeJsonUtilityServiceTest, MakesObjectsFromText) {
  const auto object = service_->CreateJsonObject(R"({"a":1})");
  EXPECT_EQ(object->GetInt("a"), 1);
  EXPECT_NE(std::dynamic_pointer_cast<NativeJsonObject>(object), nullptr);
}

TEST_F(NativeJsonUtilityServiceTest, LetsTheErrorOfABadTextThrough) {
  EXPECT_EQ(Code("src/services/json/NativeJsonObject", [&] { service_->CreateJsonObject("x"); }),
            "json.serialization_error");
  EXPECT_EQ(Code("src/services/json/NativeJsonArray", [&] { service_->CreateJsonArray("x"); }),
            "json.serialization_error");
}

TEST_F(NativeJsonUtilityServiceTest, MakesObjectsFromCopiesOfMaps) {
  VariantMap variants{{"a", Variant::FromInteger(1)}, {"e", nullptr}};
  const auto object = service_->CreateJsonObject(variants);
  variants.clear();
  EXPECT_EQ(object->Length(), 2U);
  EXPECT_EQ(object->GetInt("a"), 1);

  const auto strings = service_->CreateJsonObject(StringMap{{"a", "1"}, {"b", ""}});
  EXPECT_EQ(strings->GetString("a"), "1");
  EXPECT_EQ(strings->GetString("b"), "");
}

TEST_F(NativeJsonUtilityServiceTest, MakesArraysFromTextAndFromCopiesOfVectors) {
  EXPECT_EQ(service_->CreateJsonArray("[1,2]")->GetInt(1), 2);
  VariantVector values{Variant::FromString("x")};
  const auto array = service_->CreateJsonArray(values);
  values.clear();
  EXPECT_EQ(array->GetString(0), "x");
  EXPECT_NE(std::dynamic_pointer_cast<NativeJsonArray>(array), nullptr);
}

TEST_F(NativeJsonUtilityServiceTest, MakesEmptyObjectsAndArraysThatCanBeFilled) {
  const auto object = service_->CreateEmptyJsonObject();
  EXPECT_EQ(object->Length(), 0U);
  EXPECT_EQ(object->PutInt("a", 1)->Length(), 1U);
  const auto array = service_->CreateEmptyJsonArray();
  EXPECT_EQ(array->Length(), 0U);
  EXPECT_EQ(array->PutInt(1)->Length(), 1U);
  EXPECT_EQ(service_->CreateEmptyJsonObject()->Length(), 0U);
}

TEST_F(NativeJsonUtilityServiceTest, FlattensAnObjectFromText) {
  EXPECT_THAT(
      service_->MapFromJsonObject(service_->CreateJsonObject(R"({"a":true,"b":2.5,"c":null})")),
      ElementsAre(Pair("a", "1"), Pair("b", "2.500000"), Pair("c", "")));
}

TEST_F(NativeJsonUtilityServiceTest, FlattensEveryKind) {
  const auto object = service_->CreateJsonObject(
      VariantMap{{"array", Variant::FromVariantVector({Variant::FromInteger(1)})},
                 {"boolean", Variant::FromBoolean(false)},
                 {"double", Variant::FromDouble(-1e20)},
                 {"empty", Variant::FromString("")},
                 {"integer", Variant::FromInteger(std::numeric_limits<std::int32_t>::min())},
                 {"long", Variant::FromLong(std::numeric_limits<std::int64_t>::min())},
                 {"null", Variant::FromNull()},
                 {"object", Variant::FromVariantMap({{"k", Variant::FromBoolean(true)}})},
                 {"string", Variant::FromString("a \"b\"")}});
  EXPECT_THAT(service_->MapFromJsonObject(object),
              ElementsAre(Pair("array", "[\n  1\n]"), Pair("boolean", "0"),
                          Pair("double", "-100000000000000000000.000000"), Pair("empty", ""),
                          Pair("integer", "-2147483648"), Pair("long", "-9223372036854775808"),
                          Pair("null", ""), Pair("object", "{\n  \"k\": true\n}"),
                          Pair("string", "a \"b\"")));
}

TEST_F(NativeJsonUtilityServiceTest, FlattensDoublesWithSixDecimals) {
  const std::pair<double, std::string> doubles[] = {
      {1.5, "1.500000"},
      {0.0, "0.000000"},
      {-0.0, "-0.000000"},
      {1e-9, "0.000000"},
      {2.0 / 3.0, "0.666667"},
      {std::numeric_limits<double>::max(), std::to_string(std::numeric_limits<double>::max())},
      {-std::numeric_limits<double>::max(), std::to_string(-std::numeric_limits<double>::max())},
      {std::numeric_limits<double>::infinity(), "inf"},
  };
  for (const auto& [number, text] : doubles) {
    const auto object = service_->CreateJsonObject(VariantMap{{"d", Variant::FromDouble(number)}});
    EXPECT_THAT(service_->MapFromJsonObject(object), ElementsAre(Pair("d", text)));
  }
}

TEST_F(NativeJsonUtilityServiceTest, LeavesOutWhatHoldsNothing) {
  const auto object =
      service_->CreateJsonObject(VariantMap{{"a", nullptr}, {"b", Variant::FromBoolean(true)}});
  EXPECT_THAT(service_->MapFromJsonObject(object), ElementsAre(Pair("b", "1")));
}

TEST_F(NativeJsonUtilityServiceTest, FlattensNothingToNothing) {
  EXPECT_THAT(service_->MapFromJsonObject(nullptr), IsEmpty());
  EXPECT_THAT(service_->MapFromJsonObject(service_->CreateEmptyJsonObject()), IsEmpty());
}

TEST_F(NativeJsonUtilityServiceTest, LetsTheErrorOfANestedArrayThrough) {
  const auto object = service_->CreateJsonObject(R"({"a":[null]})");
  EXPECT_EQ(Code("src/services/json/NativeJsonArray", [&] { service_->MapFromJsonObject(object); }),
            "json.serialization_error");
}

TEST_F(NativeJsonUtilityServiceTest, CanBeReachedThroughItsInterface) {
  EXPECT_EQ(ObjectToSharedPtr(*service_), service_);
  EXPECT_TRUE(service_->Equals(*service_));
  EXPECT_FALSE(service_->Equals(*CreateNativeJsonUtilityService()));
}

}  // namespace
}  // namespace Velmora
