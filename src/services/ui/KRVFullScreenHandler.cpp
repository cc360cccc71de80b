#include "services/ui/KRVFullScreenHandler.h"

#include <chrono>
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

// `frame`, moved out of sight.
Rect Below(Rect frame) {
  frame.y += frame.height;
  return frame;
}

}  // namespace

KRVFullScreenHandler::KRVFullScreenHandler(std::string payload,
                                           std::weak_ptr<Message> fullscreenMessage,
                                           Listener listener,
                                           std::shared_ptr<KRVMessagesMonitor> messagesMonitor)
    : payload_(std::move(payload)),
      owner_(std::move(fullscreenMessage)),
      listener_(std::move(listener)),
      messagesMonitor_(std::move(messagesMonitor)) {}

KRVFullScreenHandler::~KRVFullScreenHandler() = default;

void KRVFullScreenHandler::show() {
  if (messagesMonitor_->isDisplayed()) {
    Log::Debug(kLogTag,
               "Full screen message couldn't be displayed, another message is displayed at this "
               "time");
    return;
  }
  messagesMonitor_->displayed();
  isShown_ = true;
  Velmora::OnMainQueue([self = shared_from_this(), message = owner_.lock()] {
    self->fullscreenMessage_ = message;
    self->Build();
  });
}

void KRVFullScreenHandler::dismiss() {
  if (!isShown_.exchange(false)) return;
  messagesMonitor_->dismissed();
  Velmora::OnMainQueue([self = shared_from_this()] { self->SlideOut(); });
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

void KRVFullScreenHandler::Build() {
  WebViewKind kind = WebViewKind::Modern;
  Velmora::TryCatch(
      [&] {
        if (!Host::Current()->ui->SupportsModernWebView()) kind = WebViewKind::Legacy;
        const Rect frame = calcFullScreenFrame();
        webView_ = MakeWebView(kind, Below(frame));
        if (const auto window = Velmora::AppUi::GetKeyWindow()) window->AddSubview(webView_);
        SlideIn();
      },
      [&](SdkError& error) {
        Log::Debug(kLogTag,
                   kind == WebViewKind::Modern ? "Unable to show WKWebView (%s)"
                                               : "Unable to show UIWebView (%s)",
                   error.GetMessage().c_str());
      });
}

std::shared_ptr<Platform::WebView> KRVFullScreenHandler::MakeWebView(WebViewKind kind,
                                                                     const Rect& frame) {
  const auto host = Host::Current();
  const auto view = host->ui->CreateWebView(
      {.kind = kind,
       .look = {.frame = frame,
                .isOpaque = false,
                .hasClearBackground = true,
                .autoresizingMask = Platform::kFlexibleWidth | Platform::kFlexibleHeight},
       .bounces = false,
       .adjustsContentInset = false});
  view->SetDelegate(weak_from_this());
  view->LoadHtml(payload_, "file://" + host->bundle->BundlePath() + "/");
  return view;
}

void KRVFullScreenHandler::SlideIn() {
  const auto ui = Host::Current()->ui;
  const auto fill = [self = weak_from_this()] {
    const auto handler = self.lock();
    if (handler && handler->webView_) handler->webView_->SetFrame(calcFullScreenFrame());
  };
  ui->Animate(kSlideTime, fill, nullptr);
  rotationWatch_ = ui->WatchRotation(fill);
  if (listener_) listener_->OnShow(fullscreenMessage_);
}

// What slides out is no longer this handler's: the message may be shown anew meanwhile.
void KRVFullScreenHandler::SlideOut() {
  rotationWatch_ = nullptr;
  const auto view = std::exchange(webView_, nullptr);
  const auto end = [self = shared_from_this(), view,
                    message = std::exchange(fullscreenMessage_, nullptr)] {
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
  return listener_ && listener_->OverrideUrlLoad(owner_.lock(), url);
}
