#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "VelmoraCore/Event.h"

namespace Velmora {
namespace {

TEST(Event, KeepsWhatItIsMadeOf) {
  const auto data = std::make_shared<EventData>();
  data->PutString("key", "value");
  const auto before = Event::Clock::now();

  const Event event("Track", "com.example.type", "com.example.source", data);

  EXPECT_EQ(event.GetName(), "Track");
  EXPECT_EQ(event.GetType(), "com.example.type");
  EXPECT_EQ(event.GetSource(), "com.example.source");
  EXPECT_EQ(event.GetData()->Get("key")->GetString(), "value");
  EXPECT_FALSE(event.GetId().empty());
  EXPECT_GE(event.GetCreationTime(), before);
  EXPECT_LE(event.GetCreationTime(), Event::Clock::now());
  EXPECT_EQ(event.GetNumber(), 0);
  EXPECT_FALSE(event.GetRequestId().has_value());
}

TEST(Event, HasNoDataUnlessGivenAny) {
  EXPECT_EQ(Event("n", "t", "s").GetData(), nullptr);
  EXPECT_EQ(Event("n", "t", "s", nullptr).GetData(), nullptr);
}

TEST(Event, TellsEmptyDataFromNone) {
  const Event event("n", "t", "s", std::make_shared<EventData>());
  ASSERT_NE(event.GetData(), nullptr);
  EXPECT_TRUE(event.GetData()->IsEmpty());
}

TEST(Event, DoesNotChangeWithTheDataItWasMadeFrom) {
  const auto data = std::make_shared<EventData>();
  data->PutString("key", "before");
  const Event event("n", "t", "s", data);

  data->PutString("key", "after");

  EXPECT_EQ(event.GetData()->Get("key")->GetString(), "before");
}

TEST(Event, CannotBeAssignedTo) {
  static_assert(!std::is_copy_assignable_v<Event>);
  static_assert(std::is_copy_constructible_v<Event>);
}

TEST(Event, GetsANumberInACopy) {
  const Event event("n", "t", "s", std::make_shared<EventData>());

  const std::shared_ptr<Event> numbered = event.WithNumber(17);

  EXPECT_EQ(event.GetNumber(), 0);
  EXPECT_EQ(numbered->GetNumber(), 17);
  EXPECT_EQ(numbered->GetId(), event.GetId());
  EXPECT_EQ(numbered->GetName(), "n");
  EXPECT_EQ(numbered->GetType(), "t");
  EXPECT_EQ(numbered->GetSource(), "s");
  EXPECT_EQ(numbered->GetData(), event.GetData());
  EXPECT_EQ(numbered->GetCreationTime(), event.GetCreationTime());
}

TEST(Event, BecomesAResponseInACopy) {
  const Event request("request", "t", "s");
  const Event response("response", "t", "s");

  const std::shared_ptr<Event> paired = response.AsResponseTo(request);

  EXPECT_FALSE(response.GetRequestId().has_value());
  EXPECT_EQ(paired->GetRequestId(), request.GetId());
  EXPECT_EQ(paired->GetId(), response.GetId());
  EXPECT_EQ(paired->WithNumber(2)->GetRequestId(), request.GetId());
  EXPECT_EQ(response.WithNumber(3)->AsResponseTo(request)->GetNumber(), 3);
}

TEST(Event, HasAnIdOfItsOwnWhateverThreadMakesIt) {
  constexpr std::size_t kThreads = 4;
  constexpr std::size_t kEvents = 5000;
  std::vector<std::vector<std::string>> ids(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t index = 0; index < kThreads; ++index) {
    threads.emplace_back([&own = ids[index]] {
      for (std::size_t count = 0; count < kEvents; ++count) {
        own.push_back(Event("n", "t", "s").GetId());
      }
    });
  }
  std::vector<std::string> all;
  for (std::size_t index = 0; index < kThreads; ++index) {
    threads[index].join();
    all.insert(all.end(), ids[index].begin(), ids[index].end());
  }

  std::sort(all.begin(), all.end());
  EXPECT_EQ(all.size(), kThreads * kEvents);
  EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

}  // namespace
}  // namespace Velmora
