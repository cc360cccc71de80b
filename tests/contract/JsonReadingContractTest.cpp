#include <cmath>
#include <limits>
#include <utility>

#include "contract/JsonSerializationContract.h"

namespace JsonSerializationContract {
namespace {

using Platform::NumberType;
using testing::HasSubstr;

template <class Implementation>
class JsonReading : public Suite<Implementation> {};
TYPED_TEST_SUITE(JsonReading, Implementations);

TYPED_TEST(JsonReading, KeepsEveryKindOfValueApart) {
  const Value value = this->Parse(
      R"({"text":"x","integer":1,"double":1.0,"yes":true,"no":false,"none":null,"array":[],"object":{}})");
  EXPECT_TRUE(value.Get("text").IsString());
  EXPECT_EQ(value.Get("integer").StorageType(), NumberType::SInt64);
  EXPECT_EQ(value.Get("double").StorageType(), NumberType::Float64);
  EXPECT_TRUE(value.Get("yes").IsBoolean());
  EXPECT_TRUE(value.Get("yes").AsBool());
  EXPECT_TRUE(value.Get("no").IsBoolean());
  EXPECT_FALSE(value.Get("no").AsBool());
  EXPECT_TRUE(value.Get("none").IsNull());
  EXPECT_TRUE(value.Get("array").IsArray());
  EXPECT_TRUE(value.Get("object").IsDictionary());
}

TYPED_TEST(JsonReading, ReadsIntegersThatFitSixtyFourSignedBits) {
  const std::pair<const char*, std::int64_t> integers[] = {
      {"0", 0},
      {"-0", 0},
      {"-1", -1},
      {"2147483648", 2147483648},
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
  };
  for (const auto& [text, expected] : integers) {
    const Value number = this->ParseElement(text);
    EXPECT_EQ(number.StorageType(), NumberType::SInt64) << text;
    EXPECT_EQ(number.AsInt64(), expected) << text;
  }
}

TYPED_TEST(JsonReading, ReadsEveryOtherNumberAsTheNearestDouble) {
  const std::pair<const char*, double> doubles[] = {
      {"9223372036854775808", 9223372036854775808.0},
      {"18446744073709551615", 18446744073709551615.0},
      {"18446744073709551616", 18446744073709551616.0},
      {"-9223372036854775809", -9223372036854775809.0},
      {"123456789012345678901234567890", 123456789012345678901234567890.0},
      {"-123456789012345678901234567890", -123456789012345678901234567890.0},
      {"1.0", 1.0},
      {"1e2", 100.0},
      {"1E+2", 100.0},
      {"25e-1", 2.5},
      {"0.1", 0.1},
      {"-0.0", -0.0},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"5e-324", std::numeric_limits<double>::denorm_min()},
      {"1e-400", 0.0},
      {"0e999999999999", 0.0},
      {"2.2250738585072011e-308", 2.2250738585072011e-308},
      {"9007199254740993.0", 9007199254740992.0},
      {"9007199254740993.00000000000000000001", 9007199254740994.0},
      {"0.500000000000000166533453693773481063544750213623046875", 0.5000000000000002},
  };
  for (const auto& [text, expected] : doubles) {
    const Value number = this->ParseElement(text);
    EXPECT_EQ(number.StorageType(), NumberType::Float64) << text;
    EXPECT_EQ(number.AsDouble(), expected) << text;
    EXPECT_EQ(std::signbit(number.AsDouble()), std::signbit(expected)) << text;
  }
}

TYPED_TEST(JsonReading, ReadsIntegersOfThreeHundredDigits) {
  const std::string digits(300, '9');
  EXPECT_EQ(this->ParseElement(digits).AsDouble(), 1e300);
  EXPECT_EQ(this->ParseElement("-" + digits).AsDouble(), -1e300);
  EXPECT_THAT(this->Fault("[" + std::string(309, '9') + "]"), HasSubstr("Number out of range"));
}

TYPED_TEST(JsonReading, LeavesLongDigitsInStringsAndKeysAlone) {
  const Value value =
      this->Parse(R"({"99999999999999999999":"\"99999999999999999999","n":99999999999999999999})");
  EXPECT_EQ(value.Get("99999999999999999999").AsString(), "\"99999999999999999999");
  EXPECT_EQ(value.Get("n").AsDouble(), 1e20);
}

TYPED_TEST(JsonReading, DecodesEscapes) {
  EXPECT_EQ(this->ParseElement(R"("\"\\\/\b\f\n\r\t")").AsString(), "\"\\/\b\f\n\r\t");
  EXPECT_EQ(this->ParseElement(R"("\u0041\u00e9\u20AC\ud83d\ude00")").AsString(),
            "A\u00e9\u20ac\U0001f600");
  EXPECT_EQ(this->ParseElement(R"("a\u0000b")").AsString(), std::string("a\0b", 3));
  EXPECT_EQ(this->Parse(R"({"a\u0000b":1})").Get(std::string("a\0b", 3)).AsInt64(), 1);
}

