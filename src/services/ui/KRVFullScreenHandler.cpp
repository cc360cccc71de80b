#include "services/ui/KRVFullScreenHandler.h"

#include <chrono>
#include <set>
#include <string_view>
#include <utility>

#include "QEXCore_iOS/Platform/Host.h"
#include "VelmoraCore/Log.h"
#include "VelmoraCore/TryCatch.h"
#include "services/ui/AppUi.h"
#include "services/ui/KRVUrlHandler.h"
#include "services/ui/MainQueueWork.h"

using Platform::Host;
using Platform::Rect;
using Platform::WebViewKind;
using Velmora::Log;
using Velmora::SdkError;

namespace {

constexpr const char* kLogTag = "FullscreenMessage";
constexpr std::chrono::milliseconds kSlideTime{300};

// The messages that are on screen, which nobody else needs to keep. Belongs to the main queue;
// never destroyed, since a message may be left open when the process ends.
std::set<std::shared_ptr<KRVFullScreenHandler::Message>>& ShownMessages() {
  static auto& shown = *new std::set<std::shared_ptr<KRVFullScreenHandler::Message>>;
  return shown;
}

// `frame`, moved out of sight.
Rect Below(Rect frame) {
  frame.y += frame.height;
  return frame;
}

// The URL of a folder of that path.
std::string FolderUrl(const std::string& path) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string url = "file://";
  for (const char character : path) {
    if (kPlain.find(character) != std::string_view::npos) {
      url += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      url += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return url + "/";
}

}  // namespace

KRVFullScreenHandler::KRVFullScreenHandler(std::string payload,
                                           std::weak_ptr<Message> fullscreenMessage,
                                           Listener listener,
                                           std::shared_ptr<KRVMessagesMonitor> messagesMonitor)
    : payload_(std::move(payload)),
      fullscreenMessage_(std::move(fullscreenMessage)),
      listener_(std::move(listener)),
      messagesMonitor_(std::move(messagesMonitor)) {}

// What is on screen keeps its message, and with it this: a message that goes is not on screen.
KRVFullScreenHandler::~KRVFullScreenHandler() {
  if (isShown_) messagesMonitor_->dismissed();
}

void KRVFullScreenHandler::show() {
  // Two threads may show the same message at once; only one of them goes on.
  if (messagesMonitor_->isDisplayed() || isShown_.exchange(true)) {
    Log::Debug(kLogTag,
               "Full screen message couldn't be displayed, another message is displayed at this "
               "time");
    return;
  }
  messagesMonitor_->displayed();
  Velmora::OnMainQueue([self = shared_from_this(), message = fullscreenMessage_.lock()] {
    ShownMessages().insert(message);
    self->Build(message);
  });
}

void KRVFullScreenHandler::dismiss() {
  if (!isShown_.exchange(false)) return;
  messagesMonitor_->dismissed();
  // The message stays until it has heard of its end.
  Velmora::OnMainQueue([self = shared_from_this(), message = fullscreenMessage_.lock()] {
    self->SlideOut(message);
  });
}

void KRVFullScreenHandler::openUrl(const std::optional<std::string>& url) {
  if (!url || url->empty()) return;
  Velmora::OnMainQueue([url = *url] { KRVUrlHandler::showUrl(url); });
}

Rect KRVFullScreenHandler::calcFullScreenFrame() {
  const auto window = Velmora::AppUi::GetKeyWindow();
  const Rect frame = window ? window->Frame() : Rect{};
  return {.x = 0, .y = 0, .width = frame.width, .height = frame.height};
}

void KRVFullScreenHandler::DecidePolicy(const std::string& url,
                                        const std::function<void(bool allow)>& decide) {
  decide(!ListenerOverrides(url));
}

bool KRVFullScreenHandler::ShouldStartLoad(const std::string& url) {
  return !ListenerOverrides(url);
}

void KRVFullScreenHandler::DidLoseWindow() { dismiss(); }

void KRVFullScreenHandler::Build(const std::shared_ptr<Message>& message) {
  WebViewKind kind = WebViewKind::Modern;
  Velmora::TryCatch(
      [&] {
        if (!Host::Current()->ui->SupportsModernWebView()) kind = WebViewKind::Legacy;
        const Rect frame = calcFullScreenFrame();
        webView_ = MakeWebView(kind, Below(frame));
        if (const auto window = Velmora::AppUi::GetKeyWindow()) window->AddSubview(webView_);
        SlideIn(message);
      },
      [&](SdkError& error) {
        Log::Debug(kLogTag,
                   kind == WebViewKind::Modern ? "Unable to show WKWebView (%s)"
                                               : "Unable to show UIWebView (%s)",
                   error.GetMessage().c_str());
        if (!webView_) ShownMessages().erase(message);
      });
}

std::shared_ptr<Platform::WebView> KRVFullScreenHandler::MakeWebView(WebViewKind kind,
                                                                     const Rect& frame) {
  const auto host = Host::Current();
  auto view = host->ui->CreateWebView(
      {.kind = kind,
       .look = {.frame = frame,
                .isOpaque = false,
                .hasClearBackground = true,
                .autoresizingMask = Platform::kFlexibleWidth | Platform::kFlexibleHeight},
       .bounces = false,
       .adjustsContentInset = false});
  view->SetDelegate(weak_from_this());
  view->LoadHtml(payload_, FolderUrl(host->bundle->BundlePath()));
  return view;
}

void KRVFullScreenHandler::SlideIn(const std::shared_ptr<Message>& message) {
  const auto ui = Host::Current()->ui;
  const auto fill = [self = weak_from_this()] {
    const auto handler = self.lock();
    if (handler && handler->webView_) handler->webView_->SetFrame(calcFullScreenFrame());
  };
  ui->Animate(kSlideTime, fill, nullptr);
  rotationWatch_ = ui->WatchRotation(fill);
  if (listener_) listener_->OnShow(message);
}

// What slides out is no longer this handler's: the message may be shown anew meanwhile.
void KRVFullScreenHandler::SlideOut(const std::shared_ptr<Message>& message) {
  rotationWatch_ = nullptr;
  ShownMessages().erase(message);
  const auto view = std::exchange(webView_, nullptr);
  const auto end = [self = shared_from_this(), view, message] {
    if (view) view->RemoveFromSuperview();
    if (self->listener_) self->listener_->OnDismiss(message);
  };
  const bool isSliding =
      view && Velmora::TrySwallow([&] {
        Host::Current()->ui->Animate(
            kSlideTime, [&] { view->SetFrame(Below(calcFullScreenFrame())); }, end);
      });
  if (!isSliding) end();
}

bool KRVFullScreenHandler::ListenerOverrides(const std::string& url) {
  return listener_ && listener_->OverrideUrlLoad(fullscreenMessage_.lock(), url);
}
