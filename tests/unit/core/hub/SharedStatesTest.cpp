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
  static std::string TextOf(const std::shared_ptr<std::string>& text) {
    return text == nullptr ? "none" : *text;
  }

  SharedStates states;
};

TEST_F(SharedStatesTest, AnUnknownOwnerHasNoState) {
  EXPECT_EQ(Newest(), "none");
  EXPECT_EQ(At(1), "none");
}

TEST_F(SharedStatesTest, AStateIsValidFromItsEventUntilTheNext) {
  states.Set("owner", "three", 3);
  states.Set("owner", "seven", 7);
  EXPECT_EQ(At(2), "none");
  EXPECT_EQ(At(3), "three");
  EXPECT_EQ(At(6), "three");
  EXPECT_EQ(At(7), "seven");
  EXPECT_EQ(At(1'000), "seven");
  EXPECT_EQ(Newest(), "seven");
}

TEST_F(SharedStatesTest, APendingStateIsAnEmptyTextUntilItIsSet) {
  states.Set("owner", "", 4);
  EXPECT_EQ(At(4), "");
  states.Set("owner", "{}", 4);
  EXPECT_EQ(At(4), "{}");
}

TEST_F(SharedStatesTest, AnEarlierStateMayComeLater) {
  states.Set("owner", "seven", 7);
  states.Set("owner", "three", 3);
  EXPECT_EQ(At(5), "three");
  EXPECT_EQ(Newest(), "seven");
}

TEST_F(SharedStatesTest, OwnersAreApart) {
  states.Set("owner", "mine", 1);
  states.Set("other", "theirs", 1);
  states.Clear("other");
  EXPECT_EQ(Newest(), "mine");
  states.Clear("owner");
  EXPECT_EQ(Newest(), "none");
}

TEST_F(SharedStatesTest, WhatIsHandedOutIsACopy) {
  states.Set("owner", "text", 1);
  *states.Get("owner", std::nullopt) = "changed";
  EXPECT_EQ(Newest(), "text");
}

TEST_F(SharedStatesTest, KeepsTheNewestVersionsOnly) {
  const auto last = static_cast<std::int64_t>(SharedStates::kMaxVersions) + 5;
  for (std::int64_t number = 1; number <= last; ++number) {
    states.Set("owner", std::to_string(number), number);
  }
  EXPECT_EQ(Newest(), std::to_string(last));
  EXPECT_EQ(At(6), "6");
  // The oldest that is kept stands in for those that have gone.
  EXPECT_EQ(At(5), "6");
  EXPECT_EQ(At(1), "6");
}

TEST_F(SharedStatesTest, KeepsNoMoreTextThanItSays) {
  const std::string half(SharedStates::kMaxBytes / 2, 'a');
  EXPECT_TRUE(states.Set("owner", half, 1));
  EXPECT_TRUE(states.Set("owner", half, 2));
  EXPECT_TRUE(states.Set("owner", "small", 3));
  EXPECT_EQ(At(1).size(), half.size());
  EXPECT_EQ(At(3), "small");
  // The first has gone; a full one leaves nothing else.
  EXPECT_TRUE(states.Set("owner", std::string(SharedStates::kMaxBytes, 'b'), 4));
  EXPECT_EQ(At(1), At(4));
  EXPECT_FALSE(states.Set("owner", std::string(SharedStates::kMaxBytes + 1, 'c'), 5));
  EXPECT_EQ(Newest(), At(4));
}

}  // namespace
