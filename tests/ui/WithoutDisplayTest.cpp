#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "QEXCore_gtk/Gtk.h"
#include "QEXCore_iOS/Platform/DeviceError.h"
#include "support/ScopedEnvironment.h"
#include "support/StandardErrorRedirection.h"

namespace {

using TestSupport::ScopedEnvironment;

TEST(HostWithoutADisplay, HasNoScreenAndSaysSo) {
  const ScopedEnvironment x11("DISPLAY", std::nullopt);
  const ScopedEnvironment wayland("WAYLAND_DISPLAY", std::nullopt);
  const ScopedEnvironment runtime("XDG_RUNTIME_DIR", std::nullopt);
  const ScopedEnvironment broadway("GDK_BACKEND", "x11");
  const TestSupport::StandardErrorCapture standardError;
  const Platform::Host host = Gtk::CreateHost(nullptr);
  EXPECT_THAT(standardError.Text(),
              testing::HasSubstr("No display can be opened: nothing will be shown."));
  EXPECT_EQ(host.screen->MainScreen().width, 0);
  EXPECT_TRUE(host.application->Windows().empty());
  EXPECT_THROW(host.ui->CreateAlertController("Title", "Message"), Platform::DeviceError);
}

}  // namespace
