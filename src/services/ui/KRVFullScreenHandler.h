#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Ui.h"
#include "VelmoraCore/FullScreenMessageUiInterface.h"
#include "VelmoraCore/FullscreenListenerInterface.h"
#include "services/ui/KRVMessagesMonitor.h"

// Presents one full-screen HTML message, in a web view that slides over the application's window
// and asks the listener before it goes anywhere.
//
// show, dismiss and openUrl may be called on any thread: they return before the screen has changed,
// and never throw. Everything else belongs to the main queue. The message is kept while it is
// shown. A message that could not be built still counts as displayed until it is dismissed
// or goes.
class KRVFullScreenHandler : public Platform::WebViewDelegate,
                             public std::enable_shared_from_this<KRVFullScreenHandler> {
 public:
  using Message = Velmora::FullScreenMessageUiInterface;
  using Listener = std::shared_ptr<Velmora::FullscreenListenerInterface>;

  KRVFullScreenHandler(std::string payload, std::weak_ptr<Message> fullscreenMessage,
                       Listener listener, std::shared_ptr<KRVMessagesMonitor> messagesMonitor);
  ~KRVFullScreenHandler() override;
  KRVFullScreenHandler(const KRVFullScreenHandler&) = delete;
  KRVFullScreenHandler& operator=(const KRVFullScreenHandler&) = delete;

  // Shows the message, unless one is displayed.
  void show();

  // Takes the message from the screen; nothing happens unless it was shown.
  void dismiss();

  // Has the application open the URL; nothing happens for an absent or empty one.
  void openUrl(const std::optional<std::string>& url);

  // The whole of the key window, from its upper left corner; empty without a window.
  static Platform::Rect calcFullScreenFrame();

  // The listener is asked by both: what it has dealt with itself, the web view lets be.
  void DecidePolicy(const std::string& url, const std::function<void(bool allow)>& decide) override;
  bool ShouldStartLoad(const std::string& url) override;

  // The message cannot be seen any more, so it is dismissed.
  void DidLoseWindow() override;

 private:
  void Build(const std::shared_ptr<Message>& message);
  std::shared_ptr<Platform::WebView> MakeWebView(Platform::WebViewKind kind,
                                                 const Platform::Rect& frame);
  void SlideIn(const std::shared_ptr<Message>& message);
  void SlideOut(const std::shared_ptr<Message>& message);
  bool ListenerOverrides(const std::string& url);

  const std::string payload_;
  const std::weak_ptr<Message> fullscreenMessage_;
  const Listener listener_;
  const std::shared_ptr<KRVMessagesMonitor> messagesMonitor_;
  std::atomic<bool> isShown_{false};  // between show and dismiss

  // These belong to the main queue.
  std::shared_ptr<Platform::WebView> webView_;
  std::unique_ptr<Platform::RotationWatch> rotationWatch_;
};
