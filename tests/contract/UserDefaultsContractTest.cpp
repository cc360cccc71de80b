// What every implementation of user defaults does, the test double included.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "QEXCore_iOS/Platform/Date.h"
#include "QEXCore_iOS/Platform/UserDefaults.h"
#include "platform/linux/SqliteUserDefaultsProvider.h"
#include "support/FakeSystemLog.h"
#include "support/FakeUserDefaults.h"
#include "support/TemporaryDirectory.h"

namespace {

using Platform::NumberType;
using Platform::UserDefaults;
using Platform::UserDefaultsProvider;
using Platform::Value;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::FakeSystemLog;
using TestSupport::TemporaryDirectory;

struct Implementation {
  std::string name;
  std::function<std::shared_ptr<UserDefaultsProvider>(const TemporaryDirectory&,
                                                      std::shared_ptr<FakeSystemLog>)>
      make;
};

Value DateOf(double seconds) {
  return Value::FromObject(std::make_shared<Platform::Date>(seconds));
}

Value Nested(int depth) {
  Value value = Value::Array();
  for (int level = 1; level < depth; ++level) {
    value = level % 2 == 0 ? Value::Array({value}) : Value{{"k", value}};
  }
  return value;
}

class UserDefaultsContract : public testing::TestWithParam<Implementation> {
 protected:
  ~UserDefaultsContract() override { EXPECT_THAT(log_->Lines(), IsEmpty()); }

  void ExpectRefusal(const Value& value) {
    defaults_->SetObject("k", "before");
    defaults_->SetObject("k", value);
    EXPECT_EQ(defaults_->ObjectForKey("k"), Value("before"));
    EXPECT_THAT(log_->TakeLines(), ElementsAre(testing::HasSubstr("\"k\"")));
  }

