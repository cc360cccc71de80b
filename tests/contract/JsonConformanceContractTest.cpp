// Which texts are JSON: those that RFC 8259 admits, those that it does not, and those where it
// leaves the choice, with the choice that was made.

#include <string>
#include <vector>

#include "contract/JsonSerializationContract.h"

namespace JsonSerializationContract {
namespace {

using std::string_literals::operator""s;

template <class Implementation>
class JsonConformance : public Suite<Implementation> {};
TYPED_TEST_SUITE(JsonConformance, Implementations);

const std::vector<std::string>& TextsToAccept() {
  static const std::vector<std::string> texts = {
      "[]",
      "{}",
      " [ ] ",
      "\t\n\r {\t\n\r }\t\n\r ",
      "[[],[[]],{}]",
      R"({"a":{"b":{"c":[]}}})",
      R"([null,true,false])",
      R"([""])",
      R"(["a b"])",
      R"({"":""})",
      R"({" ":0})",
      R"({"a":1, "b":2})",
      R"([0])",
      R"([-0])",
      R"([-1])",
      R"([10,20])",
      R"([0.0])",
      R"([0.5])",
      R"([1.25e3])",
      R"([1E1])",
      R"([1e+01])",
      R"([1e-01])",
      R"([0e0])",
      R"([0e+1])",
      R"([123.456789])",
      R"([1,2])",
      R"(["\"","\\","\/","\b","\f","\n","\r","\t"])",
      R"(["\u0000"])",
      R"(["\u001f"])",
      R"(["\u00Ff"])",
      R"(["\uFFFF"])",
      R"(["\uFdd0"])",
      R"(["\uD834\uDD1E"])",
      R"(["\uDBFF\uDFFF"])",
      R"(["\\u0041"])",
      R"(["\\\\"])",
      "[\"\x7f\"]",
      "[\"\u00e9\u20ac\U0001f600\"]",
      "[\"\U0010ffff\"]",
      "[\"\u2028\u2029\"]",
      "[\"/* no comment */\"]",
      "[\"]\"]",
      "{\"\u00e9\":1}",
      "[1]\n",
  };
  return texts;
}

const std::vector<std::string>& TextsToReject() {
  static const std::vector<std::string> texts = {
      // Nothing, or not whole.
      "",
      " ",
      "\n\t",
      "[",
      "{",
      "]",
      "}",
      "[[]",
      "[]]",
      "{}}",
      "{\"a\"",
      "{\"a\":",
      "{\"a\":1",
      "{\"a\":1,",
      "[1",
      "[1,",
      "[\"a",
      "[\"a\\",
      "[\"\\u00",
      "[tr",
      "[nul",
      "[-",
      "[1e",
      // More than one root.
      "[][]",
      "{}{}",
      "[] []",
      "[],",
      "[]1",
      "[]#",
      "[1]x",
      // Structure.
      "[,]",
      "[,1]",
      "[1,]",
      "[1,,2]",
      "[1 2]",
      "[1:2]",
      "[1;2]",
      "{,}",
      "{\"a\":1,}",
      "{,\"a\":1}",
      "{\"a\":1,,\"b\":2}",
      "{\"a\",\"b\"}",
      "{\"a\" 1}",
      "{\"a\"::1}",
      "{\"a\":1:2}",
      "{\"a\":1 \"b\":2}",
      "{\"a\":}",
      "{:1}",
      "{a:1}",
      "{'a':1}",
      "{1:1}",
      "{null:1}",
      "{[]:1}",
      "{{}:1}",
      "{\"a\"}",
      "[}",
      "{]",
      "[{]}",
      "{\"a\":[}]",
      "(1)",
      "<1>",
      ":",
      ",",
      // Words.
      "[True]",
      "[TRUE]",
      "[nil]",
      "[undefined]",
      "[truefalse]",
      "[true1]",
      "[nullx]",
      "[t]",
      "[NaN]",
      "[nan]",
      "[Infinity]",
      "[-Infinity]",
      "[inf]",
      "[word]",
      // Numbers.
      "[01]",
      "[00]",
      "[-01]",
      "[-00.1]",
      "[+1]",
      "[++1]",
      "[--1]",
      "[- 1]",
      "[.5]",
      "[-.5]",
      "[1.]",
      "[1.e1]",
      "[.e1]",
      "[1e]",
      "[1e+]",
      "[1e-]",
      "[1ee1]",
      "[1e1.5]",
      "[1e1e1]",
      "[1.2.3]",
      "[1 .5]",
      "[1_000]",
      "[1,000.]",
      "[0x10]",
      "[0b1]",
      "[1f]",
      "[1L]",
      "[1/2]",
      "[2-1]",
      "[00000000000000000001]",
      "[-012345678901234567890]",
      "[99999999999999999999x]",
      "[99999999999999999999.]",
      "[\uff11]",
      // Strings.
      "['a']",
      "[`a`]",
      "[\"a\"b]",
      "[\"a\" \"b\"]",
      "[\"\\\"]",
      "[\"\\a\"]",
      "[\"\\0\"]",
      "[\"\\x41\"]",
      "[\"\\'\"]",
      "[\"\\U0041\"]",
      "[\"\\u\"]",
      "[\"\\u1\"]",
      "[\"\\u12\"]",
      "[\"\\u123\"]",
      "[\"\\u123g\"]",
      "[\"\\u+123\"]",
      "[\"\\u 123\"]",
      "[\"\\u{41}\"]",
      "[\"\\\u00e9\"]",
      "[\"\\\n\"]",
      "[\"\n\"]",
      "[\"\r\"]",
      "[\"\t\"]",
      "[\"\x01\"]",
      "[\"\x1f\"]",
      "[a]",
      "[\\u0041]",
      "[\\n]",
      // Zero bytes.
      "\0"s,
      "[\0]"s,
      "[1\0]"s,
      "[1]\0"s,
      "\0[1]"s,
      "[\"\0\"]"s,
      "{\"\0\":1}"s,
      "[\"a\\\0\"]"s,
      // White space of other kinds, comments.
      "[\f1]",
      "[\v1]",
      "[\u00a01]",
      "[\u20601]",
      "\u2003[]",
      "[1] // c",
      "[1 /* c */]",
      "# c\n[]",
      // Not UTF-8.
      "[\"\x80\"]",
      "[\"\xbf\"]",
      "[\"\xc0\x80\"]",
      "[\"\xc1\xbf\"]",
      "[\"\xc3\"]",
      "[\"\xc3(\"]",
      "[\"\xe0\x80\x80\"]",
      "[\"\xe2\x82\"]",
      "[\"\xed\xa0\x80\"]",
      "[\"\xed\xbf\xbf\"]",
      "[\"\xf0\x80\x80\x80\"]",
      "[\"\xf4\x90\x80\x80\"]",
      "[\"\xf5\x80\x80\x80\"]",
      "[\"\xfe\"]",
      "[\"\xff\"]",
      "{\"\xff\":1}",
      "[\xff]",
      "\xff",
      "[1]\xff",
      "\xfe\xff\0[\0]"s,
      "[\0]\0"s,
  };
  return texts;
}

