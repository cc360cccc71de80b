#pragma once

#include <memory>

#include "QEXCore_iOS/Platform/MainQueue.h"
#include "QEXCore_iOS/Platform/SystemLog.h"
#include "QEXCore_iOS/Platform/Ui.h"

namespace Platform {

// The screen of a device that has none: nothing can be made, and each attempt is one line on the
// system log. What is animated is where it should be at once; the screen never turns.
class HeadlessUi final : public Ui {
 public:
  HeadlessUi(std::shared_ptr<SystemLog> systemLog, std::shared_ptr<MainQueue> mainQueue);

  bool SupportsAlertController() const override { return true; }
  bool SupportsModernWebView() const override { return true; }
  std::shared_ptr<AlertController> CreateAlertController(
      const std::optional<std::string>& title, const std::optional<std::string>& message) override;
  std::shared_ptr<AlertView> CreateAlertView(AlertViewSettings settings) override;
  std::shared_ptr<WebView> CreateWebView(const WebViewSettings& settings) override;
  std::shared_ptr<ImageView> CreateImageView(const ImageViewSettings& settings) override;
  std::shared_ptr<PanGestureRecognizer> CreatePanGestureRecognizer(
      std::function<void(PanGestureRecognizer&)> moved) override;
  std::shared_ptr<GestureRecognizer> CreateTapGestureRecognizer(
      int requiredTaps, std::function<void()> tapped) override;
  void Animate(std::chrono::milliseconds duration, const std::function<void()>& animations,
               std::function<void()> completion) override;
  std::unique_ptr<RotationWatch> WatchRotation(std::function<void()> rotated) override;

 private:
  [[noreturn]] void Refuse(const std::string& what) const;

  const std::shared_ptr<SystemLog> systemLog_;
  const std::shared_ptr<MainQueue> mainQueue_;
};

}  // namespace Platform
