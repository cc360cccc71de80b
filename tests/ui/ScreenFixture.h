#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "VelmoraCore/UIServiceInterface.h"
#include "support/FakeBundle.h"
#include "support/FakeSystemLog.h"
#include "support/LogCapture.h"
#include "support/TemporaryDirectory.h"
#include "support/UiListeners.h"
#include "ui/Desktop.h"

namespace TestSupport {

// The process's GTK application with the SDK's UI service on it: made once, and kept, as in an
// application. Its loop turns where a test waits.
struct Screen {
  static Screen& OfProcess();

  GtkApplication* application = nullptr;
  const TemporaryDirectory folder;  // the bundle's

  // Where the program that opens URLs of the scheme "qex-screen" notes the last one.
  std::string openedUrl;

  const std::shared_ptr<FakeBundle> bundle = std::make_shared<FakeBundle>();
  const std::shared_ptr<FakeSystemLog> systemLog = std::make_shared<FakeSystemLog>();
  std::shared_ptr<Velmora::UIServiceInterface> service;

 private:
  Screen();
  void RegisterOpener();
};

// One window with an entry and a button of the application's own, in front. Fails for unexpected
// lines of the log.
class ScreenFixture : public testing::Test {
 protected:
  ScreenFixture();
  ~ScreenFixture() override;

  // Asks for another size of the window's content, and waits until it has it.
  bool Resize(int width, int height);

  // Until what was handed to the main queue so far has been done.
  void EmptyMainQueue();

  // Until the application's entry holds that text.
  bool UntilEntered(const std::string& text) {
    const auto entered = [this] { return std::string(gtk_editable_get_text(GTK_EDITABLE(entry))); };
    Until([&] { return entered() == text; });
    EXPECT_EQ(entered(), text);
    return entered() == text;
  }

  bool IsActive() const { return gtk_window_is_active(window) != FALSE; }
  int ContentWidth() const { return gtk_widget_get_width(content); }
  int ContentHeight() const { return gtk_widget_get_height(content); }

  LogCapture log;
  Screen& screen = Screen::OfProcess();
  const std::shared_ptr<Velmora::UIServiceInterface> service = screen.service;
  Calls calls;
  GtkWindow* window = nullptr;
  GtkWidget* content = nullptr;
  GtkWidget* entry = nullptr;
  GtkWidget* button = nullptr;
  int buttonClicks = 0;
};

}  // namespace TestSupport
