#include "platform/gtk/Gtk4Ui.h"

#include <utility>

#include "QEXCore_iOS/Platform/DeviceError.h"
#include "platform/gtk/Gtk4AlertController.h"
#include "platform/gtk/Gtk4AlertView.h"
#include "platform/gtk/Gtk4ImageView.h"
#include "platform/gtk/Gtk4PanGestureRecognizer.h"
#include "platform/gtk/Gtk4TapGestureRecognizer.h"
#include "platform/gtk/Gtk4WebView.h"
#include "platform/gtk/WebKitSandbox.h"

namespace Platform {

Gtk4Ui::Gtk4Ui(std::shared_ptr<MainQueue> mainQueue, std::shared_ptr<SystemLog> systemLog,
               FrontWindow frontWindow)
    : systemLog_(std::move(systemLog)),
      frontWindow_(std::move(frontWindow)),
      animator_(std::make_shared<Gtk4Animator>(mainQueue)),
      rotation_(std::move(mainQueue)) {}

std::shared_ptr<AlertController> Gtk4Ui::CreateAlertController(
    const std::optional<std::string>& title, const std::optional<std::string>& message) {
  return std::make_shared<Gtk4AlertController>(title, message);
}

std::shared_ptr<AlertView> Gtk4Ui::CreateAlertView(AlertViewSettings settings) {
  return std::make_shared<Gtk4AlertView>(std::move(settings), frontWindow_);
}

std::shared_ptr<WebView> Gtk4Ui::CreateWebView(const WebViewSettings& settings) {
  if (!whyNoWebView_) whyNoWebView_ = WhyWebKitCannotStart();
  if (!whyNoWebView_->empty()) {
    const std::string text =
        "A web view was not made: WebKit's sandbox cannot start here (" + *whyNoWebView_ +
        "). Install bubblewrap and xdg-dbus-proxy and allow user namespaces or, where all that is "
        "shown can be trusted, set WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS=1.";
    systemLog_->Write(text);
    throw DeviceError(text);
  }
  return std::make_shared<Gtk4WebView>(settings, animator_, systemLog_);
}

std::shared_ptr<ImageView> Gtk4Ui::CreateImageView(const ImageViewSettings& settings) {
  return std::make_shared<Gtk4ImageView>(settings, animator_);
}

std::shared_ptr<PanGestureRecognizer> Gtk4Ui::CreatePanGestureRecognizer(
    std::function<void(PanGestureRecognizer&)> moved) {
  return std::make_shared<Gtk4PanGestureRecognizer>(std::move(moved));
}

std::shared_ptr<GestureRecognizer> Gtk4Ui::CreateTapGestureRecognizer(
    int requiredTaps, std::function<void()> tapped) {
  return std::make_shared<Gtk4TapGestureRecognizer>(requiredTaps, std::move(tapped));
}

void Gtk4Ui::Animate(std::chrono::milliseconds duration, const std::function<void()>& animations,
                     std::function<void()> completion) {
  animator_->Animate(duration, animations, std::move(completion));
}

std::unique_ptr<RotationWatch> Gtk4Ui::WatchRotation(std::function<void()> rotated) {
  return rotation_.Watch(std::move(rotated));
}

}  // namespace Platform
