// The contracts of the screen's ports, kept by GTK's.

#include <functional>
#include <memory>

#include "QEXCore_iOS/Platform/Host.h"
#include "contract/ApplicationContract.h"
#include "contract/ScreenContract.h"
#include "contract/UiContract.h"
#include "platform/gtk/Gtk4Application.h"
#include "platform/gtk/Gtk4Screen.h"
#include "platform/gtk/Gtk4Ui.h"
#include "platform/headless/InProcessNotificationCenter.h"
#include "platform/linux/GioApplication.h"
#include "ui/ScreenFixture.h"

namespace {

using TestSupport::Screen;

class UiSubject {
 public:
  Platform::Ui& Ui() { return ui_; }
  bool Until(const std::function<bool()>& condition) { return TestSupport::Until(condition); }
  static constexpr bool kHasScreen = true;

 private:
  Screen& screen_ = Screen::OfProcess();
  Platform::Gtk4Ui ui_{Platform::Host::Current()->mainQueue, screen_.systemLog,
                       []() -> GtkWindow* { return nullptr; }};
};

class ApplicationSubject {
 public:
  Platform::Application& Get() { return application_; }

 private:
  Screen& screen_ = Screen::OfProcess();
  Platform::Gtk4Application application_{screen_.application,
                                         std::make_shared<Platform::InProcessNotificationCenter>(),
                                         std::make_shared<Platform::GioApplication>()};
};

class ScreenSubject {
 public:
  ScreenSubject() { Screen::OfProcess(); }
  const Platform::Screen& Get() {
    if (!screen_) screen_ = std::make_unique<Platform::Gtk4Screen>(gdk_display_get_default());
    return *screen_;
  }

 private:
  std::unique_ptr<Platform::Gtk4Screen> screen_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(OnADisplay, UiContractTest, testing::Types<UiSubject>);
INSTANTIATE_TYPED_TEST_SUITE_P(OnADisplay, ApplicationContractTest,
                               testing::Types<ApplicationSubject>);
INSTANTIATE_TYPED_TEST_SUITE_P(OnADisplay, ScreenContractTest, testing::Types<ScreenSubject>);

TEST(ScreenOfADisplay, HasTheSizeAndScaleOfTheFirstMonitor) {
  Screen::OfProcess();
  const Platform::ScreenMetrics metrics =
      Platform::Gtk4Screen(gdk_display_get_default()).MainScreen();
  EXPECT_EQ(metrics.width * metrics.scale, 2400);
  EXPECT_EQ(metrics.height * metrics.scale, 1800);
}

}  // namespace