// RFC 8259 leaves these to the reader.
const std::vector<std::string>& TextsThatWeAccept() {
  static const std::vector<std::string> texts = {
      R"({"a":1,"a":2})",                              // a key twice
      R"([9007199254740993])",                         // beyond what a double holds
      R"([123456789012345678901234567890])",           // beyond 64 bits
      R"([1e-999])",                                   // becomes zero
      R"([0.1000000000000000055511151231257827021])",  // more digits than count
      "[\"\ufdd0\uffff\"]",                            // not characters, but well-formed
  };
  return texts;
}

const std::vector<std::string>& TextsThatWeReject() {
  static const std::vector<std::string> texts = {
      "\xef\xbb\xbf[]",  // a byte order mark
      "1",
      "\"a\"",
      "null",  // a root that is no container
      "true",
      "-0.5",  //
      R"([1e999])",
      R"([-1e999])",  // no double is so large
      R"([1.7976931348623159e308])",
      R"(["\ud800"])",
      R"(["\udbff"])",  // surrogates that are no characters
      R"(["\udc00"])",
      R"(["\udfff"])",
      R"(["\ud800\ud800"])",
      R"(["\ud800\u0041"])",
      R"(["\ud800a"])",
      R"(["\ud800\n"])",
      R"(["\ude00\ud83d"])",
      R"({"\udc00":1})",
      R"(["\ud83d\\ude00"])",
      R"([99999999999999999999,"\udc00"])",
  };
  return texts;
}

TYPED_TEST(JsonConformance, AcceptsWhatIsJson) {
  for (const std::string& text : TextsToAccept()) {
    EXPECT_FALSE(this->json_.Parse(text, nullptr).IsAbsent()) << text;
    Transcript transcript;
    EXPECT_TRUE(this->json_.Parse(text, transcript, nullptr)) << text;
  }
}

TYPED_TEST(JsonConformance, RejectsWhatIsNot) {
  for (const std::string& text : TextsToReject()) {
    SCOPED_TRACE(text);
    this->Fault(text);
  }
}

TYPED_TEST(JsonConformance, AcceptsWhereItMayWhatLosesNothingOrOnlyPrecision) {
  for (const std::string& text : TextsThatWeAccept()) {
    EXPECT_FALSE(this->json_.Parse(text, nullptr).IsAbsent()) << text;
  }
}

TYPED_TEST(JsonConformance, RejectsWhereItMayWhatHasNoValue) {
  for (const std::string& text : TextsThatWeReject()) {
    SCOPED_TRACE(text);
    this->Fault(text);
  }
}

TYPED_TEST(JsonConformance, RejectsEveryTextThatIsCutShort) {
  const std::string text = R"({"a":[1,-2.5e3,"x\u00e9\"",true,false,null,{}],"b":{"c":"d"}})";
  this->Parse(text);
  for (std::size_t length = 0; length < text.size(); ++length) {
    SCOPED_TRACE(length);
    this->Fault(std::string_view(text).substr(0, length));
  }
}

}  // namespace
}  // namespace JsonSerializationContract
