#include <gmock/gmock.h>

#include "interop/AppInfo.h"
#include "services/datastore/NativeLocalStorageService.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Velmora::AppInfo;

class NativeLocalStorageServiceTest : public testing::Test {
 protected:
  ~NativeLocalStorageServiceTest() override { AppInfo::SetAppGroup(std::nullopt); }

  TestSupport::FakeHost host_;
  TestSupport::LogCapture log_;
  std::shared_ptr<Velmora::LocalStorageServiceInterface> service_ =
      Velmora::CreateNativeLocalStorageService();
};

TEST_F(NativeLocalStorageServiceTest, MakesANewStoreOnEveryCall) {
  EXPECT_NE(service_->GetDataStore("a"), service_->GetDataStore("a"));
}

TEST_F(NativeLocalStorageServiceTest, LetsStoresOfOneNameShareTheirEntries) {
  service_->GetDataStore("a")->SetInt("k", 7);
  EXPECT_EQ(service_->GetDataStore("a")->GetInt("k", 0), 7);
  EXPECT_FALSE(service_->GetDataStore("b")->Contains("k"));
}

TEST_F(NativeLocalStorageServiceTest, WritesIntoTheStandardDefaultsWithoutAGroup) {
  service_->GetDataStore("a")->SetInt("k", 7);
  EXPECT_THAT(host_.userDefaults->Standard()->KeysWithPrefix(""), ElementsAre("Korvo.a.k"));
}

TEST_F(NativeLocalStorageServiceTest, WritesIntoTheSuiteOfTheGroup) {
  AppInfo::SetAppGroup("group.shop");
  service_->GetDataStore("a")->SetInt("k", 7);
  EXPECT_THAT(host_.userDefaults->Standard()->KeysWithPrefix(""), IsEmpty());
  EXPECT_THAT(host_.userDefaults->OpenSuite("group.shop")->KeysWithPrefix(""),
              ElementsAre("Korvo.a.k"));
}

TEST_F(NativeLocalStorageServiceTest, WritesIntoTheStandardDefaultsWhereThereAreNoSuites) {
  host_.userDefaults->SetSupportsSuites(false);
  AppInfo::SetAppGroup("group.shop");
  service_->GetDataStore("a")->SetInt("k", 7);
  EXPECT_THAT(host_.userDefaults->Standard()->KeysWithPrefix(""), ElementsAre("Korvo.a.k"));
}

TEST_F(NativeLocalStorageServiceTest, LeavesAStoreWithTheDefaultsThatItWasMadeOver) {
  const auto store = service_->GetDataStore("a");
  AppInfo::SetAppGroup("group.shop");
  store->SetInt("k", 7);
  EXPECT_THAT(host_.userDefaults->Standard()->KeysWithPrefix(""), ElementsAre("Korvo.a.k"));
  EXPECT_FALSE(service_->GetDataStore("a")->Contains("k"));
}

}  // namespace