TYPED_TEST(JsonReading, TakesTheLastOfMembersWithOneKeyAndThePlaceOfTheFirst) {
  const Value value = this->Parse(R"({"a":1,"b":2,"a":{"c":3}})");
  EXPECT_EQ(value.Count(), 2U);
  EXPECT_EQ(this->Compact(value), R"({"a":{"c":3},"b":2})");
}

TYPED_TEST(JsonReading, KeepsTheOrderOfMembers) {
  const char* const text = R"({"b":1,"a":2,"":3,"c":{"z":1,"y":2}})";
  EXPECT_EQ(this->Compact(this->Parse(text)), text);
}

TYPED_TEST(JsonReading, TellsAVisitorEachPartInItsOrder) {
  Transcript transcript;
  EXPECT_TRUE(this->json_.Parse(R"({"a":[1,-2.5,"x"],"b":{},"c":[],"a":[true,false,null]})",
                                transcript, nullptr));
  EXPECT_EQ(transcript.Text(),
            "{ k:a [ i:1 d:-2.500000 s:x ] k:b { } k:c [ ] k:a [ true false null ] }");
}

TYPED_TEST(JsonReading, SaysWhereATextIsAtFault) {
  const std::pair<std::string, const char*> faults[] = {
      {"[1,\n2,\n  x]", "Unexpected character at line 3, column 3"},
      {"{\"a\":1,\r\n\"b\":?}", "Unexpected character at line 2, column 5"},
      {"", "No object or array at line 1, column 1"},
      {"\n ", "No object or array at line 2, column 2"},
      {"[1,]", "Unexpected character at line 1, column 4"},
      {"[1", "Unexpected end of the text at line 1, column 3"},
      {"{\"a\":\n\"b", "Unexpected end of the text at line 2, column 3"},
      {"{\"a\" 1}", "Missing colon at line 1, column 6"},
      {"{1:2}", "Missing member name at line 1, column 2"},
      {"{\"a\":1 \"b\":2}", "Missing comma or closing brace at line 1, column 8"},
      {"[1 2]", "Missing comma or closing bracket at line 1, column 4"},
      {"[1] 2", "Unexpected text after the end at line 1, column 5"},
      {"[\"\\x\"]", "Invalid escape at line 1, column 3"},
      {"[\"a\tb\"]", "Unexpected control character at line 1, column 4"},
      {"[\"\\ud800\"]", "Surrogate without its pair at line 1, column 3"},
      {"[\"\\udc00\"]", "Surrogate without its pair in the string that ends at line 1, column 10"},
      {"[1.]", "Incomplete number at line 1, column 4"},
      {"[ 1e400]", "Number out of range at line 1, column 3"},
      {"[\"\xc3\xa9\", \"\xff\"]", "Invalid UTF-8 at line 1, column 9"},
      {"\xef\xbb\xbf[]", "Unexpected byte order mark at line 1, column 1"},
      {std::string("[1]\0", 4), "Unexpected zero byte at line 1, column 4"},
      {" 42", "The root is neither an object nor an array at line 1, column 2"},
  };
  for (const auto& [text, expected] : faults) EXPECT_EQ(this->Fault(text), expected) << text;
}

TYPED_TEST(JsonReading, BlamesNoGoodNumberForAnotherFault) {
  EXPECT_EQ(this->Fault("[0e999, x]"), "The text is not JSON");
  EXPECT_EQ(this->Fault("[99999999999999999999,\n1 2]"),
            "Missing comma or closing bracket at line 2, column 3");
  EXPECT_EQ(this->Fault("[1.7976931348623159e308]"), "Number out of range");
}

TYPED_TEST(JsonReading, FailsWithoutAPlaceForTheError) {
  EXPECT_TRUE(this->json_.Parse("[", nullptr).IsAbsent());
  Transcript transcript;
  EXPECT_FALSE(this->json_.Parse("[", transcript, nullptr));
}

TYPED_TEST(JsonReading, LeavesTheErrorAloneOnSuccess) {
  Error error("before", 7);
  EXPECT_FALSE(this->json_.Parse("[]", &error).IsAbsent());
  EXPECT_EQ(error, Error("before", 7));
}

TYPED_TEST(JsonReading, ReadsATextThatIsPartOfALongerOne) {
  const std::string_view longer = "[1,2]]]]";
  EXPECT_EQ(this->Parse(longer.substr(0, 5)).Count(), 2U);
}

}  // namespace
}  // namespace JsonSerializationContract
