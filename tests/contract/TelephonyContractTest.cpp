#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/LinuxTelephony.h"
#include "support/FakeModemManager.h"
#include "support/FakeTelephony.h"
#include "support/PrivateBus.h"

namespace {

using TestSupport::FakeModemManager;
using TestSupport::FakeTelephony;

// Each subject can be a device without telephony, one that knows no provider, or one with this
// carrier.
class LinuxSubject {
 public:
  void HaveNoTelephony() { service_.reset(); }
  void HaveNoProvider() { Serve(FakeModemManager::OneModemWithout3gpp()); }
  void HaveCarrier(const std::optional<std::string>& name) {
    Serve(FakeModemManager::OneModem(name ? "{'OperatorName': <'" + *name + "'>}" : "{}"));
  }
  const Platform::Telephony& Telephony() const { return telephony_; }

 private:
  void Serve(const std::string& reply) {
    service_.reset();
    service_ = std::make_unique<FakeModemManager>(bus_.Address(), reply);
  }

  TestSupport::PrivateBus bus_;
  std::unique_ptr<FakeModemManager> service_;
  Platform::LinuxTelephony telephony_{bus_.Address(), std::chrono::seconds(10)};
};

class FakeSubject {
 public:
  void HaveNoTelephony() { telephony_.SetSubscriber(std::nullopt); }
  void HaveNoProvider() {
    telephony_.SetSubscriber(
        FakeTelephony::Subscriber{.knowsProvider = false, .carrierName = std::nullopt});
  }
  void HaveCarrier(const std::optional<std::string>& name) {
    telephony_.SetSubscriber(FakeTelephony::Subscriber{.knowsProvider = true, .carrierName = name});
  }
  const Platform::Telephony& Telephony() const { return telephony_; }

 private:
  FakeTelephony telephony_;
};

template <class Subject>
class TelephonyContractTest : public testing::Test {
 protected:
  std::unique_ptr<Platform::TelephonyNetworkInfo> Look() const {
    return subject_.Telephony().CreateNetworkInfo();
  }

  Subject subject_;
};

using Subjects = testing::Types<LinuxSubject, FakeSubject>;
TYPED_TEST_SUITE(TelephonyContractTest, Subjects);

TYPED_TEST(TelephonyContractTest, GivesNullWithoutTelephony) {
  this->subject_.HaveNoTelephony();
  EXPECT_EQ(this->Look(), nullptr);
}

TYPED_TEST(TelephonyContractTest, KnowsTheCarrier) {
  this->subject_.HaveCarrier("Fake \u00c4ther");
  const auto info = this->Look();
  ASSERT_NE(info, nullptr);
  EXPECT_TRUE(info->KnowsSubscriberProvider());
  EXPECT_EQ(info->CarrierName(), "Fake \u00c4ther");
}

TYPED_TEST(TelephonyContractTest, GivesNothingForACarrierWithoutAName) {
  this->subject_.HaveCarrier(std::nullopt);
  const auto info = this->Look();
  ASSERT_NE(info, nullptr);
  EXPECT_TRUE(info->KnowsSubscriberProvider());
  EXPECT_EQ(info->CarrierName(), std::nullopt);
}

TYPED_TEST(TelephonyContractTest, TellsADeviceThatKnowsNoProvider) {
  this->subject_.HaveNoProvider();
  const auto info = this->Look();
  ASSERT_NE(info, nullptr);
  EXPECT_FALSE(info->KnowsSubscriberProvider());
  EXPECT_EQ(info->CarrierName(), std::nullopt);
}

TYPED_TEST(TelephonyContractTest, LooksAfreshOnEveryCall) {
  this->subject_.HaveCarrier("First");
  const auto first = this->Look();
  this->subject_.HaveCarrier("Second");
  const auto second = this->Look();
  this->subject_.HaveNoTelephony();
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(first->CarrierName(), "First");
  EXPECT_EQ(second->CarrierName(), "Second");
  EXPECT_EQ(this->Look(), nullptr);
}

TYPED_TEST(TelephonyContractTest, ServesSeveralThreadsAtOnce) {
  this->subject_.HaveCarrier("Fake Mobile");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int j = 0; j < 5; ++j) {
        const auto info = this->Look();
        EXPECT_TRUE(info && info->CarrierName() == "Fake Mobile");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
