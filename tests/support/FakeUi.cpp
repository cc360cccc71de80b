#include "support/FakeUi.h"

#include <utility>

#include "QEXCore_iOS/Platform/DeviceError.h"

namespace TestSupport {

FakeUi::FakeUi(std::shared_ptr<Platform::MainQueue> mainQueue) : mainQueue_(std::move(mainQueue)) {}

FakeUi::~FakeUi() = default;

void FakeUi::Rotate() { watches_.Tell(); }

std::size_t FakeUi::RotationWatchCount() const { return watches_.Count(); }

std::shared_ptr<Platform::AlertController> FakeUi::CreateAlertController(
    const std::optional<std::string>& title, const std::optional<std::string>& message) {
  FailIfToldTo();
  return alertControllers.emplace_back(std::make_shared<FakeAlertController>(title, message));
}

std::shared_ptr<Platform::AlertView> FakeUi::CreateAlertView(Platform::AlertViewSettings settings) {
  FailIfToldTo();
  return alertViews.emplace_back(std::make_shared<FakeAlertView>(std::move(settings)));
}

std::shared_ptr<Platform::WebView> FakeUi::CreateWebView(
    const Platform::WebViewSettings& settings) {
  FailIfToldTo();
  return webViews.emplace_back(std::make_shared<FakeWebView>(settings));
}

std::shared_ptr<Platform::ImageView> FakeUi::CreateImageView(
    const Platform::ImageViewSettings& settings) {
  FailIfToldTo();
  return imageViews.emplace_back(std::make_shared<FakeImageView>(settings));
}

std::shared_ptr<Platform::PanGestureRecognizer> FakeUi::CreatePanGestureRecognizer(
    std::function<void(Platform::PanGestureRecognizer&)> moved) {
  FailIfToldTo();
  return std::make_shared<FakePanGestureRecognizer>(std::move(moved));
}

std::shared_ptr<Platform::GestureRecognizer> FakeUi::CreateTapGestureRecognizer(
    int requiredTaps, std::function<void()> tapped) {
  FailIfToldTo();
  return std::make_shared<FakeTapGestureRecognizer>(requiredTaps, std::move(tapped));
}

void FakeUi::Animate(std::chrono::milliseconds duration, const std::function<void()>& change,
                     std::function<void()> completion) {
  animations.push_back(duration);
  if (change) change();
  if (completion) mainQueue_->Async(std::move(completion));
}

std::unique_ptr<Platform::RotationWatch> FakeUi::WatchRotation(std::function<void()> rotated) {
  return watches_.Add(std::move(rotated));
}

void FakeUi::FailIfToldTo() const {
  if (fails) throw Platform::DeviceError("The device failed.");
}

}  // namespace TestSupport
