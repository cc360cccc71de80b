#pragma once

#include <memory>
#include <utility>

#include <gmock/gmock.h>

#include "services/ui/KRVMessagesMonitor.h"
#include "services/ui/NativeUiService.h"
#include "support/FakeHost.h"
#include "support/LogCapture.h"
#include "support/UiListeners.h"

namespace TestSupport {

// A UI service on a faked screen, with no message on it; fails for unexpected log lines.
class UiFixture : public testing::Test {
 protected:
  UiFixture() { KRVMessagesMonitor().dismissed(); }
  ~UiFixture() override {
    host.mainQueue->RunAll();
    KRVMessagesMonitor().dismissed();
  }

  Calls TakeCalls() { return std::exchange(calls, {}); }

  LogCapture log;
  FakeHost host;
  Calls calls;
  const std::shared_ptr<Velmora::UIServiceInterface> service = Velmora::CreateNativeUiService();
};

}  // namespace TestSupport
