#include <string>

#include <gtest/gtest.h>

#include "platform/linux/SqliteUserDefaultsCache.h"

namespace {

using Platform::SqliteUserDefaultsCache;
using Platform::Value;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

TEST(SqliteUserDefaultsCache, KnowsWhatWasPut) {
  SqliteUserDefaultsCache cache;
  EXPECT_EQ(cache.Find("k"), nullptr);
  cache.Put("k", 1, 10);
  cache.Put("absent", Value(), 0);
  ASSERT_NE(cache.Find("k"), nullptr);
  EXPECT_EQ(*cache.Find("k"), Value(1));
  ASSERT_NE(cache.Find("absent"), nullptr);
  EXPECT_TRUE(cache.Find("absent")->IsAbsent());
  cache.Put("k", 2, 10);
  EXPECT_EQ(*cache.Find("k"), Value(2));
}

TEST(SqliteUserDefaultsCache, ForgetsEverythingWhenInvalidated) {
  SqliteUserDefaultsCache cache;
  cache.Put("k", 1, 10);
  cache.Put("l", 1, 10);
  cache.Invalidate();
  EXPECT_EQ(cache.Find("k"), nullptr);
  cache.Put("l", 2, 10);
  EXPECT_EQ(*cache.Find("l"), Value(2));
  EXPECT_EQ(cache.Find("k"), nullptr);
}

TEST(SqliteUserDefaultsCache, DoesNotKeepALargeValueNorTheOneBeforeIt) {
  SqliteUserDefaultsCache cache;
  cache.Put("k", 1, 10);
  cache.Put("k", 2, 10 * kMebibyte);
  EXPECT_EQ(cache.Find("k"), nullptr);
}

TEST(SqliteUserDefaultsCache, KeepsNoMoreThanItsLimit) {
  SqliteUserDefaultsCache cache;
  constexpr int kValues = 100;
  for (int number = 0; number < kValues; ++number) {
    cache.Put(std::to_string(number), number, kMebibyte);
    ASSERT_NE(cache.Find(std::to_string(number)), nullptr);
  }
  int kept = 0;
  for (int number = 0; number < kValues; ++number) {
    if (cache.Find(std::to_string(number)) != nullptr) ++kept;
  }
  EXPECT_GE(kept, 1);
  EXPECT_LE(kept, 16);
}

TEST(SqliteUserDefaultsCache, MakesRoomAsLargeValuesAreReplacedBySmallOnes) {
  SqliteUserDefaultsCache cache;
  for (int round = 0; round < 10; ++round) {
    for (int number = 0; number < 10; ++number) {
      cache.Put(std::to_string(number), round, round % 2 == 0 ? kMebibyte : 10);
    }
  }
  for (int number = 0; number < 10; ++number) {
    EXPECT_NE(cache.Find(std::to_string(number)), nullptr) << number;
  }
}

}  // namespace
