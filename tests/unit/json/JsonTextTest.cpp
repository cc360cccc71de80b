// The short ways between text and variants give what the long ways by a platform value give.

#include <algorithm>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "JsonFixture.h"
#include "RandomJson.h"
#include "interop/VariantConversion.h"
#include "services/json/JsonText.h"
#include "services/json/NativeJsonObject.h"

namespace Velmora {
namespace {

using Platform::JsonLayout;
using Platform::JsonSerialization;
using Platform::Value;

class JsonTextTest : public JsonFixture {
 protected:
  static std::shared_ptr<JsonSerialization> Json() {
    return Platform::Host::Current()->jsonSerialization;
  }

  static VariantMap MapByWayOfAValue(const std::string& text) {
    const Value value = Json()->Parse(text, nullptr);
    EXPECT_TRUE(value.IsDictionary()) << text;
    return ToVariantMap(value);
  }

  static VariantVector VectorByWayOfAValue(const std::string& text) {
    const Value value = Json()->Parse(text, nullptr);
    EXPECT_TRUE(value.IsArray()) << text;
    return ToVariantVector(value);
  }

  // Nothing where the conversion or the writing fails.
  template <class Container>
  static std::optional<std::string> TextByWayOfAValue(const Container& container) {
    try {
      if constexpr (std::is_same_v<Container, VariantMap>) {
        return Json()->Serialize(ToNSDictionary(container), JsonLayout::Pretty, nullptr);
      } else {
        return Json()->Serialize(ToNSArray(container), JsonLayout::Pretty, nullptr);
      }
    } catch (const std::invalid_argument&) {
      return std::nullopt;
    }
  }

  static void ExpectSameReading(const std::string& text) {
    std::string problem;
    const auto map = ReadJsonObject(text, problem);
    ASSERT_TRUE(map.has_value()) << problem << " in " << text;
    EXPECT_TRUE(AreEqual(*map, MapByWayOfAValue(text))) << text;
  }

