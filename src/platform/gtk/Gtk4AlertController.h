#pragma once

#include <functional>
#include <optional>
#include <string>

#include <gtk/gtk.h>

#include "QEXCore_iOS/Platform/Alert.h"
#include "platform/gtk/Gtk4AlertDialog.h"

namespace Platform {

// An alert of the modern kind as a dialog. Lives on the main queue.
class Gtk4AlertController final : public AlertController {
 public:
  Gtk4AlertController(const std::optional<std::string>& title,
                      const std::optional<std::string>& message);

  // Shows the alert as it is by now. It is on screen without anybody holding this.
  void ShowOver(GtkWindow* window) const { ShowAlertDialog(window, alert_); }

  void AddAction(const std::string& title, AlertActionStyle style,
                 std::function<void()> handler) override;
  void OnDismissedWithoutAction(std::function<void()> handler) override;

 private:
  Gtk4Alert alert_;
};

}  // namespace Platform
