#pragma once

#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "ui/ScreenFixture.h"
#include "ui/WebServer.h"

namespace TestSupport {

// A window with full-screen messages over it.
class MessageFixture : public ScreenFixture {
 protected:
  static constexpr std::uint32_t kBlue = 0x2060C0;

  // A blue page with `body` in it.
  static std::string BluePage(const std::string& body = "") {
    return "<body style='margin:0;background:#2060C0'>" + body + "</body>";
  }

  // Something as large as the upper third of the page, to be clicked.
  static std::string Target(const std::string& tag, const std::string& attributes) {
    return "<" + tag + " " + attributes +
           " style='position:absolute;left:0;top:0;width:100%;height:33%;background:#2060C0;"
           "border:0'></" +
           tag + ">";
  }

  std::shared_ptr<Velmora::FullScreenMessageUiInterface> Create(const std::string& html) {
    return service->CreateFullscreenMessage(html, listener);
  }

  // Shows the page and waits until it covers the window.
  std::shared_ptr<Velmora::FullScreenMessageUiInterface> Show(const std::string& html) {
    auto message = Create(html);
    message->Show();
    EXPECT_TRUE(UntilColour(kBlue));
    EXPECT_THAT(calls, testing::ElementsAre("show*"));
    return message;
  }

  void Remove(const std::shared_ptr<Velmora::FullScreenMessageUiInterface>& message) {
    message->Remove();
    EXPECT_TRUE(Until([this] { return !calls.empty() && calls.back() == "dismiss"; }));
  }

  // Until the middle of the window, and all its corners, have that colour.
  bool UntilColour(std::uint32_t colour) {
    return Until([=, this] { return IsAllOver(colour); });
  }

  bool IsAllOver(std::uint32_t colour) {
    GtkWidget* all = gtk_window_get_child(window);
    const double right = gtk_widget_get_width(all) - 3;
    const double bottom = gtk_widget_get_height(all) - 3;
    return ColourAt(all, right / 2, bottom / 2) == colour && ColourAt(all, 2, 2) == colour &&
           ColourAt(all, right, 2) == colour && ColourAt(all, 2, bottom) == colour &&
           ColourAt(all, right, bottom) == colour;
  }

  GtkWidget* WebView() const { return FindByType(GTK_WIDGET(window), "WebKitWebView"); }

  // Clicks the target.
  void ClickTarget() { ClickAt(WebView(), ContentWidth() / 2.0, 40); }

  bool UntilHeard(const std::string& call) {
    return Until([&] { return std::find(calls.begin(), calls.end(), call) != calls.end(); });
  }

  const std::shared_ptr<FullscreenListener> listener = std::make_shared<FullscreenListener>(calls);
};

}  // namespace TestSupport