  template <class Container>
  static void ExpectSameWriting(const Container& container) {
    std::string problem;
    const auto text = WriteJson(container, problem);
    EXPECT_EQ(text, TextByWayOfAValue(container));
    EXPECT_EQ(text.has_value(), problem.empty()) << problem;
  }
};

TEST_F(JsonTextTest, ReadsRandomTextsAsByWayOfAValue) {
  RandomJson random(17);
  for (int i = 0; i < 3'000; ++i) ExpectSameReading(random.ObjectText());
  for (int i = 0; i < 1'000; ++i) {
    const std::string text = random.ArrayText();
    std::string problem;
    const auto vector = ReadJsonArray(text, problem);
    ASSERT_TRUE(vector.has_value()) << problem << " in " << text;
    EXPECT_TRUE(AreEqual(*vector, VectorByWayOfAValue(text))) << text;
  }
}

TEST_F(JsonTextTest, ReadsRepeatedKeysAsByWayOfAValue) {
  ExpectSameReading(R"({"a":1,"b":2,"a":3})");
  ExpectSameReading(R"({"a":{"x":1},"a":[1],"a":null})");
  ExpectSameReading(R"({"a":null,"a":{"x":1,"x":{"y":2}}})");
}

TEST_F(JsonTextTest, ReadsKeysWithZeroBytesAsByWayOfAValue) {
  ExpectSameReading(R"({"a\u0000b":1,"a":2,"a\u0000b":3})");
  ExpectSameReading(R"({"a":1,"a\u0000b":2,"a":3})");
  ExpectSameReading(R"({"\u0000":1,"":2,"x":{"k\u0000":"v\u0000w"}})");
  std::string problem;
  EXPECT_EQ(ReadJsonObject(R"({"a\u0000b":1,"a":2,"a\u0000b":3})", problem)->at("a")->GetLong(), 2);
}

TEST_F(JsonTextTest, WritesRandomVariantsAsByWayOfAValue) {
  RandomJson random(23);
  int written = 0;
  for (int i = 0; i < 3'000; ++i) {
    const VariantMap map = random.Map();
    ExpectSameWriting(map);
    ExpectSameWriting(random.Vector());
    std::string problem;
    if (WriteJson(map, problem)) ++written;
  }
  // Both outcomes were met.
  EXPECT_GT(written, 300);
  EXPECT_LT(written, 2'900);
}

TEST_F(JsonTextTest, WritesAwkwardVariantsAsByWayOfAValue) {
  const auto one = Variant::FromInteger(1);
  const auto unwritable = Variant::FromVariantVector({nullptr});
  const std::string zero(1, '\0');
  const std::vector<VariantMap> maps = {
      {{"", one}},
      {{"", unwritable}},
      {{zero, one}},
      {{zero, unwritable}},
      {{"a", one}, {"a" + zero, Variant::FromInteger(2)}},
      {{"a", one}, {"a" + zero, Variant::FromNull()}},
      {{"a", one}, {"a" + zero, nullptr}},
      {{"a" + zero + "b", one}, {"a" + zero + "c", Variant::FromInteger(2)}},
      {{"\xff", one}},
      {{"\xff", unwritable}},
      {{"a", Variant::FromString("\xff")}},
      {{"a", Variant::FromString(zero)}},
      {{"a", Variant::FromString("\\u0000")}},
      {{"\\u0000", one}},
      {{"a", Variant::FromString("x" + zero + "\xff")}},
      {{"a", Variant::FromDouble(NAN)}},
      {{"a", Variant::FromVariantMap({})}, {"b", Variant::FromVariantVector({})}},
      {{"a", Variant::FromNull()}},
  };
  for (const VariantMap& map : maps) {
    ExpectSameWriting(map);
    ExpectSameWriting(VariantVector{one, Variant::FromVariantMap(map)});
  }
}

TEST_F(JsonTextTest, IndentsDeepContainersByNoMoreThan64Blanks) {
  constexpr int kDepth = 40;
  auto value = Variant::FromInteger(1);
  for (int level = 0; level < kDepth; ++level) value = Variant::FromVariantMap({{"a", value}});

  std::string problem;
  const std::string text = WriteJson(value->GetVariantMap(), problem).value();
  std::string expected = "{";
  const auto addLine = [&expected](int level, std::string_view line) {
    expected.append("\n").append(static_cast<std::size_t>(std::min(2 * level, 64)), ' ');
    expected.append(line);
  };
  for (int level = 1; level < kDepth; ++level) addLine(level, "\"a\": {");
  addLine(kDepth, "\"a\": 1");
  for (int level = kDepth; level > 0; --level) addLine(level - 1, "}");
  EXPECT_EQ(text, expected);
}

TEST_F(JsonTextTest, RoundTripsRandomTexts) {
  RandomJson random(31, RandomJson::Content::OnlyWhatComesBack);
  for (int i = 0; i < 2'000; ++i) {
    const std::string text = random.ObjectText();
    std::string problem;
    const auto map = ReadJsonObject(text, problem);
    ASSERT_TRUE(map.has_value()) << problem << " in " << text;
    const auto written = WriteJson(*map, problem);
    ASSERT_TRUE(written.has_value()) << problem << " for " << text;
    EXPECT_TRUE(AreEqual(*ReadJsonObject(*written, problem), *map)) << text;
  }
}

TEST_F(JsonTextTest, ReadsAndWritesToTheMaximumDepthAndNoDeeper) {
  constexpr int kMaximumDepth = JsonSerialization::kMaximumDepth;
  const auto nested = [](int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += "{\"a\":";
    text += '1';
    return text.append(static_cast<std::size_t>(depth), '}');
  };
  std::string problem;
  const auto deepest = ReadJsonObject(nested(kMaximumDepth), problem);
  ASSERT_TRUE(deepest.has_value()) << problem;
  EXPECT_TRUE(WriteJson(*deepest, problem).has_value()) << problem;

  EXPECT_FALSE(ReadJsonObject(nested(kMaximumDepth + 1), problem).has_value());
  EXPECT_FALSE(ReadJsonObject(nested(100'000), problem).has_value());
  const VariantMap tooDeep{{"a", Variant::FromVariantMap(*deepest)}};
  EXPECT_FALSE(WriteJson(tooDeep, problem).has_value());
  EXPECT_EQ(problem, "Containers are nested deeper than 1024 levels");
}

TEST_F(JsonTextTest, RefusesToWriteVariantsOfAnyDepth) {
  auto value = Variant::FromInteger(1);
  for (int i = 0; i < 100'000; ++i) value = Variant::FromVariantVector({value});
  std::string problem;
  EXPECT_FALSE(WriteJson(VariantMap{{"a", value}}, problem).has_value());
  EXPECT_NE(problem, "");
}

TEST_F(JsonTextTest, ReadsAndWritesTenMegabytes) {
  std::string text = "{\"items\":[";
  while (text.size() < 10'000'000) text += R"({"name":"some text","number":1234567},)";
  text.back() = ']';
  text += '}';
  std::string problem;
  const auto map = ReadJsonObject(text, problem);
  ASSERT_TRUE(map.has_value()) << problem;
  const auto written = WriteJson(*map, problem);
  ASSERT_TRUE(written.has_value()) << problem;
  EXPECT_TRUE(AreEqual(*ReadJsonObject(*written, problem), *map));
  EXPECT_FALSE(ReadJsonObject(text + "}", problem).has_value());
}

TEST_F(JsonTextTest, ServesManyThreadsAtOnce) {
  constexpr int kThreads = 6;
  std::vector<std::string> results(kThreads);
  const auto work = [&results](std::size_t thread) {
    const std::string text = R"({"list":[{"id":)" + std::to_string(thread) + "}]}";
    for (int round = 0; round < 200; ++round) {
      results[thread] = NativeJsonObject(text).ToString();
      std::string problem;
      if (ReadJsonObject(text + "x", problem)) results[thread] = "read what is no JSON";
    }
  };
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < kThreads; ++i) {
    EXPECT_EQ(results[i],
              "{\n  \"list\": [\n    {\n      \"id\": " + std::to_string(i) + "\n    }\n  ]\n}");
  }
}

}  // namespace
}  // namespace Velmora
