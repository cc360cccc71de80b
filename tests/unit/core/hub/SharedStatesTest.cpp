#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "hub/SharedStates.h"

namespace {

using Velmora::SharedStates;

class SharedStatesTest : public testing::Test {
 protected:
  // "none" for an empty pointer.
  std::string At(std::int64_t number) const { return TextOf(states.Get("owner", number)); }
  std::string Newest() const { return TextOf(states.Get("owner", std::nullopt)); }
  static std::string TextOf(const SharedStates::Text& text) {
    return text == nullptr ? "none" : *text;
  }

  bool Set(const std::string& owner, const std::string& text, std::int64_t number) {
    return states.Set(owner, std::make_shared<const std::string>(text), number);
  }

  SharedStates states;
};

TEST_F(SharedStatesTest, AnUnknownOwnerHasNoState) {
  EXPECT_EQ(Newest(), "none");
  EXPECT_EQ(At(1), "none");
}

TEST_F(SharedStatesTest, AStateIsValidFromItsEventUntilTheNext) {
  Set("owner", "three", 3);
  Set("owner", "seven", 7);
  EXPECT_EQ(At(2), "none");
  EXPECT_EQ(At(3), "three");
  EXPECT_EQ(At(6), "three");
  EXPECT_EQ(At(7), "seven");
  EXPECT_EQ(At(1'000), "seven");
  EXPECT_EQ(Newest(), "seven");
}

TEST_F(SharedStatesTest, APendingStateIsAnEmptyTextUntilItIsSet) {
  Set("owner", "", 4);
  EXPECT_EQ(At(4), "");
  Set("owner", "{}", 4);
  EXPECT_EQ(At(4), "{}");
}

TEST_F(SharedStatesTest, AnEarlierStateMayComeLater) {
  Set("owner", "seven", 7);
  Set("owner", "three", 3);
  EXPECT_EQ(At(5), "three");
  EXPECT_EQ(Newest(), "seven");
}

TEST_F(SharedStatesTest, OwnersAreApart) {
  Set("owner", "mine", 1);
  Set("other", "theirs", 1);
  states.Clear("other");
  EXPECT_EQ(Newest(), "mine");
  states.Clear("owner");
  EXPECT_EQ(Newest(), "none");
}

TEST_F(SharedStatesTest, HandsOutTheSamePointerForTheSameState) {
  Set("owner", "text", 1);
  const SharedStates::Text first = states.Get("owner", 1);
  EXPECT_EQ(states.Get("owner", 7), first);
  EXPECT_EQ(states.Get("owner", std::nullopt), first);
  Set("owner", "text", 2);
  EXPECT_NE(states.Get("owner", std::nullopt), first);
}

TEST_F(SharedStatesTest, KeepsTheNewestVersionsOnly) {
  const auto last = static_cast<std::int64_t>(SharedStates::kMaxVersions) + 5;
  for (std::int64_t number = 1; number <= last; ++number) {
    Set("owner", std::to_string(number), number);
  }
  EXPECT_EQ(Newest(), std::to_string(last));
  EXPECT_EQ(At(6), "6");
  // The oldest that is kept stands in for those that have gone.
  EXPECT_EQ(At(5), "6");
  EXPECT_EQ(At(1), "6");
}

TEST_F(SharedStatesTest, KeepsNoMoreTextThanItSays) {
  const std::string half(SharedStates::kMaxBytes / 2, 'a');
  EXPECT_TRUE(Set("owner", half, 1));
  EXPECT_TRUE(Set("owner", half, 2));
  EXPECT_TRUE(Set("owner", "small", 3));
  EXPECT_EQ(At(1).size(), half.size());
  EXPECT_EQ(At(3), "small");
  // The first has gone; a full one leaves nothing else.
  EXPECT_TRUE(Set("owner", std::string(SharedStates::kMaxBytes, 'b'), 4));
  EXPECT_EQ(At(1), At(4));
  EXPECT_FALSE(Set("owner", std::string(SharedStates::kMaxBytes + 1, 'c'), 5));
  EXPECT_EQ(Newest(), At(4));
}

}  // namespace
