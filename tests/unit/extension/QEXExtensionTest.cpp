#include <memory>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "QEXCore_iOS/QEXExtension.h"
#include "QEXCore_iOS/QEXExtensionApi.h"
#include "QEXCore_iOS/QEXExtensionListener.h"
#include "extension/ExtensionEvents.h"
#include "support/FakeHost.h"
#include "support/RecordingModuleServices.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

std::shared_ptr<QEXExtensionApi> NewApi() {
  return QEXExtensionApi::initWithExtension(
      nullptr, std::make_shared<TestSupport::RecordingModuleServices>());
}

TEST(QEXExtension, TheBaseClassHasNeitherNameNorVersionNorApi) {
  const auto extension = std::make_shared<QEXExtension>();
  EXPECT_EQ(extension->name(), std::nullopt);
  EXPECT_EQ(extension->version(), std::nullopt);
  EXPECT_EQ(extension->api(), nullptr);
}

TEST(QEXExtension, InitWithApiStoresTheApiAndReturnsTheObject) {
  const auto extension = std::make_shared<QEXExtension>();
  const auto api = NewApi();
  EXPECT_EQ(extension->initWithApi(api), extension);
  EXPECT_EQ(extension->api(), api);
}

TEST(QEXExtension, InitReturnsTheObjectAndDoesNothingElse) {
  const auto extension = std::make_shared<QEXExtension>();
  const auto api = NewApi();
  extension->initWithApi(api);
  EXPECT_EQ(extension->init(), extension);
  EXPECT_EQ(extension->init(), extension);
  EXPECT_EQ(extension->api(), api);
}

TEST(QEXExtension, AnObjectThatNobodySharesInitialisesToNothing) {
  QEXExtension extension;
  EXPECT_EQ(extension.initWithApi(NewApi()), nullptr);
  EXPECT_EQ(extension.init(), nullptr);
  QEXExtensionListener listener;
  EXPECT_EQ(listener.initWithExtension(nullptr), nullptr);
  EXPECT_EQ(listener.init(), nullptr);
}

TEST(QEXExtension, OnUnregisterClearsTheApi) {
  const auto extension = std::make_shared<QEXExtension>();
  extension->initWithApi(NewApi());
  extension->onUnregister();
  EXPECT_EQ(extension->api(), nullptr);
  extension->onUnregister();
}

TEST(QEXExtension, AnUnexpectedErrorIsOneLineOnThePlatformsLog) {
  const TestSupport::FakeHost host;
  const auto extension = std::make_shared<QEXExtension>();
  extension->unexpectedError({"com.velmora.module_errors", 5});
  EXPECT_THAT(host.systemLog->Lines(), ElementsAre(StartsWith("[VXSDK ERROR]: ")));
  extension->unexpectedError({"com.velmora.module_errors", 5, "what happened"});
  EXPECT_EQ(host.systemLog->Lines().at(1), "[VXSDK ERROR]: what happened");
}

TEST(QEXExtensionListener, InitWithExtensionStoresTheExtensionAndReturnsTheObject) {
  const auto listener = std::make_shared<QEXExtensionListener>();
  const auto extension = std::make_shared<QEXExtension>();
  EXPECT_EQ(listener->extension(), nullptr);
  EXPECT_EQ(listener->initWithExtension(extension), listener);
  EXPECT_EQ(listener->extension(), extension);
  EXPECT_EQ(listener->init(), listener);
  EXPECT_EQ(listener->extension(), extension);
}

TEST(QEXExtensionListener, TheBaseClassHearsAndDoesNothing) {
  const auto listener = std::make_shared<QEXExtensionListener>();
  listener->hear(nullptr);
  listener->hear(Velmora::CreateQEXExtensionEventFromEvent(nullptr));
}

}  // namespace
