#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "platform/headless/InProcessNotificationCenter.h"
#include "support/FakeHost.h"

namespace {

using testing::ElementsAre;

// Each subject owns a centre.
class InProcessSubject {
 public:
  Platform::NotificationCenter& Center() { return center_; }

 private:
  Platform::InProcessNotificationCenter center_;
};

// The centre that tests of other parts are given.
class TestHostSubject {
 public:
  Platform::NotificationCenter& Center() { return *host_.notificationCenter; }

 private:
  TestSupport::FakeHost host_;
};

template <class Subject>
class NotificationCenterContractTest : public testing::Test {
 protected:
  std::unique_ptr<Platform::NotificationObservation> Observe(const std::string& name,
                                                             const std::string& observer) {
    return subject_.Center().AddObserver(
        name, [this, observer](const Platform::Notification& notification) {
          heard_.push_back(observer + " " + notification.name + " " +
                           notification.userInfo.Description());
        });
  }

  Subject subject_;
  std::vector<std::string> heard_;
};

using Subjects = testing::Types<InProcessSubject, TestHostSubject>;
TYPED_TEST_SUITE(NotificationCenterContractTest, Subjects);

TYPED_TEST(NotificationCenterContractTest, TellsObserversOfTheNameInTheirOrder) {
  const auto second = this->Observe("b", "first");
  const auto first = this->Observe("b", "second");
  const auto other = this->Observe("a", "other");
  const auto longer = this->Observe("bb", "longer");
  this->subject_.Center().Post({"b", "news"});
  EXPECT_THAT(this->heard_, ElementsAre("first b news", "second b news"));
}

TYPED_TEST(NotificationCenterContractTest, TellsEveryNameApart) {
  const auto empty = this->Observe("", "empty");
  const auto zero = this->Observe(std::string("a\0b", 3), "zero");
  this->subject_.Center().Post({"", "1"});
  this->subject_.Center().Post({"a", "2"});
  this->subject_.Center().Post({std::string("a\0b", 3), "3"});
  EXPECT_THAT(this->heard_, ElementsAre("empty  1", "zero " + std::string("a\0b", 3) + " 3"));
}

TYPED_TEST(NotificationCenterContractTest, TellsNobodyWhoseObservationHasGone) {
  auto observation = this->Observe("a", "gone");
  observation.reset();
  this->subject_.Center().Post({"a", {}});
  EXPECT_THAT(this->heard_, ElementsAre());
}

TYPED_TEST(NotificationCenterContractTest, LetsObserversPostAddAndGo) {
  std::unique_ptr<Platform::NotificationObservation> added;
  std::unique_ptr<Platform::NotificationObservation> observation;
  observation = this->subject_.Center().AddObserver("a", [&, this](const auto&) {
    added = this->Observe("b", "added");
    observation.reset();
    this->subject_.Center().Post({"b", "inner"});
  });
  this->subject_.Center().Post({"a", {}});
  this->subject_.Center().Post({"a", {}});
  EXPECT_THAT(this->heard_, ElementsAre("added b inner"));
}

TYPED_TEST(NotificationCenterContractTest, PassesOnWhatAnObserverThrows) {
  const auto observation = this->subject_.Center().AddObserver(
      "a", [](const auto&) { throw std::runtime_error("a fault"); });
  EXPECT_THROW(this->subject_.Center().Post({"a", {}}), std::runtime_error);
}

TYPED_TEST(NotificationCenterContractTest, ServesSeveralThreadsAtOnce) {
  std::atomic<int> heard{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, this] {
      for (int j = 0; j < 100; ++j) {
        const auto observation =
            this->subject_.Center().AddObserver("a", [&](const auto&) { ++heard; });
        this->subject_.Center().Post({"a", {}});
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_GE(heard, 400);
}

}  // namespace
