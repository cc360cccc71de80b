#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelmoraCore/Variant.h"

namespace Velmora {
namespace {

// Far deeper than any stack could follow.
constexpr int kDepth = 1'000'000;

std::shared_ptr<Variant> NestedVectors(std::shared_ptr<Variant> innermost, int depth = kDepth) {
  std::shared_ptr<Variant> value = std::move(innermost);
  for (int level = 0; level < depth; ++level) {
    value = Variant::FromVariantVector({value});
  }
  return value;
}

std::shared_ptr<Variant> NestedMaps(std::shared_ptr<Variant> innermost, int depth = kDepth) {
  std::shared_ptr<Variant> value = std::move(innermost);
  for (int level = 0; level < depth; ++level) {
    value = Variant::FromVariantMap({{"k", value}});
  }
  return value;
}

TEST(VariantNesting, OfVectorsAMillionDeepIsComparedAndDestroyed) {
  const auto innermost = Variant::FromInteger(1);
  auto left = NestedVectors(innermost);
  auto right = NestedVectors(innermost);

  EXPECT_TRUE(Variant::AreEqual(left, right));
  EXPECT_EQ(innermost.use_count(), 3);
  left.reset();
  right.reset();
  EXPECT_EQ(innermost.use_count(), 1);
}

TEST(VariantNesting, OfMapsAMillionDeepIsComparedAndDestroyed) {
  const auto innermost = Variant::FromInteger(1);
  auto left = NestedMaps(innermost);
  auto right = NestedMaps(innermost);

  EXPECT_TRUE(Variant::AreEqual(left, right));
  EXPECT_EQ(innermost.use_count(), 3);
  left.reset();
  right.reset();
  EXPECT_EQ(innermost.use_count(), 1);
}

TEST(VariantNesting, HidesNoDifference) {
  constexpr int kEnough = 1000;
  const auto one = Variant::FromInteger(1);
  const auto two = Variant::FromInteger(2);

  EXPECT_FALSE(Variant::AreEqual(NestedVectors(one, kEnough), NestedVectors(two, kEnough)));
  EXPECT_FALSE(Variant::AreEqual(NestedMaps(one, kEnough), NestedMaps(two, kEnough)));
  EXPECT_FALSE(Variant::AreEqual(NestedMaps(nullptr, kEnough), NestedMaps(one, kEnough)));
  EXPECT_FALSE(Variant::AreEqual(NestedMaps(one, kEnough), NestedMaps(one, kEnough + 1)));
}

TEST(VariantNesting, LeavesWhatOthersStillOwn) {
  const auto inner = Variant::FromVariantVector({Variant::FromString("kept")});
  auto outer = Variant::FromVariantVector(
      {inner, Variant::FromVariantMap({{"a", inner}, {"b", Variant::FromVariantVector({inner})}})});

  outer.reset();

  EXPECT_EQ(inner.use_count(), 1);
  EXPECT_EQ(inner->GetVariantVector().front()->GetString(), "kept");
}

TEST(VariantNesting, OfManyContainersSideBySideIsDestroyed) {
  const auto innermost = Variant::FromInteger(1);
  VariantVector wide;
  for (int index = 0; index < 1000; ++index) {
    wide.push_back(Variant::FromVariantMap(
        {{"x", Variant::FromVariantVector(VariantVector(100, innermost))}}));
  }
  auto value = Variant::FromVariantVector(std::move(wide));
  EXPECT_EQ(innermost.use_count(), 100'001);

  value.reset();

  EXPECT_EQ(innermost.use_count(), 1);
}

TEST(VariantNesting, IsReadAndReleasedByManyThreadsAtOnce) {
  constexpr int kThreads = 4;
  constexpr std::size_t kTrees = 200;
  const auto innermost = Variant::FromString("shared");
  std::vector<std::shared_ptr<Variant>> trees;
  for (std::size_t index = 0; index < kTrees; ++index) {
    trees.push_back(Variant::FromVariantMap(
        {{"a", Variant::FromVariantVector({Variant::FromVariantVector({innermost})})}}));
  }
  std::atomic<int> ready{0};
  std::atomic<int> differences{0};
  std::vector<std::thread> threads;
  for (int index = 0; index < kThreads; ++index) {
    threads.emplace_back([&ready, &differences, mine = trees]() mutable {
      ++ready;
      while (ready < kThreads) {
        std::this_thread::yield();
      }
      for (auto& tree : mine) {
        differences += Variant::AreEqual(tree, mine.back()) ? 0 : 1;
        tree = tree == mine.back() ? tree : nullptr;
      }
    });
  }
  trees.clear();
  for (std::thread& thread : threads) {
    thread.join();
  }
  threads.clear();

  EXPECT_EQ(differences, 0);
  EXPECT_EQ(innermost.use_count(), 1);
}

}  // namespace
}  // namespace Velmora
