#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "QEXCore_iOS/Platform/Alert.h"
#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/View.h"
#include "QEXCore_iOS/Platform/Window.h"

namespace Platform {

// A watch over the rotation of the screen; lasts until it goes. Lives on the main queue.
class QEXCORE_API RotationWatch {
 public:
  virtual ~RotationWatch();
};

// Makes what is shown. The two questions may be asked on any thread, the rest on the main queue
// only. What is made is never null: making throws Platform::DeviceError where the device cannot, a
// device without a screen among them.
class QEXCORE_API Ui {
 public:
  virtual ~Ui();

  // Whether the device knows alerts of the modern kind; if not, it knows those of the legacy kind.
  virtual bool SupportsAlertController() const = 0;

  // Whether the device knows web views of the modern kind; if not, it knows those of the legacy
  // kind.
  virtual bool SupportsModernWebView() const = 0;

  virtual std::shared_ptr<AlertController> CreateAlertController(
      const std::optional<std::string>& title, const std::optional<std::string>& message) = 0;

  virtual std::shared_ptr<AlertView> CreateAlertView(AlertViewSettings settings) = 0;

  virtual std::shared_ptr<WebView> CreateWebView(const WebViewSettings& settings) = 0;

  virtual std::shared_ptr<ImageView> CreateImageView(const ImageViewSettings& settings) = 0;

  // `moved` is called at each movement.
  virtual std::shared_ptr<PanGestureRecognizer> CreatePanGestureRecognizer(
      std::function<void(PanGestureRecognizer&)> moved) = 0;

  // `tapped` is called when the view has been tapped `requiredTaps` times in a row.
  virtual std::shared_ptr<GestureRecognizer> CreateTapGestureRecognizer(
      int requiredTaps, std::function<void()> tapped) = 0;

  // Calls `animations` at once; frames and alphas that it sets are reached over `duration`.
  // Afterwards, and never within this call, calls `completion`: once, also when a view or its
  // window went in between. Either may be empty.
  virtual void Animate(std::chrono::milliseconds duration, const std::function<void()>& animations,
                       std::function<void()> completion) = 0;

  // `rotated` is called when the screen has turned, once the windows have their new frames.
  virtual std::unique_ptr<RotationWatch> WatchRotation(std::function<void()> rotated) = 0;
};

}  // namespace Platform
