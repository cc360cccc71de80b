#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Value.h"

namespace Platform {
namespace {

constexpr const char* kLongText = "a text that is too long to lie inside of a value";

// Counts how many of it are alive.
class Counted final : public Object {
 public:
  explicit Counted(int& alive) : alive_(alive) { ++alive_; }
  ~Counted() override { --alive_; }
  std::string Description() const override { return "counted"; }
  bool Equals(const Object& other) const override { return this == &other; }

 private:
  int& alive_;
};

TEST(ValueSharing, ChangesOfACopyLeaveTheOriginal) {
  const Value array = Value::Array({1, 2});
  Value arrayCopy = array;
  arrayCopy.Append(3);
  EXPECT_EQ(array.Count(), 2U);
  EXPECT_EQ(arrayCopy.Count(), 3U);

  const Value dictionary = {{"a", 1}};
  Value dictionaryCopy = dictionary;
  dictionaryCopy.Set("a", 2);
  dictionaryCopy.Set("b", 3);
  EXPECT_EQ(dictionary, Value({{"a", 1}}));
  EXPECT_EQ(dictionaryCopy, Value({{"a", 2}, {"b", 3}}));
}

TEST(ValueSharing, ChangesOfTheOriginalLeaveACopy) {
  Value dictionary = Value::Dictionary();
  for (int i = 0; i < 100; ++i) dictionary.Set(i, kLongText);
  const Value copy = dictionary;
  for (int i = 0; i < 100; ++i) dictionary.Remove(i);
  EXPECT_EQ(dictionary.Count(), 0U);
  EXPECT_EQ(copy.Count(), 100U);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(copy.Get(i).AsString(), kLongText);
}

TEST(ValueSharing, ACopyOfALargeValueSharesItsContent) {
  const Value text = std::string(1000, 'x');
  const Value copy = text;
  EXPECT_EQ(text.AsStringView().data(), copy.AsStringView().data());
  const Value array = Value::Array({1});
  const Value arrayCopy = array;
  EXPECT_EQ(array.Items().data(), arrayCopy.Items().data());
}

TEST(ValueSharing, MovingLeavesAnAbsentValue) {
  Value from = kLongText;
  const Value to = std::move(from);
  EXPECT_TRUE(from.IsAbsent());  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(from.AsStringView(), "");
  EXPECT_EQ(to.AsString(), kLongText);
}

TEST(ValueSharing, AssigningAValueToItselfKeepsIt) {
  Value value = Value::Array({kLongText});
  const Value& alias = value;
  value = alias;
  EXPECT_EQ(value.At(0).AsString(), kLongText);
  Value& movable = value;
  value = std::move(movable);
  EXPECT_EQ(value.At(0).AsString(), kLongText);
}

TEST(ValueSharing, ReleasesItsContentWithTheLastCopy) {
  int alive = 0;
  {
    Value outer = Value::Dictionary();
    outer.Set(Value::FromObject(std::make_shared<Counted>(alive)), "key");
    outer.Set("list", Value::Array({Value::FromObject(std::make_shared<Counted>(alive))}));
    EXPECT_EQ(alive, 2);
    const Value copy = outer;
    outer = {};
    EXPECT_EQ(alive, 2);
    EXPECT_EQ(copy.Count(), 2U);
  }
  EXPECT_EQ(alive, 0);
}

TEST(ValueSharing, ReleasesWhatIsReplacedOrRemoved) {
  int alive = 0;
  Value dictionary = Value::Dictionary();
  for (int i = 0; i < 20; ++i) {
    dictionary.Set(i, Value::FromObject(std::make_shared<Counted>(alive)));
  }
  EXPECT_EQ(alive, 20);
  dictionary.Set(3, "replaced");
  dictionary.Remove(4);
  EXPECT_EQ(alive, 18);
}

TEST(ValueSharing, LetsThreadsCopyReadChangeAndReleaseTheSameContent) {
  Value shared = {{"list", Value::Array({kLongText, 1, 2})}, {"text", kLongText}};
  for (int i = 0; i < 20; ++i) shared.Set(i, kLongText);
  const Value expected = shared;
  std::vector<int> failures(4);
  std::vector<std::thread> threads;
  for (int& failure : failures) {
    threads.emplace_back([copy = shared, &expected, &failure] {
      for (int round = 0; round < 2000; ++round) {
        Value mine = copy;
        mine.Set("list", {});
        mine.Set("round", round);
        Value list = copy.Get("list");
        list.Append(kLongText);
        const bool isRight = copy == expected && mine.Count() == expected.Count() &&
                             list.Count() == 4 && mine.Get(7).AsStringView() == kLongText;
        failure += isRight ? 0 : 1;
      }
    });
  }
  shared = {};
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<int>(4));
}

}  // namespace
}  // namespace Platform
