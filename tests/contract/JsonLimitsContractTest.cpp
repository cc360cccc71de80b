// Depth, size and threads.

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "contract/JsonSerializationContract.h"

namespace JsonSerializationContract {
namespace {

constexpr int kMaximumDepth = JsonSerialization::kMaximumDepth;

template <class Implementation>
class JsonLimits : public Suite<Implementation> {};
TYPED_TEST_SUITE(JsonLimits, Implementations);

std::string Repeat(std::string_view part, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += part;
  return text;
}

std::string ArraysAround(const std::string& innermost, int depth) {
  return Repeat("[", depth) + innermost + Repeat("]", depth);
}

std::string ObjectsAround(const std::string& innermost, int depth) {
  return Repeat("{\"a\":", depth) + innermost + Repeat("}", depth);
}

Value NestedValue(int depth, bool dictionaries) {
  Value value = 1;
  for (int i = 0; i < depth; ++i) {
    Value outer =
        dictionaries ? Value({{"a", std::move(value)}}) : Value::Array({std::move(value)});
    value = std::move(outer);
  }
  return value;
}

TYPED_TEST(JsonLimits, ReadsUpToTheMaximumDepth) {
  for (const int depth : {1, 2, kMaximumDepth - 1, kMaximumDepth}) {
    for (const std::string& text :
         {ArraysAround("", depth), ArraysAround("1", depth), ObjectsAround("1", depth),
          ObjectsAround("{}", depth - 1), "[1," + ArraysAround("\"x\"", depth - 1) + ",2]"}) {
      EXPECT_FALSE(this->json_.Parse(text, nullptr).IsAbsent()) << depth;
    }
  }
}

TYPED_TEST(JsonLimits, RefusesToReadDeeper) {
  for (const int depth : {kMaximumDepth + 1, kMaximumDepth + 2, 5'000, 100'000}) {
    for (const std::string& text :
         {ArraysAround("", depth), ArraysAround("1", depth), ObjectsAround("1", depth),
          ObjectsAround("{}", depth - 1), Repeat("[", depth), Repeat("{\"a\":[", depth)}) {
      EXPECT_THAT(this->Fault(text), testing::HasSubstr("nested deeper than 1024 levels at line 1"))
          << depth;
    }
  }
}

TYPED_TEST(JsonLimits, ReadsTheNextTextAfterOneThatWasTooDeep) {
  this->Fault(ArraysAround("", kMaximumDepth + 1));
  EXPECT_EQ(this->Parse("[1]").Count(), 1U);
}

TYPED_TEST(JsonLimits, WritesUpToTheMaximumDepth) {
  for (const bool dictionaries : {false, true}) {
    const Value value = NestedValue(kMaximumDepth, dictionaries);
    EXPECT_TRUE(this->json_.IsValidJsonObject(value));
    EXPECT_EQ(this->Parse(this->Compact(value)), value);
    EXPECT_EQ(this->Parse(this->Pretty(value)), value);
  }
}

TYPED_TEST(JsonLimits, RefusesToWriteDeeper) {
  for (const int depth : {kMaximumDepth + 1, 100'000}) {
    for (const bool dictionaries : {false, true}) {
      const Value value = NestedValue(depth, dictionaries);
      EXPECT_FALSE(this->json_.IsValidJsonObject(value));
      EXPECT_EQ(this->WritingFault(value), "Containers are nested deeper than 1024 levels");
    }
  }
}

TYPED_TEST(JsonLimits, RefusesToBeToldDeeper) {
  const auto tell = [](JsonVisitor& visitor) {
    for (int i = 0; i < 100'000; ++i) visitor.BeginArray();
    for (int i = 0; i < 100'000; ++i) visitor.EndArray();
  };
  Error error;
  EXPECT_EQ(this->json_.Write(tell, JsonLayout::Compact, &error), std::nullopt);
  EXPECT_EQ(error.LocalizedDescription(), "Containers are nested deeper than 1024 levels");
}

TYPED_TEST(JsonLimits, DoesNotBlowUpADeepTextWithIndentation) {
  Value wide = Value::Array();
  for (int i = 0; i < 1000; ++i) wide.Append(1);
  Value value = std::move(wide);
  for (int i = 1; i < kMaximumDepth; ++i) value = Value::Array({std::move(value)});
  EXPECT_LT(this->Pretty(value).size(), 300'000U);
}

TYPED_TEST(JsonLimits, ReadsAndWritesTenMegabytes) {
  std::string text = "[";
  while (text.size() < 10'000'000) text += R"({"name":"some text","number":1234567,"d":0.25},)";
  text.back() = ']';
  EXPECT_EQ(this->Compact(this->Parse(text)), text);

  const std::string longString(10'000'000, 'x');
  EXPECT_EQ(this->ParseElement('"' + longString + '"').AsString(), longString);
  text += ']';
  EXPECT_THAT(this->Fault(text), testing::HasSubstr("Unexpected text after the end"));
  EXPECT_EQ(this->Parse("[1]").Count(), 1U);
}

TYPED_TEST(JsonLimits, EscapesTenMegabytes) {
  const Value value = Value::Array({std::string(10'000'000, '\x01')});
  const std::string text = this->Compact(value);
  EXPECT_EQ(text.size(), 60'000'004U);
  EXPECT_EQ(this->Parse(text), value);
}

TYPED_TEST(JsonLimits, TakesALongRunOfLongIntegers) {
  std::string text = "[";
  for (int i = 0; i < 100'000; ++i) text += "99999999999999999999,";
  text.back() = ']';
  const Value value = this->Parse(text);
  ASSERT_EQ(value.Count(), 100'000U);
  EXPECT_EQ(value.At(99'999).AsDouble(), 1e20);
}

// Reads another text, and fails on it, inside every part of the outer one.
class NestedReader : public Transcript {
 public:
  explicit NestedReader(const JsonSerialization& json) : json_(json) {}

  void Integer(std::int64_t number) override {
    Transcript::Integer(number);
    inner_ += json_.Parse("[true,{\"x\":[null]}]", nullptr).Count();
    EXPECT_TRUE(json_.Parse("[true,", nullptr).IsAbsent());
  }
  std::size_t Inner() const { return inner_; }

 private:
  const JsonSerialization& json_;
  std::size_t inner_ = 0;
};

TYPED_TEST(JsonLimits, LetsAVisitorReadAnotherText) {
  NestedReader visitor(this->json_);
  EXPECT_TRUE(this->json_.Parse(R"({"a":[1,2,{"b":3}],"c":4})", visitor, nullptr));
  EXPECT_EQ(visitor.Text(), "{ k:a [ i:1 i:2 { k:b i:3 } ] k:c i:4 }");
  EXPECT_EQ(visitor.Inner(), 8U);
}

class Thrower : public Transcript {
 public:
  void Integer(std::int64_t) override { throw std::runtime_error("enough"); }
};

TYPED_TEST(JsonLimits, LetsThroughWhatAVisitorThrows) {
  Thrower visitor;
  EXPECT_THROW(this->json_.Parse("[[1]]", visitor, nullptr), std::runtime_error);
  EXPECT_EQ(this->Parse("[[1]]").Count(), 1U);
}

TYPED_TEST(JsonLimits, ReadsAndWritesOnManyThreadsAtOnce) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 200;
  std::atomic<int> good = 0;
  const auto work = [this, &good](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      const std::string own = std::to_string(thread * kRounds + round);
      const std::string text = R"({"id":)" + own + R"(,"list":[")" + own + R"(",0.5,null]})";
      Error error;
      const Value value = this->json_.Parse(text, &error);
      const bool refused = this->json_.Parse(text + "x", &error).IsAbsent();
      if (refused && this->json_.Serialize(value, JsonLayout::Compact, &error) == text) ++good;
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, kThreads * kRounds);
}

}  // namespace
}  // namespace JsonSerializationContract
