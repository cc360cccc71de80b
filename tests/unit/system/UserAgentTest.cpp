#include <gtest/gtest.h>

#include "services/system/UserAgent.h"

namespace {

using Velmora::FormatUserAgent;

TEST(UserAgent, WritesEveryDotOfTheVersionAsAnUnderscore) {
  EXPECT_EQ(FormatUserAgent("iPad", "12.1.4", "en_US"),
            "Mozilla/5.0 (iPad; CPU OS 12_1_4 like Mac OS X; en_US)");
}

TEST(UserAgent, LeavesTheDotsOfModelAndLocale) {
  EXPECT_EQ(FormatUserAgent("X 1.5", "12", "en_US.UTF-8"),
            "Mozilla/5.0 (X 1.5; CPU OS 12 like Mac OS X; en_US.UTF-8)");
}

TEST(UserAgent, SaysUnknownForALocaleWithoutAName) {
  EXPECT_EQ(FormatUserAgent("iPhone", "12.1", ""),
            "Mozilla/5.0 (iPhone; CPU OS 12_1 like Mac OS X; Unknown)");
}

}  // namespace
