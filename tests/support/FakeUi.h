#pragma once

#include <memory>
#include <string>
#include <vector>

#include "QEXCore_iOS/Platform/MainQueue.h"
#include "QEXCore_iOS/Platform/Ui.h"
#include "platform/gtk/RotationWatches.h"
#include "support/FakeAlerts.h"
#include "support/FakeViews.h"

namespace TestSupport {

// A screen that keeps what is made for it and lets the test do what the user would. For one thread,
// save for the two questions.
class FakeUi final : public Platform::Ui {
 public:
  explicit FakeUi(std::shared_ptr<Platform::MainQueue> mainQueue);
  ~FakeUi() override;

  bool supportsAlertController = true;
  bool supportsModernWebView = true;
  bool fails = false;  // nothing can be made

  std::vector<std::shared_ptr<FakeAlertController>> alertControllers;
  std::vector<std::shared_ptr<FakeAlertView>> alertViews;
  std::vector<std::shared_ptr<FakeWebView>> webViews;
  std::vector<std::shared_ptr<FakeImageView>> imageViews;
  std::vector<std::chrono::milliseconds> animations;  // how long each was to take

  // Turns the screen.
  void Rotate();
  std::size_t RotationWatchCount() const;

  bool SupportsAlertController() const override { return supportsAlertController; }
  bool SupportsModernWebView() const override { return supportsModernWebView; }
  std::shared_ptr<Platform::AlertController> CreateAlertController(
      const std::optional<std::string>& title, const std::optional<std::string>& message) override;
  std::shared_ptr<Platform::AlertView> CreateAlertView(
      Platform::AlertViewSettings settings) override;
  std::shared_ptr<Platform::WebView> CreateWebView(
      const Platform::WebViewSettings& settings) override;
  std::shared_ptr<Platform::ImageView> CreateImageView(
      const Platform::ImageViewSettings& settings) override;
  std::shared_ptr<Platform::PanGestureRecognizer> CreatePanGestureRecognizer(
      std::function<void(Platform::PanGestureRecognizer&)> moved) override;
  std::shared_ptr<Platform::GestureRecognizer> CreateTapGestureRecognizer(
      int requiredTaps, std::function<void()> tapped) override;
  void Animate(std::chrono::milliseconds duration, const std::function<void()>& change,
               std::function<void()> completion) override;
  std::unique_ptr<Platform::RotationWatch> WatchRotation(std::function<void()> rotated) override;

 private:
  void FailIfToldTo() const;

  const std::shared_ptr<Platform::MainQueue> mainQueue_;
  Platform::RotationWatches watches_;
};

}  // namespace TestSupport
