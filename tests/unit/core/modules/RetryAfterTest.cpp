#include <chrono>
#include <optional>

#include <gtest/gtest.h>

#include "modules/RetryAfter.h"

namespace {

using namespace std::chrono_literals;
using Velmora::ParseRetryAfter;

// 2024-03-05 10:20:30 UTC.
constexpr std::chrono::sys_seconds kNow{1'709'634'030s};

TEST(RetryAfter, IsANumberOfSeconds) {
  EXPECT_EQ(ParseRetryAfter("0", kNow), 0s);
  EXPECT_EQ(ParseRetryAfter("120", kNow), 120s);
}

TEST(RetryAfter, IsADate) {
  EXPECT_EQ(ParseRetryAfter("Tue, 05 Mar 2024 10:22:00 GMT", kNow), 90s);
  EXPECT_EQ(ParseRetryAfter("Tue, 05 Mar 2024 10:22:00 GMT", kNow - 500ms), 91s);
  EXPECT_EQ(ParseRetryAfter("Tue, 05 Mar 2024 10:20:00 GMT", kNow), 0s) << "past";
}

TEST(RetryAfter, LastsNoLongerThanADay) {
  EXPECT_EQ(ParseRetryAfter("86401", kNow), 24h);
  EXPECT_EQ(ParseRetryAfter("99999999999999999999999999", kNow), 24h);
  EXPECT_EQ(ParseRetryAfter("Fri, 31 Dec 9999 23:59:59 GMT", kNow), 24h);
}

TEST(RetryAfter, IsNothingElse) {
  for (const char* text :
       {"", " ", "-1", "1.5", "soon", "Tue, 05 Mar", "Tue, 99 Mar 2024 10:22:00 GMT",
        "Wed, 31 Feb 2024 10:22:00 GMT", "12 seconds"}) {
    EXPECT_EQ(ParseRetryAfter(text, kNow), std::nullopt) << text;
  }
}

}  // namespace
