#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "VelmoraCore/SystemInfoServiceInterface.h"
#include "services/system/NativeSystemInfoService.h"
#include "services/system/SystemInfoCaches.h"
#include "support/FailingPorts.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"

// The service on a device of the test's choice, in a process that has cached nothing yet. Lines
// that a test does not expect fail it.
class SystemInfoFixture : public testing::Test {
 protected:
  SystemInfoFixture() { Velmora::SystemInfoCaches::Renew(); }
  ~SystemInfoFixture() override { Velmora::SystemInfoCaches::Renew(); }

  void FailEveryPort() const {
    Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  }

  static constexpr const char* kTag = "SystemInfoService";

  const TestSupport::FakeHost host;
  TestSupport::LogCapture log;
  const std::shared_ptr<Velmora::SystemInfoServiceInterface> service =
      Velmora::CreateNativeSystemInfoService();
};
