#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hub/ResponseWaiters.h"
#include "support/LogCapture.h"

namespace {

using testing::ElementsAre;
using Velmora::ResponseWaiters;

class ResponseWaitersTest : public testing::Test {
 protected:
  std::int64_t Add(const std::string& requestId, int mark) {
    return waiters.Add(requestId, [this, mark](const auto&) { called.push_back(mark); });
  }
  std::vector<int> CalledFor(const std::string& requestId) {
    called.clear();
    for (const ResponseWaiters::Callback& callback : waiters.Take(requestId)) callback(nullptr);
    return called;
  }

  TestSupport::LogCapture log;
  ResponseWaiters waiters{3};
  std::vector<int> called;
};

TEST_F(ResponseWaitersTest, TakesThoseOfOneRequestOnceInOrder) {
  Add("a", 1);
  Add("b", 2);
  Add("a", 3);
  EXPECT_THAT(CalledFor("a"), ElementsAre(1, 3));
  EXPECT_THAT(CalledFor("a"), ElementsAre());
  EXPECT_THAT(CalledFor("unknown"), ElementsAre());
  EXPECT_EQ(waiters.Count(), 1U);
}

TEST_F(ResponseWaitersTest, RemovesByTicket) {
  Add("a", 1);
  const std::int64_t ticket = Add("a", 2);
  waiters.Remove(ticket);
  waiters.Remove(ticket);
  EXPECT_THAT(CalledFor("a"), ElementsAre(1));
}

TEST_F(ResponseWaitersTest, ForgetsTheOldestWhenTooManyWaitAndWarnsOnce) {
  log.ExpectLine(TestSupport::LogLevel::Warning, "EventHub",
                 "more than 3 requests wait for an answer; the oldest ones are forgotten");
  for (int mark = 1; mark <= 5; ++mark) Add("request " + std::to_string(mark), mark);
  EXPECT_EQ(waiters.Count(), 3U);
  EXPECT_THAT(CalledFor("request 1"), ElementsAre());
  EXPECT_THAT(CalledFor("request 2"), ElementsAre());
  EXPECT_THAT(CalledFor("request 3"), ElementsAre(3));
}

TEST_F(ResponseWaitersTest, ClearForgetsAll) {
  Add("a", 1);
  waiters.Clear();
  EXPECT_EQ(waiters.Count(), 0U);
  EXPECT_THAT(CalledFor("a"), ElementsAre());
}

}  // namespace
