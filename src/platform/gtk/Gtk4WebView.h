#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <webkit/webkit.h>

#include "QEXCore_iOS/Platform/SystemLog.h"
#include "platform/gtk/Gtk4View.h"
#include "platform/gtk/Signal.h"

namespace Platform {

// HTML in a transparent web view that keeps nothing: its session lasts as long as it does. Lives on
// the main queue.
//
// What would open a new window comes into this one, when the delegate lets it. Downloads and
// context menus there are none; what fails to load leaves the content as it is.
class Gtk4WebView final : public Gtk4View<WebView>,
                          public std::enable_shared_from_this<Gtk4WebView> {
 public:
  // WebKit must be able to start. Must be made as a shared pointer.
  Gtk4WebView(const WebViewSettings& settings, std::shared_ptr<Gtk4Animator> animator,
              std::shared_ptr<SystemLog> systemLog);

  void SetDelegate(std::weak_ptr<WebViewDelegate> delegate) override;
  void LoadHtml(const std::string& html, const std::string& baseUrl) override;
  void LoseWindow() override;

 private:
  using Answer = std::function<void(bool allow)>;

  WebKitWebView* Web() const { return WEBKIT_WEB_VIEW(Placement()->Widget()); }
  void ConnectPolicy();
  void ConnectLoading();
  void RefuseExtras();
  bool DecidePolicy(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type);
  void DecideNavigation(WebKitPolicyDecision* decision);
  void AskForNewWindow(WebKitNavigationAction* action);
  void Ask(const std::string& url, Answer decide) const;
  void Failed(const GError* error) const;

  const WebViewKind kind_;
  const std::shared_ptr<SystemLog> systemLog_;
  std::weak_ptr<WebViewDelegate> delegate_;
  bool isLoadExpected_ = false;  // the next navigation need not be asked about
  std::vector<SignalConnection> connections_;
};

}  // namespace Platform
