#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/MainQueue.h"
#include "QEXCore_iOS/Platform/SystemLog.h"
#include "QEXCore_iOS/Platform/Ui.h"
#include "platform/gtk/Gtk4Animator.h"
#include "platform/gtk/Gtk4Rotation.h"

namespace Platform {

// The screen on GTK 4 and WebKitGTK. Must be made and go on the main queue's thread.
class Gtk4Ui final : public Ui {
 public:
  // The window to show a legacy alert over.
  using FrontWindow = std::function<GtkWindow*()>;

  Gtk4Ui(std::shared_ptr<MainQueue> mainQueue, std::shared_ptr<SystemLog> systemLog,
         FrontWindow frontWindow);

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
  const std::shared_ptr<SystemLog> systemLog_;
  const FrontWindow frontWindow_;
  const std::shared_ptr<Gtk4Animator> animator_;
  Gtk4Rotation rotation_;
  std::optional<std::string> whyNoWebView_;  // once it was looked into; empty: web views work
};

}  // namespace Platform
