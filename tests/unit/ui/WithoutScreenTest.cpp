#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "UiFixture.h"
#include "support/ScopedEnvironment.h"
#include "support/StandardErrorRedirection.h"
#include "support/TemporaryDirectory.h"

namespace {

using TestSupport::LogLevel;

// The service in a program of the terminal, on the ports that the library has by default.
TEST(WithoutScreen, TheServiceShowsNothingAndSaysSo) {
  const TestSupport::TemporaryDirectory home;
  const TestSupport::ScopedEnvironment data("XDG_DATA_HOME", home.Path());
  const TestSupport::ScopedEnvironment runtime("XDG_RUNTIME_DIR", home.Path());
  const TestSupport::ScopedEnvironment bus("DBUS_SESSION_BUS_ADDRESS", std::nullopt);
  TestSupport::StandardErrorCapture standardError;
  TestSupport::Calls calls;
  TestSupport::LogCapture log;
  const TestSupport::FakeHost restoresTheFormerHost;
  // The process's observer of the application's state belongs to the host of the first service.
  Velmora::CreateNativeUiService();
  Platform::Host::Install(Platform::Host::CreateDefault());

  const auto service = Velmora::CreateNativeUiService();
  const auto listener = std::make_shared<TestSupport::AlertListener>(calls, "alert");
  service->ShowAlert("Title", "Message", "Yes", "No", listener);
  service->ShowLocalNotification("id", "Body", "", "", {}, "", {}, "");
  EXPECT_TRUE(log.WaitForLine(LogLevel::Error, "KRVAlertHandler", "Unable to show alert"));
  EXPECT_FALSE(service->ShowUrl("qex-nothing-opens-this:at-all"));
  EXPECT_FALSE(service->IsMessageDisplayed());
  Platform::Host::Install(restoresTheFormerHost.Copy());  // ends the main queue
  EXPECT_THAT(standardError.Text(),
              testing::HasSubstr("An alert was not made: there is no screen."));
  EXPECT_THAT(calls, testing::IsEmpty());
}

}  // namespace