  const TemporaryDirectory directory_;
  const std::shared_ptr<FakeSystemLog> log_ = std::make_shared<FakeSystemLog>();
  const std::shared_ptr<UserDefaultsProvider> provider_ = GetParam().make(directory_, log_);
  const std::shared_ptr<UserDefaults> defaults_ = provider_->Standard();
};

TEST_P(UserDefaultsContract, FindsNothingUnderAKeyThatWasNeverSet) {
  EXPECT_TRUE(defaults_->ObjectForKey("k").IsAbsent());
  EXPECT_TRUE(defaults_->ObjectForKey("k").IsAbsent());
  EXPECT_THAT(defaults_->KeysWithPrefix(""), IsEmpty());
}

TEST_P(UserDefaultsContract, GivesBackEveryKindOfValue) {
  const std::vector<Value> values = {
      "text",
      "",
      std::string("a\0b", 3),
      "\xC3\xBC\xF0\x9F\x98\x80",
      true,
      false,
      Value::FromData({0, 1, 255}),
      Value::FromData({}),
      DateOf(1234.5),
      DateOf(-0.25),
      Value::Array(),
      Value::Dictionary(),
      Value::Array({1, "two", true, 4.5, DateOf(5), Value::FromData({6}), Value::Array({7})}),
      Value{{"text", "v"}, {"", ""}, {"inner", Value{{"list", Value::Array({"x"})}}}},
  };
  for (std::size_t index = 0; index < values.size(); ++index) {
    defaults_->SetObject("k" + std::to_string(index), values[index]);
  }
  for (std::size_t index = 0; index < values.size(); ++index) {
    const Value found = defaults_->ObjectForKey("k" + std::to_string(index));
    EXPECT_EQ(found.Kind(), values[index].Kind()) << values[index].Description();
    EXPECT_EQ(found, values[index]) << values[index].Description();
  }
}

TEST_P(UserDefaultsContract, KeepsTheStorageTypeOfEveryNumber) {
  for (int type = 1; type <= 16; ++type) {
    const auto numberType = static_cast<NumberType>(type);
    defaults_->SetObject("k", Value::Number(numberType, 100));
    const Value found = defaults_->ObjectForKey("k");
    EXPECT_EQ(found.StorageType(), numberType);
    EXPECT_EQ(found.AsInt32(), 100);
  }
}

TEST_P(UserDefaultsContract, KeepsNumbersExactly) {
  using Long = std::numeric_limits<std::int64_t>;
  using Double = std::numeric_limits<double>;
  for (const std::int64_t number : {Long::min(), Long::max(), std::int64_t{0}, std::int64_t{-1}}) {
    defaults_->SetObject("k", number);
    EXPECT_EQ(defaults_->ObjectForKey("k").AsInt64(), number);
  }
  for (const double number : {0.1, -0.0, Double::max(), Double::denorm_min(), Double::infinity()}) {
    defaults_->SetObject("k", number);
    EXPECT_EQ(defaults_->ObjectForKey("k").AsDouble(), number);
    EXPECT_EQ(std::signbit(defaults_->ObjectForKey("k").AsDouble()), std::signbit(number));
  }
  defaults_->SetObject("k", Double::quiet_NaN());
  EXPECT_TRUE(std::isnan(defaults_->ObjectForKey("k").AsDouble()));
  defaults_->SetObject("k", 0.1F);
  EXPECT_EQ(defaults_->ObjectForKey("k").AsFloat(), 0.1F);
}

TEST_P(UserDefaultsContract, ReplacesAValueByOneOfAnotherKind) {
  defaults_->SetObject("k", 1);
  defaults_->SetObject("k", "text");
  EXPECT_EQ(defaults_->ObjectForKey("k"), Value("text"));
  EXPECT_THAT(defaults_->KeysWithPrefix(""), ElementsAre("k"));
}

TEST_P(UserDefaultsContract, RemovesAKey) {
  defaults_->SetObject("k", 1);
  defaults_->SetObject("kk", 2);
  defaults_->RemoveObject("k");
  defaults_->RemoveObject("k");
  defaults_->RemoveObject("never there");
  EXPECT_TRUE(defaults_->ObjectForKey("k").IsAbsent());
  EXPECT_EQ(defaults_->ObjectForKey("kk"), Value(2));
}

TEST_P(UserDefaultsContract, RemovesAKeyForAnAbsentValue) {
  defaults_->SetObject("k", 1);
  defaults_->SetObject("k", Value());
  defaults_->SetObject("never there", Value());
  EXPECT_THAT(defaults_->KeysWithPrefix(""), IsEmpty());
}

TEST_P(UserDefaultsContract, TakesAnyKey) {
  const std::vector<std::string> keys = {"",
                                         "k",
                                         std::string("k\0l", 3),
                                         std::string(1, '\0'),
                                         "'; DROP TABLE defaults; --",
                                         "\xC3\xBC",
                                         "\xFF\xFF",
                                         std::string(100'000, 'k')};
  for (std::size_t index = 0; index < keys.size(); ++index) {
    defaults_->SetObject(keys[index], index);
  }
  for (std::size_t index = 0; index < keys.size(); ++index) {
    EXPECT_EQ(defaults_->ObjectForKey(keys[index]).AsInt64(), static_cast<std::int64_t>(index));
  }
  std::vector<std::string> sorted = keys;
  std::sort(sorted.begin(), sorted.end(), [](const std::string& left, const std::string& right) {
    return std::lexicographical_compare(
        left.begin(), left.end(), right.begin(), right.end(), [](char one, char other) {
          return static_cast<unsigned char>(one) < static_cast<unsigned char>(other);
        });
  });
  EXPECT_EQ(defaults_->KeysWithPrefix(""), sorted);
}

TEST_P(UserDefaultsContract, ListsTheKeysWithAPrefixInByteOrder) {
  for (const char* key : {"b", "a.2", "a.10", "a", "a.", "ab", "A.1", "a\xFF", "a\xFF\xFF"}) {
    defaults_->SetObject(key, 1);
  }
  EXPECT_THAT(defaults_->KeysWithPrefix("a."), ElementsAre("a.", "a.10", "a.2"));
  EXPECT_THAT(defaults_->KeysWithPrefix("a\xFF"), ElementsAre("a\xFF", "a\xFF\xFF"));
  EXPECT_THAT(defaults_->KeysWithPrefix("\xFF"), IsEmpty());
  EXPECT_THAT(defaults_->KeysWithPrefix(""), SizeIs(9));
}

TEST_P(UserDefaultsContract, RemovesExactlyTheKeysWithAPrefix) {
  for (const char* key : {"b", "a.2", "a.10", "a", "a.", "ab", "A.1", "a/", "a-"}) {
    defaults_->SetObject(key, 1);
    EXPECT_EQ(defaults_->ObjectForKey(key), Value(1));
  }
  defaults_->RemoveObjectsWithPrefix("a.");
  EXPECT_TRUE(defaults_->ObjectForKey("a.2").IsAbsent());
  EXPECT_EQ(defaults_->ObjectForKey("a/"), Value(1));
  EXPECT_THAT(defaults_->KeysWithPrefix(""), ElementsAre("A.1", "a", "a-", "a/", "ab", "b"));
  defaults_->RemoveObjectsWithPrefix("nothing");
  EXPECT_THAT(defaults_->KeysWithPrefix(""), SizeIs(6));
  defaults_->RemoveObjectsWithPrefix("");
  EXPECT_THAT(defaults_->KeysWithPrefix(""), IsEmpty());
}

TEST_P(UserDefaultsContract, RefusesWhatUserDefaultsDoNotKeep) {
  class Strange final : public Platform::Object {
   public:
    std::string Description() const override { return "strange"; }
    bool Equals(const Object& other) const override { return this == &other; }
  };
  const Value strange = Value::FromObject(std::make_shared<Strange>());
  Value oddKey = Value::Dictionary();
  oddKey.Set(1, "v");
  for (const Value& value :
       {Value::Null(), strange, oddKey, Value::Array({Value::Null()}), Value{{"k", strange}},
        Value::Array({1, Value{{"inner", Value::Array({oddKey})}}})}) {
    ExpectRefusal(value);
  }
}

TEST_P(UserDefaultsContract, KeepsValuesAsDeepAsTheLimitAndRefusesDeeperOnes) {
  const Value deepest = Nested(UserDefaults::kMaximumDepth);
  defaults_->SetObject("deep", deepest);
  EXPECT_EQ(defaults_->ObjectForKey("deep"), deepest);
  ExpectRefusal(Nested(UserDefaults::kMaximumDepth + 1));
  ExpectRefusal(Nested(100'000));
}

TEST_P(UserDefaultsContract, KeepsALargeValue) {
  const Value large = Value(std::string(10'000'000, 'x'));
  defaults_->SetObject("k", large);
  EXPECT_EQ(defaults_->ObjectForKey("k"), large);
  std::vector<Value> items(100'000, Value("item"));
  const Value wide = Value::FromVector(std::move(items));
  defaults_->SetObject("k", wide);
  EXPECT_EQ(defaults_->ObjectForKey("k"), wide);
}

TEST_P(UserDefaultsContract, IsUntouchedByLaterChangesOfAValue) {
  Value list = Value::Array({1});
  defaults_->SetObject("k", list);
  list.Append(2);
  Value found = defaults_->ObjectForKey("k");
  found.Append(3);
  EXPECT_EQ(defaults_->ObjectForKey("k"), Value::Array({1}));
}

TEST_P(UserDefaultsContract, ServesManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kWrites = 100;
  std::atomic<int> mismatches{0};
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([this, thread, &mismatches] {
        const std::string key = "k" + std::to_string(thread);
        for (int write = 0; write < kWrites; ++write) {
          defaults_->SetObject(key, write);
          if (defaults_->ObjectForKey(key).AsInt32() != write) ++mismatches;
          defaults_->ObjectForKey("k0");
        }
      });
    }
  }
  EXPECT_EQ(mismatches, 0);
  EXPECT_THAT(defaults_->KeysWithPrefix("k"), SizeIs(kThreads));
}

TEST_P(UserDefaultsContract, GivesTheSameStandardDefaultsOnEveryCall) {
  EXPECT_NE(provider_->Standard(), nullptr);
  EXPECT_EQ(provider_->Standard(), provider_->Standard());
}

TEST_P(UserDefaultsContract, KeepsSuitesApart) {
  ASSERT_TRUE(provider_->SupportsSuites());
  const auto shop = provider_->OpenSuite("group.shop");
  const auto game = provider_->OpenSuite("group.game");
  ASSERT_NE(shop, nullptr);
  ASSERT_NE(game, nullptr);
  shop->SetObject("k", "shop");
  game->SetObject("k", "game");
  EXPECT_EQ(shop->ObjectForKey("k"), Value("shop"));
  EXPECT_EQ(game->ObjectForKey("k"), Value("game"));
  EXPECT_TRUE(defaults_->ObjectForKey("k").IsAbsent());
}

TEST_P(UserDefaultsContract, OpensOneSuiteUnderOneName) {
  provider_->OpenSuite("group.shop")->SetObject("k", 1);
  EXPECT_EQ(provider_->OpenSuite("group.shop")->ObjectForKey("k"), Value(1));
}

TEST_P(UserDefaultsContract, OpensNoSuiteWithoutAName) {
  EXPECT_EQ(provider_->OpenSuite(""), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Implementations, UserDefaultsContract,
    testing::Values(
        Implementation{"Sqlite",
                       [](const TemporaryDirectory& directory, std::shared_ptr<FakeSystemLog> log) {
                         return std::make_shared<Platform::SqliteUserDefaultsProvider>(
                             Platform::SqliteUserDefaultsProvider::Folders{
                                 directory.PathOf("application/deep"), directory.PathOf("shared")},
                             std::move(log));
                       }},
        Implementation{"Fake",
                       [](const TemporaryDirectory&, std::shared_ptr<FakeSystemLog> log) {
                         return std::make_shared<TestSupport::FakeUserDefaultsProvider>(
                             std::move(log));
                       }}),
    [](const auto& implementation) { return implementation.param.name; });

}  // namespace
