#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "bridge/DataMarshaller.h"

namespace {

using Platform::Value;
using Velmora::DataMarshaller;

Value Marshalled(const Value& info) {
  DataMarshaller marshaller;
  marshaller.marshalLaunchInfo(info);
  return marshaller.getLaunchData();
}

TEST(DataMarshaller, StartsWithAnEmptyDictionary) {
  const DataMarshaller marshaller;
  EXPECT_TRUE(marshaller.getLaunchData().IsDictionary());
  EXPECT_EQ(marshaller.getLaunchData().Count(), 0U);
}

TEST(DataMarshaller, RenamesTheLaunchKeys) {
  const Value expected = {{"deeplink", "app://a"}, {"pushmessageid", "m"}, {"notificationid", "n"}};
  EXPECT_EQ(Marshalled({{"krv_m_l_id", "n"}, {"krv_m_id", "m"}, {"krv_deeplink", "app://a"}}),
            expected);
}

TEST(DataMarshaller, ExaminesTheKeysInTheirOwnOrder) {
  const Value data =
      Marshalled({{"krv_m_l_id", "n"}, {"krv_m_id", "m"}, {"krv_deeplink", "app://a"}});
  const auto keys = data.Keys();
  ASSERT_EQ(keys.size(), 3U);
  EXPECT_EQ(keys[0], Value("deeplink"));
  EXPECT_EQ(keys[1], Value("pushmessageid"));
  EXPECT_EQ(keys[2], Value("notificationid"));
}

TEST(DataMarshaller, IgnoresOtherKeys) {
  EXPECT_EQ(Marshalled({{"deeplink", "x"}, {"KRV_M_ID", "y"}, {"krv", "z"}}).Count(), 0U);
  EXPECT_EQ(Marshalled({}).Count(), 0U);
  EXPECT_EQ(Marshalled("krv_m_id").Count(), 0U);
}

TEST(DataMarshaller, LeavesOutBlankTexts) {
  EXPECT_EQ(Marshalled({{"krv_deeplink", "   \n"}}).Count(), 0U);
  EXPECT_EQ(Marshalled({{"krv_deeplink", ""}}).Count(), 0U);
}

TEST(DataMarshaller, KeepsTheBlanksAroundAWord) {
  const Value expected = {{"deeplink", "  word \n"}};
  EXPECT_EQ(Marshalled({{"krv_deeplink", "  word \n"}}), expected);
}

TEST(DataMarshaller, PassesByWhatIsNoText) {
  const Value expected = {{"notificationid", "n"}};
  EXPECT_EQ(
      Marshalled({{"krv_deeplink", 7}, {"krv_m_id", Value::Array({"a"})}, {"krv_m_l_id", "n"}}),
      expected);
}

TEST(DataMarshaller, ALaterInfoReplacesOnlyWhatItHas) {
  DataMarshaller marshaller;
  marshaller.marshalLaunchInfo({{"krv_deeplink", "a"}, {"krv_m_id", "b"}});
  marshaller.marshalLaunchInfo({{"krv_deeplink", "c"}, {"krv_m_id", " "}});
  const Value expected = {{"deeplink", "c"}, {"pushmessageid", "b"}};
  EXPECT_EQ(marshaller.getLaunchData(), expected);
}

TEST(DataMarshaller, TakesHugeAndMalformedTexts) {
  std::string huge(10 << 20, ' ');
  huge.push_back('x');
  EXPECT_TRUE(Marshalled({{"krv_deeplink", huge}}).Get("deeplink").AsStringView() == huge);
  EXPECT_EQ(Marshalled({{"krv_m_id", "\xFF"}}).Get("pushmessageid"), Value("\xFF"));
  EXPECT_EQ(Marshalled({{"krv_m_id", "\xE2\x80"}}).Count(), 1U);
}

TEST(DataMarshallerIsEmpty, ForAbsentAndEmptyTexts) {
  EXPECT_TRUE(DataMarshaller::isEmpty(std::nullopt));
  EXPECT_TRUE(DataMarshaller::isEmpty(""));
}

TEST(DataMarshallerIsEmpty, ForEveryBlankAndLineBreak) {
  const std::string all =
      "\t\n\v\f\r \xC2\x85\xC2\xA0\xE1\x9A\x80\xE2\x80\x80\xE2\x80\x81\xE2\x80\x82\xE2\x80\x83"
      "\xE2\x80\x84\xE2\x80\x85\xE2\x80\x86\xE2\x80\x87\xE2\x80\x88\xE2\x80\x89\xE2\x80\x8A"
      "\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xAF\xE2\x81\x9F\xE3\x80\x80";
  EXPECT_TRUE(DataMarshaller::isEmpty(all));
}

TEST(DataMarshallerIsEmpty, IsFalseForNeighboursOfTheBlanks) {
  // Backspace, shift out, unit separator, next character after U+0085, zero width space, Mongolian
  // vowel separator, word joiner, zero byte, half a blank.
  for (const std::string& text :
       {std::string("\b"), std::string("\x0E"), std::string("\x1F"), std::string("\xC2\x86"),
        std::string("\xE2\x80\x8B"), std::string("\xE1\xA0\x8E"), std::string("\xE2\x81\xA0"),
        std::string(1, '\0'), std::string("\xE2\x80"), std::string("\x85"), std::string("a")}) {
    EXPECT_FALSE(DataMarshaller::isEmpty(text)) << testing::PrintToString(text);
    EXPECT_FALSE(DataMarshaller::isEmpty(" " + text + " ")) << testing::PrintToString(text);
  }
}

}  // namespace
