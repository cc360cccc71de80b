#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/FaultySqliteVfs.h"
#include "support/Guarded.h"
#include "unit/core/hub/CoreFixture.h"

// A core whose hits go to a collector of the test's choice, and whose database does not wait for
// the disk.
class AnalyticsFixture : public CoreFixture {
 protected:
  using Answer = TestSupport::FakeUrlSession::Answer;
  using Session = TestSupport::FakeUrlSession;

  static constexpr const char* kCollector = "https://collector.test/hits";

  AnalyticsFixture() { AnswerWith(Session::Respond(200)); }
  ~AnalyticsFixture() override {
    // Closes the database before its file system goes.
    core = nullptr;
    services->database = nullptr;
  }

  void AnswerWith(const Answer& answer) {
    host.urlSession->SetServer([answer](const Platform::UrlRequest&) { return answer; });
  }

  // The last one is given to every later request too.
  void AnswerInTurn(const std::vector<Answer>& answers) {
    const auto next = std::make_shared<std::atomic<std::size_t>>(0);
    host.urlSession->SetServer([answers, next](const Platform::UrlRequest&) {
      return answers[std::min((*next)++, answers.size() - 1)];
    });
  }

  void Configure(const std::string& key, std::shared_ptr<Velmora::Variant> value) {
    core->UpdateConfiguration({{key, std::move(value)}});
  }
  void UseCollector(const std::string& url = kCollector) {
    Configure("analytics.collector", Velmora::Variant::FromString(url));
  }
  void StartSending() {
    StartCore();
    core->SetPrivacyStatus(Velmora::MobilePrivacyStatus::OptedIn);
    UseCollector();
  }

  void Track(const std::string& action) {
    const auto data = std::make_shared<Velmora::EventData>();
    data->PutString(EventKeys::kAction, action);
    core->Track(data);
  }

  // A member of each hit that has been posted, in order, as text.
  std::vector<std::string> Posted(const std::string& member = EventKeys::kAction) const {
    std::vector<std::string> values;
    for (const Platform::UrlRequest& request : host.urlSession->Requests()) {
      values.push_back(services->jsonUtility->CreateJsonObject(request.body)->GetString(member));
    }
    return values;
  }
  bool WaitForPosts(std::size_t count) const {
    return TestSupport::WaitUntil([&] { return host.urlSession->Requests().size() >= count; });
  }

  // Waits until the clock is asked for this wait, and no other.
  bool WaitForWait(std::chrono::milliseconds wait) const {
    const std::vector<std::chrono::milliseconds> expected{wait};
    return TestSupport::WaitUntil([&] { return clock->Waits() == expected; });
  }

  // What is answered to a query: how many hits are queued, sent and dropped.
  std::vector<std::int64_t> Numbers() {
    TestSupport::Guarded<EventPointer> answer;
    core->DispatchEventWithResponseCallback(
        NewEvent("how many?", EventTypes::kAnalytics, EventSources::kQuery),
        [&](const EventPointer& response) { answer.Set(response); }, nullptr);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return answer.Get() != nullptr; }));
    const auto number = [&](const char* key) {
      return answer.Get()->GetData()->Get(key)->GetLong();
    };
    return {number(EventKeys::kQueued), number(EventKeys::kSent), number(EventKeys::kDropped)};
  }
  bool WaitForNumbers(const std::vector<std::int64_t>& expected) {
    return TestSupport::WaitUntil([&] { return Numbers() == expected; });
  }

  TestSupport::FaultySqliteVfs vfs;
};
