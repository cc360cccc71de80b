#include "platform/headless/HeadlessUi.h"

#include <utility>

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace Platform {

HeadlessUi::HeadlessUi(std::shared_ptr<SystemLog> systemLog, std::shared_ptr<MainQueue> mainQueue)
    : systemLog_(std::move(systemLog)), mainQueue_(std::move(mainQueue)) {}

std::shared_ptr<AlertController> HeadlessUi::CreateAlertController(
    const std::optional<std::string>& /*title*/, const std::optional<std::string>& /*message*/) {
  Refuse("An alert");
}

std::shared_ptr<AlertView> HeadlessUi::CreateAlertView(AlertViewSettings /*settings*/) {
  Refuse("An alert");
}

std::shared_ptr<WebView> HeadlessUi::CreateWebView(const WebViewSettings& /*settings*/) {
  Refuse("A web view");
}

std::shared_ptr<ImageView> HeadlessUi::CreateImageView(const ImageViewSettings& /*settings*/) {
  Refuse("An image");
}

std::shared_ptr<PanGestureRecognizer> HeadlessUi::CreatePanGestureRecognizer(
    std::function<void(PanGestureRecognizer&)> /*moved*/) {
  Refuse("A gesture");
}

std::shared_ptr<GestureRecognizer> HeadlessUi::CreateTapGestureRecognizer(
    int /*requiredTaps*/, std::function<void()> /*tapped*/) {
  Refuse("A gesture");
}

void HeadlessUi::Animate(std::chrono::milliseconds /*duration*/,
                         const std::function<void()>& animations,
                         std::function<void()> completion) {
  if (animations) animations();
  if (completion) mainQueue_->Async(std::move(completion));
}

std::unique_ptr<RotationWatch> HeadlessUi::WatchRotation(std::function<void()> /*rotated*/) {
  return std::make_unique<RotationWatch>();
}

void HeadlessUi::Refuse(const std::string& what) const {
  const std::string text = what + " was not made: there is no screen.";
  systemLog_->Write(text);
  throw DeviceError(text);
}

}  // namespace Platform
